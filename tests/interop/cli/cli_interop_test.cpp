// `sentrel-acl show --json` against net-snmp's snmpwalk of the same simulated switches: the same
// profiles and rules, and the cells a reader checks first (ports, action) read the same.
#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <set>

#include "acl/acl_fields.h"
#include "acl/acl_mib.h"
#include "cli/json_fields.h"
#include "sim/walk_dump.h"
#include "snmp/ber.h"
#include "tests/interop/processes.h"

namespace {

const std::vector<std::pair<std::string, std::string>> kFleet = {{"127.0.15.10", "TVR4820"},
                                                                 {"127.0.15.11", "TVG5240-10"}};

// A port bitmap as a port list: the first octet's high bit is port 1.
std::string PortsOf(const std::string& bitmap) {
  std::string list;
  for (size_t i = 0; i < bitmap.size() * 8; ++i)
    if (static_cast<unsigned char>(bitmap[i / 8]) & (0x80 >> (i % 8))) list += std::to_string(i + 1) + ",";
  return CompactPortList(list);
}

TEST(ShowJsonVsSnmpwalk, ProfilesRulesPortsAndActionsAgree) {
  char tmpl[] = "/tmp/sentrel-cli-interop-XXXXXX";
  ASSERT_NE(mkdtemp(tmpl), nullptr);
  const std::string dir = tmpl;
  Json inventory{{"communities", {{"read_env", "SENTREL_TEST_READ"}, {"write_env", "SENTREL_TEST_WRITE"}}},
                 {"switches", Json::object()}};
  {
    std::ofstream fleet(dir + "/fleet.txt");
    for (const auto& [address, model] : kFleet) {
      fleet << address << " " << model << " public private\n";
      inventory["switches"]["sw-" + model] = {{"address", address}, {"model", model}};
    }
  }
  std::ofstream(dir + "/inventory.json") << inventory.dump();
  setenv("SENTREL_TEST_READ", "public", 1);
  setenv("SENTREL_TEST_WRITE", "private", 1);
  // Both ACL kinds, several types, rules with every action.
  const Json acl = Json::parse(R"([
      {"id": 3, "type": "ethernet", "vlan": true, "rules": [
        {"access_id": 1, "action": "permit", "ports": "1-4"}, {"access_id": 7, "action": "deny", "ports": "2,9"}]},
      {"id": 5, "type": "ipv4", "dst_ip_mask": "255.255.255.0", "protocol": "udp", "dst_port_mask": "FFFF", "rules": [
        {"access_id": 2, "action": "mirror", "ports": "1-8,10", "dst_ip": "10.1.1.0", "dst_port": 53}]}])");
  const Json cpu = Json::parse(R"([{"id": 1, "type": "ethernet", "vlan": true, "rules": [
      {"access_id": 4, "action": "deny", "ports": "5"}]}])");
  std::ofstream(dir + "/state.json")
      << Json{{"switches", {{"sw-TVR4820", {{"acl", acl}, {"cpu_acl", cpu}}}, {"sw-TVG5240-10", {{"acl", acl}}}}}}.dump();

  Spawned sim({SENTREL_SIM_PATH, "--fleet", dir + "/fleet.txt"}, dir + "/sim.out");
  ASSERT_TRUE(WaitForText(dir + "/sim.out", "ready")) << ReadFile(dir + "/sim.out");

  const std::string acl_cmd = std::string(SENTREL_ACL_PATH) + " -i " + dir + "/inventory.json ";
  int rc = 0;
  const std::string applied =
      RunShell(acl_cmd + "apply --audit-log " + dir + "/audit.jsonl " + dir + "/state.json 2>" + dir + "/apply.err", &rc);
  ASSERT_EQ(rc, 0) << applied << ReadFile(dir + "/apply.err") << ReadFile(dir + "/sim.out");
  const std::string shown = RunShell(acl_cmd + "show --json 2>" + dir + "/show.err", &rc);
  ASSERT_EQ(rc, 0) << ReadFile(dir + "/show.err");
  const Json state = Json::parse(shown);

  for (const auto& [address, model] : kFleet) {
    SCOPED_TRACE(model);
    const std::string walk =
        RunShell("MIBS= snmpwalk -v1 -c public -On -t 2 -r 0 " + address + " " + kAclMibPrefix + " 2>" + dir + "/walk.err", &rc);
    ASSERT_EQ(rc, 0) << ReadFile(dir + "/walk.err");
    std::vector<snmp::VarBind> binds;
    std::string error;
    ASSERT_TRUE(sim::ParseWalkDump(walk, binds, error)) << error;
    std::map<std::string, snmp::Value> cells;
    for (const snmp::VarBind& b : binds) cells[snmp::FormatOid(b.name)] = b.value;
    // The instances (profile ID, or profile ID.Access ID) of a column, as snmpwalk read them.
    auto instances = [&](const std::string& column) {
      std::set<std::string> out;
      for (auto it = cells.lower_bound(column + "."); it != cells.end() && it->first.rfind(column + ".", 0) == 0; ++it)
        out.insert(it->first.substr(column.size() + 1));
      return out;
    };
    const ModelEntry& m = *LookupModel(model);
    const Json& sw = state["switches"]["sw-" + model];
    size_t rulesCompared = 0;
    for (AclOwner owner : {AclOwner::kAcl, AclOwner::kCpu})
      for (AclType type : {AclType::kEthernet, AclType::kIPv4, AclType::kIPv6, AclType::kPacketContent}) {
        const auto profiles = TableLayout(m, owner, AclKind::kProfiles, type);
        if (!profiles) continue;
        std::set<std::string> shownProfiles, shownRules;
        std::map<std::string, Json> shownRule;
        for (const Json& p : sw[owner == AclOwner::kCpu ? "cpu_acl" : "acl"])
          if (p["type"] == TypeName(type)) {
            shownProfiles.insert(std::to_string(p["id"].get<int>()));
            for (const Json& r : p.value("rules", Json::array())) {
              const std::string key = std::to_string(p["id"].get<int>()) + "." + std::to_string(r["access_id"].get<int>());
              shownRules.insert(key);
              shownRule[key] = r;
            }
          }
        EXPECT_EQ(instances(profiles->columnOid(static_cast<size_t>(profiles->rowStatusCell))), shownProfiles)
            << TypeName(type);
        const auto rules = TableLayout(m, owner, AclKind::kRules, type);
        if (!rules) continue;
        EXPECT_EQ(instances(rules->columnOid(static_cast<size_t>(rules->rowStatusCell))), shownRules) << TypeName(type);
        for (const auto& [key, r] : shownRule)
          for (size_t k = 0; k < rules->kinds.size(); ++k) {
            const std::string oid = rules->columnOid(k) + "." + key;
            if (rules->kinds[k] == CellKind::kPorts) {
              ASSERT_TRUE(cells.count(oid)) << oid;
              EXPECT_EQ(PortsOf(cells[oid].bytes), r["ports"]) << oid;
              ++rulesCompared;
            } else if (rules->kinds[k] == CellKind::kAlways) {
              ASSERT_TRUE(cells.count(oid)) << oid;
              EXPECT_EQ(ActionName(std::to_string(cells[oid].integer)), r["action"]) << oid;
            }
          }
      }
    EXPECT_EQ(rulesCompared, model == "TVR4820" ? 4u : 3u);
  }
  (void)!system(("rm -rf '" + dir + "'").c_str());
}

}  // namespace
