// sentrel-acl against simulated switches over real SNMP, in-process: plan, apply, show, delete
// and their files, the audit log against the switches' SET logs, refusing and silent switches,
// and communities that never show.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <regex>
#include <set>
#include <sstream>

#include "acl/acl_audit.h"
#include "acl/acl_mib.h"
#include "cli/commands.h"
#include "cli/json_fields.h"
#include "snmp/snmp_ops.h"
#include "sim/walk_dump.h"
#include "sim_agent.h"

namespace {

namespace fs = std::filesystem;
const char* const kModels[] = {"TVG5240-10", "TVG5470", "TVG5690", "TVR4060", "TVR4510", "TVR4820", "TVR4512"};
const char* const kRead = "rd-Secret-7731";
const char* const kWrite = "wr-Secret-9902";

struct Result {
  int status;
  std::string out, err;
};

class CliTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = fs::temp_directory_path() / ("sentrel-cli-" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) +
                                        "-" + ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(dir_);
    fs::create_directories(dir_);
    Write("secrets.json", std::string("{\"default\": {\"read\": \"") + kRead + "\", \"write\": \"" + kWrite + "\"}}");
  }
  void TearDown() override {
    // No community in any log this test wrote.
    std::string audit = Read("audit.jsonl");
    EXPECT_EQ(audit.find(kRead), std::string::npos);
    EXPECT_EQ(audit.find(kWrite), std::string::npos);
    fs::remove_all(dir_);
  }

  // One switch per entry: name, model, faults.
  void Fleet(const std::vector<std::tuple<std::string, std::string, sim::Faults>>& fleet) {
    Json inv{{"communities", {{"secrets", "secrets.json"}}}, {"switches", Json::object()}};
    for (const auto& [name, model, faults] : fleet) {
      agents_.push_back(std::make_unique<SimAgent>(static_cast<int>(agents_.size()) + 2, model, faults, kRead, kWrite));
      ASSERT_TRUE(agents_.back()->ok()) << agents_.back()->error();
      inv["switches"][name] = {{"address", agents_.back()->address()}, {"model", model}, {"groups", {"all"}}};
    }
    Write("inventory.json", inv.dump());
  }

  Result Run(std::vector<std::string> args, const std::string& input = "yes\n") {
    args.insert(args.begin(), {"sentrel-acl", "-i", (dir_ / "inventory.json").string(), "-t", "400"});
    if (args.size() > 5 && (args[5] == "apply" || args[5] == "delete"))
      args.insert(args.begin() + 6, {"--audit-log", (dir_ / "audit.jsonl").string()});
    std::vector<const char*> argv;
    for (const std::string& a : args) argv.push_back(a.c_str());
    std::istringstream in(input);
    std::ostringstream out, err;
    const int status = RunCli(static_cast<int>(argv.size()), argv.data(), in, out, err, false);
    for (const std::string& text : {out.str(), err.str()}) {
      EXPECT_EQ(text.find(kRead), std::string::npos) << text;
      EXPECT_EQ(text.find(kWrite), std::string::npos) << text;
    }
    return {status, out.str(), err.str()};
  }

  std::string Write(const std::string& name, const std::string& text) {
    std::ofstream(dir_ / name, std::ios::binary) << text;
    return (dir_ / name).string();
  }
  std::string Read(const std::string& name) {
    std::ifstream in(dir_ / name, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
  }
  size_t SetCount() {
    size_t n = 0;
    for (auto& a : agents_) n += a->sets().size();
    return n;
  }

  fs::path dir_;
  std::vector<std::unique_ptr<SimAgent>> agents_;
};

// A profile of each type the model offers for the owner, with one rule each where it offers
// the rule type: fields that every model takes, at the model's limits where it has them.
Json EveryRecord(const ModelEntry& m, AclOwner owner) {
  Json list = Json::array();
  const bool cpu = owner == AclOwner::kCpu;
  int id = 1;
  for (AclType t : {AclType::kEthernet, AclType::kIPv4, AclType::kIPv6, AclType::kPacketContent}) {
    if (!m.offersProfileType(owner, t)) continue;
    Json p{{"id", id}, {"type", TypeName(t)}};
    Json r{{"access_id", m.accessIdRange(owner, t) ? m.accessIdRange(owner, t)->max : 1},
           {"action", cpu ? "deny" : "mirror"}, {"ports", "1-3," + std::to_string(m.portCount)}};
    if (!cpu && m.rxRange()) r["rx_rate"] = m.rxRange()->max;
    if (!cpu) r["priority"] = 6;
    const PacketShape profileShape = m.packetShape(owner, AclKind::kProfiles);
    if ((!cpu && std::string_view(m.typeText) == "TVR4512") || (t == AclType::kPacketContent && profileShape == PacketShape::kChunks4))
      p["name"] = "edge-" + std::to_string(id);
    switch (t) {
      case AclType::kEthernet:
        p.update({{"vlan", true}, {"src_mac_mask", "FFFFFFFFFFFF"}, {"ethertype", true}});
        r.update({{"vlan", "v10"}, {"src_mac", "00a0c9ffee01"}, {"ethertype", "86DD"}, {"802.1p", 5}});
        break;
      case AclType::kIPv4:
        p.update({{"dst_ip_mask", "255.255.255.0"}, {"protocol", "tcp"}, {"dst_port_mask", "FFFF"}, {"tcp_flags", Json::array({"syn"})}});
        r.update({{"dst_ip", "10.1.1.0"}, {"dst_port", 22}, {"dscp", 46}});
        break;
      case AclType::kIPv6:
        p.update({{"class", true}, {"src_ipv6_mask", std::string(16, 'F') + std::string(16, '0')}});
        r.update({{"class", 7}, {"src_ipv6", "20010DB8000000000000000000000001"}});
        break;
      case AclType::kPacketContent:
        if (profileShape == PacketShape::kChunks4)
          p["chunks"] = {{"1", {{"offset", 3}, {"mask", "FFFF0000"}}}};
        else
          p["blocks"] = {{"16-31", "0000FFFF000000000000000000000000"}};
        switch (m.packetShape(owner, AclKind::kRules)) {
          case PacketShape::kChunks4: r["chunks"] = {{"1", {{"offset", 3}, {"data", "08000000"}}}}; break;
          case PacketShape::kOffsetItems: r["items"] = {{"2", {{"offset", 12}, {"data", "0800"}}}}; break;
          default: r["blocks"] = {{"16-31", "00000800000000000000000000000000"}};
        }
        break;
    }
    if (m.offersRuleType(owner, t)) p["rules"] = Json::array({r});
    list.push_back(p);
    ++id;
  }
  return list;
}

TEST_F(CliTest, EveryRecordTypeOnEveryModelIsPlannedAppliedAuditedAndVerified) {
  std::vector<std::tuple<std::string, std::string, sim::Faults>> fleet;
  Json state{{"switches", Json::object()}};
  for (const char* model : kModels) {
    fleet.emplace_back(std::string("sw-") + model, model, sim::Faults{});
    const ModelEntry& m = *LookupModel(model);
    state["switches"][std::string("sw-") + model] = {{"acl", EveryRecord(m, AclOwner::kAcl)},
                                                       {"cpu_acl", EveryRecord(m, AclOwner::kCpu)}};
  }
  Fleet(fleet);
  const std::string file = Write("state.json", state.dump(2));

  // The plan reads and sends nothing; it lists every record as a creation.
  Result plan = Run({"plan", "--verbose", file});
  ASSERT_EQ(plan.status, kExitOk) << plan.err << plan.out;
  EXPECT_EQ(SetCount(), 0u);
  EXPECT_NE(plan.out.find("SET 1.3.6.1.4.1.32473.12.9."), std::string::npos);

  Result apply = Run({"apply", "--parallel", "7", file});
  ASSERT_EQ(apply.status, kExitOk) << apply.out << apply.err;
  EXPECT_NE(apply.out.find("Total: 7 switches, 0 failed"), std::string::npos) << apply.out;

  // What the plan listed is what the audit log says was created, switch by switch.
  std::set<std::string> fromPlan, fromAudit;
  std::string current;
  std::istringstream planLines(plan.out);
  const std::regex item(R"(^  \+ +(\S+) (profile|rule) (\d+)(?:/(\d+))?)");
  for (std::string line; std::getline(planLines, line);) {
    std::smatch m;
    if (!line.empty() && line[0] != ' ') current = line.substr(0, line.find(' '));
    if (std::regex_search(line, m, item)) fromPlan.insert(current + " " + m[1].str() + " " + m[2].str() + " " + m[3].str() + "/" + m[4].str());
  }
  // The audit log: one request and one outcome per SET, and the requests are what the switches
  // logged, in order.
  std::map<std::string, std::vector<std::vector<std::string>>> auditSets;
  std::istringstream audit(Read("audit.jsonl"));
  size_t requests = 0, outcomes = 0;
  for (std::string line; std::getline(audit, line);) {
    const Json j = Json::parse(line);
    EXPECT_FALSE(j.value("user", "").empty());
    if (j["phase"] == "outcome") {
      ++outcomes;
      EXPECT_EQ(j["result"], "ok") << line;
      continue;
    }
    ++requests;
    std::vector<std::string> oids;
    for (const Json& b : j["set"]) {
      std::string value = b["value"];  // octet strings compare as their bytes in hex
      if (b["type"] == "STRING") value = BytesToHex(value);
      if (b["type"] == "Hex-STRING") value.erase(std::remove(value.begin(), value.end(), ' '), value.end());
      oids.push_back(b["oid"].get<std::string>() + "=" + value);
    }
    auditSets[j["address"]].push_back(oids);
    if (j["operation"] == "create")
      fromAudit.insert(j["switch"].get<std::string>() + " " + (j["acl"] == "cpu" ? "cpu_acl" : "acl") + " " +
                       (j["table"] == "rules" ? "rule " : "profile ") + j["profile"].get<std::string>() + "/" +
                       j.value("access_id", ""));
  }
  EXPECT_EQ(requests, outcomes);
  EXPECT_EQ(fromPlan, fromAudit);
  EXPECT_GT(fromPlan.size(), 7u * 6);
  for (auto& agent : agents_) {
    std::vector<std::vector<std::string>> logged;
    for (const sim::SetEvent& e : agent->sets()) {
      std::vector<std::string> oids;
      for (const snmp::VarBind& vb : e.varbinds) {
        std::string line = sim::FormatWalkLine(vb);  // "OID = TYPE: value"
        const std::string oid = line.substr(0, line.find(" = "));
        const std::string value = vb.value.tag == snmp::kTagOctetString ? BytesToHex(vb.value.bytes)
                                                                           : line.substr(line.find(": ") + 2);
        oids.push_back((oid[0] == '.' ? oid.substr(1) : oid) + "=" + value);
      }
      logged.push_back(oids);
    }
    EXPECT_EQ(auditSets[agent->address()], logged) << agent->address();
  }

  // Nothing left to do; and show --json is the file's records as the switches hold them.
  Result again = Run({"plan", "--detailed-exitcode", file});
  EXPECT_EQ(again.status, kExitOk) << again.out;
  EXPECT_NE(again.out.find("No changes."), std::string::npos) << again.out;
  Result shown = Run({"show", "--json"});
  ASSERT_EQ(shown.status, kExitOk) << shown.err;
  // Anything show left out, overridden would delete: no changes means nothing was left out.
  const std::string backup = Write("shown.json", shown.out);
  Result restore = Run({"plan", "--state", "overridden", "--detailed-exitcode", backup});
  EXPECT_EQ(restore.status, kExitOk) << restore.out << restore.err;
}

TEST_F(CliTest, RefusingAndSilentSwitchesFailAloneAndTheOthersFinish) {
  sim::Faults refuse, silent;
  refuse.refuseSets = {3};  // the first rule: after the profile and its closing request
  refuse.refuseStatus = snmp::kBadValue;
  silent.silent = true;
  Fleet({{"ok-sw", "TVR4820", {}}, {"refusing-sw", "TVR4820", refuse}, {"silent-sw", "TVG5690", silent}});
  const Json profile = Json::parse(R"([{"id": 4, "type": "ethernet", "vlan": true, "rules": [
      {"access_id": 1, "action": "permit", "ports": "1-4"}, {"access_id": 2, "action": "deny", "ports": "5"}]}])");
  const std::string file = Write("state.json", Json{{"groups", {{"all", {{"acl", profile}}}}}}.dump());
  Result r = Run({"apply", file});
  EXPECT_EQ(r.status, kExitFailed) << r.out;
  EXPECT_TRUE(std::regex_search(r.out, std::regex(R"(ok-sw +ok +created=3 deleted=0 unchanged=0 failed=0 verified=3/3)"))) << r.out;
  // The refused record, the switch's answer and the record's fields.
  EXPECT_TRUE(std::regex_search(r.out, std::regex(R"(refusing-sw +FAILED)"))) << r.out;
  EXPECT_NE(r.out.find("acl rule 4/1 (ethernet): create: error badValue at binding 1 (1.3.6.1.4.1.32473.12.9.3.1.1."),
            std::string::npos) << r.out;
  EXPECT_NE(r.out.find("record: action=permit, ports=1-4"), std::string::npos) << r.out;
  EXPECT_TRUE(std::regex_search(r.out, std::regex(R"(silent-sw +FAILED.*\n +no answer within 400 ms)"))) << r.out;
  // The silent switch cost one time-out, not one per request, and held nobody back.
  std::smatch secs;
  ASSERT_TRUE(std::regex_search(r.out, secs, std::regex(R"(ok-sw .* ([0-9.]+)s)")));
  EXPECT_LT(std::stod(secs[1]), 0.4);
}

// Each switch's plan and recap lines come out once and in the inventory's order, though the
// first switch, silent, finishes last and the others are done and dropped long before.
TEST_F(CliTest, PlanAndRecapKeepTheInventoryOrderWhoeverFinishesFirst) {
  sim::Faults silent;
  silent.silent = true;
  Fleet({{"a-silent", "TVR4820", silent}, {"b-sw", "TVR4820", {}}, {"c-sw", "TVR4820", {}}, {"d-sw", "TVR4820", {}}});
  const Json profile = Json::parse(R"([{"id": 4, "type": "ethernet", "vlan": true}])");
  const std::string file = Write("state.json", Json{{"groups", {{"all", {{"acl", profile}}}}}}.dump());
  const std::regex line(R"((^|\n)([a-d]-[a-z]+) )");
  auto names = [&line](const std::string& text) {
    std::string order;
    for (auto it = std::sregex_iterator(text.begin(), text.end(), line); it != std::sregex_iterator(); ++it)
      order += (*it)[2].str().substr(0, 1);
    return order;
  };
  for (const char* command : {"plan", "apply"}) {
    const Result r = Run({"--parallel", "4", command, file});
    EXPECT_EQ(r.status, kExitFailed) << r.out;
    EXPECT_EQ(names(r.out), "abcd") << r.out;
  }
}

TEST_F(CliTest, BadFilesNameThePlaceAndSendNothing) {
  Fleet({{"sw1", "TVG5240-10", {}}});
  struct Case {
    std::string state, expected;
  } cases[] = {
      {R"({"switches": {"sw1": {"acl": [ {"id": 1,, }]}}})", "$: not valid JSON at line 1, column 41"},
      {R"({"switches": {"nope": {}}})", "$.switches.nope: no switch of that name"},
      {R"({"switches": {"sw1": {"acl": [{"id": 1, "type": "ethernet", "colour": 1}]}}})", "$.switches.sw1.acl[0].colour: unknown field"},
      {R"({"switches": {"sw1": {"acl": [{"id": 1, "type": "ethernet", "src_mac_mask": "00-11-22"}]}}})",
       "$.switches.sw1.acl[0]: Invalid MAC Address !"},
      {R"({"groups": {"all": {"acl": [{"id": 1, "type": "ipv4", "rules": [{"access_id": 201, "action": "permit", "ports": "1"}]}]}}})",
       "$.groups.all.acl[0].rules[0]: Access ID range is error (switch sw1, TVG5240-10)"},
      {R"({"switches": {"sw1": {"acl": [{"id": 1, "type": "ipv4", "rules": [{"access_id": 2, "action": "permit", "ports": "1-11"}]}]}}})",
       "$.switches.sw1.acl[0].rules[0]: Port  is error!"},
      {R"({"switches": {"sw1": {"cpu_acl": [{"id": 1, "type": "ethernet", "rules": [{"access_id": 2, "action": "mirror", "ports": "1"}]}]}}})",
       "$.switches.sw1.cpu_acl[0].rules[0].action: expected permit or deny"},
      {R"({"switches": {"sw1": {"acl": [{"id": 1, "type": "packet_content", "blocks": {}}]}}})",
       "$.switches.sw1.acl[0].blocks: this model's packet-content profiles take \"chunks\""},
  };
  for (const Case& c : cases) {
    const std::string file = Write("state.json", c.state);
    for (const char* command : {"plan", "apply"}) {
      Result r = Run({command, file});
      EXPECT_EQ(r.status, kExitUsage) << c.state;
      EXPECT_NE(r.err.find(file + ": " + c.expected), std::string::npos) << r.err;
    }
  }
  EXPECT_EQ(SetCount(), 0u);
  for (auto& a : agents_) EXPECT_EQ(a->requests(), 0u);
  // A secrets file that is not JSON is reported by position, never by its text.
  Write("secrets.json", std::string("{\"default\": {\"read\": \"") + kRead + "\" \"write\": \"" + kWrite + "\"}}");
  Result r = Run({"show"});
  EXPECT_EQ(r.status, kExitUsage);
  EXPECT_NE(r.err.find("secrets.json: $: not valid JSON at line 1, column"), std::string::npos) << r.err;
}

TEST_F(CliTest, OverriddenBackupUndoesChangesByHandAndDeleteAsksFirst) {
  Fleet({{"sw1", "TVR4512", {}}, {"sw2", "TVR4060", {}}});
  const Json acl = Json::parse(R"([{"id": 2, "type": "ipv4", "name": "edge", "src_ip_mask": "255.255.0.0", "protocol": "udp",
      "src_port_mask": "FF00", "rules": [{"access_id": 9, "action": "deny", "ports": "1-2", "src_ip": "10.9.0.0", "dst_port": 53}]}])");
  const std::string file = Write("state.json", Json{{"groups", {{"all", {{"acl", acl}}}}}}.dump());
  ASSERT_EQ(Run({"apply", file}).status, kExitOk);
  Result shown = Run({"show", "--json", "--limit", "sw1"});
  ASSERT_EQ(shown.status, kExitOk);
  const std::string backup = Write("backup.json", shown.out);

  // By hand: the rule's action turned to permit, a second profile added.
  const std::string rule = "1.3.6.1.4.1.32473.12.9.3.2.1.";
  ASSERT_TRUE(SnmpSet(agents_[0]->address(), kWrite, {SnmpBinding::Integer(rule + "20.2.9", 2)}).responded);
  ASSERT_TRUE(SnmpSet(agents_[0]->address(), kWrite,
                      {SnmpBinding::Integer("1.3.6.1.4.1.32473.12.9.2.1.1.8.7", 4)}).responded);
  // And a rule without its profile, which the file format cannot hold: show names it.
  const std::string orphan = RowStatusColumnOid(*LookupModel("TVR4512"), AclOwner::kAcl, AclKind::kRules, AclType::kIPv4);
  ASSERT_TRUE(SnmpSet(agents_[0]->address(), kWrite, {SnmpBinding::Integer(InstanceOid(orphan, "8", "3"), 4)}).responded);
  EXPECT_NE(Run({"show", "--limit", "sw1"}).err.find("sw1: acl rule 8/3 (ipv4) has no ipv4 profile 8; not shown"),
            std::string::npos);
  Result plan = Run({"plan", "--state", "overridden", "--detailed-exitcode", backup});
  EXPECT_EQ(plan.status, kExitPending) << plan.out;
  EXPECT_NE(plan.out.find("-/+ acl rule 2/9 (ipv4): action: permit -> deny"), std::string::npos) << plan.out;
  EXPECT_NE(plan.out.find("-   acl profile 7 (ethernet)"), std::string::npos) << plan.out;
  EXPECT_NE(plan.out.find("-   acl rule 8/3 (ipv4); no ipv4 profile 8 on the switch"), std::string::npos) << plan.out;
  Result merged = Run({"plan", backup});
  EXPECT_NE(merged.out.find("~   acl rule 2/9"), std::string::npos) << merged.out;
  Result restore = Run({"apply", "--state", "overridden", backup});
  EXPECT_EQ(restore.status, kExitOk) << restore.out;
  EXPECT_NE(restore.out.find("created=1 deleted=3 unchanged=1 failed=0 verified=3/3"), std::string::npos) << restore.out;
  Result after = Run({"plan", "--state", "overridden", "--detailed-exitcode", backup});
  EXPECT_EQ(after.status, kExitOk) << after.out;
  EXPECT_NE(after.out.find("No changes."), std::string::npos);

  // Deleting a profile takes its rules first, and only after a "yes".
  const size_t before = SetCount();
  Result no = Run({"delete", "--limit", "sw2", "profile:2"}, "no\n");
  EXPECT_EQ(no.status, kExitUsage);
  EXPECT_NE(no.out.find("-   acl rule 2/9 (ipv4); goes with profile 2"), std::string::npos) << no.out;
  EXPECT_EQ(SetCount(), before);
  Result yes = Run({"delete", "--limit", "sw2", "profile:2"});
  EXPECT_EQ(yes.status, kExitOk) << yes.out;
  EXPECT_NE(yes.out.find("deleted=2 unchanged=0 failed=0 verified=2/2"), std::string::npos) << yes.out;
  EXPECT_NE(Run({"plan", "--limit", "sw2", file}).out.find("Plan: 2 to create"), std::string::npos);
}

}  // namespace
