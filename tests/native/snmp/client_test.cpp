// CSnmpV1 / CSnmp / CSnmpTable, SnmpSet, SnmpWalk, verdicts and index extraction, against
// scripted agents on loopback UDP 161.
#include <gtest/gtest.h>

#include <chrono>
#include <map>
#include <mutex>
#include <set>
#include <thread>

#include "tests/native/snmp/test_agent.h"
#include "snmp/snmp_client.h"
#include "snmp/snmp_ops.h"

using namespace snmp;
using Clock = std::chrono::steady_clock;

namespace {

const char* kEthRule = "1.3.6.1.4.1.32473.12.9.3.1.1";

// A tiny MIB: GetNext over an ordered map, noSuchName past the end (SNMPv1). The agent calls
// the handler under its own lock.
struct MapMib {
  std::map<Oid, Value, bool (*)(const Oid&, const Oid&)> values{
      [](const Oid& a, const Oid& b) { return CompareOids(a, b) < 0; }};

  void Put(const std::string& oid, Value v) { values[O(oid.c_str())] = std::move(v); }

  FakeAgent::Handler Handler() {
    return [this](FakeAgent& agent, const Message& req, const Endpoint& from) {
      std::vector<VarBind> out;
      for (size_t i = 0; i < req.pdu.varbinds.size(); ++i) {
        auto it = values.upper_bound(req.pdu.varbinds[i].name);
        if (it == values.end()) {
          agent.Reply(req, from, req.pdu.varbinds, kNoSuchName, static_cast<int>(i + 1));
          return;
        }
        out.push_back(VarBind{it->first, it->second});
      }
      agent.Reply(req, from, out);
    };
  }
};

std::string Col(const char* table, int column) { return std::string(table) + "." + std::to_string(column); }

// Rule table rows (profile.access): VLAN text, MAC bytes, row status; then a foreign table.
void FillRuleTable(MapMib& mib) {
  const std::pair<const char*, const char*> rows[] = {{"1.2", "v12"}, {"1.10", "v110"}, {"3.12", "v312"}};
  for (auto& [idx, vlan] : rows) {
    mib.Put(Col(kEthRule, 3) + "." + idx, Value::OctetString(vlan));
    mib.Put(Col(kEthRule, 4) + "." + idx, Value::OctetString(std::string("\x00\x11\x00\x00\x22\x00", 6)));
    mib.Put(Col(kEthRule, 15) + "." + idx, Value::Integer(1));
  }
  mib.Put("1.3.6.1.4.1.32473.12.9.3.2.1.3.1.1", Value::OctetString("other table"));
}

std::vector<std::string> Columns(std::initializer_list<int> cols) {
  std::vector<std::string> v;
  for (int c : cols) v.push_back(Col(kEthRule, c));
  return v;
}

long long MsSince(Clock::time_point t0) {
  return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - t0).count();
}

}  // namespace

// One value this side cannot hold (an unknown type, an INTEGER of 9 bytes) does not turn the
// answer into a time-out: the error status decides, and a walk still hands the row on.
TEST(SnmpSet, AnOddValueInTheAnswerIsJudgedByTheErrorStatus) {
  FakeAgent agent(TestAddress(20), [&](FakeAgent& a, const Message& req, const Endpoint& from) {
    // Past its one row the agent's MIB ends, so a walk that follows a repeated OID cannot hang here.
    if (req.pdu.type == kTagGetNextRequest && CompareOids(req.pdu.varbinds[0].name, O("1.3.6.1.9.1.1")) >= 0)
      return a.Reply(req, from, req.pdu.varbinds, kNoSuchName, 1);
    Value odd;
    odd.tag = 0x47;  // no SNMPv1 type
    odd.undecoded = true;
    odd.bytes = "\x01\x02";
    Value wide = odd;
    wide.tag = kTagInteger;
    wide.bytes = std::string(9, '\x7F');
    const bool refused = req.pdu.type == kTagSetRequest;  // the set is refused, the walk answered
    a.Reply(req, from, {VarBind{O("1.3.6.1.9.1.1"), odd}, VarBind{O("1.3.6.1.9.2.1"), wide}},
            refused ? kBadValue : kNoError, refused ? 1 : 0);
  });
  ASSERT_TRUE(agent.bound());
  SnmpSetResult r = SnmpSet(TestAddress(20), "w", {SnmpBinding::Integer("1.3.6.1.9.1.1", 1)}, 1000);
  EXPECT_TRUE(r.responded);
  EXPECT_EQ(r.errorStatus, kBadValue);
  std::vector<SnmpRow> rows;
  SnmpWalk(TestAddress(20), "public", {"1.3.6.1.9.1", "1.3.6.1.9.2"}, [&](const SnmpRow& row) { rows.push_back(row); }, 1000);
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(rows[0].bindings[0].value, "01 02") << "kept as its bytes, shown like Opaque";
  EXPECT_EQ(rows[0].bindings[1].value, "7F 7F 7F 7F 7F 7F 7F 7F 7F");
}

TEST(SnmpSet, BadAddressOrBindingFailsWithoutSending) {
  MapMib mib;
  FakeAgent agent(TestAddress(3), mib.Handler());
  ASSERT_TRUE(agent.bound());
  for (const char* bad : {"", "127.0.3", "127.0.3.256", "localhost", "127.0.3.3 ", "127.0.3.3:0"}) {
    SnmpSetResult r = SnmpSet(bad, "private", {SnmpBinding::Integer("1.3.6.1.2.1.1.5.0", 1)}, 200);
    EXPECT_NE(r.sendStatus, 0) << bad;
    EXPECT_STREQ(SnmpVerdict(r), "fail") << bad;
  }
  for (const SnmpBinding& b : {SnmpBinding::Integer("1.3.x", 1), SnmpBinding::Integer("1.3.6.1", "4a"),
                               SnmpBinding::Integer("1.3.6.1", "4294967296"),
                               SnmpBinding::IpAddress("1.3.6.1", "1.2.3"),
                               SnmpBinding{"1.3.6.1", 7, "x", false}}) {
    SnmpSetResult r = SnmpSet(TestAddress(3), "private", {b}, 200);
    EXPECT_EQ(r.sendStatus, kSnmpBadRequest) << b.oid << " " << b.value;
    EXPECT_FALSE(r.responded);
  }
  EXPECT_TRUE(agent.Requests().empty());
}

// Rows come in the agent's order and a row whose index has several parts keeps all of them;
// n rows cost n + 1 requests, each carrying every column. (Values and types against
// net-snmp's own walk: tests/interop.)
TEST(SnmpWalk, RowsInAgentOrderWithMultiPartIndex) {
  MapMib mib;
  FillRuleTable(mib);
  FakeAgent agent(TestAddress(6), mib.Handler());
  ASSERT_TRUE(agent.bound());
  std::vector<SnmpRow> rows;
  ASSERT_EQ(SnmpWalk(TestAddress(6), "public", Columns({3, 4, 15}), [&](const SnmpRow& r) { rows.push_back(r); }), 3u);
  ASSERT_EQ(rows.size(), 3u);
  EXPECT_EQ(rows[0].index + " " + rows[1].index + " " + rows[2].index, "1.2 1.10 3.12");
  EXPECT_EQ(rows[1].bindings[2].oid, Col(kEthRule, 15) + ".1.10");
  EXPECT_EQ(rows[1].bindings[1].value, std::string("\x00\x11\x00\x00\x22\x00", 6));
  const auto requests = agent.Requests();
  ASSERT_EQ(requests.size(), 4u);
  for (const Message& m : requests) {
    EXPECT_EQ(m.pdu.type, kTagGetNextRequest);
    ASSERT_EQ(m.pdu.varbinds.size(), 3u);
    EXPECT_EQ(m.pdu.varbinds[0].value.tag, kTagNull);
  }
  EXPECT_EQ(FormatOid(requests[0].pdu.varbinds[0].name), Col(kEthRule, 3));
  EXPECT_EQ(FormatOid(requests[1].pdu.varbinds[2].name), Col(kEthRule, 15) + ".1.2");
}

// The walk ends without a row of another table: at an empty column, at the end of the agent's
// MIB (noSuchName on the first step), on an error status, when one column runs out before the
// others, on an answer without bindings, and after one time-out when no answer comes.
TEST(SnmpWalk, EndsAtTheTableEndAnErrorOrAColumnThatRunsOut) {
  const struct {
    const char* what;
    std::vector<std::string> columns;
    int errorAt;       // the request answered with genErr, 0: none
    bool dropColumn4;  // column 4 lacks the last row
    bool noBinding;    // every answer carries no binding
    bool silent;       // no answer at all
    std::vector<std::string> rows;
  } cases[] = {
      {"empty column", Columns({2}), 0, false, false, false, {}},
      {"past the agent's last table", {"1.3.6.1.4.1.32473.99.1.1"}, 0, false, false, false, {}},
      {"genErr on the third request", Columns({3}), 3, false, false, false, {"1.2", "1.10"}},
      {"column 4 runs out one row early", Columns({3, 4}), 0, true, false, false, {"1.2", "1.10"}},
      {"no bindings", Columns({3, 4}), 0, false, true, false, {}},
      {"no answer", Columns({3}), 0, false, false, true, {}},
  };
  for (const auto& c : cases) {
    MapMib mib;
    FillRuleTable(mib);
    if (c.dropColumn4) mib.values.erase(O((Col(kEthRule, 4) + ".3.12").c_str()));
    auto inner = mib.Handler();
    int asked = 0;
    FakeAgent agent(TestAddress(8), [&](FakeAgent& a, const Message& req, const Endpoint& from) {
      if (c.silent) return;
      if (++asked == c.errorAt) return a.Reply(req, from, req.pdu.varbinds, kGenErr, 1);
      if (c.noBinding) return a.Reply(req, from, {});
      inner(a, req, from);
    });
    ASSERT_TRUE(agent.bound());
    std::vector<std::string> rows;
    const auto t0 = Clock::now();
    EXPECT_EQ(SnmpWalk(TestAddress(8), "public", c.columns, [&](const SnmpRow& r) { rows.push_back(r.index); }, 500),
              c.rows.size()) << c.what;
    EXPECT_EQ(rows, c.rows) << c.what;
    EXPECT_LT(MsSince(t0), 950) << c.what << ": one time-out at most, no retry";
  }
}

// An answer with fewer bindings than columns is a row whose last cells are missing: the walk
// goes on, and the next step asks for the row after it in every column, so later rows stay
// whole and aligned.
TEST(SnmpWalk, AShortAnswerIsARowWithMissingCells) {
  MapMib mib;
  FillRuleTable(mib);
  auto inner = mib.Handler();
  int asked = 0;
  FakeAgent agent(TestAddress(11), [&](FakeAgent& a, const Message& req, const Endpoint& from) {
    if (++asked != 1) return inner(a, req, from);
    a.Reply(req, from, {VarBind{O((Col(kEthRule, 3) + ".1.2").c_str()), Value::OctetString("v12")}});
  });
  ASSERT_TRUE(agent.bound());
  std::vector<SnmpRow> rows;
  ASSERT_EQ(SnmpWalk(TestAddress(11), "public", Columns({3, 4}), [&](const SnmpRow& r) { rows.push_back(r); }), 3u);
  EXPECT_EQ(rows[0].bindings.size(), 1u);
  ASSERT_EQ(rows[1].bindings.size(), 2u);
  EXPECT_EQ(rows[1].index + " " + rows[2].index, "1.10 3.12");
  EXPECT_EQ(rows[1].bindings[1].oid, Col(kEthRule, 4) + ".1.10");
}

TEST(SnmpWalk, EndsWhenTheAgentLoopsOrGoesBackwards) {
  const std::string c3 = Col(kEthRule, 3);
  // Loop: the agent answers with the same instance (and ends its table after a while, so a
  // client that follows it still finishes and shows how far it went).
  int asked = 0;
  FakeAgent loop(TestAddress(9), [&](FakeAgent& a, const Message& req, const Endpoint& from) {
    if (++asked > 5) return a.Reply(req, from, req.pdu.varbinds, kNoSuchName, 1);
    a.Reply(req, from, {VarBind{O((c3 + ".1.1").c_str()), Value::Integer(1)}});
  });
  ASSERT_TRUE(loop.bound());
  EXPECT_EQ(SnmpWalk(TestAddress(9), "public", {c3}, nullptr), 1u);
  EXPECT_EQ(loop.Requests().size(), 2u);
  // Backwards: 1.5 then 1.3.
  int step = 0;
  FakeAgent back(TestAddress(10), [&](FakeAgent& a, const Message& req, const Endpoint& from) {
    if (++step > 5) return a.Reply(req, from, req.pdu.varbinds, kNoSuchName, 1);
    a.Reply(req, from, {VarBind{O((c3 + (step == 1 ? ".1.5" : ".1.3")).c_str()), Value::Integer(1)}});
  });
  ASSERT_TRUE(back.bound());
  EXPECT_EQ(SnmpWalk(TestAddress(10), "public", {c3}, nullptr), 1u);
}

// Only the agent's own answer with the request's request-id counts; the rest is dropped and
// the wait goes on.
TEST(SnmpClient, DropsAnswersFromOtherAddressesPortsIdsTypesAndGarbage) {
  UdpSocket otherPort, otherAddr;
  Endpoint e;
  ParseEndpoint(TestAddress(14), 0, e);
  e.port = 0;
  ASSERT_TRUE(otherPort.Bind(e));
#ifndef TEST_PORT_BASE  // Wine cannot give a socket a second loopback source address
  ParseEndpoint(TestAddress(15), 161, e);
  ASSERT_TRUE(otherAddr.Bind(e));
#endif
  MapMib mib;
  FillRuleTable(mib);
  auto real = mib.Handler();
  Message previous;
  bool havePrevious = false;
  FakeAgent agent(TestAddress(14), [&](FakeAgent& a, const Message& req, const Endpoint& from) {
    Message forged;
    forged.community = req.community;
    forged.pdu.type = kTagGetResponse;
    forged.pdu.requestId = req.pdu.requestId;
    forged.pdu.varbinds = {VarBind{O((Col(kEthRule, 3) + ".9.9").c_str()), Value::OctetString("forged")}};
    std::string bytes;
    EncodeMessage(forged, bytes);
    otherPort.SendTo(from, bytes.data(), bytes.size());  // right address, wrong port
    if (otherAddr.IsOpen()) otherAddr.SendTo(from, bytes.data(), bytes.size());  // wrong address
    a.SendRaw("garbage", from);
    a.SendRaw(std::string("\x30\x03\x02\x01", 4), from);
    a.Reply(req, from, forged.pdu.varbinds, 0, 0, 1);    // wrong request-id
    Message v2 = forged;
    v2.version = 1;
    a.Send(v2, from);                                    // SNMPv2c
    Message echo = forged;
    echo.pdu.type = kTagSetRequest;
    a.Send(echo, from);                                  // not a GetResponse
    if (havePrevious) a.Reply(previous, from, forged.pdu.varbinds);  // stale duplicate
    previous = req;
    havePrevious = true;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    real(a, req, from);
    real(a, req, from);  // a duplicate of the real answer, arriving after it
  });
  ASSERT_TRUE(agent.bound());
  std::vector<std::string> values;
  SnmpWalk(TestAddress(14), "public", Columns({3}), [&](const SnmpRow& r) { values.push_back(r.bindings[0].value); });
  EXPECT_EQ(values, (std::vector<std::string>{"v12", "v110", "v312"}));
}

TEST(SnmpClient, ForgedAnswersAloneEndInATimeout) {
  FakeAgent agent(TestAddress(16), [](FakeAgent& a, const Message& req, const Endpoint& from) {
    a.Reply(req, from, req.pdu.varbinds, 0, 0, 1);
    a.Reply(req, from, req.pdu.varbinds, 0, 0, -1);
  });
  ASSERT_TRUE(agent.bound());
  CSnmpV1 request(0);
  request.setType(kSnmpSetRequest);
  request.clearVarBindList();
  request.setCommunity("private");
  request.addValue("1.3.6.1.4.1.32473.12.1.2.6.0", kSnmpInteger, "5");
  CSnmp* answer = nullptr;
  auto t0 = Clock::now();
  EXPECT_EQ(request.send(TestAddress(16).c_str(), answer, 400), kSnmpTimeout);
  EXPECT_GE(MsSince(t0), 380);
  EXPECT_EQ(answer, nullptr);
}

TEST(SnmpClient, RequestIdsAreNotPredictable) {
  FakeAgent agent(TestAddress(17), [](FakeAgent& a, const Message& req, const Endpoint& from) {
    a.Reply(req, from, req.pdu.varbinds);
  });
  ASSERT_TRUE(agent.bound());
  for (int i = 0; i < 64; ++i)
    ASSERT_STREQ(SnmpVerdict(SnmpSet(TestAddress(17), "w", {SnmpBinding::Integer("1.3.6.1.9.0", i)})), "Succeed");
  std::set<int32_t> ids;
  std::set<int64_t> steps;
  int32_t lo = INT32_MAX, hi = 0;
  const auto requests = agent.Requests();
  for (size_t i = 0; i < requests.size(); ++i) {
    int32_t id = requests[i].pdu.requestId;
    ids.insert(id);
    lo = std::min(lo, id);
    hi = std::max(hi, id);
    EXPECT_GT(id, 0);
    if (i) steps.insert(static_cast<int64_t>(id) - requests[i - 1].pdu.requestId);
  }
  EXPECT_EQ(ids.size(), 64u);
  EXPECT_GT(steps.size(), 60u) << "no constant step between consecutive ids";
  EXPECT_GT(static_cast<int64_t>(hi) - lo, 1 << 24) << "ids spread over the 31-bit space";
}

// Inside a scope every request of the thread, sets and walks to several switches alike, leaves
// from one socket, and each switch still gets its own answers: the socket follows the switch
// asked, and a late answer to a request that timed out is not taken for the next one's.
TEST(SnmpSocketScope, OneSocketForEveryRequestAndEachAnswerToItsOwnRequest) {
  MapMib mibA, mibB;
  FillRuleTable(mibA);
  mibB.Put(Col(kEthRule, 3) + ".7.7", Value::OctetString("b77"));
  std::mutex sourcesMutex;  // the two agents serve on threads of their own
  std::vector<Endpoint> sources;
  auto recording = [&](FakeAgent::Handler serve) {
    return [&, serve](FakeAgent& agent, const Message& req, const Endpoint& from) {
      {
        std::lock_guard<std::mutex> lock(sourcesMutex);
        sources.push_back(from);
      }
      serve(agent, req, from);
    };
  };
  FakeAgent a(TestAddress(21), recording(mibA.Handler()));
  int setsSeen = 0;
  FakeAgent b(TestAddress(22), recording([&setsSeen](FakeAgent& agent, const Message& req, const Endpoint& from) {
    if (req.pdu.type != kTagSetRequest) return;
    // The first set is answered only after the client gave up on it, and with an error.
    if (++setsSeen == 1) {
      std::this_thread::sleep_for(std::chrono::milliseconds(300));
      agent.Reply(req, from, req.pdu.varbinds, kGenErr, 1);
      return;
    }
    agent.Reply(req, from, req.pdu.varbinds);
  }));
  ASSERT_TRUE(a.bound() && b.bound());
  auto values = [](const std::string& agent) {
    std::vector<std::string> v;
    SnmpWalk(agent, "public", Columns({3}), [&v](const SnmpRow& r) { v.push_back(r.bindings[0].value); });
    return v;
  };
  const auto set = [](unsigned long timeoutMs) {
    return SnmpVerdict(SnmpSet(TestAddress(22), "private", {SnmpBinding::Integer("1.3.6.1.9.0", 1)}, timeoutMs));
  };
  {
    const SnmpSocketScope scope;
    EXPECT_EQ(values(TestAddress(21)), (std::vector<std::string>{"v12", "v110", "v312"}));
    EXPECT_STREQ(set(100), "fail");
    EXPECT_STREQ(set(2000), "Succeed");  // the late "genErr" of the first set arrives first
    EXPECT_EQ(values(TestAddress(21)), (std::vector<std::string>{"v12", "v110", "v312"}));
  }
  std::lock_guard<std::mutex> lock(sourcesMutex);
  ASSERT_EQ(sources.size(), 10u);  // 4 + 4 GetNexts, 2 sets
  for (const Endpoint& e : sources) EXPECT_EQ(e.port, sources.front().port);
}

// A walk tells the end of its table (the next column, or noSuchName past the agent's MIB)
// from an end that leaves rows unread: silence, an error status, a looping agent, a stop.
TEST(SnmpWalk, SaysWhetherItReachedTheTableEnd) {
  const std::string c3 = Col(kEthRule, 3);
  const struct {
    const char* what;
    std::vector<std::string> columns;
    std::function<bool(int asked, FakeAgent&, const Message&, const Endpoint&)> fault;  // true: handled
    size_t rows;
    SnmpWalkEnd end;
    int errorStatus;
  } cases[] = {
      {"the next column follows", {c3}, nullptr, 3, SnmpWalkEnd::kEndOfTable, 0},
      {"noSuchName past the last table", {"1.3.6.1.4.1.32473.12.9.3.2.1.3"}, nullptr, 1, SnmpWalkEnd::kEndOfMib,
       kNoSuchName},
      {"silence after the first row", {c3}, [](int asked, FakeAgent&, const Message&, const Endpoint&) { return asked > 1; },
       1, SnmpWalkEnd::kNoAnswer, 0},
      {"genErr on the second request", {c3},
       [](int asked, FakeAgent& a, const Message& req, const Endpoint& from) {
         if (asked != 2) return false;
         a.Reply(req, from, req.pdu.varbinds, kGenErr, 1);
         return true;
       },
       1, SnmpWalkEnd::kErrorStatus, kGenErr},
      {"the first row again", {c3},
       [c3](int asked, FakeAgent& a, const Message& req, const Endpoint& from) {
         a.Reply(req, from, {VarBind{O((c3 + ".1.2").c_str()), Value::OctetString("v12")}});
         return asked > 0;
       },
       1, SnmpWalkEnd::kNotIncreasing, 0},
  };
  for (const auto& c : cases) {
    MapMib mib;
    FillRuleTable(mib);
    auto inner = mib.Handler();
    int asked = 0;
    FakeAgent agent(TestAddress(12), [&](FakeAgent& a, const Message& req, const Endpoint& from) {
      if (!c.fault || !c.fault(++asked, a, req, from)) inner(a, req, from);
    });
    ASSERT_TRUE(agent.bound());
    SnmpWalkResult r;
    EXPECT_EQ(SnmpWalk(TestAddress(12), "public", c.columns, nullptr, 300, nullptr, &r), c.rows) << c.what;
    EXPECT_EQ(r.rows, c.rows) << c.what;
    EXPECT_EQ(r.end, c.end) << c.what << ": " << SnmpWalkEndText(r);
    EXPECT_EQ(r.errorStatus, c.errorStatus) << c.what;
    EXPECT_EQ(r.complete(), c.end == SnmpWalkEnd::kEndOfTable || c.end == SnmpWalkEnd::kEndOfMib) << c.what;
  }
  // A stop after the first row ends the walk there, without a further request.
  MapMib mib;
  FillRuleTable(mib);
  FakeAgent agent(TestAddress(12), mib.Handler());
  ASSERT_TRUE(agent.bound());
  std::atomic<bool> stop{false};
  SnmpWalkResult r;
  SnmpWalk(TestAddress(12), "public", {c3}, [&](const SnmpRow&) { stop = true; }, 300, &stop, &r);
  EXPECT_EQ(r.rows, 1u);
  EXPECT_EQ(r.end, SnmpWalkEnd::kStopped);
  EXPECT_EQ(agent.Requests().size(), 1u);
}

// A switch whose SNMP port is closed answers with a port-unreachable; inside a scope that is
// no answer, given its full time-out like a silent switch, and the socket still hears the
// next switch's answers.
TEST(SnmpSocketScope, APortUnreachableIsNoAnswerAndSpoilsNoLaterRequest) {
  FakeAgent live(TestAddress(24), [](FakeAgent& a, const Message& req, const Endpoint& from) {
    a.Reply(req, from, req.pdu.varbinds);
  });
  ASSERT_TRUE(live.bound());
  const auto set = [](int host) {
    return SnmpVerdict(SnmpSet(TestAddress(host), "private", {SnmpBinding::Integer("1.3.6.1.9.0", 1)}, 300));
  };
  const SnmpSocketScope scope;
  for (int round = 0; round < 2; ++round) {
    const auto t0 = Clock::now();
    EXPECT_STREQ(set(23), "fail") << "nothing listens there";
    EXPECT_GE(MsSince(t0), 280) << "the whole time-out";
    EXPECT_STREQ(set(24), "Succeed");
  }
}
