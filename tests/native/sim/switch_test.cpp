// The simulated switch as an SNMPv1 agent, driven in-process through Switch::Handle: what the
// ACL tests rely on it to report (error statuses with their index, all-or-nothing SETs,
// communities, faults, the columns a row was written with). Walk order and the models' tables
// are exercised by every ACL round trip and against net-snmp's tools.
#include <gtest/gtest.h>

#include "sim/fleet.h"
#include "sim/switch.h"

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

// drop-get loses the answers of the n-th read requests only: SETs and requests with a wrong
// community do not count, and the switch still applies nothing it should not.
TEST_F(SwitchTest, DropGetLosesOnlyTheNthReadAnswers) {
  Make("127.0.4.1 TVG5240-10 public private drop-get=2,4");
  auto next = [this](const char* community = "public") {
    return Send(kTagGetNextRequest, {VarBind{O("1.3.6.1"), Value::Null()}}, community).answered;
  };
  std::string answered;
  answered += next() ? 'y' : 'n';
  EXPECT_FALSE(next("wrong"));
  ExpectError(Set({I(kClose, 5)}), kNoError, 0);
  for (int i = 0; i < 3; ++i) answered += next() ? 'y' : 'n';
  EXPECT_EQ(answered, "ynyn");
  sim::SwitchConfig bad;
  std::string e;
  EXPECT_FALSE(sim::ParseSwitchLine("127.0.4.1 TVG5240-10 public private drop-get=0", "", bad, e));
}
