// What the rule pages take from the core: the MAC forms accepted, the enabling of fields by a
// profile made by the definition pages, and a pending rule loaded back into the fields
// rebuilding the same row.
#include <gtest/gtest.h>

#include "acl/acl_fields.h"
#include "acl/rule_form.h"
#include "tests/native/acl/model_for_test.h"
#include "tests/native/acl/sample_records.h"

namespace {

constexpr AclType kTypes[] = {AclType::kEthernet, AclType::kIPv4, AclType::kIPv6, AclType::kPacketContent};

TEST(RuleForm, MacTypedAsTheExampleShowsBecomesTwelveDigitsAnythingElseStaysForTheCheck) {
  const struct {
    const char* typed;
    const char* sent;
  } cases[] = {
      {"00-00-00-00-FF-FF", "00000000FFFF"}, {"00:a0:c9:ff:ee:01", "00a0c9ffee01"},
      {" 00-11-22-33-44-55 ", "001122334455"}, {"00-11:22-33-44-55", "00-11:22-33-44-55"},
      {"0-011-22-33-44-55", "0-011-22-33-44-55"}, {"00-11-22-33-44-5G", "00-11-22-33-44-5G"},
      {"00.11.22.33.44.55", "00.11.22.33.44.55"}, {"001122334455", "001122334455"}, {"", ""}};
  for (const auto& c : cases) {
    EXPECT_EQ(c.sent, acl::MacWithoutSeparators(c.typed)) << c.typed;
    RuleFields f;
    f.profileId = "1";
    f.accessId = "2";
    f.ports = "1";
    f.dstMac = acl::MacWithoutSeparators(c.typed);
    const bool accepted = std::string(c.sent).find_first_of("-:. ") == std::string::npos;
    EXPECT_EQ(accepted, ValidateRule(AclType::kEthernet, AclOwner::kAcl, M("TVG5690"), f) == nullptr) << c.typed;
  }
}

// A profile as the definition pages build it, copied as the select page copies it, enables
// exactly the fields its masks name.
TEST(RuleForm, ProfilesOfTheDefinitionPagesEnableTheirFields) {
  ProfileFields tcp;
  tcp.profileId = "4";
  tcp.dstIpChecked = true;
  tcp.protocolGroup = 5;
  tcp.protocolChecked = true;
  tcp.srcPortMask = "FFFF";
  tcp.flagBitsChecked = true;
  ProfileFields icmp;
  icmp.vlan = icmp.dscp = true;
  icmp.protocolGroup = 3;
  icmp.protocolChecked = icmp.codeChecked = true;
  ProfileFields eth;
  eth.srcMacChecked = eth.ethernetType = true;
  eth.srcMac = "FFFFFFFFFFFF";
  ProfileFields v6;
  v6.flowLabel = v6.dstIpv6Checked = true;
  const struct {
    AclType type;
    const ProfileFields& profile;
    acl::RuleEnabling want;
  } cases[] = {
      {AclType::kIPv4, tcp, {.dstAddr = true, .area = acl::ProtocolArea::kTcp, .first = true, .flags = true}},
      {AclType::kIPv4, icmp, {.vlan = true, .dscp = true, .area = acl::ProtocolArea::kIcmp, .second = true}},
      {AclType::kEthernet, eth, {.srcAddr = true, .ethertype = true}},
      {AclType::kIPv6, v6, {.dstAddr = true, .flowLabel = true}},
  };
  for (const auto& c : cases) {
    const AclRecord record = BuildProfile(c.type, AclOwner::kAcl, M("TVR4820"), c.profile);
    const acl::RuleEnabling e = acl::EnablingFor(c.type, acl::ChosenProfileFields(c.type, record));
    const acl::RuleEnabling& w = c.want;
    EXPECT_EQ(std::tuple(w.vlan, w.srcAddr, w.dstAddr, w.p8021, w.ethertype, w.dscp, w.area, w.first, w.second,
                         w.flags, w.ipv6Class, w.flowLabel),
              std::tuple(e.vlan, e.srcAddr, e.dstAddr, e.p8021, e.ethertype, e.dscp, e.area, e.first, e.second,
                         e.flags, e.ipv6Class, e.flowLabel))
        << TypeWord(c.type) << " " << testing::PrintToString(record);
  }
  EXPECT_TRUE(acl::ChosenProfileFields(AclType::kIPv4, {"1", "2"}).empty());  // a short record
}

// Every rule kind of every model: a row built from fields, loaded back into fields, builds
// the same row (a click on a pending rule shows what Add sent).
TEST(RuleForm, PendingRuleLoadedBackRebuildsTheSameRow) {
  for (const ModelEntry* m = CatalogueBegin(); m != CatalogueEnd(); ++m) {
    if (!m->supported) continue;
    for (AclOwner owner : {AclOwner::kAcl, AclOwner::kCpu}) {
      for (AclType type : kTypes) {
        if (!m->offersRuleType(owner, type)) continue;
        // The sample with every field filled (the other types 0.0.0.0, which loads back empty).
        const AclRecord row = SampleRules(*m, owner, type).front();
        const RuleFields back = RuleFieldsFromRecord(type, owner, *m, row, type == AclType::kIPv4 ? row[6] : "");
        EXPECT_EQ(row, BuildRule(type, owner, *m, back))
            << m->typeText << " " << TypeWord(type) << (owner == AclOwner::kCpu ? " CPU" : "");
      }
    }
  }
}

}  // namespace
