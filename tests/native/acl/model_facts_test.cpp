// Each model's facts, written out by hand and checked through what the system does with them:
// the rule checks refuse port N+1 and take N ("ALL Ports" too), take the Access ID and Rx Rate
// limits and refuse one past them, the dialogs label them and offer the
// model's types, an apply ends with the model's closing request on the wire, and the action
// words become their codes (a Mirror rule's 3 on the wire: pinned_test.cpp).
#include <gtest/gtest.h>

#include "acl/acl_device.h"
#include "acl/rule_form.h"
#include "sim_agent.h"
#include "tests/native/acl/model_for_test.h"

namespace {

struct Range {
  long min, max;  // max 0: the model has no such range
};
constexpr Range kNone{0, 0};

struct ModelFacts {
  const char* model;
  int ports;
  Range aclAccess[4], cpuAccess[4];  // by rule type: Ethernet, IPv4, IPv6, Packet Content
  Range rx;
  bool rxZero;                       // 0 accepted besides the range
  const char *rxLabel, *rxPacketLabel;  // Ethernet, IPv4 and IPv6 dialogs; Packet Content dialog
  // Offered types, a letter per type (E, 4, 6, P): ordinary rules and profiles, CPU profiles
  // and rules.
  const char *aclRules, *aclProfiles, *cpuProfiles, *cpuRules;
  const char* closingOid;
  int closing[4];  // after ordinary profiles, CPU profiles, ordinary rules, CPU rules
};

const std::string kClose6 = "1.3.6.1.4.1.32473.12.1.2.6.0";
const std::string kClose18 = "1.3.6.1.4.1.32473.12.1.2.18.4.0";

const ModelFacts kFacts[] = {
    {"TVG5240-10", 10, {{1, 200}, {1, 200}, {1, 200}, {1, 200}}, {{1, 200}, {1, 200}, {1, 200}, {1, 200}},
     {1, 156249}, false, "Rx Rate(1-156249)", "Rx Rate (1-156249)", "E46P", "E46P", "E46P", "E46P", kClose6.c_str(), {5, 5, 5, 5}},
    {"TVG5470", 24, {{1, 128}, {1, 128}, {1, 128}, kNone}, {{1, 100}, {1, 100}, {1, 100}, {1, 200}},
     {1, 156249}, false, "Rx Rate(1-156249)", "Rx Rate (1-156249)", "E46", "E46", "E4P", "E4P", kClose6.c_str(), {5, 5, 5, 5}},
    {"TVG5690", 50, {{1, 128}, {1, 128}, {1, 128}, {1, 128}}, {{1, 100}, {1, 128}, {1, 100}, {1, 100}},
     {1, 156249}, false, "Rx Rate(1-156249)", "Rx Rate (1-156249)", "E46P", "E46P", "E46P", "E46P", kClose18.c_str(), {3, 4, 3, 3}},
    {"TVR4060", 26, {{1, 65535}, {1, 65535}, {1, 65535}, {1, 65535}}, {{1, 65535}, {1, 5}, {1, 65535}, {1, 5}},
     {64, 1024000}, true, "Rx Rate(0 or 64-1024000)", "", "E4P", "E4P", "E4P", "E4P", kClose6.c_str(), {5, 5, 5, 5}},
    {"TVR4510", 26, {{1, 65535}, {1, 65535}, {0, 65535}, {1, 65535}}, {{1, 65535}, {1, 65535}, {0, 65535}, {1, 65535}},
     kNone, false, "", "", "E4P", "E4P", "E4P", "E4P", kClose6.c_str(), {3, 3, 3, 3}},
    {"TVR4820", 28, {{1, 65535}, {1, 65535}, {1, 65535}, {1, 65535}}, {{1, 65535}, {1, 65535}, {1, 65535}, {1, 65535}},
     kNone, false, "", "", "E46P", "E46P", "E4P", "E4P", kClose6.c_str(), {5, 5, 5, 5}},
    {"TVR4512", 28, {{1, 128}, {1, 128}, {1, 128}, {1, 128}}, {{1, 100}, {1, 100}, {1, 100}, {1, 100}},
     {1, 15624}, false, "Rx Rate(1-15624)", "Rx Rate (1-15624)", "E46P", "E46P", "E46P", "E46P", kClose6.c_str(), {5, 5, 5, 5}},
};

constexpr AclType kTypes[] = {AclType::kEthernet, AclType::kIPv4, AclType::kIPv6, AclType::kPacketContent};
constexpr char kTypeLetters[] = "E46P";

std::string Check(const ModelEntry& m, AclOwner owner, AclType type, const char* accessId, const char* ports,
                  const char* rxRate = "") {
  RuleFields f;
  f.profileId = "3";
  f.accessId = accessId;
  f.ports = ports;
  f.rxRate = rxRate;
  const AclCheck c = ValidateRule(type, owner, m, f);
  return c.code == AclMessage::kNone ? "ok" : MessageText(c.code);
}

std::string Offered(bool (ModelEntry::*offers)(AclOwner, AclType) const, const ModelEntry& m, AclOwner owner) {
  std::string letters;
  for (AclType t : kTypes)
    if ((m.*offers)(owner, t)) letters += kTypeLetters[static_cast<size_t>(t)];
  return letters;
}

}  // namespace

TEST(ModelFacts, LimitsAndTypesAsTheRuleChecksApplyThem) {
  const std::string badId = "Access ID range is error", badRx = "Rxrate range is not error";
  for (const ModelFacts& f : kFacts) {
    SCOPED_TRACE(f.model);
    const ModelEntry& m = M(f.model);
    const std::string first = std::to_string(f.aclAccess[0].min);
    EXPECT_EQ(Check(m, AclOwner::kAcl, AclType::kEthernet, first.c_str(), std::to_string(f.ports).c_str()), "ok");
    EXPECT_EQ(Check(m, AclOwner::kAcl, AclType::kEthernet, first.c_str(), std::to_string(f.ports + 1).c_str()),
              "Port  is error!");
    const std::string allPorts = "1-" + std::to_string(f.ports);
    EXPECT_EQ(allPorts, acl::AllPortsText(m)) << "\"ALL Ports\"";
    EXPECT_EQ(Check(m, AclOwner::kAcl, AclType::kEthernet, first.c_str(), allPorts.c_str()), "ok") << "\"ALL Ports\"";
    for (AclType t : {AclType::kEthernet, AclType::kIPv4, AclType::kIPv6})
      EXPECT_EQ(acl::RxRateLabel(m, t), f.rxLabel) << TypeWord(t);
    EXPECT_EQ(acl::RxRateLabel(m, AclType::kPacketContent), f.rxPacketLabel);
    for (AclOwner owner : {AclOwner::kAcl, AclOwner::kCpu}) {
      const Range* access = owner == AclOwner::kAcl ? f.aclAccess : f.cpuAccess;
      for (AclType t : kTypes) {
        const Range r = access[static_cast<size_t>(t)];
        SCOPED_TRACE(std::string(OwnerWord(owner)) + " " + TypeWord(t));
        if (r.max == 0) {
          EXPECT_EQ(Check(m, owner, t, "1", "1"), badId);
          continue;
        }
        const struct {
          long id;
          bool ok;
        } ids[] = {{r.min - 1, false}, {r.min, true}, {r.max, true}, {r.max + 1, false}};
        for (const auto& id : ids)
          EXPECT_EQ(Check(m, owner, t, std::to_string(id.id).c_str(), "1"), id.ok ? "ok" : badId) << id.id;
        EXPECT_EQ(acl::AccessIdLabel(m, owner, t),
                  "Access ID(" + std::to_string(r.min) + "-" + std::to_string(r.max) + ")");
      }
    }
    // The Rx Rate belongs to the ordinary ACL alone; a model without one refuses any.
    std::vector<std::pair<long, bool>> rates = {{0, f.rxZero}};
    if (f.rx.max == 0) rates.push_back({1, false});
    else rates.insert(rates.end(), {{f.rx.min - 1, f.rx.min == 1 && f.rxZero}, {f.rx.min, true}, {f.rx.max, true},
                                    {f.rx.max + 1, false}});
    for (const auto& [rx, ok] : rates)
      EXPECT_EQ(Check(m, AclOwner::kAcl, AclType::kEthernet, "1", "1", std::to_string(rx).c_str()), ok ? "ok" : badRx)
          << "Rx Rate " << rx;
    const std::string cpuRate = std::to_string(f.rx.max == 0 ? 1 : f.rx.min);
    EXPECT_EQ(Check(m, AclOwner::kCpu, AclType::kEthernet, "1", "1", cpuRate.c_str()), badRx);
    EXPECT_EQ(Offered(&ModelEntry::offersRuleType, m, AclOwner::kAcl), f.aclRules);
    EXPECT_EQ(Offered(&ModelEntry::offersProfileType, m, AclOwner::kAcl), f.aclProfiles);
    EXPECT_EQ(Offered(&ModelEntry::offersProfileType, m, AclOwner::kCpu), f.cpuProfiles);
    EXPECT_EQ(Offered(&ModelEntry::offersRuleType, m, AclOwner::kCpu), f.cpuRules);
  }
}

// An apply with nothing to send still ends with the closing request of the model, owner and
// record kind.
TEST(ModelFacts, ClosingRequestOnTheWire) {
  int host = 70;
  for (const ModelFacts& f : kFacts) {
    SimAgent agent(host++, f.model);
    ASSERT_TRUE(agent.ok()) << agent.error();
    const AclTarget target{agent.address(), "public", "private", f.model};
    int column = 0;
    for (AclKind kind : {AclKind::kProfiles, AclKind::kRules}) {
      for (AclOwner owner : {AclOwner::kAcl, AclOwner::kCpu}) {
        SCOPED_TRACE(std::string(f.model) + " " + OwnerWord(owner) + (kind == AclKind::kProfiles ? " profiles" : " rules"));
        agent.clearSets();
        (kind == AclKind::kProfiles ? ApplyProfiles : ApplyRules)({target}, owner, {}, {}, 400);
        const auto sets = agent.sets();
        ASSERT_EQ(sets.size(), 1u);
        ASSERT_EQ(sets[0].varbinds.size(), 1u);
        EXPECT_EQ(snmp::FormatOid(sets[0].varbinds[0].name), f.closingOid);
        EXPECT_EQ(sets[0].varbinds[0].value.tag, snmp::kTagInteger);
        EXPECT_EQ(sets[0].varbinds[0].value.integer, f.closing[column++]);
      }
    }
  }
}

// The action words of the rule dialogs as codes (the CPU ACL has no mirror) and as the detail
// views show them.
TEST(ModelFacts, ActionWordsAndTheirCodes) {
  const struct {
    const char* word;
    AclOwner owner;
    const char* code;
    const char* detail;
  } actions[] = {{"Permit", AclOwner::kAcl, "2", "Permit"}, {"Mirror", AclOwner::kAcl, "3", "mirror"},
                 {"Deny", AclOwner::kAcl, "1", "deny"},     {"Permit", AclOwner::kCpu, "2", "Permit"},
                 {"Mirror", AclOwner::kCpu, "1", "deny"},   {"Deny", AclOwner::kCpu, "1", "deny"}};
  for (const auto& a : actions) {
    const std::string code = ActionCode(a.word, a.owner);
    EXPECT_EQ(code, a.code) << a.word << " " << OwnerWord(a.owner);
    EXPECT_STREQ(ActionDetailWord(code), a.detail) << a.word;
  }
}
