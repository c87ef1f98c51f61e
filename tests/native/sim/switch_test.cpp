// The simulated switch as an SNMPv1 agent (DESIGN.md section 1), driven in-process through
// Switch::Handle: GetNext order, RowStatus createAndGo/destroy, all-or-nothing SETs, SNMPv1
// error statuses with their error-index, community checks and fault injection.
#include <gtest/gtest.h>

#include "sim/fleet.h"
#include "sim/switch.h"
#include "sim/walk_dump.h"

using namespace snmp;

namespace {

const std::string kProf = "1.3.6.1.4.1.32473.12.9.2.1.1";   // Layout2 Ethernet profile entry
const std::string kRule = "1.3.6.1.4.1.32473.12.9.3.1.1";   // Layout2 Ethernet rule entry
const std::string kClose = "1.3.6.1.4.1.32473.12.1.2.6.0";

Oid O(const std::string& t) {
  Oid o;
  EXPECT_TRUE(ParseOid(t, o)) << t;
  return o;
}
std::string C(const std::string& entry, int col, const std::string& index) {
  return entry + "." + std::to_string(col) + "." + index;
}

struct Answer {
  bool answered = false;
  Message m;
};

class SwitchTest : public ::testing::Test {
 protected:
  void Make(const std::string& line) {
    sim::SwitchConfig c;
    std::string e;
    ASSERT_TRUE(sim::ParseSwitchLine(line, "", c, e)) << e;
    auto s = sim::Switch::Create(c, e);
    ASSERT_TRUE(s.has_value()) << e;
    sw_.emplace(std::move(*s));
  }
  void SetUp() override { Make("127.0.4.1 TVG5240-10 public private"); }

  Answer Send(uint8_t type, std::vector<VarBind> vbs, const std::string& community, int version = 0) {
    Message req;
    req.version = version;
    req.community = community;
    req.pdu.type = type;
    req.pdu.requestId = ++id_;
    req.pdu.varbinds = std::move(vbs);
    std::string bytes;
    EXPECT_TRUE(EncodeMessage(req, bytes));
    Answer a;
    auto out = sw_->Handle(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
    if (!out) return a;
    a.answered = true;
    EXPECT_EQ(DecodeMessage(*out, a.m), DecodeError::kOk);
    EXPECT_EQ(a.m.pdu.type, kTagGetResponse);
    EXPECT_EQ(a.m.pdu.requestId, id_);
    EXPECT_EQ(a.m.community, community);
    return a;
  }
  Answer Set(std::vector<VarBind> vbs) { return Send(kTagSetRequest, std::move(vbs), "private"); }
  Answer Next(const std::vector<std::string>& oids, const std::string& community = "public") {
    std::vector<VarBind> v;
    for (auto& o : oids) v.push_back(VarBind{O(o), Value::Null()});
    return Send(kTagGetNextRequest, v, community);
  }
  bool Has(const std::string& oid) const { return sw_->store().count(O(oid)) != 0; }
  Value Get(const std::string& oid) const { return sw_->store().at(O(oid)); }

  static VarBind I(const std::string& oid, int64_t v) { return VarBind{O(oid), Value::Integer(v)}; }
  static VarBind S(const std::string& oid, std::string v) { return VarBind{O(oid), Value::OctetString(std::move(v))}; }

  std::optional<sim::Switch> sw_;
  int32_t id_ = 100;
};

void ExpectError(const Answer& a, int32_t status, int32_t index) {
  ASSERT_TRUE(a.answered);
  EXPECT_EQ(a.m.pdu.errorStatus, status);
  EXPECT_EQ(a.m.pdu.errorIndex, index);
}

}  // namespace

TEST_F(SwitchTest, CreateAndGoMakesAFullRowThatWalksInOrder) {
  Answer a = Set({I(C(kProf, 2, "5"), 1), S(C(kProf, 4, "5"), std::string("\x00\x00\x00\xFF\xFF\xFF", 6)),
                  I(C(kProf, 8, "5"), 4)});
  ExpectError(a, kNoError, 0);
  EXPECT_EQ(a.m.pdu.varbinds.size(), 3u) << "the answer echoes the bindings";
  EXPECT_EQ(Get(C(kProf, 1, "5")), Value::Integer(5)) << "index column shows the index";
  EXPECT_EQ(Get(C(kProf, 2, "5")), Value::Integer(1));
  EXPECT_EQ(Get(C(kProf, 4, "5")).bytes, std::string("\x00\x00\x00\xFF\xFF\xFF", 6));
  EXPECT_EQ(Get(C(kProf, 5, "5")).bytes, std::string(6, '\0')) << "unset MAC mask defaults to zeros";
  EXPECT_EQ(Get(C(kProf, 8, "5")), Value::Integer(1)) << "createAndGo leaves the row active";
  EXPECT_TRUE(Has(C(kProf, 9, "5")));
  EXPECT_TRUE(Has(C(kProf, 10, "5")));

  ExpectError(Set({I(C(kProf, 8, "12"), 4)}), kNoError, 0);
  // A walk of two columns: rows 5 and 12, then the end of the table.
  Answer r1 = Next({kProf + ".1", kProf + ".8"});
  ExpectError(r1, kNoError, 0);
  EXPECT_EQ(FormatOid(r1.m.pdu.varbinds[0].name), C(kProf, 1, "5"));
  EXPECT_EQ(FormatOid(r1.m.pdu.varbinds[1].name), C(kProf, 8, "5"));
  Answer r2 = Next({C(kProf, 1, "5"), C(kProf, 8, "5")});
  EXPECT_EQ(FormatOid(r2.m.pdu.varbinds[0].name), C(kProf, 1, "12"));
  Answer r3 = Next({C(kProf, 1, "12"), C(kProf, 8, "12")});
  EXPECT_EQ(FormatOid(r3.m.pdu.varbinds[0].name), C(kProf, 2, "5")) << "column 1 runs into column 2";
}

TEST_F(SwitchTest, GetNextFollowsLexicographicOrderAndEndsWithNoSuchName) {
  ExpectError(Set({I(C(kRule, 15, "1.10"), 4)}), kNoError, 0);
  ExpectError(Set({I(C(kRule, 15, "1.9"), 4)}), kNoError, 0);
  ExpectError(Set({I(C(kRule, 15, "2.1"), 4)}), kNoError, 0);
  std::vector<std::string> seen;
  std::string at = kRule + ".3";
  for (int i = 0; i < 3; ++i) {
    Answer a = Next({at});
    at = FormatOid(a.m.pdu.varbinds[0].name);
    seen.push_back(at);
  }
  EXPECT_EQ(seen, (std::vector<std::string>{C(kRule, 3, "1.9"), C(kRule, 3, "1.10"), C(kRule, 3, "2.1")}));
  // The first object of the MIB is the closing scalar (12.1 sorts before 12.9).
  Answer first = Next({"1.3.6.1"});
  EXPECT_EQ(FormatOid(first.m.pdu.varbinds[0].name), kClose);
  // Past the last object: noSuchName, error-index of that binding, bindings echoed.
  Answer end = Next({"1.3.6.1", "1.3.6.1.4.1.32473.99"});
  ExpectError(end, kNoSuchName, 2);
  EXPECT_EQ(FormatOid(end.m.pdu.varbinds[1].name), "1.3.6.1.4.1.32473.99");
  // Get: exact instances only.
  Answer g = Send(kTagGetRequest, {VarBind{O(kClose), Value::Null()}, VarBind{O(kClose + ".1"), Value::Null()}}, "public");
  ExpectError(g, kNoSuchName, 2);
}

TEST_F(SwitchTest, CreateAndGoOnAnExistingRowIsBadValueAtTheRowStatusAndChangesNothing) {
  ExpectError(Set({I(C(kProf, 8, "7"), 4)}), kNoError, 0);
  Answer a = Set({I(C(kProf, 2, "7"), 1), I(C(kProf, 3, "7"), 3), I(C(kProf, 8, "7"), 4)});
  ExpectError(a, kBadValue, 3);
  EXPECT_EQ(Get(C(kProf, 2, "7")), Value::Integer(2)) << "all or nothing";
  EXPECT_EQ(Get(C(kProf, 3, "7")), Value::Integer(1));
}

TEST_F(SwitchTest, DestroyRemovesTheRowAndAnAbsentRowIsFine) {
  ExpectError(Set({I(C(kRule, 15, "3.12"), 4), S(C(kRule, 3, "3.12"), "v")}), kNoError, 0);
  EXPECT_TRUE(Has(C(kRule, 3, "3.12")));
  ExpectError(Set({I(C(kRule, 15, "3.12"), 6)}), kNoError, 0);
  for (int col : {1, 2, 3, 4, 5, 13, 14, 15, 17}) EXPECT_FALSE(Has(C(kRule, col, "3.12"))) << col;
  ExpectError(Set({I(C(kRule, 15, "3.12"), 6)}), kNoError, 0);
  ExpectError(Set({I(C(kRule, 15, "9.9"), 6)}), kNoError, 0);
}

TEST_F(SwitchTest, ASetIsAllOrNothing) {
  ExpectError(Set({I(kClose, 5), S(C(kProf, 4, "3"), "short"), I(C(kProf, 8, "3"), 4)}), kBadValue, 2);
  EXPECT_EQ(Get(kClose), Value::Integer(0));
  EXPECT_FALSE(Has(C(kProf, 8, "3")));
  ExpectError(Set({I(kClose, 5), I(C(kProf, 8, "3"), 4)}), kNoError, 0);
  EXPECT_EQ(Get(kClose), Value::Integer(5));
}

TEST_F(SwitchTest, V1ErrorStatusesCarryTheRightIndex) {
  ExpectError(Set({I(kClose, 5), S(kClose, "x")}), kBadValue, 2);                     // wrong type
  ExpectError(Set({I(kClose, 3), I("1.3.6.1.4.1.32473.12.1.2.7.0", 1)}), kNoSuchName, 2);  // unknown
  ExpectError(Set({I(C(kRule, 15, "1.1"), 4), I(C(kRule, 13, "1.1"), 4)}), kBadValue, 2);  // action 1..3
  ExpectError(Set({I(C(kRule, 15, "1.1"), 9)}), kBadValue, 1);                        // no such RowStatus
  ExpectError(Set({I(C(kRule, 15, "1.1"), 5)}), kBadValue, 1);                        // createAndWait
  ExpectError(Set({I(C(kRule, 15, "1.1"), 1)}), kBadValue, 1);                        // active, no row
  ExpectError(Set({I(C(kRule, 15, "1.1"), 4), I(C(kRule, 15, "1.1"), 6)}), kBadValue, 2);
  ExpectError(Set({I(C(kRule, 15, "1.1"), 6), S(C(kRule, 3, "1.1"), "v")}), kBadValue, 1);
  ExpectError(Set({I(kClose, 5), S(C(kRule, 3, "1.1"), "v")}), kNoSuchName, 2);      // no row, no create
  ExpectError(Set({I(C(kRule, 15, "1.1"), 4), S(C(kRule, 4, "1.1"), "12345")}), kBadValue, 2);  // 5-byte MAC
  ExpectError(Set({I(C(kRule, 15, "1.1"), 4), I(C(kRule, 1, "1.1"), 1)}), kReadOnly, 2);  // index column
  ExpectError(Set({I(C(kProf, 8, "1"), 4), I(C(kProf, 9, "1"), 2)}), kReadOnly, 2);      // owner (read)
  ExpectError(Set({I(C(kRule, 15, "1.1"), 4), I(C(kRule, 11, "1.1"), 4)}), kNoSuchName, 2);  // no column 11
  ExpectError(Set({I(C(kRule, 15, "1.1"), 4), I(C(kRule, 16, "1.1"), 1)}), kNoError, 0);
  EXPECT_EQ(Get(C(kRule, 16, "1.1")), Value::Integer(1));
  ExpectError(Set({I(C(kRule, 15, "1.1"), 2), I(C(kRule, 16, "1.1"), 3)}), kNoError, 0);  // notInService
  EXPECT_EQ(Get(C(kRule, 15, "1.1")), Value::Integer(2));
  Make("127.0.4.1 TVG5240-10 public private readonly-as-nosuchname");  // as net-snmp reports it
  ExpectError(Set({I(C(kRule, 15, "1.1"), 4), I(C(kRule, 2, "1.1"), 1)}), kNoSuchName, 2);
}

TEST_F(SwitchTest, IndexOidsOfAnyShapeAreRefusedSafely) {
  for (const char* idx : {"1", "1.2.3", "0.1", "65536.1", "1.65536", "4294967295.4294967295",
                                 "1.2.3.4.5.6.7.8.9.10.11.12.13.14.15.16.17.18.19.20"}) {
    ExpectError(Set({I(C(kRule, 15, idx), 4)}), kNoSuchName, 1);
    EXPECT_FALSE(Has(C(kRule, 15, idx)));
  }
  ExpectError(Set({I(kRule, 4)}), kNoSuchName, 1);
  ExpectError(Set({I(kRule + ".15", 4)}), kNoSuchName, 1);
  {
    SCOPED_TRACE("Access ID 0 is a legal index (TVR4510)");
    ExpectError(Set({I(C(kRule, 15, "1.0"), 4)}), kNoError, 0);
  }
}

TEST_F(SwitchTest, CommunitiesAreCheckedAndWrongOnesDroppedSilently) {
  EXPECT_FALSE(Send(kTagGetNextRequest, {VarBind{O("1.3.6.1"), Value::Null()}}, "wrong").answered);
  EXPECT_FALSE(Send(kTagSetRequest, {I(kClose, 5)}, "public").answered) << "read community cannot set";
  EXPECT_TRUE(Send(kTagGetNextRequest, {VarBind{O("1.3.6.1"), Value::Null()}}, "private").answered)
      << "the write community reads too";
  EXPECT_EQ(Get(kClose), Value::Integer(0));
  EXPECT_FALSE(Send(kTagGetNextRequest, {VarBind{O("1.3.6.1"), Value::Null()}}, "public", 1).answered)
      << "SNMPv2c is not spoken";
  EXPECT_FALSE(Send(kTagGetResponse, {VarBind{O("1.3.6.1"), Value::Null()}}, "public").answered);
  const uint8_t junk[] = {0x30, 0x03, 0x02, 0x01};
  EXPECT_FALSE(sw_->Handle(junk, sizeof junk).has_value());
}

TEST_F(SwitchTest, FaultRefuseTheNthSet) {
  Make("127.0.4.1 TVG5240-10 public private refuse-set=2,4");
  ExpectError(Set({I(C(kRule, 15, "1.1"), 4)}), kNoError, 0);
  ExpectError(Set({I(C(kRule, 15, "1.2"), 4)}), kGenErr, 1);
  EXPECT_FALSE(Has(C(kRule, 15, "1.2")));
  ExpectError(Set({I(C(kRule, 15, "1.3"), 4)}), kNoError, 0);
  ExpectError(Set({I(kClose, 5)}), kGenErr, 1);
  ExpectError(Set({I(kClose, 5)}), kNoError, 0);
  EXPECT_EQ(sw_->setCount(), 5u);
  Make("127.0.4.1 TVG5240-10 public private refuse-set=1 refuse-status=badValue");
  ExpectError(Set({I(kClose, 5)}), kBadValue, 1);
}

TEST_F(SwitchTest, FaultDropSilentAndDelay) {
  Make("127.0.4.1 TVG5240-10 public private drop-set=1");
  EXPECT_FALSE(Set({I(kClose, 5)}).answered);
  EXPECT_EQ(Get(kClose), Value::Integer(0));
  EXPECT_TRUE(Set({I(kClose, 5)}).answered);
  Make("127.0.4.1 TVG5240-10 public private silent");
  EXPECT_FALSE(Next({"1.3.6.1"}).answered);
  EXPECT_FALSE(Set({I(kClose, 5)}).answered);
  Make("127.0.4.1 TVG5240-10 public private delay=250");
  EXPECT_EQ(sw_->answerDelayMs(), 250);
}

// A creating request that leaves out a column the row needs is accepted, as a switch would,
// but the record of written columns names it (the dump shows it; the ACL tests look).
TEST_F(SwitchTest, WrittenColumnsShowWhatACreatingRequestLeftOut) {
  ExpectError(Set({I(C(kProf, 2, "5"), 1), I(C(kProf, 3, "5"), 1), S(C(kProf, 4, "5"), std::string(6, '\0')),
                   S(C(kProf, 5, "5"), std::string(6, '\0')), I(C(kProf, 6, "5"), 2), I(C(kProf, 8, "5"), 4)}),
              kNoError, 0);
  EXPECT_EQ(sw_->WrittenReport(true), std::vector<std::string>{"EthernetProfile.5 wrote 2,3,4,5,6,8 missing EthernetType"});
  ExpectError(Set({I(C(kProf, 7, "5"), 1)}), kNoError, 0);
  EXPECT_TRUE(sw_->WrittenReport(true).empty()) << "a later write completes the row";
  ExpectError(Set({I(C(kRule, 15, "1.1"), 4), I(C(kRule, 13, "1.1"), 1)}), kNoError, 0);
  EXPECT_EQ(sw_->WrittenReport(true),
            std::vector<std::string>{"EthernetRule.1.1 wrote 13,15 missing SrcMac,DstMac,Ports"});
  ExpectError(Set({I(C(kRule, 15, "1.1"), 6)}), kNoError, 0);
  EXPECT_EQ(sw_->WrittenReport(), std::vector<std::string>{"EthernetProfile.5 wrote 2,3,4,5,6,7,8"});
}

TEST_F(SwitchTest, ModelsDifferInLayoutAndClosingScalar) {
  Make("127.0.4.1 TVR4510 public private");
  {
    SCOPED_TRACE("Layout1 profile table .1.1");
    ExpectError(Set({I("1.3.6.1.4.1.32473.12.9.1.1.1.8.1", 4)}), kNoError, 0);
  }
  {
    SCOPED_TRACE("Layout1 rule table .2.1");
    ExpectError(Set({I("1.3.6.1.4.1.32473.12.9.2.1.1.15.1.1", 4)}), kNoError, 0);
  }
  ExpectError(Set({I(kClose, 3)}), kNoError, 0);
  Make("127.0.4.1 TVG5690 public private");
  ExpectError(Set({I(kClose, 3)}), kNoSuchName, 1);
  ExpectError(Set({I("1.3.6.1.4.1.32473.12.1.2.18.4.0", 3)}), kNoError, 0);
  // TVG5690's CPU Ethernet rules keep the row status in column 10, the ports in 9.
  ExpectError(Set({I("1.3.6.1.4.1.32473.12.9.5.1.1.10.1.1", 4),
                   S("1.3.6.1.4.1.32473.12.9.5.1.1.9.1.1", std::string(96, '\0'))}), kNoError, 0);
  Make("127.0.4.1 TVR4820 public private");
  ExpectError(Set({I("1.3.6.1.4.1.32473.12.9.5.1.1.9.1.1", 4),
                   S("1.3.6.1.4.1.32473.12.9.5.1.1.10.1.1", std::string(4, '\0'))}), kNoError, 0);
  sim::SwitchConfig c;
  c.address = "127.0.4.1";
  c.model = "TVR-4512";
  std::string e;
  EXPECT_FALSE(sim::Switch::Create(c, e).has_value());
  EXPECT_NE(e.find("unknown model"), std::string::npos);
}
