// Reader and writer against simulated switches over real SNMP: the round trip of every model x
// owner x record kind, applies to several targets with silent and refusing ones, the result
// words, reading, stopping a read, and deleting.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <thread>

#include "acl/acl_device.h"
#include "record_compare.h"
#include "sample_records.h"
#include "sim_agent.h"

namespace {

constexpr unsigned long kTimeout = 400;  // a silent switch costs this much per request here

const ModelEntry& M(const std::string& text) { return *LookupModel(text); }

const AclType kTypes[] = {AclType::kEthernet, AclType::kIPv4, AclType::kIPv6, AclType::kPacketContent};
const char* kModels[] = {"TVG5240-10", "TVG5470", "TVG5690", "TVR4060", "TVR4510", "TVR4820", "TVR4512"};

AclTarget Target(SimAgent& a, const std::string& model) {
  return AclTarget{a.address(), "public", "private", model};
}

std::string Key(AclKind kind, const AclRecord& r) {
  return kind == AclKind::kRules ? r[0] + "." + r[1] : r[0];
}

std::vector<std::string> Apply(AclKind kind, const std::vector<AclTarget>& targets, AclOwner owner,
                               const std::array<AclRecordList, 4>& lists, AclApplyCallbacks cb = {}) {
  std::vector<std::string> words;
  cb.result = [&](size_t i, const char* w) {
    EXPECT_EQ(i, words.size()) << "result words in target order";
    words.push_back(w);
  };
  (kind == AclKind::kProfiles ? ApplyProfiles : ApplyRules)(targets, owner, lists, cb, kTimeout);
  return words;
}

// The OID of each SET's last binding, in order.
std::vector<std::string> SetOids(const std::vector<sim::SetEvent>& events) {
  std::vector<std::string> s;
  for (const auto& e : events) s.push_back(snmp::FormatOid(e.varbinds.back().name));
  return s;
}

AclReadOptions Quick(const std::atomic<bool>* stop = nullptr) {
  AclReadOptions o;
  o.timeoutMs = kTimeout;
  o.stop = stop;
  return o;
}

}  // namespace

// Every table every model offers: the records the pages build go out, read back equal, and
// the switch saw every column that a creating request must carry (it would otherwise keep its
// own default there, and the read-back could not tell).
TEST(AclDevice, RoundTripEveryModelOwnerAndRecordKind) {
  int combinations = 0, host = 10;
  for (const char* model : kModels) {
    const ModelEntry& m = M(model);
    for (AclOwner owner : {AclOwner::kAcl, AclOwner::kCpu}) {
      for (AclKind kind : {AclKind::kProfiles, AclKind::kRules}) {
        for (AclType type : kTypes) {
          auto table = TableLayout(m, owner, kind, type);
          if (!table) continue;
          const std::string what = std::string(model) + " " + OwnerWord(owner) + " " +
                                   (kind == AclKind::kProfiles ? "profile " : "rule ") + TypeWord(type);
          SCOPED_TRACE(what);
          SimAgent agent(host++, model);
          ASSERT_TRUE(agent.ok()) << agent.error();
          AclTarget target = Target(agent, model);
          std::array<AclRecordList, 4> lists;
          lists[static_cast<size_t>(type)] =
              kind == AclKind::kProfiles ? SampleProfiles(m, owner, type) : SampleRules(m, owner, type);
          const char* success = kind == AclKind::kProfiles && owner == AclOwner::kCpu ? "Success" : "Succeed";
          ASSERT_EQ(Apply(kind, {target}, owner, lists), std::vector<std::string>{success});
          EXPECT_EQ(agent.unwritten(), std::vector<std::string>{}) << "columns left at the switch's default";
          AclReadResult read = kind == AclKind::kProfiles ? ReadProfiles(target, owner, Quick())
                                                          : ReadRules(target, owner, type, Quick());
          const AclRecordList& sent = lists[static_cast<size_t>(type)];
          const AclRecordList& back = read.records[static_cast<size_t>(type)];
          ASSERT_EQ(back.size(), sent.size());
          for (const AclRecord& s : sent) {
            const AclRecord* r = nullptr;
            for (const AclRecord& b : back)
              if (Key(kind, b) == Key(kind, s)) r = &b;
            ASSERT_NE(r, nullptr) << Key(kind, s);
            ExpectSameCells(m, *table, s, *r, what + " " + Key(kind, s));
          }
          for (const AclSummaryLine& line : read.lines) {
            EXPECT_EQ(line.typeWord, TypeWord(type));
            EXPECT_EQ(line.ownerWord, OwnerWord(owner));
          }
          ++combinations;
        }
      }
    }
  }
  EXPECT_EQ(combinations, 98) << "every table the seven models offer";
}

// A refused third rule: the remaining rules still go out, no closing request, "Fail". A silent
// switch: one SET per record, no retry, no closing request. The progress runs over all targets
// and the staged files go after the last one.
TEST(AclDevice, SeveralTargetsOneSilentOneRefusing) {
  sim::Faults silent, refuseThird;
  silent.silent = true;
  refuseThird.refuseSets = {3};
  SimAgent a(1, "TVR4820"), b(2, "TVR4820", silent), c(3, "TVR4820", refuseThird), d(4, "TVR4820");
  ASSERT_TRUE(a.ok() && b.ok() && c.ok() && d.ok());
  std::array<AclRecordList, 4> lists;
  for (int i = 1; i <= 4; ++i) {
    RuleFields f;
    f.profileId = "2";
    f.accessId = std::to_string(i);
    f.ports = std::to_string(i);
    lists[0].push_back(BuildRule(AclType::kEthernet, AclOwner::kAcl, M("TVR4820"), f));
  }
  std::vector<int> progress;
  int deletes = 0;
  AclApplyCallbacks cb;
  cb.progress = [&](int p) { progress.push_back(p); };
  cb.deleteStaged = [&] { ++deletes; };
  auto words = Apply(AclKind::kRules, {Target(a, "TVR4820"), Target(b, "TVR4820"), Target(c, "TVR4820"),
                                       Target(d, "TVR4820")}, AclOwner::kAcl, lists, cb);
  EXPECT_EQ(words, (std::vector<std::string>{"Succeed", "Fail", "Fail", "Succeed"}));
  EXPECT_EQ(deletes, 1);
  std::vector<int> want{0};  // then (r * d * 100 / 4) / 4 for r, d = 1..4
  for (int dd = 1; dd <= 4; ++dd)
    for (int r = 1; r <= 4; ++r) want.push_back(r * dd * 100 / 4 / 4);
  EXPECT_EQ(progress, want);
  const std::string rs = "1.3.6.1.4.1.32473.12.9.3.1.1.15.2.";
  const std::vector<std::string> records{rs + "1", rs + "2", rs + "3", rs + "4"};
  std::vector<std::string> withClosing = records;
  withClosing.push_back("1.3.6.1.4.1.32473.12.1.2.6.0");
  EXPECT_EQ(SetOids(a.sets()), withClosing);
  EXPECT_EQ(SetOids(d.sets()), withClosing);
  EXPECT_EQ(SetOids(c.sets()), records);
  EXPECT_EQ(b.requests(), 4u);
}

// Two targets of one model get the same requests, communities aside, in the order Ethernet,
// IPv4, IPv6, packet content; a type the model does not offer is not sent.
TEST(AclDevice, SameRequestsOnEveryTargetInTypeOrder) {
  SimAgent a(5, "TVG5690", {}, "r1", "w1"), b(6, "TVG5690", {}, "r2", "w2"), c(7, "TVG5470");
  ASSERT_TRUE(a.ok() && b.ok() && c.ok());
  std::array<AclRecordList, 4> lists;
  for (AclType t : kTypes) lists[static_cast<size_t>(t)] = SampleProfiles(M("TVG5690"), AclOwner::kCpu, t);
  EXPECT_EQ(Apply(AclKind::kProfiles, {AclTarget{a.address(), "r1", "w1", "TVG5690"},
                                       AclTarget{b.address(), "r2", "w2", "TVG5690"}}, AclOwner::kCpu, lists),
            (std::vector<std::string>{"Success", "Success"}));
  auto sa = a.sets(), sb = b.sets();
  ASSERT_EQ(sa.size(), 9u) << "4 types x 2 profiles and the closing request";
  ASSERT_EQ(sa.size(), sb.size());
  for (size_t i = 0; i < sa.size(); ++i) EXPECT_EQ(sa[i].varbinds, sb[i].varbinds) << i;
  const char* tables[] = {".4.1.1.", ".4.1.1.", ".4.2.1.", ".4.2.1.", ".4.4.1.", ".4.4.1.", ".4.3.1.", ".4.3.1."};
  for (size_t i = 0; i < 8; ++i)
    EXPECT_NE(snmp::FormatOid(sa[i].varbinds[0].name).find(tables[i]), std::string::npos) << i;
  lists = {};
  lists[0] = SampleProfiles(M("TVG5470"), AclOwner::kAcl, AclType::kEthernet);
  lists[3] = {{"1", "", "", "", "", "", "4"}};
  Apply(AclKind::kProfiles, {Target(c, "TVG5470")}, AclOwner::kAcl, lists);
  EXPECT_EQ(c.sets().size(), 3u) << "two Ethernet profiles and the closing request; TVG5470 has no packet content";
}

// The result word of a target by confirmation page and owner: closing request answered,
// refused, unanswered (empty lists: only the closing request goes out, model_facts_test.cpp).
TEST(AclDevice, ResultWordByPageOwnerAndClosingAnswer) {
  const struct {
    AclKind kind;
    AclOwner owner;
    const char* ok;
    const char* error;
    const char* none;
  } rows[] = {
      {AclKind::kProfiles, AclOwner::kAcl, "Succeed", "Fail", "fail"},
      {AclKind::kProfiles, AclOwner::kCpu, "Success", "Fail", "fail"},
      {AclKind::kRules, AclOwner::kAcl, "Succeed", "Fail", "Fail"},
      {AclKind::kRules, AclOwner::kCpu, "Succeed", "Fail", "fail"},
  };
  int host = 120;
  for (const auto& row : rows) {
    sim::Faults refuse, drop;
    refuse.refuseSets = {1};
    drop.dropSets = {1};
    SimAgent a(host++, "TVR4510"), b(host++, "TVR4510", refuse), c(host++, "TVR4510", drop);
    ASSERT_TRUE(a.ok() && b.ok() && c.ok());
    EXPECT_EQ(Apply(row.kind, {Target(a, "TVR4510"), Target(b, "TVR4510"), Target(c, "TVR4510")}, row.owner, {}),
              (std::vector<std::string>{row.ok, row.error, row.none}));
  }
}

// An empty switch reads no line and leaves every ID free; a written profile takes its ID; a
// model text the catalogue does not support reads nothing.
TEST(AclDevice, ReadingBackFreesAndTakesIds) {
  SimAgent a(13, "TVG5240-10");
  ASSERT_TRUE(a.ok());
  AclTarget t = Target(a, "TVG5240-10");
  AclReadResult empty = ReadProfiles(t, AclOwner::kAcl, Quick());
  EXPECT_TRUE(empty.lines.empty());
  EXPECT_EQ(FreeProfileIds(empty, 256).size(), 256u);
  std::array<AclRecordList, 4> lists;
  ProfileFields p;
  p.profileId = "4";
  lists[1] = {BuildProfile(AclType::kIPv4, AclOwner::kAcl, M("TVG5240-10"), p)};
  Apply(AclKind::kProfiles, {t}, AclOwner::kAcl, lists);
  EXPECT_EQ(FreeProfileIds(ReadProfiles(t, AclOwner::kAcl, Quick()), 6), (std::vector<int>{1, 2, 3, 5, 6}));
  EXPECT_TRUE(ReadProfiles(Target(a, "TVR-4512"), AclOwner::kAcl, Quick()).lines.empty());
}

// Leaving "Add profile" sets the stop flag: on a slow switch the walk ends at its next answer
// and asks nothing more, instead of reading on to the end of every table.
TEST(AclDevice, StopEndsTheWalkAtItsNextAnswer) {
  SimAgent a(14, "TVG5240-10");
  ASSERT_TRUE(a.ok());
  AclTarget t = Target(a, "TVG5240-10");
  std::array<AclRecordList, 4> lists;
  for (int id = 1; id <= 8; ++id) {
    ProfileFields p;
    p.profileId = std::to_string(id);
    lists[0].push_back(BuildProfile(AclType::kEthernet, AclOwner::kAcl, M("TVG5240-10"), p));
  }
  ASSERT_EQ(Apply(AclKind::kProfiles, {t}, AclOwner::kAcl, lists), std::vector<std::string>{"Succeed"});
  a.delay(300);
  std::atomic<bool> stop{false};
  size_t rows = 0;
  AclReadOptions o = Quick(&stop);
  o.timeoutMs = 2000;
  o.sink = [&](AclType, const AclRecord&, const AclSummaryLine&) { ++rows; };
  std::thread reader([&] { ReadProfiles(t, AclOwner::kAcl, o); });
  std::this_thread::sleep_for(std::chrono::milliseconds(450));  // the second answer is on its way
  const size_t asked = a.requests();
  const auto t0 = std::chrono::steady_clock::now();
  stop = true;
  reader.join();
  const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - t0).count();
  EXPECT_LT(ms, 1000) << "ended at the next answer";
  EXPECT_LE(a.requests(), asked + 1) << "no request after the stop";
  EXPECT_LE(rows, 2u);
}

TEST(AclDevice, DeleteRowDestroysOneRuleAndBadInputReachesNoSwitch) {
  SimAgent a(16, "TVG5690");
  ASSERT_TRUE(a.ok());
  AclTarget t = Target(a, "TVG5690");
  const ModelEntry& m = M("TVG5690");
  std::array<AclRecordList, 4> lists;
  lists[0] = SampleRules(m, AclOwner::kCpu, AclType::kEthernet);
  Apply(AclKind::kRules, {t}, AclOwner::kCpu, lists);
  ASSERT_EQ(ReadRules(t, AclOwner::kCpu, AclType::kEthernet, Quick()).lines.size(), 2u);
  const std::string rs = RowStatusColumnOid(m, AclOwner::kCpu, AclKind::kRules, AclType::kEthernet);
  a.clearSets();
  EXPECT_TRUE(DeleteRow(t, rs, "3", "100", kTimeout));
  ASSERT_EQ(a.sets().size(), 1u);
  EXPECT_EQ(snmp::FormatOid(a.sets()[0].varbinds[0].name), "1.3.6.1.4.1.32473.12.9.5.1.1.10.3.100");
  EXPECT_EQ(a.sets()[0].varbinds[0].value, snmp::Value::Integer(6));
  auto left = ReadRules(t, AclOwner::kCpu, AclType::kEthernet, Quick());
  ASSERT_EQ(left.lines.size(), 1u);
  EXPECT_EQ(left.lines[0].accessId, "1");
  // No selection, or IDs that cannot name an instance: nothing is sent, the target reads Fail.
  const size_t before = a.requests();
  EXPECT_FALSE(DeleteRow(t, rs, "", "", kTimeout));
  EXPECT_FALSE(DeleteRow(t, rs, "3", "1x", kTimeout));
  lists[0] = {{"1.5", "1"}, {"", ""}, {"1", "1; drop"}};
  EXPECT_EQ(Apply(AclKind::kRules, {t}, AclOwner::kCpu, lists), std::vector<std::string>{"Fail"});
  EXPECT_EQ(a.requests(), before);
}
