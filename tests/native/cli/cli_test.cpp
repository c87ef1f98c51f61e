// sentrel-acl against simulated switches over real SNMP, in-process: plan, apply, show, delete
// and their files, the audit log against the switches' SET logs, refusing and silent switches,
// and communities that never show.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <fstream>
#include <memory>
#include <regex>
#include <set>
#include <sstream>
#include <thread>
#ifndef _WIN32
#include <csignal>
#endif

#include "acl/acl_audit.h"
#include "acl/acl_mib.h"
#include "cli/commands.h"
#include "cli/json_fields.h"
#include "cli/switch_state.h"
#include "snmp/snmp_ops.h"
#include "sim/walk_dump.h"
#include "sim_agent.h"

namespace {

namespace fs = std::filesystem;
const char* const kModels[] = {"TVG5240-10", "TVG5470", "TVG5690", "TVR4060", "TVR4510", "TVR4820", "TVR4512"};
const char* const kRead = "rd-Secret-7731";
const char* const kWrite = "wr-Secret-9902";

void SetEnv(const char* name, const char* value) {
#ifdef _WIN32
  _putenv_s(name, value ? value : "");
#else
  if (value) setenv(name, value, 1);
  else unsetenv(name);
#endif
}

#ifdef SENTREL_SOURCE_DIR
// Documents checked against a schema of cli/schema by the Debian package's validator.
void ExpectSchemaValid(const std::string& schema, const std::vector<std::string>& files) {
  std::string command = "python3 " SENTREL_SOURCE_DIR "/scripts/check-json-schema.py " SENTREL_SOURCE_DIR "/cli/schema/" + schema;
  for (const std::string& f : files) command += " '" + f + "'";
  EXPECT_EQ(std::system(command.c_str()), 0) << command;
}
#endif

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
    // Lock files and owed closing requests in the test's own folder.
    SetEnv("XDG_STATE_HOME", dir_.string().c_str());
    SetEnv("LOCALAPPDATA", dir_.string().c_str());
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

  // With the test's inventory unless the command names its own --switch.
  Result Run(std::vector<std::string> args, const std::string& input = "yes\n", bool inputTerminal = false) {
    const bool single = std::find(args.begin(), args.end(), "--switch") != args.end();
    if (!single) args.insert(args.begin(), {"-i", (dir_ / "inventory.json").string()});
    args.insert(args.begin(), {"sentrel-acl", "-t", "400"});
    for (size_t k = 1; k < args.size(); ++k)
      if (args[k] == "apply" || args[k] == "delete") {
        args.insert(args.begin() + static_cast<long>(k) + 1, {"--audit-log", (dir_ / "audit.jsonl").string()});
        break;
      }
    std::vector<const char*> argv;
    for (const std::string& a : args) argv.push_back(a.c_str());
    std::istringstream in(input);
    std::ostringstream out, err;
    const int status = RunCli(static_cast<int>(argv.size()), argv.data(), in, out, err, false, inputTerminal);
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
    const std::string_view model = m.typeText;
    if ((!cpu && model == "TVR4512") ||
        (t == AclType::kPacketContent && profileShape == PacketShape::kChunks4 && model.rfind("TVR", 0) == 0))
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

#ifdef SENTREL_SOURCE_DIR
  // Every record type of every model fits the desired-state schema, as written and as shown,
  // and so does the plan document that reads them.
  ExpectSchemaValid("desired-state.schema.json", {file, Write("shown-all.json", Run({"show", "--json"}).out)});
  ExpectSchemaValid("plan-result.schema.json", {Write("plan-all.json", Run({"plan", "--json", "--state", "overridden", file}).out)});
#endif
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
  Fleet({{"sw1", "TVG5240-10", {}}, {"sw2", "TVG5470", {}}, {"sw3", "TVG5690", {}}});
  struct Case {
    std::string state, expected;
  } cases[] = {
      {R"({"switches": {"sw1": {"acl": [ {"id": 1,, }]}}})", "$: not valid JSON at line 1, column 41"},
      {R"({"switches": {"nope": {}}})", "$.switches.nope: no switch of that name"},
      {R"({"switches": {"sw1": {"acl": [{"id": 1, "type": "ethernet", "colour": 1}]}}})", "$.switches.sw1.acl[0].colour: unknown field"},
      {R"({"switches": {"sw1": {"acl": [{"id": 1, "type": "ethernet", "src_mac_mask": "00-11-22"}]}}})",
       "$.switches.sw1.acl[0].src_mac_mask: Invalid MAC Address !"},
      {R"({"groups": {"all": {"acl": [{"id": 1, "type": "ipv4", "rules": [{"access_id": 201, "action": "permit", "ports": "1"}]}]}}})",
       "$.groups.all.acl[0].rules[0].access_id: Access ID range is error (switch sw1, TVG5240-10)"},
      {R"({"switches": {"sw1": {"acl": [{"id": 1, "type": "ipv4", "rules": [{"access_id": 2, "action": "permit", "ports": "1-11"}]}]}}})",
       "$.switches.sw1.acl[0].rules[0].ports: Port  is error!"},
      {R"({"switches": {"sw1": {"cpu_acl": [{"id": 1, "type": "ethernet", "rules": [{"access_id": 2, "action": "mirror", "ports": "1"}]}]}}})",
       "$.switches.sw1.cpu_acl[0].rules[0].action: expected permit or deny"},
      {R"({"switches": {"sw1": {"acl": [{"id": 1, "type": "packet_content", "blocks": {}}]}}})",
       "$.switches.sw1.acl[0].blocks: this model's packet-content profiles take \"chunks\""},
      {R"({"switches": {"sw1": {"acl": [{"id": 1, "type": "ethernet", "rules": [{"access_id": 2, "ports": "1"}]}]}}})",
       "$.switches.sw1.acl[0].rules[0].action: missing"},
      {R"({"switches": {"sw1": {"acl": [{"id": 1, "type": "ethernet", "rules": [{"access_id": 2, "action": "deny", "ports": "1", "dst_ip": "1.2.3.4"}]}]}}})",
       "$.switches.sw1.acl[0].rules[0].dst_ip: unknown field for this record (accepted: 802.1p, access_id, action, dst_mac, "},
      // Fields the model never sends would be dropped in silence.
      {R"({"switches": {"sw1": {"acl": [{"id": 1, "type": "ethernet", "name": "edge"}]}}})",
       "$.switches.sw1.acl[0].name: TVG5240-10 never sends this field to the switch"},
      {R"({"switches": {"sw2": {"acl": [{"id": 1, "type": "ipv4", "protocol": "icmp", "icmp_type": true, "rules": [{"access_id": 2, "action": "deny", "ports": "1", "icmp_type": 3}]}]}}})",
       "$.switches.sw2.acl[0].rules[0].icmp_type: TVG5470 never sends this field to the switch"},
      {R"({"switches": {"sw3": {"acl": [{"id": 1, "type": "ipv4", "protocol": "icmp", "icmp_code": true, "rules": [{"access_id": 2, "action": "deny", "ports": "1", "icmp_code": 3}]}]}}})",
       "$.switches.sw3.acl[0].rules[0].icmp_code: TVG5690 never sends this field to the switch"},
      {R"({"switches": {"sw1": {"acl": [{"id": 1, "type": "ethernet", "rules": [{"access_id": 2, "action": "deny", "ports": "1", "replace_dscp": 5}]}]}}})",
       "$.switches.sw1.acl[0].rules[0].replace_dscp: TVG5240-10 never sends this field to the switch"},
      {R"({"switches": {"sw3": {"cpu_acl": [{"id": 1, "type": "ethernet", "802.1p": true}]}}})",
       "$.switches.sw3.cpu_acl[0].802.1p: TVG5690 never sends this field to the switch"},
  };
  for (const Case& c : cases) {
    const std::string file = Write("state.json", c.state);
    for (const char* command : {"plan", "apply"}) {
      Result r = Run({command, file});
      EXPECT_EQ(r.status, kExitUsage) << c.state;
      EXPECT_NE(r.err.find(file + ": " + c.expected), std::string::npos) << r.err;
    }
  }
  // Every fault of a file at once, each at its field, a faulty profile's rules included.
  const std::string many = Write("many.json", R"({"switches": {"sw1": {"acl": [{"id": 1, "type": "ipv4", "vlan": true,
      "src_ip_mask": "255.0.0.0", "rules": [{"access_id": 2, "action": "deny", "ports": "1-99", "vlan": "v1", "dscp": 64}]},
      {"id": 2, "type": "ethernet", "src_mac_mask": "xyz", "rules": [{"access_id": 3, "action": "deny", "ports": "1", "802.1p": 9}]}]}}})");
  Result all = Run({"plan", many});
  for (const char* fault : {"acl[0].rules[0].ports: Port  is error!", "acl[0].rules[0].dscp: Dscp value range is 0 to 63",
                            "acl[1].src_mac_mask: Invalid MAC Address !", "acl[1].rules[0].802.1p: 8021p value range is 0 to 7",
                            "4 errors; nothing was sent"})
    EXPECT_NE(all.err.find(fault), std::string::npos) << fault << "\n" << all.err;
  EXPECT_EQ(SetCount(), 0u);
  for (auto& a : agents_) EXPECT_EQ(a->requests(), 0u);
  // A secrets file that is not JSON is reported by position, never by its text.
  Write("secrets.json", std::string("{\"default\": {\"read\": \"") + kRead + "\" \"write\": \"" + kWrite + "\"}}");
  Result r = Run({"show"});
  EXPECT_EQ(r.status, kExitUsage);
  EXPECT_NE(r.err.find("secrets.json: $: not valid JSON at line 1, column"), std::string::npos) << r.err;
}

TEST_F(CliTest, OverriddenBackupUndoesChangesByHandAndDeleteAsksFirst) {
  Fleet({{"sw1", "TVR4512", {}}, {"sw2", "TVR4512", {}}});
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
  // Deleting asks on a terminal, and is refused without --yes where nobody can be asked.
  const size_t unasked = SetCount();
  Result refused = Run({"apply", "--state", "overridden", backup});
  EXPECT_EQ(refused.status, kExitUsage);
  EXPECT_NE(refused.err.find("the plan deletes 3 records and stdin is not a terminal"), std::string::npos) << refused.err;
  EXPECT_EQ(Run({"apply", "--state", "overridden", backup}, "no\n", true).status, kExitUsage);
  EXPECT_EQ(SetCount(), unasked);
  Result restore = Run({"apply", "--state", "overridden", backup}, "yes\n", true);
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

TEST_F(CliTest, ReplacesVerifyAtTheEndRulesOfAFailedProfileWaitAndSummariesSayWhatIsTrue) {
  sim::Faults refuseProfile, silent;
  refuseProfile.refuseSets = {1};
  refuseProfile.refuseStatus = snmp::kBadValue;
  silent.silent = true;
  sim::Faults refuseReplacement;  // after the first apply's four SETs and a replace's two deletes
  refuseReplacement.refuseSets = {7};
  refuseReplacement.refuseStatus = snmp::kBadValue;
  Fleet({{"sw1", "TVR4820", {}}, {"sw2", "TVR4820", refuseProfile}, {"sw3", "TVR4820", silent},
         {"sw4", "TVR4820", refuseReplacement}});
  auto state = [&](const char* mask, const char* action = "deny") {
    Json acl = Json::parse(R"([{"id": 3, "type": "ipv4", "rules": [{"access_id": 9, "ports": "2", "dst_ip": "10.0.0.0"}]}])");
    acl[0]["dst_ip_mask"] = mask;
    acl[0]["rules"][0]["action"] = action;
    return Write(std::string("state-") + mask + "-" + action + ".json", Json{{"groups", {{"all", {{"acl", acl}}}}}}.dump());
  };
  Result r = Run({"apply", state("255.255.255.0")});
  EXPECT_EQ(r.status, kExitFailed);
  // The refused profile's rule is not sent: one SET on that switch, and the recap says why.
  EXPECT_EQ(agents_[1]->sets().size(), 1u);
  EXPECT_NE(r.out.find("acl rule 3/9 (ipv4): not sent: profile 3 failed"), std::string::npos) << r.out;
  EXPECT_TRUE(std::regex_search(r.out, std::regex(R"(sw2 +FAILED +created=0 deleted=0 unchanged=0 failed=1 skipped=1)"))) << r.out;
  EXPECT_NE(r.out.find("no answer within 400 ms (a wrong community looks the same)"), std::string::npos) << r.out;

  // A changed profile replaced with its rule: deleted, created again, and verified as the end
  // state the plan meant.
  Result replaced = Run({"apply", "--yes", "--state", "replaced", "--limit", "sw1", state("255.255.0.0")});
  EXPECT_EQ(replaced.status, kExitOk) << replaced.out;
  EXPECT_NE(replaced.out.find("created=2 deleted=2 unchanged=0 failed=0 verified=3/3"), std::string::npos) << replaced.out;

  // The switch refuses the new profile after the old one and its rule were deleted: it holds
  // neither, and the document says so rather than "not sent".
  Result half = Run({"apply", "--json", "--yes", "--state", "replaced", "--limit", "sw4", state("255.255.0.0")});
  EXPECT_EQ(half.status, kExitFailed);
  const Json halfDoc = Json::parse(half.out);
  const Json& profile = halfDoc["switches"][0]["changes"][1];
  ASSERT_EQ(profile["action"], "replace") << halfDoc;
  EXPECT_EQ(profile["result"], "deleted_only");
  EXPECT_EQ(profile["error"].get<std::string>().rfind("deleted, not created again: create refused: error badValue", 0), 0u) << profile;
#ifdef SENTREL_SOURCE_DIR
  ExpectSchemaValid("plan-result.schema.json", {Write("half.json", half.out)});
#endif

  // What the summary line says: kept records, silent switches, a deletion that names nothing.
  struct Case {
    std::vector<std::string> args;
    std::string said, unsaid;
  } cases[] = {
      {{"plan", "--limit", "sw1", state("255.255.0.0", "permit")}, "No changes in --state merged, but 1 record on the switches differ", "No changes. The"},
      {{"plan", "--limit", "sw1,sw3", state("255.255.0.0")}, "1 switch was not read (see above)", "No changes. The"},
      // The refused profile owes no closing request: there is nothing to close.
      {{"plan", "--limit", "sw2", state("255.255.255.0")}, "Plan: 2 to create, 0 to delete", "owed"},
      {{"plan", "--limit", "sw1", state("255.255.0.0")}, "No changes. The switches hold what the file says.", "not read"},
      {{"delete", "--limit", "sw1", "profile:99"}, "Nothing to delete: no switch holds any of these records.", "No changes."},
  };
  for (const Case& c : cases) {
    Result plan = Run(c.args);
    EXPECT_NE(plan.out.find(c.said), std::string::npos) << plan.out;
    EXPECT_EQ(plan.out.find(c.unsaid), std::string::npos) << plan.out;
  }

  // A replace that changes a rule's type deletes the row from the table it is in: the IPv4
  // profile goes by hand, its rule is left behind, and the file wants both as Ethernet.
  const AclTarget sw1{agents_[0]->address(), kRead, kWrite, "TVR4820"};
  ASSERT_TRUE(DeleteRow(sw1, RowStatusColumnOid(*LookupModel("TVR4820"), AclOwner::kAcl, AclKind::kProfiles, AclType::kIPv4),
                        "3", "", 400));
  const std::string retyped = Write("retyped.json", R"({"groups": {"all": {"acl": [{"id": 3, "type": "ethernet", "vlan": true,
      "rules": [{"access_id": 9, "action": "deny", "ports": "2"}]}]}}})");
  Result moved = Run({"apply", "--yes", "--state", "replaced", "--limit", "sw1", retyped});
  EXPECT_EQ(moved.status, kExitOk) << moved.out;
  Result shown = Run({"show", "--limit", "sw1"});
  EXPECT_EQ(shown.err.find("has no ipv4 profile"), std::string::npos) << shown.err;
  const std::string ethernetOnly = Write("ethernet.json", R"({"groups": {"all": {"acl": [{"id": 3, "type": "ethernet", "vlan": true}]}}})");
  EXPECT_EQ(Run({"apply", "--yes", "--state", "overridden", "--limit", "sw1", ethernetOnly}).status, kExitOk);
  // merged leaves the ethernet profile alone, so its ipv4 rule has no table to go to.
  const size_t setsBefore = agents_[0]->sets().size();
  EXPECT_EQ(Run({"apply", "--limit", "sw1", state("255.255.255.0")}).status, kExitOk);
  EXPECT_EQ(agents_[0]->sets().size(), setsBefore);
  Result orphan = Run({"plan", "--limit", "sw1", state("255.255.255.0")});
  EXPECT_NE(orphan.out.find("not sent: profile 3 on the switch is ethernet, the file says ipv4; --state replaced replaces it"),
            std::string::npos) << orphan.out;

  // Two entries for one switch would be two applies on it at once.
  Json inv = Json::parse(Read("inventory.json"));
  inv["switches"]["twin"] = inv["switches"]["sw1"];
  Write("inventory.json", inv.dump());
  Result twin = Run({"show"});
  EXPECT_EQ(twin.status, kExitUsage);
  EXPECT_NE(twin.err.find("$.switches.twin.address: the address of sw1 too"), std::string::npos) << twin.err;
}

TEST_F(CliTest, OneApplyPerSwitchAndAClosingRequestOwedIsSeenAndSent) {
  sim::Faults loseClosing;
  loseClosing.dropSets = {2, 4};  // the first closing request is lost, later a record
  Fleet({{"sw1", "TVR4820", loseClosing}});
  const std::string file = Write("state.json", R"({"switches": {"sw1": {"acl": [{"id": 5, "type": "ethernet", "vlan": true}]}}})");
  {
    // Held in a shared folder under the address spelled another way: still the one switch.
    std::string otherSpelling = agents_[0]->address();
    otherSpelling.insert(otherSpelling.rfind('.') + 1, "0");  // 127.0.13.2 as 127.0.13.02
    SwitchLock held;
    std::string error;
    ASSERT_TRUE(held.Acquire((dir_ / "shared").string(), otherSpelling, "alice", error)) << error;
    Result busy = Run({"apply", "--state-dir", (dir_ / "shared").string(), file});
    EXPECT_EQ(busy.status, kExitFailed);
    EXPECT_TRUE(std::regex_search(busy.out, std::regex(R"(another apply holds this switch \(pid \d+ of alice since )"))) << busy.out;
    EXPECT_EQ(agents_[0]->requests(), 0u);
  }
  // Nowhere to keep the locks: nothing is sent rather than no lock taken.
  const std::string home = std::getenv("HOME") ? std::getenv("HOME") : "";
  for (const char* name : {"XDG_STATE_HOME", "LOCALAPPDATA", "HOME"}) SetEnv(name, nullptr);
  Result nowhere = Run({"apply", file});
  SetEnv("HOME", home.empty() ? nullptr : home.c_str());
  SetEnv("XDG_STATE_HOME", dir_.string().c_str());
  SetEnv("LOCALAPPDATA", dir_.string().c_str());
  EXPECT_EQ(nowhere.status, kExitUsage);
  EXPECT_NE(nowhere.err.find("give --state-dir, or set SENTREL_STATE_DIR or XDG_STATE_HOME"), std::string::npos) << nowhere.err;
  EXPECT_EQ(agents_[0]->requests(), 0u);
  Result lost = Run({"apply", file});
  EXPECT_EQ(lost.status, kExitFailed);
  ASSERT_EQ(agents_[0]->sets().size(), 2u);
  // The record is on the switch, so only the owed closing request is left to do, and plan says so.
  Result plan = Run({"plan", "--detailed-exitcode", file});
  EXPECT_EQ(plan.status, kExitPending) << plan.out;
  EXPECT_NE(plan.out.find("!   closing request of the acl profiles owed"), std::string::npos) << plan.out;
  const Json planned = Json::parse(Run({"plan", "--json", file}).out)["switches"][0]["closing"];
  ASSERT_EQ(planned.size(), 1u);
  EXPECT_EQ(planned[0]["kind"], "profile");
  EXPECT_EQ(planned[0]["result"], "planned");
  Result owed = Run({"apply", "--json", file});
  EXPECT_EQ(owed.status, kExitOk) << owed.out;
  const Json closing = Json::parse(owed.out)["switches"][0]["closing"];
  ASSERT_EQ(closing.size(), 1u);
  EXPECT_EQ(closing[0]["result"], "sent");
#ifdef SENTREL_SOURCE_DIR
  ExpectSchemaValid("plan-result.schema.json", {Write("owed.json", owed.out)});
#endif
  const auto sets = agents_[0]->sets();
  ASSERT_EQ(sets.size(), 3u);
  EXPECT_EQ(sets[2].varbinds.at(0).name, sets[1].varbinds.at(0).name);  // the closing request again
  EXPECT_EQ(Run({"plan", "--detailed-exitcode", file}).status, kExitOk);

  // A record whose answer is lost: with --retries the switch is read, the row is absent, and
  // the record goes out once more before its closing request.
  const std::string two = Write("two.json", R"({"switches": {"sw1": {"acl": [{"id": 5, "type": "ethernet", "vlan": true},
      {"id": 6, "type": "ethernet", "vlan": true}]}}})");
  Result retried = Run({"apply", "--retries", "1", two});
  EXPECT_EQ(retried.status, kExitOk) << retried.out;
  const auto all = agents_[0]->sets();
  ASSERT_EQ(all.size(), 6u);
  EXPECT_TRUE(all[3].dropped);
  EXPECT_EQ(all[4].varbinds, all[3].varbinds);
}

// A switch that loses one answer in the middle of a table is not read at all: its rows after
// the lost answer would otherwise look absent, to be created again (refused) or left out of a
// backup that a restore then deletes from the switch.
TEST_F(CliTest, ATableCutShortByALostAnswerIsNeverTakenForTheWholeTable) {
  Fleet({{"sw1", "TVR4060", {}}});
  const Json three = Json::parse(R"([{"id": 1, "type": "ethernet", "vlan": true}, {"id": 2, "type": "ethernet", "vlan": true},
      {"id": 3, "type": "ethernet", "vlan": true}])");
  const std::string file = Write("state.json", Json{{"switches", {{"sw1", {{"acl", three}}}}}}.dump());
  ASSERT_EQ(Run({"apply", file}).status, kExitOk);
  const size_t sets = SetCount();
  // The third read request is lost: the profile table stops after its first row.
  SimAgent& sw = *agents_[0];
  sw.dropGets({3});
  Result plan = Run({"plan", "--state", "overridden", file});
  EXPECT_EQ(plan.status, kExitFailed) << plan.out;
  EXPECT_NE(plan.out.find("sw1 (" + sw.address() + ", TVR4060): not read: the switch stopped answering while its acl "
                          "ethernet profile table was read (1 row read)"),
            std::string::npos) << plan.out;
  EXPECT_EQ(plan.out.find("Plan:"), std::string::npos) << plan.out;
  EXPECT_NE(plan.out.find("1 switch was not read"), std::string::npos) << plan.out;

  sw.dropGets({3});
  Result show = Run({"show", "--json"});
  EXPECT_EQ(show.status, kExitFailed);
  EXPECT_NE(show.err.find("sentrel-acl: sw1: not read: the switch stopped answering"), std::string::npos) << show.err;
  EXPECT_EQ(Json::parse(show.out)["switches"], Json::object()) << show.out;

  // Asked again, the read is whole and the plan right.
  sw.dropGets({3});
  Result retried = Run({"plan", "--retries", "1", "--detailed-exitcode", file});
  EXPECT_EQ(retried.status, kExitOk) << retried.out;
  EXPECT_NE(retried.out.find("No changes."), std::string::npos) << retried.out;

  // A read-back cut short fails the apply as unverified, not as a record missing.
  const size_t before = sw.requests();
  ASSERT_EQ(Run({"plan", file}).status, kExitOk);
  const uint64_t oneRead = sw.requests() - before;
  Json more = three;
  more.push_back({{"id", 4}, {"type", "ethernet"}, {"vlan", true}});
  const std::string four = Write("four.json", Json{{"switches", {{"sw1", {{"acl", more}}}}}}.dump());
  sw.dropGets({oneRead + 3});
  Result apply = Run({"apply", four});
  EXPECT_EQ(apply.status, kExitFailed) << apply.out;
  EXPECT_NE(apply.out.find("acl profile 4 (ethernet): read-back: not read whole: the switch stopped answering"),
            std::string::npos) << apply.out;
  EXPECT_EQ(apply.out.find("not on the switch"), std::string::npos) << apply.out;
  EXPECT_EQ(SetCount(), sets + 2);  // the new profile and its closing request, nothing else
}

#ifndef _WIN32
TEST_F(CliTest, CtrlCFinishesTheRequestInFlightClosesWhatLandedAndExits130) {
  Fleet({{"sw1", "TVR4820", {}}, {"sw2", "TVR4820", {}}, {"sw3", "TVR4820", {}}});
  for (auto& a : agents_) a->delay(60);
  Json rules = Json::array();
  for (int k = 1; k <= 12; ++k) rules.push_back({{"access_id", k}, {"action", "deny"}, {"ports", std::to_string(k)}});
  const std::string file = Write("state.json", Json{{"groups", {{"all", {{"acl", {{{"id", 1}, {"type", "ethernet"}, {"vlan", true}, {"rules", rules}}}}}}}}}.dump());
  std::thread interrupter([&] {
    while (agents_[0]->sets().size() < 4) std::this_thread::sleep_for(std::chrono::milliseconds(5));
    std::raise(SIGINT);
  });
  Result r = Run({"apply", "--parallel", "2", file});
  interrupter.join();
  EXPECT_EQ(r.status, 130) << r.out;
  EXPECT_NE(r.out.find("Total: 3 switches, 0 failed, 3 interrupted;"), std::string::npos) << r.out;
  EXPECT_TRUE(std::regex_search(r.out, std::regex(R"(sw1 +INTERRUPTED)"))) << r.out;
  EXPECT_TRUE(std::regex_search(r.out, std::regex(R"(sw3 +INTERRUPTED +created=0)"))) << r.out;
  // Every switch that got a record ended with the closing request, answered.
  std::map<std::string, std::string> lastWrite, interrupted;
  std::istringstream audit(Read("audit.jsonl"));
  for (std::string line; std::getline(audit, line);) {
    const Json j = Json::parse(line);
    if (j.value("result", "") == "interrupted") interrupted[j["switch"]] = j["detail"];
    else if (j["phase"] == "outcome") lastWrite[j["switch"]] = j["operation"].get<std::string>() + " " + j["result"].get<std::string>();
  }
  EXPECT_EQ(interrupted.size(), 3u);
  EXPECT_EQ(interrupted["sw3"], "not started");
  for (size_t k = 0; k < 2; ++k) {
    const auto sets = agents_[k]->sets();
    ASSERT_GE(sets.size(), 2u);
    EXPECT_LT(sets.size(), 14u);
    EXPECT_EQ(lastWrite["sw" + std::to_string(k + 1)], "close ok");
    EXPECT_EQ(sets.back().varbinds.at(0).name, sets.at(1).varbinds.at(0).name);  // as after the profile
  }
  EXPECT_TRUE(agents_[2]->sets().empty());
}
#endif

TEST_F(CliTest, EachSwitchGetsTheMostSpecificCommunities) {
  // name, groups, the read community its switch answers to: its own, its first group's, the default.
  const std::vector<std::tuple<std::string, std::vector<std::string>, std::string>> fleet{
      {"sw-own", {"edge"}, "rd-own"}, {"sw-group", {"edge"}, "rd-edge"}, {"sw-first", {"core", "edge"}, "rd-core"},
      {"sw-default", {}, "rd-default"}};
  Json inv{{"communities", {{"secrets", "layered.json"}}}, {"switches", Json::object()}};
  Json secrets = Json::object();
  for (const auto& [name, groups, read] : fleet) {
    agents_.push_back(std::make_unique<SimAgent>(static_cast<int>(agents_.size()) + 2, "TVR4820", sim::Faults{}, read, "w-" + read));
    ASSERT_TRUE(agents_.back()->ok()) << agents_.back()->error();
    inv["switches"][name] = {{"address", agents_.back()->address()}, {"model", "TVR4820"}, {"groups", groups}};
  }
  for (const char* key : {"sw-own", "edge", "core", "default"}) {
    const std::string read = std::string("rd-") + (std::string_view(key) == "sw-own" ? "own" : key);
    secrets[key] = {{"read", read}, {"write", "w-" + read}};
  }
  Write("layered.json", secrets.dump());
  Write("inventory.json", inv.dump());
  Result shown = Run({"show"});
  EXPECT_EQ(shown.status, kExitOk) << shown.out << shown.err;
  EXPECT_EQ(shown.out.find("no answer"), std::string::npos) << shown.out;
  // And the write community of the same entry: an apply lands on every switch.
  Json state{{"switches", Json::object()}};
  for (const auto& entry : fleet) state["switches"][std::get<0>(entry)] = Json::parse(R"({"acl": [{"id": 2, "type": "ethernet", "vlan": true}]})");
  EXPECT_EQ(Run({"apply", Write("state.json", state.dump())}).status, kExitOk);
  for (auto& a : agents_) EXPECT_EQ(a->sets().size(), 2u) << a->address();
}

TEST_F(CliTest, OneSwitchWithoutInventoryPlansOfflineAndAppliesAsOneJsonDocument) {
  Fleet({{"unused", "TVR4820", {}}});
  const std::string state = R"({"switches": {"edge": {"acl": [{"id": 10, "type": "ipv4", "dst_ip_mask": "255.255.255.0",
      "rules": [{"access_id": 1, "action": "permit", "ports": "1-8", "dst_ip": "10.1.1.0"}]}]}}})";
  auto one = [&](std::vector<std::string> args) {
    for (const char* a : {"--switch", "", "--model", "TVR4820", "--name", "edge", "--read-community-env", "T_READ",
                          "--write-community-env", "T_WRITE", "-"})
      args.push_back(*a ? a : agents_[0]->address());
    return Run(args, state);
  };
  auto result = [](const Result& r) { return Json::parse(r.out)["switches"][0]; };
  SetEnv("T_READ", nullptr);
  SetEnv("T_WRITE", nullptr);

  // Rendered offline: no community, not one request, the whole plan and the state it means.
  Result offline = one({"plan", "--json", "--assume-empty"});
  ASSERT_EQ(offline.status, kExitOk) << offline.err;
  EXPECT_EQ(agents_[0]->requests(), 0u);
  const Json planned = result(offline);
  EXPECT_EQ(Json::parse(offline.out)["command"], "plan");
  EXPECT_EQ(planned["result"], "changes");
  EXPECT_EQ(planned["before"], Json::parse(R"({"acl": []})"));
  ASSERT_EQ(planned["changes"].size(), 2u);
  EXPECT_EQ(planned["changes"][1]["action"], "create");
  EXPECT_EQ(planned["changes"][1]["kind"], "rule");
  EXPECT_EQ(planned["changes"][1]["after"]["dst_ip"], "10.1.1.0");
  EXPECT_EQ(planned["changes"][1]["sets"][0]["oid"].get<std::string>().rfind(".1.3.6.1.4.1.32473.12.9.", 0), 0u);

  // A plan reads with the read community alone; an apply names the variable it lacks.
  SetEnv("T_READ", kRead);
  EXPECT_EQ(result(one({"plan", "--json"}))["result"], "changes");
  Result noWrite = one({"apply", "--json"});
  EXPECT_EQ(noWrite.status, kExitUsage);
  EXPECT_NE(noWrite.err.find("T_WRITE (a community) is not set"), std::string::npos) << noWrite.err;
  EXPECT_EQ(SetCount(), 0u);

  // Applied: every change done and verified, and the switch reads back as the plan meant.
  SetEnv("T_WRITE", kWrite);
  Result apply = one({"apply", "--json"});
  ASSERT_EQ(apply.status, kExitOk) << apply.err << apply.out;
  const Json applied = result(apply);
  EXPECT_EQ(applied["result"], "changed");
  for (const Json& c : applied["changes"]) {
    EXPECT_EQ(c["result"], "done");
    EXPECT_EQ(c["verified"], true);
  }
  // Every field the plan names reads back with its value (a cell nobody sends keeps the
  // switch's own, which the plan cannot know).
  std::function<bool(const Json&, const Json&)> within = [&](const Json& part, const Json& whole) {
    if (part.is_object() && whole.is_object()) {
      for (const auto& item : part.items())
        if (!whole.contains(item.key()) || !within(item.value(), whole[item.key()])) return false;
      return true;
    }
    if (part.is_array() && whole.is_array() && part.size() == whole.size()) {
      for (size_t k = 0; k < part.size(); ++k)
        if (!within(part[k], whole[k])) return false;
      return true;
    }
    return part == whole;
  };
  EXPECT_TRUE(within(planned["after"], applied["after"])) << planned["after"] << "\n" << applied["after"];
  EXPECT_EQ(result(one({"plan", "--json"}))["result"], "unchanged");

#ifdef SENTREL_SOURCE_DIR
  ExpectSchemaValid("plan-result.schema.json", {Write("offline.json", offline.out), Write("applied.json", apply.out)});
#endif
  EXPECT_NE(Run({"--version"}).out.find("sentrel-acl 1."), std::string::npos);
  EXPECT_EQ(Run({"show", "--switch", agents_[0]->address(), "--model", "TVR4820", "-i", "inventory.json"}).status, kExitUsage);
}

#ifdef SENTREL_SOURCE_DIR
// The per-model limits the schema publishes are the ones the command line enforces: each
// limit passes an offline plan, one past it is refused.
TEST_F(CliTest, TheSchemasModelLimitsAreTheOnesEnforced) {
  std::ifstream in(SENTREL_SOURCE_DIR "/cli/schema/desired-state.schema.json");
  const Json models = Json::parse(in)["x-models"];
  ASSERT_EQ(models.size(), 7u);
  for (const auto& [model, limits] : models.items()) {
    auto plan = [&, model = model](const char* owner, const char* type, long profileId, long accessId, const std::string& ports,
                                   const Json& rx) {
      Json rule{{"access_id", accessId}, {"action", "deny"}, {"ports", ports}};
      if (!rx.is_null()) rule["rx_rate"] = rx;
      Json profile{{"id", profileId}, {"type", type}, {"rules", {rule}}};
      if (model == "TVR4512" && std::string_view(owner) == "acl") profile["name"] = "edge";  // required there
      const Json state{{"switches", {{"sw", {{owner, {profile}}}}}}};
      const std::vector<std::string> args{"sentrel-acl", "plan", "--assume-empty", "--switch", "127.0.0.9", "--model", model,
                                          "--name", "sw", "-"};
      std::vector<const char*> argv;
      for (const std::string& a : args) argv.push_back(a.c_str());
      std::istringstream stdinText(state.dump());
      std::ostringstream out, err;
      return RunCli(static_cast<int>(argv.size()), argv.data(), stdinText, out, err, false);
    };
    for (const char* owner : {"acl", "cpu_acl"}) {
      const long maxProfile = limits["profile_id"][owner]["maximum"];
      const std::string allPorts = "1-" + std::to_string(limits["ports"].get<int>());
      for (const auto& [type, range] : limits["access_id"][owner].items()) {
        if (type == "packet_content") continue;  // its records take the model's own shapes
        const long low = range["minimum"], high = range["maximum"];
        SCOPED_TRACE(model + " " + owner + " " + type);
        EXPECT_EQ(plan(owner, type.c_str(), maxProfile, high, allPorts, nullptr), kExitOk);
        EXPECT_EQ(plan(owner, type.c_str(), maxProfile, std::max(low, 1L), allPorts, nullptr), kExitOk);
        if (high < 65535) {
          EXPECT_EQ(plan(owner, type.c_str(), maxProfile, high + 1, allPorts, nullptr), kExitUsage);
        }
        EXPECT_EQ(plan(owner, type.c_str(), maxProfile + 1, high, allPorts, nullptr), kExitUsage);
        EXPECT_EQ(plan(owner, type.c_str(), maxProfile, high, std::to_string(limits["ports"].get<int>() + 1), nullptr), kExitUsage);
      }
    }
    if (limits.contains("rx_rate")) {
      const long top = limits["rx_rate"]["maximum"];
      EXPECT_EQ(plan("acl", "ethernet", 1, 1, "1", top), kExitOk) << model;
      EXPECT_EQ(plan("acl", "ethernet", 1, 1, "1", top + 1), kExitUsage) << model;
    } else {
      EXPECT_EQ(plan("acl", "ethernet", 1, 1, "1", 64), kExitUsage) << model;
    }
  }
}
#endif

}  // namespace
