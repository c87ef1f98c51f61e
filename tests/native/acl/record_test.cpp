// Records, the text checks and the rule checks with their exact messages in their order.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/native/acl/model_for_test.h"

#include "acl/acl_record.h"

namespace {

using F = std::string RuleFields::*;

std::string Message(AclType type, AclOwner owner, const char* model, const RuleFields& f) {
  AclCheck c = ValidateRule(type, owner, M(model), f);
  return c.code == AclMessage::kNone ? "ok" : MessageText(c.code);
}

RuleFields Good() {
  RuleFields f;
  f.profileId = "3";
  f.accessId = "12";
  f.ports = "1-5,7";
  return f;
}

}  // namespace

TEST(AclRecord, TextChecks) {
  EXPECT_TRUE(ValidateMac("  00a0c9ffee01 "));
  for (const char* bad : {"00-11-22-33-44-55", "00a0c9ffee0", "00a0c9ffee012", "00a0c9ffee0g"})
    EXPECT_FALSE(ValidateMac(bad)) << bad;
  EXPECT_TRUE(ValidateHex(" 86dd "));
  EXPECT_TRUE(ValidateHex(""));
  EXPECT_FALSE(ValidateHex("86DG"));
  EXPECT_FALSE(ValidateHex(std::string(200, 'A')));
  EXPECT_TRUE(ValidateDigits(" 0123 "));
  EXPECT_FALSE(ValidateDigits("-1"));
  const struct {
    const char* list;
    int ports;
    bool ok;
  } lists[] = {{"1-5,7", 10, true}, {"1--5", 10, false}, {"11", 10, false}, {"1,2,3,4,5,6,7,8,9,10", 10, true},
               {"5-6-7", 28, false}, {"1 2", 10, false}, {"100", 50, false}, {"51", 50, false}, {"50", 50, true}};
  for (const auto& l : lists) EXPECT_EQ(ValidatePortList(l.list, l.ports), l.ok) << l.list;
  EXPECT_FALSE(ValidatePortList(std::string(97, '1'), 50)) << "longer than a port list of any model";
  EXPECT_TRUE(ValidateHexWidth("  ffff0000 ", 8));
  EXPECT_FALSE(ValidateHexWidth("FFFF000", 8));
  EXPECT_FALSE(ValidateHexWidth("FFFF00000", 8));
  for (const char* ok : {"0", "31", " 3 "}) EXPECT_TRUE(ValidateChunkOffset(ok)) << ok;
  for (const char* bad : {"", "32", "-1", "1a", "003"}) EXPECT_FALSE(ValidateChunkOffset(bad)) << bad;
  EXPECT_EQ("00FF", PadHex("FF", 4));
}

// Each rule type with every field wrong shows its first message; fixing the fields one after
// the other in the listed order walks through the rest in order. A field may come back later
// (the empty port list is refused only just before the record is added).
TEST(AclRecord, RuleChecksShowTheFirstFailingMessageInOrder) {
  struct Step {
    F field;
    const char* bad;
    const char* fixed;
    const char* message;
  };
  const struct {
    AclType type;
    const char* model;
    std::vector<Step> steps;
  } cases[] = {
      {AclType::kEthernet, "TVG5240-10",
       {{&RuleFields::p8021, "8", "7", "8021p value range is 0 to 7"},
        {&RuleFields::accessId, "999", "200", "Access ID range is error"},
        {&RuleFields::dstMac, "00-11", "", "Invalid MAC Address !"},
        {&RuleFields::priority, "8", "7", "Priority value range is 0 to 7"},
        {&RuleFields::rxRate, "156250", "156249", "Rxrate range is not error"},
        {&RuleFields::srcMac, "xyz", "001122334455", "Invalid MAC Address !"},
        {&RuleFields::ethertype, "86GG", "86DDA", "Invalid Ethertype value!"},
        {&RuleFields::ethertype, "86DDA", "86dd", "Invalid Ethertype value!"},
        {&RuleFields::ports, "1--2", "", "Port  is error!"},
        {&RuleFields::replaceDscp, "64", "63", "Dscp value range is 0 to 63"},
        {&RuleFields::replaceTos, "8", "0", "Replace ToS Precedence value range is 0 to 7"},
        {&RuleFields::ports, "", "10", "Port  is error!"}}},
      {AclType::kIPv4, "TVR4512",
       {{&RuleFields::accessId, "", "129", "Access ID  can not null!"},
        {&RuleFields::accessId, "129", "128", "Access ID range is error"},
        {&RuleFields::priority, "9", "0", "Priority value range is 0 to 7"},
        {&RuleFields::rxRate, "0", "15624", "Rxrate range is not error"},
        {&RuleFields::replaceDscp, "64", "0", "Replace Dscp value range is 0 to 63"},
        {&RuleFields::ports, "99", "", "Port  is error!"},
        {&RuleFields::dscp, "64", "63", "Dscp value range is 0 to 63"},
        {&RuleFields::replaceTos, "8", "7", "Replace ToS Precedence value range is 0 to 7"},
        {&RuleFields::value1, "65536", "65535", "value is 0 to 65535"},
        {&RuleFields::value2, "1x", "80", "value is 0 to 65535"},
        {&RuleFields::ports, "", "28", "Access ID  can not null!"}}},
      {AclType::kIPv6, "TVG5690",
       {{&RuleFields::ipv6Class, "256", "255", "Class value is 0 to 255!"},
        {&RuleFields::priority, "8", "1", "Priority value range is 0 to 7"},
        {&RuleFields::rxRate, "999999", "1", "Rxrate range is not error"},
        {&RuleFields::flowLabel, "FFFFG", "fffff", "Invalid Flowlabel value!"},
        {&RuleFields::ports, "51", "", "Port  is error!"},
        {&RuleFields::replaceDscp, "64", "1", "Dscp value range is 0 to 63"},
        {&RuleFields::replaceTos, "8", "1", "Replace ToS Precedence value range is 0 to 7"},
        {&RuleFields::ports, "", "50", "Port can not null!"},
        {&RuleFields::action, "", "2", "Port can not null!"}}},
      {AclType::kPacketContent, "TVG5690",
       {{&RuleFields::accessId, "129", "128", "Access ID range is error"},
        {&RuleFields::priority, "8", "", "Priority value range is 0 to 7"},
        {&RuleFields::rxRate, "0", "", "Rxrate range is not error"},
        {&RuleFields::ports, "51", "1-50", "Port  is error!"},
        {&RuleFields::replaceDscp, "64", "", "Dscp value range is 0 to 63"},
        {&RuleFields::replaceTos, "8", "", "Replace ToS Precedence value range is 0 to 7"}}},
  };
  for (const auto& c : cases) {
    RuleFields f = Good();
    f.protocol = "4";  // TCP for the IPv4 rule
    std::vector<F> set;
    for (const Step& s : c.steps)
      if (std::find(set.begin(), set.end(), s.field) == set.end()) {
        f.*(s.field) = s.bad;
        set.push_back(s.field);
      }
    for (const Step& s : c.steps) {
      EXPECT_EQ(Message(c.type, AclOwner::kAcl, c.model, f), s.message) << TypeWord(c.type) << " bad '" << s.bad << "'";
      f.*(s.field) = s.fixed;
    }
    EXPECT_EQ(Message(c.type, AclOwner::kAcl, c.model, f), "ok") << TypeWord(c.type);
  }
}

// One field at a time, where protocols differ and numbers carry leading zeros (the models'
// own limits: model_facts_test.cpp).
TEST(AclRecord, FieldLimitsByProtocolAndLeadingZeros) {
  const AclType E = AclType::kEthernet, V4 = AclType::kIPv4;
  const AclOwner O = AclOwner::kAcl;
  const struct {
    AclType type;
    AclOwner owner;
    const char* model;
    const char* protocol;
    F field;
    const char* text;
    const char* message;
  } cases[] = {
      {E, O, "TVG5240-10", "", &RuleFields::accessId, "000000000012", "Access ID range is error"},
      {E, O, "TVG5240-10", "", &RuleFields::priority, "00000000007", "Priority value range is 0 to 7"},
      {V4, O, "TVR4820", "2", &RuleFields::value2, "256", "value is 0 to 255"},
      {V4, O, "TVR4820", "3", &RuleFields::value1, "255", "ok"},
      {V4, O, "TVR4820", "6", &RuleFields::value2, "FFFFFFFG", "User Mask  is error!"},
      {V4, O, "TVR4820", "6", &RuleFields::value2, "FFFFFFFF0", "User Mask  is error!"},
      {V4, O, "TVR4820", "6", &RuleFields::value2, "0000ffff", "ok"},
  };
  for (const auto& c : cases) {
    RuleFields f = Good();
    f.ports = "1";
    f.protocol = c.protocol;
    f.*(c.field) = c.text;
    EXPECT_EQ(Message(c.type, c.owner, c.model, f), c.message) << c.model << " " << TypeWord(c.type) << " '" << c.text << "'";
  }
}

TEST(AclRecord, RuleCellsAsTheDialogsBuildThem) {
  RuleFields f = Good();
  f.vlan = "v10";
  f.srcMac = " 00a0c9ffee01 ";
  f.ethertype = "86dd";
  f.priorityChecked = true;
  f.priority = "6";
  f.replaceTosChecked = true;
  f.replaceTos = "3";
  f.action = "3";
  f.rxRate = "100";
  const ModelEntry& m = M("TVG5240-10");
  EXPECT_EQ(BuildRule(AclType::kEthernet, AclOwner::kAcl, m, f),
            (AclRecord{"3", "12", "v10", "00A0C9FFEE01", "00.00.00.00.00.00", "", "86DD", "1", "6", "2", "3",
                       "1-5,7", "4", "3", "100"}));
  f.priorityChecked = false;
  EXPECT_EQ(BuildRule(AclType::kEthernet, AclOwner::kCpu, m, f),
            (AclRecord{"3", "12", "v10", "00A0C9FFEE01", "00.00.00.00.00.00", "", "86DD", "3", "4", "1-5,7"}));
  // IPv4: which of cells 7..13 are filled depends on the protocol.
  f.value1 = "8";
  f.value2 = "0";
  f.flagBits = "18";
  const struct {
    const char* protocol;
    const char* filled;  // cells 7..13, '#' filled
  } cases[] = {{"2", "##-----"}, {"3", "#------"}, {"4", "--###--"}, {"5", "--##---"}, {"6", "-----##"}};
  for (const auto& c : cases) {
    f.protocol = c.protocol;
    AclRecord r = BuildRule(AclType::kIPv4, AclOwner::kAcl, M("TVR4820"), f);
    ASSERT_EQ(r.size(), 25u);
    for (size_t k = 7; k <= 13; ++k) EXPECT_EQ(!r[k].empty(), c.filled[k - 7] == '#') << c.protocol << " cell " << k;
  }
}

// Every flag, state and option of a profile is filled, since the writer sends them all: the
// switch keeps its own default for a column a creating request leaves out.
TEST(AclRecord, ProfileCellsAsThePagesBuildThem) {
  ProfileFields p;
  p.profileId = "7";
  p.srcMacChecked = true;
  p.srcMac = " 0000000000ff ";
  p.profileName = "web";
  EXPECT_EQ(ValidateProfile(AclType::kEthernet, p).code, AclMessage::kNone);
  EXPECT_EQ(BuildProfile(AclType::kEthernet, AclOwner::kAcl, M("TVG5240-10"), p),
            (AclRecord{"7", "2", "3", " 0000000000ff ", "", "2", "2", "4", "1", ""}));
  EXPECT_EQ(BuildProfile(AclType::kEthernet, AclOwner::kAcl, M("TVR4512"), p)[8], "web");
  EXPECT_EQ(BuildProfile(AclType::kEthernet, AclOwner::kCpu, M("TVR4512"), p)[8], "2");
  p.dstMacChecked = true;
  p.dstMac = "00-00-00-00-00-FF";
  EXPECT_STREQ(ValidateProfile(AclType::kEthernet, p), "Invalid MAC Address !");

  // IPv4 cells 6..15 by protocol group (3 ICMP, 4 IGMP, 5 TCP, 6 UDP, 7 protocol ID), checked.
  const struct {
    int group;
    bool typeChecked, codeChecked, flags;
    AclRecord cells;  // 6 UseProtoType .. 15 ProtolIDOption
  } cases[] = {
      {0, false, false, false, {"1", "1", "2", "1", "1", "", "", "2", "0", "2"}},
      {3, true, false, false, {"2", "2", "2", "1", "1", "", "", "2", "0", "2"}},
      {3, true, true, false, {"2", "4", "2", "1", "1", "", "", "2", "0", "2"}},
      {4, true, false, false, {"3", "1", "1", "1", "1", "", "", "2", "0", "2"}},
      {5, false, false, true, {"4", "1", "2", "3", "1", "FFFF", "", "1", "18", "2"}},
      {6, false, false, false, {"5", "1", "2", "1", "3", "FFFF", "", "2", "0", "2"}},
      {7, false, false, false, {"6", "1", "2", "1", "1", "", "", "2", "0", "1"}},
  };
  for (const auto& c : cases) {
    ProfileFields v4;
    v4.profileId = "1";
    v4.protocolGroup = c.group;
    v4.protocolChecked = true;
    v4.typeChecked = c.typeChecked;
    v4.codeChecked = c.codeChecked;
    v4.srcPortMask = c.group == 5 || c.group == 6 ? "FFFF" : "";
    v4.flagBitsChecked = c.flags;
    v4.flagValue = 18;
    v4.protocolId = "17";
    AclRecord r = BuildProfile(AclType::kIPv4, AclOwner::kAcl, M("TVG5690"), v4);
    EXPECT_EQ(AclRecord(r.begin() + 6, r.begin() + 16), c.cells) << "group " << c.group;
  }
}
