// Proven against something no one here wrote:
//  - our client against net-snmp's snmpd: walks match snmpwalk's, SETs read back with snmpget;
//  - net-snmp's snmpwalk/snmpget/snmpset against our simulator, in both directions;
//  - a replay switch loaded with snmpd's own walk dump walks exactly like snmpd.
// snmpd listens on 127.0.5.1:161, the simulator on 127.0.5.10-14:161 (root).
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

#include "sim/walk_dump.h"
#include "snmp/snmp_ops.h"
#include "tests/interop/processes.h"

namespace {

const char* kSnmpd = "127.0.5.1";
const char* kSimTvg = "127.0.5.10";     // TVG5240-10
const char* kSim5690 = "127.0.5.11";    // TVG5690
const char* kSimReplay = "127.0.5.12";  // replay of snmpd's dump
const char* kSimRefuse = "127.0.5.13";  // TVR4820, refuse-set=2
const std::string kProf = "1.3.6.1.4.1.32473.12.9.2.1.1";
const std::string kRule = "1.3.6.1.4.1.32473.12.9.3.1.1";

std::string g_dir;          // scratch folder of this run
std::string g_snmpdDump;    // snmpd's walk, as snmpwalk -v1 -On printed it
std::string g_simLog;
std::unique_ptr<Spawned> g_snmpd, g_sim;

// Runs a net-snmp tool (SNMPv1, no MIBs, numeric OIDs) against `agent` and returns its output;
// `rc` gets its status. snmpwalk and snmpget read with "public", snmpset writes with "private".
std::string Tool(const std::string& tool, const std::string& agent, const std::string& args, int* rc = nullptr,
                 const char* community = nullptr) {
  if (!community) community = tool == "snmpset" ? "private" : "public";
  return RunShell("SNMP_PERSISTENT_DIR='" + g_dir + "/persist' MIBS= " + tool + " -v1 -c " + community +
                      " -On -t 2 -r 0 " + agent + " " + args + " 2>&1", rc);
}

std::vector<snmp::VarBind> ParseDump(const std::string& text) {
  std::vector<snmp::VarBind> v;
  std::string e;
  EXPECT_TRUE(sim::ParseWalkDump(text, v, e)) << e;
  return v;
}

class Interop : public ::testing::Environment {
 public:
  void SetUp() override {
    char tmpl[] = "/tmp/sentrel-interop-XXXXXX";
    ASSERT_NE(mkdtemp(tmpl), nullptr);
    g_dir = tmpl;
    ASSERT_EQ(system(("mkdir -p '" + g_dir + "/persist'").c_str()), 0);
    {
      std::ofstream conf(g_dir + "/snmpd.conf");
      conf << "agentAddress udp:" << kSnmpd << ":161\n"
           << "rocommunity public 127.0.0.0/8\n"
           << "rwcommunity private 127.0.0.0/8\n";
    }
    setenv("SNMP_PERSISTENT_DIR", (g_dir + "/persist").c_str(), 1);
    g_snmpd.reset(new Spawned({"snmpd", "-f", "-Lf", g_dir + "/snmpd.log", "-C", "-c", g_dir + "/snmpd.conf", "-p",
                               g_dir + "/snmpd.pid", "-I", "-smux"},
                              g_dir + "/snmpd.out"));
    ASSERT_GT(g_snmpd->pid(), 0) << "snmpd (Debian package snmpd) not found";
    bool up = false;
    for (int i = 0; i < 100 && !up; ++i) up = SnmpWalk(kSnmpd, "public", {"1.3.6.1.2.1.1.9.1.2"}, nullptr, 200) > 0;
    ASSERT_TRUE(up) << "snmpd did not answer on " << kSnmpd << ":161: " << ReadFile(g_dir + "/snmpd.log");

    // snmpd's own MIB-2, as net-snmp prints it, is the replay switch's content.
    g_snmpdDump = Tool("snmpwalk", kSnmpd, ".1.3.6.1.2.1");
    std::ofstream(g_dir + "/snmpd.walk") << g_snmpdDump;
    {
      std::ofstream fleet(g_dir + "/fleet.txt");
      fleet << "# interop fleet\n"
            << kSimTvg << " TVG5240-10 public private\n"
            << kSim5690 << " TVG5690 public private\n"
            << kSimReplay << " replay public - dump=snmpd.walk\n"
            << kSimRefuse << " TVR4820 public private refuse-set=2\n";
    }
    g_simLog = g_dir + "/sim.out";
    g_sim.reset(new Spawned({SENTREL_SIM_PATH, "--fleet", g_dir + "/fleet.txt", "--dump", g_dir + "/sim.dump"}, g_simLog));
    ASSERT_TRUE(WaitForText(g_simLog, "ready")) << ReadFile(g_simLog);
  }
  void TearDown() override {
    g_sim.reset();
    g_snmpd.reset();
    if (!g_dir.empty() && getenv("SENTREL_KEEP_INTEROP") == nullptr)
      (void)!system(("rm -rf '" + g_dir + "'").c_str());
  }
};

// Our walk of the columns against snmpwalk of each column: same rows, OIDs and values.
void CompareWithSnmpwalk(const char* agent, const std::vector<std::string>& columns, size_t minRows) {
  std::vector<SnmpRow> rows;
  SnmpWalk(agent, "public", columns, [&](const SnmpRow& r) { rows.push_back(r); });
  ASSERT_GE(rows.size(), minRows);
  for (size_t c = 0; c < columns.size(); ++c) {
    auto theirs = ParseDump(Tool("snmpwalk", agent, columns[c]));
    ASSERT_EQ(theirs.size(), rows.size()) << columns[c];
    for (size_t r = 0; r < rows.size(); ++r) {
      EXPECT_EQ(rows[r].bindings[c].oid, snmp::FormatOid(theirs[r].name));
      EXPECT_EQ(rows[r].bindings[c].tag, theirs[r].value.tag) << rows[r].bindings[c].oid;
      EXPECT_EQ(rows[r].bindings[c].value, snmp::RenderValue(theirs[r].value)) << rows[r].bindings[c].oid;
    }
  }
}

}  // namespace

TEST(ClientVsSnmpd, TableWalksMatchSnmpwalk) {
  CompareWithSnmpwalk(kSnmpd, {"1.3.6.1.2.1.1.9.1.2", "1.3.6.1.2.1.1.9.1.3", "1.3.6.1.2.1.1.9.1.4"}, 5);
  CompareWithSnmpwalk(kSnmpd, {"1.3.6.1.2.1.2.2.1.1", "1.3.6.1.2.1.2.2.1.2", "1.3.6.1.2.1.2.2.1.6"}, 1);
  // ipAddrTable: four-part indexes.
  std::vector<SnmpRow> rows;
  SnmpWalk(kSnmpd, "public", {"1.3.6.1.2.1.4.20.1.1", "1.3.6.1.2.1.4.20.1.3"}, [&](const SnmpRow& r) { rows.push_back(r); });
  ASSERT_GE(rows.size(), 1u);
  bool loopback = false;
  for (const SnmpRow& r : rows) {
    EXPECT_EQ(r.index, r.bindings[0].value) << "ipAdEntAddr's index is the address itself";
    loopback |= r.index == "127.0.0.1";
  }
  EXPECT_TRUE(loopback);
}

TEST(ClientVsSnmpd, SetsReadBackWithSnmpget) {
  SnmpSetResult r = SnmpSet(kSnmpd, "private",
                            {SnmpBinding::Text("1.3.6.1.2.1.1.4.0", "sentrel contact"),
                             SnmpBinding::Bytes("1.3.6.1.2.1.1.6.0", std::string("rack 7, row B")),
                             SnmpBinding::Text("1.3.6.1.2.1.1.5.0", "sentrel-\"name\"")});
  ASSERT_STREQ(SnmpVerdict(r), "Succeed") << r.errorStatus << " " << r.errorIndex;
  std::string out = Tool("snmpget", kSnmpd, ".1.3.6.1.2.1.1.4.0 .1.3.6.1.2.1.1.6.0 .1.3.6.1.2.1.1.5.0");
  auto got = ParseDump(out);
  ASSERT_EQ(got.size(), 3u) << out;
  EXPECT_EQ(got[0].value.bytes, "sentrel contact");
  EXPECT_EQ(got[1].value.bytes, "rack 7, row B");
  EXPECT_EQ(got[2].value.bytes, "sentrel-\"name\"");
}

TEST(ClientVsSnmpd, RejectedSetsAreFailWithTheAgentsIndexAndChangeNothing) {
  ASSERT_STREQ(SnmpVerdict(SnmpSet(kSnmpd, "private", {SnmpBinding::Text("1.3.6.1.2.1.1.4.0", "before")})), "Succeed");
  // The second binding names a read-only object: snmpd refuses it (noSuchName in SNMPv1).
  SnmpSetResult r = SnmpSet(kSnmpd, "private", {SnmpBinding::Text("1.3.6.1.2.1.1.4.0", "after"),
                                                SnmpBinding::Text("1.3.6.1.2.1.1.1.0", "descr")});
  EXPECT_TRUE(r.responded);
  EXPECT_EQ(r.errorStatus, snmp::kNoSuchName);
  EXPECT_EQ(r.errorIndex, 2);
  EXPECT_STREQ(SnmpVerdict(r), "Fail");
  SnmpSetResult t = SnmpSet(kSnmpd, "private", {SnmpBinding::Integer("1.3.6.1.2.1.1.4.0", 5)});
  EXPECT_EQ(t.errorStatus, snmp::kBadValue);
  EXPECT_EQ(t.errorIndex, 1);
  auto got = ParseDump(Tool("snmpget", kSnmpd, ".1.3.6.1.2.1.1.4.0"));
  ASSERT_EQ(got.size(), 1u);
  EXPECT_EQ(got[0].value.bytes, "before");
  SnmpSetResult w = SnmpSet(kSnmpd, "not-the-community", {SnmpBinding::Text("1.3.6.1.2.1.1.4.0", "x")});
  EXPECT_STREQ(SnmpVerdict(w), "fail") << "a wrong community is dropped: a time-out";
}

TEST(ToolsVsSimulator, SnmpsetCreatesAProfileThatOurWalkReadsBack) {
  int rc = 0;
  std::string out = Tool("snmpset", kSimTvg, kProf +
                         ".2.5 i 1 " + kProf + ".3.5 i 3 " + kProf + ".4.5 x 000000FFFFFF " + kProf + ".8.5 i 4", &rc);
  ASSERT_EQ(rc, 0) << out;
  std::vector<SnmpRow> rows;
  std::vector<std::string> cols;
  for (int c = 1; c <= 10; ++c) cols.push_back(kProf + "." + std::to_string(c));
  SnmpWalk(kSimTvg, "public", cols, [&](const SnmpRow& r) { rows.push_back(r); });
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(rows[0].index, "5");
  EXPECT_EQ(rows[0].bindings[0].value, "5");
  EXPECT_EQ(rows[0].bindings[1].value, "1");
  EXPECT_EQ(rows[0].bindings[2].value, "3");
  EXPECT_EQ(rows[0].bindings[3].value, std::string("\x00\x00\x00\xFF\xFF\xFF", 6));
  EXPECT_EQ(rows[0].bindings[4].value, std::string(6, '\0'));
  EXPECT_EQ(rows[0].bindings[7].value, "1") << "active after createAndGo";
  // createAndGo again: snmpset reports badValue on the row-status binding (the 2nd).
  out = Tool("snmpset", kSimTvg, kProf + ".2.5 i 2 " +
             kProf + ".8.5 i 4", &rc);
  EXPECT_NE(rc, 0);
  EXPECT_NE(out.find("(badValue)"), std::string::npos) << out;
  EXPECT_NE(out.find("Failed object: ." + kProf + ".8.5"), std::string::npos) << out;
  // A read-only column.
  out = Tool("snmpset", kSimTvg, kProf + ".9.5 i 2", &rc);
  EXPECT_NE(out.find("(readOnly)"), std::string::npos) << out;
  // The log shows every SET.
  std::string log = ReadFile(g_simLog);
  EXPECT_NE(log.find("SET " + std::string(kSimTvg) + " #1 -> noError"), std::string::npos) << log;
  EXPECT_NE(log.find("." + kProf + ".4.5 = Hex-STRING: 00 00 00 FF FF FF"), std::string::npos) << log;
  EXPECT_NE(log.find("SET " + std::string(kSimTvg) + " #2 -> badValue index 2"), std::string::npos) << log;
}

TEST(ToolsVsSimulator, OurSetsAreWhatSnmpwalkAndSnmpgetSee) {
  std::string ports(96, '\0');
  ports[0] = '\xFF';
  ports[1] = '\xC0';
  const std::string mac("\x00\x11\x22\x00\x00\x01", 6);
  for (const char* idx : {"2.1", "2.10", "10.2"}) {
    SnmpSetResult r = SnmpSet(kSim5690, "private",
                              {SnmpBinding::Text(kRule + ".3." + idx, std::string("v") + idx),
                               SnmpBinding::Bytes(kRule + ".4." + idx, mac),
                               SnmpBinding::Bytes(kRule + ".14." + idx, ports),
                               SnmpBinding::Integer(kRule + ".16." + idx, 4)});
    ASSERT_STREQ(SnmpVerdict(r), "Succeed") << idx << " " << r.errorStatus << "/" << r.errorIndex;
  }
  ASSERT_STREQ(SnmpVerdict(SnmpSet(kSim5690, "private", {SnmpBinding::Integer("1.3.6.1.4.1.32473.12.1.2.18.4.0", 3)})),
               "Succeed");
  auto vlan = ParseDump(Tool("snmpwalk", kSim5690, kRule + ".3"));
  ASSERT_EQ(vlan.size(), 3u);
  EXPECT_EQ(snmp::FormatOid(vlan[0].name), kRule + ".3.2.1");
  EXPECT_EQ(snmp::FormatOid(vlan[1].name), kRule + ".3.2.10");
  EXPECT_EQ(snmp::FormatOid(vlan[2].name), kRule + ".3.10.2");
  EXPECT_EQ(vlan[1].value.bytes, "v2.10");
  auto p = ParseDump(Tool("snmpwalk", kSim5690, kRule + ".14"));
  ASSERT_EQ(p.size(), 3u);
  EXPECT_EQ(p[2].value.bytes, ports) << "96 bytes, all of them";
  auto got = ParseDump(Tool("snmpget", kSim5690, "." + kRule + ".4.10.2 .1.3.6.1.4.1.32473.12.1.2.18.4.0"));
  ASSERT_EQ(got.size(), 2u);
  EXPECT_EQ(got[0].value.bytes, mac);
  EXPECT_EQ(got[1].value, snmp::Value::Integer(3));
  // And destroy one with snmpset; our walk sees two rows.
  int rc = 0;
  Tool("snmpset", kSim5690, kRule + ".16.2.10 i 6", &rc);
  EXPECT_EQ(rc, 0);
  EXPECT_EQ(SnmpWalk(kSim5690, "public", {kRule + ".16"}, nullptr), 2u);
}

TEST(ToolsVsSimulator, ReplayOfSnmpdsDumpWalksLikeSnmpd) {
  std::string ours = Tool("snmpwalk", kSimReplay, ".1.3.6.1.2.1");
  auto strip = [](const std::string& s) {
    std::string out;
    std::istringstream in(s);
    for (std::string line; std::getline(in, line);)
      if (line != "End of MIB") out += line + "\n";
    return out;
  };
  EXPECT_GT(g_snmpdDump.size(), 10000u);
  EXPECT_EQ(strip(ours), strip(g_snmpdDump));
  // A replay is read-only: snmpset gets readOnly.
  int rc = 0;
  std::string out = Tool("snmpset", kSimReplay, ".1.3.6.1.2.1.1.4.0 s x", &rc, "public");
  EXPECT_NE(rc, 0);
  EXPECT_NE(out.find("Timeout"), std::string::npos) << "no write community: the SET is dropped; " << out;
}

TEST(ToolsVsSimulator, RefusedSetIsGenErrAndTheDumpShowsTheState) {
  const std::string close = ".1.3.6.1.4.1.32473.12.1.2.6.0";
  int rc = 0;
  std::string out = Tool("snmpset", kSimRefuse, close + " i 5", &rc);
  EXPECT_EQ(rc, 0) << out;
  out = Tool("snmpset", kSimRefuse, close + " i 4", &rc);
  EXPECT_NE(out.find("(genError)"), std::string::npos) << out;
  // SIGUSR1 writes the state of every switch in snmpwalk form.
  kill(g_sim->pid(), SIGUSR1);
  std::string dump;
  for (int i = 0; i < 40 && dump.find(kSimRefuse) == std::string::npos; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    dump = ReadFile(g_dir + "/sim.dump");
  }
  size_t at = dump.find(std::string("# switch ") + kSimRefuse);
  ASSERT_NE(at, std::string::npos) << dump.substr(0, 300);
  EXPECT_NE(dump.find(close + " = INTEGER: 5", at), std::string::npos) << "the refused 4 changed nothing";
  // The profile snmpset created above without three of its columns shows what it lacks.
  EXPECT_NE(dump.find("# row EthernetProfile.5 wrote 2,3,4,8 missing DstMacAddrMask,Use802.1P,EthernetType"),
            std::string::npos) << dump.substr(0, 300);
}

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  ::testing::AddGlobalTestEnvironment(new Interop);
  return RUN_ALL_TESTS();
}
