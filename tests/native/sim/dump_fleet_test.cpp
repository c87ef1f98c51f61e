// Walk dumps in net-snmp's `snmpwalk -v1 -On` form and the fleet file format. (The replay
// device built from a dump is checked against snmpd itself in tests/interop.)
#include <gtest/gtest.h>

#include "sim/fleet.h"
#include "sim/switch.h"
#include "sim/walk_dump.h"

using namespace snmp;

namespace {

// Lines in the forms net-snmp 5.9's `snmpwalk -v1 -On` prints that a walk of snmpd's own
// MIB-2 seldom shows; the common forms are read from snmpd's live walk in tests/interop.
const char* kDump =
    ".1.3.6.1.2.1.1.4.0 = STRING: \"two\n"
    "lines with \\\"quotes\\\" and \\\\\"\n"
    ".1.3.6.1.2.1.1.5.0 = \"\"\n"
    ".1.3.6.1.2.1.2.2.1.8.1 = INTEGER: -3\n"
    ".1.3.6.1.2.1.9.9.9.0 = Hex-STRING: 00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F \n"
    "10 11 \n"
    ".1.3.6.1.2.1.9.9.10.0 = Wrong Type (should be INTEGER): Gauge32: 7\n"
    ".1.3.6.1.2.1.9.9.11.0 = Opaque: Float: 1.5\n"
    ".1.3.6.1.2.1.31.1.1.1.6.1 = Counter64: 18446744073709551615\n"
    ".1.3.6.1.2.1.99.0 = NULL\n"
    "End of MIB\n";

}  // namespace

TEST(WalkDump, ReadsTheRareValueFormsOfNetSnmp) {
  std::vector<VarBind> v;
  std::string e;
  size_t skipped = 0;
  ASSERT_TRUE(sim::ParseWalkDump(kDump, v, e, &skipped)) << e;
  EXPECT_EQ(skipped, 1u) << "the Opaque float";
  ASSERT_EQ(v.size(), 7u);
  EXPECT_EQ(v[0].value, Value::OctetString("two\nlines with \"quotes\" and \\"));
  EXPECT_EQ(v[1].value, Value::OctetString(""));
  EXPECT_EQ(v[2].value, Value::Integer(-3));
  EXPECT_EQ(v[3].value.bytes.size(), 18u) << "wrapped Hex-STRING";
  EXPECT_EQ(v[4].value, Value::Unsigned(kTagGauge, 7));
  EXPECT_EQ(v[5].value.tag, kTagCounter64);
  EXPECT_EQ(v[5].value.counter64, 18446744073709551615ull);
  EXPECT_EQ(v[6].value, Value::Null());
}

TEST(WalkDump, WritesWhatItReads) {
  std::vector<VarBind> v;
  std::string e;
  ASSERT_TRUE(sim::ParseWalkDump(kDump, v, e)) << e;
  std::string text;
  for (const VarBind& vb : v) text += sim::FormatWalkLine(vb) + "\n";
  std::vector<VarBind> back;
  ASSERT_TRUE(sim::ParseWalkDump(text, back, e)) << e;
  EXPECT_EQ(back, v);
}

TEST(WalkDump, RefusesBrokenLines) {
  std::vector<VarBind> v;
  std::string e;
  EXPECT_FALSE(sim::ParseWalkDump(".1.3.6.1.2.1.1.0 = INTEGER: 12x\n", v, e));
  EXPECT_NE(e.find("line 1"), std::string::npos);
  EXPECT_FALSE(sim::ParseWalkDump("\n.1.3.6.1.2.1.1.0 = Hex-STRING: 0\n", v, e));
  EXPECT_NE(e.find("line 2"), std::string::npos);
  EXPECT_FALSE(sim::ParseWalkDump(".1.3.6.1.2.1.1.0 = IpAddress: 1.2.3\n", v, e));
  EXPECT_FALSE(sim::ParseWalkDump(".1.3.99999999999.1 = INTEGER: 1\n", v, e));
  EXPECT_FALSE(sim::ParseWalkDump(".1.3.6.1.2.1.1.0 = INTEGER: 4294967296\n", v, e));
}

TEST(Fleet, ParsesTheDocumentedFormat) {
  const char* text =
      "# address   model        read     write     options\n"
      "127.0.0.2   TVG5240-10   public   private\n"
      "\n"
      "127.0.0.3   TVR4510      public   private   delay=200   # a slow one\n"
      "127.0.0.4   TVG5690      pub      priv      refuse-set=3,5 refuse-status=badValue drop-set=7\n"
      "127.0.0.5   TVR4512      public   private   silent readonly-as-nosuchname port=1161\n"
      "127.0.0.6   replay       public   -         dump=snmpd.walk dump=/abs/more.walk\n";
  std::vector<sim::SwitchConfig> f;
  std::string e;
  ASSERT_TRUE(sim::ParseFleet(text, "/fleet/dir", f, e)) << e;
  ASSERT_EQ(f.size(), 5u);
  EXPECT_EQ(f[0].address, "127.0.0.2");
  EXPECT_EQ(f[0].model, "TVG5240-10");
  EXPECT_EQ(f[0].readCommunity, "public");
  EXPECT_EQ(f[0].writeCommunity, "private");
  EXPECT_EQ(f[0].port, 161);
  EXPECT_EQ(f[1].faults.delayMs, 200);
  EXPECT_EQ(f[2].faults.refuseSets, (std::set<uint64_t>{3, 5}));
  EXPECT_EQ(f[2].faults.refuseStatus, kBadValue);
  EXPECT_EQ(f[2].faults.dropSets, (std::set<uint64_t>{7}));
  EXPECT_TRUE(f[3].faults.silent);
  EXPECT_TRUE(f[3].faults.readOnlyAsNoSuchName);
  EXPECT_EQ(f[3].port, 1161);
  EXPECT_EQ(f[4].writeCommunity, "");
  EXPECT_EQ(f[4].dumpFiles, (std::vector<std::string>{"/fleet/dir/snmpd.walk", "/abs/more.walk"}));
}

TEST(Fleet, RefusesBadLinesWithTheirNumber) {
  const char* bad[] = {
      "10.0.0.1 TVG5240-10 public private\n",        // never leave loopback
      "127.0.0.2 TVG5240-10 public\n",               // too few fields
      "127.0.0.2 TVG5240-10 public private bogus\n",
      "127.0.0.2 TVG5240-10 public private delay=x\n",
      "127.0.0.2 TVG5240-10 public private refuse-set=0\n",
      "127.0.0.2 TVG5240-10 public private refuse-set=1,\n",
      "127.0.0.2 TVG5240-10 public private refuse-status=tooBig\n",
      "127.0.0.2 TVG5240-10 public private port=70000\n",
      "127.0.0.2:161 TVG5240-10 public private\n",
      "127.0.0.2 TVG5240-10 a b\n127.0.0.2 TVR4510 a b\n",  // same address twice
  };
  for (const char* text : bad) {
    std::vector<sim::SwitchConfig> f;
    std::string e;
    EXPECT_FALSE(sim::ParseFleet(text, "", f, e)) << text;
    EXPECT_EQ(e.rfind("line ", 0), 0u) << e;
  }
}
