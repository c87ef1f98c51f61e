// Part 4.1: records, keys, text checks and the rule checks with their exact messages in their
// order. Tests named "EdgeCase..." are the "Edge cases worth testing" of Part 4.1.
#include <gtest/gtest.h>

#include "tests/native/acl/model_for_test.h"

#include <algorithm>

#include "acl/acl_record.h"

namespace {

// A valid ordinary Ethernet rule on TVG5240-10 (10 ports, Access ID 1..200, Rx 1..156249).
RuleFields GoodEthernet() {
  RuleFields f;
  f.profileId = "3";
  f.accessId = "12";
  f.ports = "1-5,7";
  return f;
}

std::string Msg(const char* m) { return m ? m : "ok"; }

}  // namespace

TEST(AclRecord, EdgeCaseMacWithDashesRejectedLowerCaseAcceptedAndStoredUpperCased) {
  EXPECT_FALSE(ValidateMac("00-11-22-33-44-55"));
  EXPECT_TRUE(ValidateMac("00a0c9ffee01"));
  EXPECT_TRUE(ValidateMac("  00a0c9ffee01 "));
  EXPECT_FALSE(ValidateMac("00a0c9ffee0"));
  EXPECT_FALSE(ValidateMac("00a0c9ffee012"));
  EXPECT_FALSE(ValidateMac("00a0c9ffee0g"));
  RuleFields f = GoodEthernet();
  f.srcMac = "00a0c9ffee01";
  EXPECT_EQ(ValidateRule(AclType::kEthernet, AclOwner::kAcl, M("TVG5240-10"), f), nullptr);
  AclRecord r = BuildRule(AclType::kEthernet, AclOwner::kAcl, M("TVG5240-10"), f);
  EXPECT_EQ(r[3], "00A0C9FFEE01");
  f.dstMac = "00-11-22-33-44-55";
  EXPECT_STREQ(ValidateRule(AclType::kEthernet, AclOwner::kAcl, M("TVG5240-10"), f), "Invalid MAC Address !");
}

TEST(AclRecord, EdgeCaseOmittedRuleMacStoredAsPlaceholder) {
  for (AclOwner owner : {AclOwner::kAcl, AclOwner::kCpu}) {
    AclRecord r = BuildRule(AclType::kEthernet, owner, M("TVR4820"), GoodEthernet());
    EXPECT_EQ(r[3], "00.00.00.00.00.00");
    EXPECT_EQ(r[4], "00.00.00.00.00.00");
  }
}

TEST(AclRecord, EdgeCasePortListsOnATenPortModel) {
  EXPECT_TRUE(ValidatePortList("1-5,7", 10));
  EXPECT_FALSE(ValidatePortList("1--5", 10));
  EXPECT_FALSE(ValidatePortList("11", 10));
  EXPECT_TRUE(ValidatePortList("1,2,3,4,5,6,7,8,9,10", 10));
  // Part 5.3's forms of the same rule.
  EXPECT_FALSE(ValidatePortList("5-6-7", 28));
  EXPECT_FALSE(ValidatePortList("5--7", 28));
  EXPECT_TRUE(ValidatePortList("5-7,9", 10));
  EXPECT_FALSE(ValidatePortList("1,2,3a", 10));
  EXPECT_FALSE(ValidatePortList("1 2", 10));
  EXPECT_FALSE(ValidatePortList("100", 50)) << "three digits starting 1..9 read as 100";
  EXPECT_FALSE(ValidatePortList("51", 50));
  EXPECT_TRUE(ValidatePortList("50", 50));
  EXPECT_FALSE(ValidatePortList(std::string(97, '1').c_str(), 50)) << "longer than 96 characters";
  RuleFields f = GoodEthernet();
  f.ports = "11";
  EXPECT_STREQ(ValidateRule(AclType::kEthernet, AclOwner::kAcl, M("TVG5240-10"), f), "Port  is error!");
}

TEST(AclRecord, EdgeCaseAccessIdAtTheModelsLimits) {
  struct Case {
    const char* model;
    AclOwner owner;
    AclType type;
    const char* min;
    const char* below;
    const char* max;
    const char* above;
  } cases[] = {
      {"TVG5240-10", AclOwner::kAcl, AclType::kEthernet, "1", "0", "200", "201"},
      {"TVG5470", AclOwner::kCpu, AclType::kPacketContent, "1", "0", "200", "201"},
      {"TVG5470", AclOwner::kCpu, AclType::kIPv4, "1", "0", "100", "101"},
      {"TVR4060", AclOwner::kCpu, AclType::kIPv4, "1", "0", "5", "6"},
      {"TVR4510", AclOwner::kAcl, AclType::kIPv6, "0", "-1", "65535", "65536"},
      {"TVR4512", AclOwner::kAcl, AclType::kPacketContent, "1", "0", "128", "129"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.model) + " " + TypeWord(c.type));
    RuleFields f = GoodEthernet();
    for (const char* ok : {c.min, c.max}) {
      f.accessId = ok;
      EXPECT_EQ(ValidateRule(c.type, c.owner, M(c.model), f), nullptr) << ok;
    }
    for (const char* bad : {c.below, c.above}) {
      f.accessId = bad;
      EXPECT_STREQ(ValidateRule(c.type, c.owner, M(c.model), f), "Access ID range is error") << bad;
    }
    f.accessId = "";
    EXPECT_STREQ(ValidateRule(c.type, c.owner, M(c.model), f), "Access ID  can not null!");
  }
}

TEST(AclRecord, EdgeCaseAddingAnExistingRuleKeyChangesNothing) {
  AclRecordList list;
  EXPECT_TRUE(AddRule(list, {"3", "12", "a"}));
  EXPECT_TRUE(AddRule(list, {"4", "12", "b"})) << "the same Access ID under another profile";
  EXPECT_FALSE(AddRule(list, {"3", "12", "c"}));
  ASSERT_EQ(list.size(), 2u);
  EXPECT_EQ(list[0][2], "a");
  EXPECT_EQ(list[1][2], "b");
  AclRecordList profiles;
  EXPECT_TRUE(AddProfile(profiles, {"5", "x"}));
  EXPECT_FALSE(AddProfile(profiles, {"5", "y"}));
  EXPECT_TRUE(AddProfile(profiles, {"6", "z"}));
  ASSERT_EQ(profiles.size(), 2u);
  EXPECT_EQ(profiles[0][1], "x");
  EXPECT_EQ(profiles[1][0], "6") << "appended at the end";
}

TEST(AclRecord, TextChecks) {
  EXPECT_TRUE(ValidateHex(""));
  EXPECT_TRUE(ValidateHex(" 86dd "));
  EXPECT_FALSE(ValidateHex("86DG"));
  EXPECT_TRUE(ValidateDigits(" 0123 "));
  EXPECT_FALSE(ValidateDigits("12a"));
  EXPECT_FALSE(ValidateDigits("-1"));
  EXPECT_FALSE(ValidateHex(std::string(200, 'A')));
}

// Every Ethernet message, in the order of Part 4.1: a rule with every field wrong shows the
// first message; fixing fields one after the other walks through the rest in order.
TEST(AclRecord, EthernetRuleMessagesInOrder) {
  RuleFields f;
  f.profileId = "1";
  f.p8021 = "8";
  f.accessId = "999";
  f.srcMac = "00-11";
  f.priority = "8";
  f.rxRate = "156250";
  f.dstMac = "xyz";
  f.ethertype = "86GG";
  f.ports = "1--2";
  f.replaceDscp = "64";
  f.replaceTos = "8";
  const ModelEntry& m = M("TVG5240-10");
  auto v = [&] { return Msg(ValidateRule(AclType::kEthernet, AclOwner::kAcl, m, f)); };
  EXPECT_EQ(v(), "8021p value range is 0 to 7");
  f.p8021 = "7";
  EXPECT_EQ(v(), "Access ID range is error");
  f.accessId = "200";
  EXPECT_EQ(v(), "Invalid MAC Address !");
  f.srcMac = "";
  EXPECT_EQ(v(), "Priority value range is 0 to 7");
  f.priority = "7";
  EXPECT_EQ(v(), "Rxrate range is not error");
  f.rxRate = "156249";
  EXPECT_EQ(v(), "Invalid MAC Address !");
  f.dstMac = "001122334455";
  EXPECT_EQ(v(), "Invalid Ethertype value!");
  f.ethertype = "86DDA";
  EXPECT_EQ(v(), "Invalid Ethertype value!") << "an Ethertype holds four hex digits";
  f.ethertype = "86dd";
  EXPECT_EQ(v(), "Port  is error!");
  f.ports = "";
  EXPECT_EQ(v(), "Dscp value range is 0 to 63") << "an empty list passes the check; refused before adding";
  f.replaceDscp = "63";
  EXPECT_EQ(v(), "Replace ToS Precedence value range is 0 to 7");
  f.replaceTos = "0";
  EXPECT_EQ(v(), "Port  is error!");
  f.ports = "10";
  EXPECT_EQ(v(), "ok");
}

TEST(AclRecord, Ipv4RuleMessagesInOrder) {
  RuleFields f;
  f.profileId = "1";
  f.accessId = "";
  f.priority = "9";
  f.rxRate = "0";
  f.replaceDscp = "64";
  f.ports = "99";
  f.dscp = "64";
  f.replaceTos = "8";
  f.protocol = "4";  // TCP
  f.value1 = "65536";
  f.value2 = "1x";
  const ModelEntry& m = M("TVR4512");
  auto v = [&] { return Msg(ValidateRule(AclType::kIPv4, AclOwner::kAcl, m, f)); };
  EXPECT_EQ(v(), "Access ID  can not null!");
  f.accessId = "129";
  EXPECT_EQ(v(), "Access ID range is error");
  f.accessId = "128";
  EXPECT_EQ(v(), "Priority value range is 0 to 7");
  f.priority = "0";
  EXPECT_EQ(v(), "Rxrate range is not error") << "0 only on TVR4060";
  f.rxRate = "15624";
  EXPECT_EQ(v(), "Replace Dscp value range is 0 to 63");
  f.replaceDscp = "0";
  EXPECT_EQ(v(), "Port  is error!");
  f.ports = "28";
  EXPECT_EQ(v(), "Dscp value range is 0 to 63");
  f.dscp = "63";
  EXPECT_EQ(v(), "Replace ToS Precedence value range is 0 to 7");
  f.replaceTos = "7";
  EXPECT_EQ(v(), "value is 0 to 65535");
  f.value1 = "65535";
  EXPECT_EQ(v(), "value is 0 to 65535") << "digits only in the second field";
  f.value2 = "80";
  EXPECT_EQ(v(), "ok");
  f.protocol = "2";  // ICMP: both fields 0..255
  EXPECT_EQ(v(), "value is 0 to 255");
  f.value1 = "255";
  f.value2 = "256";
  EXPECT_EQ(v(), "value is 0 to 255");
  f.value2 = "0";
  EXPECT_EQ(v(), "ok");
  f.protocol = "6";  // protocol ID and user mask
  f.value2 = "FFFFFFFG";
  EXPECT_EQ(v(), "User Mask  is error!");
  f.value2 = "FFFFFFFF0";
  EXPECT_EQ(v(), "User Mask  is error!") << "a user mask holds 8 hex digits";
  f.value2 = "0000ffff";
  EXPECT_EQ(v(), "ok");
  f.ports = "";
  EXPECT_EQ(v(), "Access ID  can not null!") << "Part 4.1: empty ports of an IPv4 rule";
}

TEST(AclRecord, Ipv6AndPacketContentRuleMessagesInOrder) {
  const ModelEntry& m = M("TVG5690");
  RuleFields f;
  f.profileId = "2";
  f.accessId = "5";
  f.ipv6Class = "256";
  f.priority = "8";
  f.rxRate = "999999";
  f.flowLabel = "FFFFG";
  f.ports = "51";
  f.replaceDscp = "64";
  f.replaceTos = "8";
  auto v6 = [&] { return Msg(ValidateRule(AclType::kIPv6, AclOwner::kAcl, m, f)); };
  EXPECT_EQ(v6(), "Class value is 0 to 255!");
  f.ipv6Class = "255";
  EXPECT_EQ(v6(), "Priority value range is 0 to 7");
  f.priority = "1";
  EXPECT_EQ(v6(), "Rxrate range is not error");
  f.rxRate = "1";
  EXPECT_EQ(v6(), "Invalid Flowlabel value!");
  f.flowLabel = "fffff";
  EXPECT_EQ(v6(), "Port  is error!");
  f.ports = "50";
  EXPECT_EQ(v6(), "Dscp value range is 0 to 63");
  f.replaceDscp = "1";
  EXPECT_EQ(v6(), "Replace ToS Precedence value range is 0 to 7");
  f.replaceTos = "1";
  EXPECT_EQ(v6(), "ok");
  f.ports = "";
  EXPECT_EQ(v6(), "Port can not null!");
  f.ports = "1";
  f.action = "";
  EXPECT_EQ(v6(), "Port can not null!");
  f.action = "2";

  f.priority = "8";
  f.rxRate = "0";
  f.ports = "51";
  f.replaceDscp = "64";
  f.replaceTos = "8";
  auto pc = [&] { return Msg(ValidateRule(AclType::kPacketContent, AclOwner::kAcl, m, f)); };
  f.accessId = "129";
  EXPECT_EQ(pc(), "Access ID range is error");
  f.accessId = "128";
  EXPECT_EQ(pc(), "Priority value range is 0 to 7");
  f.priority = "";
  EXPECT_EQ(pc(), "Rxrate range is not error");
  f.rxRate = "";
  EXPECT_EQ(pc(), "Port  is error!");
  f.ports = "1-50";
  EXPECT_EQ(pc(), "Dscp value range is 0 to 63");
  f.replaceDscp = "";
  EXPECT_EQ(pc(), "Replace ToS Precedence value range is 0 to 7");
  f.replaceTos = "";
  EXPECT_EQ(pc(), "ok");
}

TEST(AclRecord, RxRateZeroOnlyOnTvr4060AndNeverOnTheCpuAcl) {
  RuleFields f = GoodEthernet();
  f.ports = "1";
  f.rxRate = "0";
  EXPECT_EQ(ValidateRule(AclType::kEthernet, AclOwner::kAcl, M("TVR4060"), f), nullptr);
  EXPECT_STREQ(ValidateRule(AclType::kEthernet, AclOwner::kAcl, M("TVG5690"), f), "Rxrate range is not error");
  f.rxRate = "63";
  EXPECT_STREQ(ValidateRule(AclType::kEthernet, AclOwner::kAcl, M("TVR4060"), f), "Rxrate range is not error");
  f.rxRate = "64";
  EXPECT_EQ(ValidateRule(AclType::kEthernet, AclOwner::kAcl, M("TVR4060"), f), nullptr);
  EXPECT_STREQ(ValidateRule(AclType::kEthernet, AclOwner::kCpu, M("TVR4060"), f), "Rxrate range is not error");
  EXPECT_STREQ(ValidateRule(AclType::kEthernet, AclOwner::kAcl, M("TVR4820"), f), "Rxrate range is not error")
      << "TVR4820 has no Rx Rate";
}

TEST(AclRecord, OverlongNumbersAreRefusedWithTheFieldsMessage) {
  RuleFields f = GoodEthernet();
  f.priority = "00000000007";  // 11 characters
  EXPECT_STREQ(ValidateRule(AclType::kEthernet, AclOwner::kAcl, M("TVG5240-10"), f),
               "Priority value range is 0 to 7");
  f.priority = "";
  f.accessId = "000000000012";
  EXPECT_STREQ(ValidateRule(AclType::kEthernet, AclOwner::kAcl, M("TVG5240-10"), f), "Access ID range is error");
}

TEST(AclRecord, RecordsHaveTheCellCountsOfPart41) {
  const ModelEntry& t5240 = M("TVG5240-10");
  const ModelEntry& t4060 = M("TVR4060");
  const ModelEntry& t4820 = M("TVR4820");
  RuleFields f = GoodEthernet();
  EXPECT_EQ(BuildRule(AclType::kEthernet, AclOwner::kAcl, t5240, f).size(), 15u);
  EXPECT_EQ(BuildRule(AclType::kEthernet, AclOwner::kCpu, t5240, f).size(), 10u);
  EXPECT_EQ(BuildRule(AclType::kIPv4, AclOwner::kAcl, t5240, f).size(), 25u);
  EXPECT_EQ(BuildRule(AclType::kIPv4, AclOwner::kCpu, t5240, f).size(), 17u);
  EXPECT_EQ(BuildRule(AclType::kIPv6, AclOwner::kAcl, t5240, f).size(), 14u);
  EXPECT_EQ(BuildRule(AclType::kIPv6, AclOwner::kCpu, t5240, f).size(), 9u);
  EXPECT_EQ(BuildRule(AclType::kPacketContent, AclOwner::kAcl, t5240, f).size(), 18u);  // Chunks4
  EXPECT_EQ(BuildRule(AclType::kPacketContent, AclOwner::kAcl, t4060, f).size(), 18u);  // OffsetItems
  EXPECT_EQ(BuildRule(AclType::kPacketContent, AclOwner::kAcl, t4820, f).size(), 14u);  // Block16
  EXPECT_EQ(BuildRule(AclType::kPacketContent, AclOwner::kCpu, t4820, f).size(), 10u);
  ProfileFields p;
  p.profileId = "1";
  EXPECT_EQ(BuildProfile(AclType::kEthernet, AclOwner::kAcl, t5240, p).size(), 10u);
  EXPECT_EQ(BuildProfile(AclType::kIPv4, AclOwner::kAcl, t5240, p).size(), 22u);
  EXPECT_EQ(BuildProfile(AclType::kIPv6, AclOwner::kAcl, t5240, p).size(), 9u);
  EXPECT_EQ(BuildProfile(AclType::kPacketContent, AclOwner::kAcl, t5240, p).size(), 15u);
  EXPECT_EQ(BuildProfile(AclType::kPacketContent, AclOwner::kCpu, t5240, p).size(), 7u);
  EXPECT_EQ(BuildProfile(AclType::kPacketContent, AclOwner::kAcl, t4820, p).size(), 7u);
  for (auto kind : {AclKind::kProfiles, AclKind::kRules})
    for (auto owner : {AclOwner::kAcl, AclOwner::kCpu})
      for (auto type : {AclType::kEthernet, AclType::kIPv4, AclType::kIPv6, AclType::kPacketContent}) {
        AclRecordKind k = RecordKindFor(t5240, owner, kind, type);
        EXPECT_GT(RecordCellCount(k), 0u);
      }
}

TEST(AclRecord, EthernetRuleCellsAsThePageBuildsThem) {
  RuleFields f = GoodEthernet();
  f.vlan = "v10";
  f.srcMac = " 00a0c9ffee01 ";
  f.p8021 = "5";
  f.ethertype = "86dd";
  f.priorityChecked = true;
  f.priority = "6";
  f.replaceTosChecked = true;
  f.replaceTos = "3";
  f.action = "3";
  f.rxRate = "100";
  AclRecord r = BuildRule(AclType::kEthernet, AclOwner::kAcl, M("TVG5240-10"), f);
  AclRecord want{"3", "12", "v10", "00A0C9FFEE01", "00.00.00.00.00.00", "5", "86DD", "1", "6", "2",
                 "3", "1-5,7", "4", "3", "100"};
  EXPECT_EQ(r, want);
  f.priorityChecked = false;
  f.replaceDscpChecked = true;
  f.replaceDscp = "40";
  r = BuildRule(AclType::kEthernet, AclOwner::kAcl, M("TVG5240-10"), f);
  EXPECT_EQ(r[7], "2");
  EXPECT_EQ(r[8], "");
  EXPECT_EQ(r[9], "40");
  AclRecord cpu = BuildRule(AclType::kEthernet, AclOwner::kCpu, M("TVG5240-10"), f);
  AclRecord wantCpu{"3", "12", "v10", "00A0C9FFEE01", "00.00.00.00.00.00", "5", "86DD", "3", "4", "1-5,7"};
  EXPECT_EQ(cpu, wantCpu);
}

TEST(AclRecord, Ipv4RuleFillsTheCellsOfItsProtocol) {
  RuleFields f;
  f.profileId = "1";
  f.accessId = "2";
  f.ports = "3";
  f.action = "1";
  f.value1 = "8";
  f.value2 = "0";
  f.flagBits = "18";
  struct {
    const char* protocol;
    std::vector<size_t> filled;
  } cases[] = {{"2", {7, 8}}, {"3", {7}}, {"4", {9, 10, 11}}, {"5", {9, 10}}, {"6", {12, 13}}};
  for (auto& c : cases) {
    f.protocol = c.protocol;
    AclRecord r = BuildRule(AclType::kIPv4, AclOwner::kAcl, M("TVR4820"), f);
    for (size_t k = 7; k <= 13; ++k) {
      bool want = std::find(c.filled.begin(), c.filled.end(), k) != c.filled.end();
      EXPECT_EQ(!r[k].empty(), want) << "protocol " << c.protocol << " cell " << k;
    }
    EXPECT_EQ(r[19], "1");
    EXPECT_EQ(r[20], "3");
    EXPECT_EQ(r[21], "4");
  }
}

TEST(AclRecord, ProfilePagesBuildRowsAsPart52Says) {
  ProfileFields p;
  p.profileId = "7";
  p.srcMacChecked = true;
  p.srcMac = " 0000000000ff ";
  EXPECT_EQ(ValidateProfile(AclType::kEthernet, p), nullptr);
  AclRecord e = BuildProfile(AclType::kEthernet, AclOwner::kAcl, M("TVG5240-10"), p);
  AclRecord want{"7", "2", "3", " 0000000000ff ", "", "2", "2", "4", "1", ""};
  EXPECT_EQ(e, want) << "the row keeps the mask as typed";
  p.dstMacChecked = true;
  p.dstMac = "00-00-00-00-00-FF";
  EXPECT_STREQ(ValidateProfile(AclType::kEthernet, p), "Invalid MAC Address !");
  p.profileName = "web";
  EXPECT_EQ(BuildProfile(AclType::kEthernet, AclOwner::kAcl, M("TVR4512"), p)[8], "web");
  EXPECT_EQ(BuildProfile(AclType::kEthernet, AclOwner::kCpu, M("TVR4512"), p)[8], "2");

  ProfileFields v4;
  v4.profileId = "1";
  v4.protocolGroup = 3;
  v4.protocolChecked = true;
  v4.typeChecked = true;
  EXPECT_EQ(BuildProfile(AclType::kIPv4, AclOwner::kAcl, M("TVG5690"), v4)[7], "2")
      << "Part 5.2 edge case: ICMP with only the type checked";
  v4.codeChecked = true;
  AclRecord icmp = BuildProfile(AclType::kIPv4, AclOwner::kAcl, M("TVG5690"), v4);
  EXPECT_EQ(icmp[6], "2");
  EXPECT_EQ(icmp[7], "4");
  v4.protocolGroup = 5;
  v4.srcPortMask = "FFFF";
  v4.flagBitsChecked = true;
  v4.flagValue = 18;
  AclRecord tcp = BuildProfile(AclType::kIPv4, AclOwner::kAcl, M("TVG5690"), v4);
  EXPECT_EQ(tcp[6], "4");
  EXPECT_EQ(tcp[9], "3");
  EXPECT_EQ(tcp[11], "FFFF");
  EXPECT_EQ(tcp[13], "1");
  EXPECT_EQ(tcp[14], "18");
  EXPECT_EQ(tcp[7], "") << "other protocols' options stay empty";
  v4.protocolGroup = 7;
  v4.protocolChecked = false;
  AclRecord pid = BuildProfile(AclType::kIPv4, AclOwner::kAcl, M("TVG5690"), v4);
  EXPECT_EQ(pid[6], "1");
  EXPECT_EQ(pid[15], "2");
}

TEST(AclRecord, ProgressFormulaOfPart44) {
  // (r * d * 100 / t) / n in integer arithmetic.
  EXPECT_EQ(ApplyProgress(1, 1, 3, 2), 16);   // 100/3 = 33, /2
  EXPECT_EQ(ApplyProgress(3, 1, 3, 2), 50);
  EXPECT_EQ(ApplyProgress(3, 2, 3, 2), 100);
  EXPECT_EQ(ApplyProgress(1, 2, 7, 3), 9);    // 200/7 = 28, /3 = 9
  EXPECT_EQ(ApplyProgress(1, 1, 0, 1), 0);
  EXPECT_EQ(ApplyProgress(1, 1, 1, 0), 0);
}

TEST(AclRecord, WordsOfTheLists) {
  EXPECT_STREQ(ActionDetailWord("2"), "Permit");
  EXPECT_STREQ(ActionDetailWord("3"), "mirror");
  EXPECT_STREQ(ActionDetailWord("1"), "deny");
  EXPECT_STREQ(ActionDetailWord("7"), "deny");
  EXPECT_EQ(ActionStagingWord("2"), "permit");
  EXPECT_EQ(ActionStagingWord("3"), "miror");  // Part 4.5 edge case
  EXPECT_EQ(ActionStagingWord("1"), "deny");
  EXPECT_EQ(ActionStagingWord("9"), "9");
  EXPECT_STREQ(OwnerWord(AclOwner::kAcl), "ACL");
  EXPECT_STREQ(OwnerWord(AclOwner::kCpu), "CPU ACL");
  EXPECT_STREQ(TypeWord(AclType::kPacketContent), "Packet Content");
}

// Left to the implementer (Part 5.2): the definition pages' own field checks.
TEST(AclRecord, FixedWidthMasksChunkOffsetsAndPadding) {
  EXPECT_TRUE(ValidateHexWidth("ffff0000", 8)) << "any case";
  EXPECT_TRUE(ValidateHexWidth("  FFFF0000 ", 8)) << "blanks at the ends ignored";
  EXPECT_FALSE(ValidateHexWidth("FFFF000", 8)) << "short";
  EXPECT_FALSE(ValidateHexWidth("FFFF00000", 8)) << "long";
  EXPECT_FALSE(ValidateHexWidth("FFFF00G0", 8)) << "not hex";
  EXPECT_FALSE(ValidateHexWidth("", 8));
  EXPECT_TRUE(ValidateHexWidth(std::string(32, 'F'), 32));
  EXPECT_FALSE(ValidateHexWidth(std::string(31, 'F'), 32));
  for (const char* ok : {"0", "7", "31", " 3 "}) EXPECT_TRUE(ValidateChunkOffset(ok)) << ok;
  for (const char* bad : {"", "32", "99", "-1", "1a", "003", " "}) EXPECT_FALSE(ValidateChunkOffset(bad)) << bad;
  EXPECT_EQ("00FF", PadHex("FF", 4));
  EXPECT_EQ("0000", PadHex("", 4)) << "a checked empty mask counts as 0";
  EXPECT_EQ("ABCD", PadHex("ABCD", 4));
  EXPECT_EQ("000000FF", PadHex("FF", 8));
  EXPECT_EQ("a b", std::string(TrimBlanks(" \ta b\t ")));
}
