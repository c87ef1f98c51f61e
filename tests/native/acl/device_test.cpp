// Parts 4.3 and 4.4 against simulated switches over real SNMP: the round trip of every model x
// owner x record kind, the apply to several targets with a silent and a refusing one, the
// result words of Part 5.4's table, reading and deleting. "EdgeCase..." tests are the "Edge
// cases worth testing" of Parts 4.3, 4.4 and 5.4.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>

#include "acl/acl_device.h"
#include "record_compare.h"
#include "sim_agent.h"

namespace {

constexpr unsigned long kTimeout = 400;  // a silent switch costs this much per request here

const ModelEntry& M(const std::string& text) { return *LookupModel(text); }

const AclType kTypes[] = {AclType::kEthernet, AclType::kIPv4, AclType::kIPv6, AclType::kPacketContent};
const char* kModels[] = {"TVG5240-10", "TVG5470", "TVG5690", "TVR4060", "TVR4510", "TVR4820", "TVR4512"};

AclTarget Target(SimAgent& a, const std::string& model) {
  return AclTarget{a.address(), "public", "private", model};
}

// Rule records as the rule pages build them (Part 5.3), two per kind: the Access IDs at the
// model's limits, every optional field filled on the first and few on the second.
AclRecordList Rules(const ModelEntry& m, AclOwner owner, AclType type) {
  auto range = m.accessIdRange(owner, type);
  auto rx = m.rxRange();
  const bool cpu = owner == AclOwner::kCpu;
  AclRecordList out;
  for (int variant = 0; variant < 2; ++variant) {
    RuleFields f;
    f.profileId = variant == 0 ? "3" : "7";
    f.accessId = std::to_string(variant == 0 ? range->max : range->min);
    f.action = cpu ? (variant == 0 ? "1" : "2") : (variant == 0 ? "3" : "1");
    f.ports = variant == 0 ? "1-3," + std::to_string(m.portCount) : "2";
    if (!cpu && rx && variant == 0) f.rxRate = std::to_string(rx->max);
    if (variant == 0) {
      f.priorityChecked = true;
      f.priority = "6";
      f.replaceDscpChecked = true;
      f.replaceDscp = "40";
      f.replaceTosChecked = true;
      f.replaceTos = "3";
    }
    switch (type) {
      case AclType::kEthernet:
        if (variant == 0) {
          f.vlan = "v10";
          f.srcMac = "00a0c9ffee01";
          f.dstMac = "0000000000FF";
          f.p8021 = "5";
          f.ethertype = "86dd";
        }
        break;
      case AclType::kIPv4:
        f.srcIp = variant == 0 ? "10.0.0.1" : "";
        f.dstIp = variant == 0 ? "192.168.1.0" : "0.0.0.0";
        f.dscp = variant == 0 ? "46" : "";
        f.vlan = variant == 0 ? "v20" : "";
        f.protocol = variant == 0 ? "4" : "6";
        f.value1 = variant == 0 ? "80" : "17";
        f.value2 = variant == 0 ? "8080" : "0000ffff";
        f.flagBits = "18";
        break;
      case AclType::kIPv6:
        if (variant == 0) {
          f.ipv6Class = "255";
          f.flowLabel = "fffff";
          f.srcIpv6 = "fe800000000000000000000000000001";
          f.dstIpv6 = "20010DB8000000000000000000000002";
        }
        break;
      case AclType::kPacketContent:
        for (size_t i = 0; i < 5; ++i) {
          f.items[i].checked = variant == 0 || i == 2;
          f.items[i].offset = std::to_string(4 * i + 1);
          f.items[i].data = m.packetShape(owner, AclKind::kRules) == PacketShape::kBlock16
                                ? std::string(32, static_cast<char>('A' + i))
                            : m.packetShape(owner, AclKind::kRules) == PacketShape::kChunks4 ? "0800450" + std::to_string(i)
                                                                                              : "86DD";
        }
        break;
    }
    EXPECT_EQ(ValidateRule(type, owner, m, f), nullptr) << m.typeText << " " << TypeWord(type) << " " << variant;
    out.push_back(BuildRule(type, owner, m, f));
  }
  return out;
}

// Profile records as the definition pages build them (Part 5.2).
AclRecordList Profiles(const ModelEntry& m, AclOwner owner, AclType type) {
  AclRecordList out;
  for (int variant = 0; variant < 2; ++variant) {
    ProfileFields p;
    p.profileId = variant == 0 ? "1" : "5";
    p.profileName = variant == 0 ? "web" : "";
    const bool on = variant == 0;
    p.vlan = on;
    p.p8021 = !on;
    p.ethernetType = on;
    p.srcMacChecked = on;
    p.srcMac = " ffffffffffff ";
    p.dstMacChecked = true;
    p.dstMac = "0000000000ff";
    p.dscp = on;
    p.srcIpChecked = on;
    p.srcIp = "255.255.255.0";
    p.dstIpChecked = true;
    p.dstIp = "255.255.0.0";
    p.protocolGroup = on ? 5 : 7;
    p.protocolChecked = true;
    p.srcPortMask = "FFFF";
    p.dstPortMask = on ? "" : "00FF";
    p.flagBitsChecked = on;
    p.flagValue = 63;
    p.protocolId = "6";
    p.userMaskChecked = !on;
    const bool wideMask = std::string(m.typeText) == "TVR4510" || std::string(m.typeText) == "TVR4820";
    p.userMask = wideMask ? "0000FFFF0000FFFF0000FFFF0000FFFF0000FFFF" : "0000FFFF";
    p.ipv6Class = on;
    p.flowLabel = !on;
    p.srcIpv6Checked = on;
    p.srcIpv6Mask = std::string(32, 'F');
    p.dstIpv6Checked = true;
    p.dstIpv6Mask = "FFFFFFFFFFFFFFFF0000000000000000";
    for (size_t i = 0; i < 5; ++i) {
      p.items[i].checked = on || i == 1;
      p.items[i].offset = std::to_string(7 * i);
      p.items[i].mask = m.packetShape(owner, AclKind::kProfiles) == PacketShape::kChunks4
                            ? "FFFF000" + std::to_string(i)
                            : std::string(32, static_cast<char>('0' + i));
    }
    EXPECT_EQ(ValidateProfile(type, p), nullptr);
    out.push_back(BuildProfile(type, owner, m, p));
  }
  return out;
}

std::string Key(AclKind kind, const AclRecord& r) {
  return kind == AclKind::kRules ? r[0] + "." + r[1] : r[0];
}

}  // namespace

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
              kind == AclKind::kProfiles ? Profiles(m, owner, type) : Rules(m, owner, type);
          std::vector<std::string> words;
          AclApplyCallbacks cb;
          cb.result = [&](size_t, const char* w) { words.push_back(w); };
          if (kind == AclKind::kProfiles)
            ApplyProfiles({target}, owner, lists, cb, kTimeout);
          else
            ApplyRules({target}, owner, lists, cb, kTimeout);
          const char* success = kind == AclKind::kProfiles && owner == AclOwner::kCpu ? "Success" : "Succeed";
          ASSERT_EQ(words, std::vector<std::string>{success});
          AclReadOptions ro;
          ro.timeoutMs = kTimeout;
          AclReadResult read = kind == AclKind::kProfiles ? ReadProfiles(target, owner, ro)
                                                          : ReadRules(target, owner, type, ro);
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
  std::printf("[ round trip ] %d model x owner x record kind combinations covered\n", combinations);
  EXPECT_EQ(combinations, 98) << "every table that Part 2.2 table 2 offers";
}

TEST(AclDevice, EdgeCaseSeveralTargetsOneSilentOneRefusing) {
  sim::Faults silent;
  silent.silent = true;
  sim::Faults refuseThird;
  refuseThird.refuseSets = {3};
  SimAgent a(1, "TVR4820"), b(2, "TVR4820", silent), c(3, "TVR4820", refuseThird), d(4, "TVR4820");
  ASSERT_TRUE(a.ok() && b.ok() && c.ok() && d.ok());
  const ModelEntry& m = M("TVR4820");
  std::array<AclRecordList, 4> lists;
  for (int i = 1; i <= 4; ++i) {
    RuleFields f;
    f.profileId = "2";
    f.accessId = std::to_string(i);
    f.ports = std::to_string(i);
    lists[0].push_back(BuildRule(AclType::kEthernet, AclOwner::kAcl, m, f));
  }
  std::vector<std::string> words;
  std::vector<int> progress;
  int deletes = 0;
  AclApplyCallbacks cb;
  cb.result = [&](size_t i, const char* w) {
    EXPECT_EQ(i, words.size());
    words.push_back(w);
  };
  cb.progress = [&](int p) { progress.push_back(p); };
  cb.deleteStaged = [&] {
    EXPECT_EQ(words.size(), 4u) << "staged files deleted after the last target";
    ++deletes;
  };
  ApplyRules({Target(a, "TVR4820"), Target(b, "TVR4820"), Target(c, "TVR4820"), Target(d, "TVR4820")},
             AclOwner::kAcl, lists, cb, kTimeout);
  EXPECT_EQ(words, (std::vector<std::string>{"Succeed", "Fail", "Fail", "Succeed"}));
  EXPECT_EQ(deletes, 1);
  // Progress: 0, then (r * d * 100 / 4) / 4 for r = 1..4 and d = 1..4.
  std::vector<int> want{0};
  for (int dd = 1; dd <= 4; ++dd)
    for (int r = 1; r <= 4; ++r) want.push_back(r * dd * 100 / 4 / 4);
  EXPECT_EQ(progress, want);
  // Per-target request sequences: four record SETs and the closing request on the good ones;
  // the refusing one still gets its remaining rules and no closing request; the silent one
  // answers nothing and gets no closing request (each record SET went out once).
  auto oids = [](const std::vector<sim::SetEvent>& ev) {
    std::vector<std::string> s;
    for (const auto& e : ev) s.push_back(snmp::FormatOid(e.varbinds.back().name));
    return s;
  };
  const std::string rs = "1.3.6.1.4.1.32473.12.9.3.1.1.15.2.";
  const std::vector<std::string> records{rs + "1", rs + "2", rs + "3", rs + "4"};
  std::vector<std::string> withClosing = records;
  withClosing.push_back("1.3.6.1.4.1.32473.12.1.2.6.0");
  EXPECT_EQ(oids(a.sets()), withClosing);
  EXPECT_EQ(oids(d.sets()), withClosing);
  EXPECT_EQ(oids(c.sets()), records);
  EXPECT_EQ(c.sets()[2].errorStatus, snmp::kGenErr);
  EXPECT_EQ(b.requests(), 4u) << "one SET per record, no retry, no closing request";
  EXPECT_TRUE(b.sets().empty());
  EXPECT_EQ(a.sets()[4].varbinds[0].value.integer, 5) << "TVR4820 closes with 5";
}

TEST(AclDevice, EdgeCaseTwoTargetsOfOneModelGetTheSameRequests) {
  SimAgent a(5, "TVG5690", {}, "r1", "w1"), b(6, "TVG5690", {}, "r2", "w2");
  ASSERT_TRUE(a.ok() && b.ok());
  const ModelEntry& m = M("TVG5690");
  std::array<AclRecordList, 4> lists;
  for (AclType t : kTypes) lists[static_cast<size_t>(t)] = Profiles(m, AclOwner::kCpu, t);
  std::vector<std::string> words;
  AclApplyCallbacks cb;
  cb.result = [&](size_t, const char* w) { words.push_back(w); };
  ApplyProfiles({AclTarget{a.address(), "r1", "w1", "TVG5690"}, AclTarget{b.address(), "r2", "w2", "TVG5690"}},
                AclOwner::kCpu, lists, cb, kTimeout);
  EXPECT_EQ(words, (std::vector<std::string>{"Success", "Success"}));
  auto sa = a.sets(), sb = b.sets();
  ASSERT_EQ(sa.size(), 9u) << "4 types x 2 profiles and the closing request";
  ASSERT_EQ(sa.size(), sb.size());
  for (size_t i = 0; i < sa.size(); ++i) EXPECT_EQ(sa[i].varbinds, sb[i].varbinds) << i;
  EXPECT_EQ(snmp::FormatOid(sa.back().varbinds[0].name), "1.3.6.1.4.1.32473.12.1.2.18.4.0");
  EXPECT_EQ(sa.back().varbinds[0].value.integer, 4) << "TVG5690 after CPU profiles";
  // Order Ethernet, IPv4, IPv6, packet content.
  const char* tables[] = {".4.1.1.", ".4.1.1.", ".4.2.1.", ".4.2.1.", ".4.4.1.", ".4.4.1.", ".4.3.1.", ".4.3.1."};
  for (size_t i = 0; i < 8; ++i)
    EXPECT_NE(snmp::FormatOid(sa[i].varbinds[0].name).find(tables[i]), std::string::npos) << i;
}

TEST(AclDevice, EdgeCaseEmptyListsSendOnlyTheClosingRequest) {
  sim::Faults refuse;
  refuse.refuseSets = {1};
  SimAgent ok(7, "TVR4510"), bad(8, "TVR4510", refuse);
  ASSERT_TRUE(ok.ok() && bad.ok());
  std::vector<std::string> words;
  AclApplyCallbacks cb;
  cb.result = [&](size_t, const char* w) { words.push_back(w); };
  ApplyProfiles({Target(ok, "TVR4510"), Target(bad, "TVR4510")}, AclOwner::kAcl, {}, cb, kTimeout);
  EXPECT_EQ(words, (std::vector<std::string>{"Succeed", "Fail"}));
  ASSERT_EQ(ok.sets().size(), 1u);
  EXPECT_EQ(snmp::FormatOid(ok.sets()[0].varbinds[0].name), "1.3.6.1.4.1.32473.12.1.2.6.0");
  EXPECT_EQ(ok.sets()[0].varbinds[0].value.integer, 3) << "TVR4510 closes with 3";
}

// Part 5.4's table of result words, by page and ACL kind: closing answered, refused, unanswered.
TEST(AclDevice, ResultWordsOfPart54) {
  struct Row {
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
  for (const Row& row : rows) {
    sim::Faults refuse, drop;
    refuse.refuseSets = {1};
    drop.dropSets = {1};
    SimAgent a(host++, "TVG5240-10"), b(host++, "TVG5240-10", refuse), c(host++, "TVG5240-10", drop);
    ASSERT_TRUE(a.ok() && b.ok() && c.ok());
    std::vector<std::string> words;
    AclApplyCallbacks cb;
    cb.result = [&](size_t, const char* w) { words.push_back(w); };
    std::vector<AclTarget> targets{Target(a, "TVG5240-10"), Target(b, "TVG5240-10"), Target(c, "TVG5240-10")};
    if (row.kind == AclKind::kProfiles)
      ApplyProfiles(targets, row.owner, {}, cb, kTimeout);
    else
      ApplyRules(targets, row.owner, {}, cb, kTimeout);
    EXPECT_EQ(words, (std::vector<std::string>{row.ok, row.error, row.none}));
    SnmpSetResult none;
    EXPECT_STREQ(ApplyResultWord(row.kind, row.owner, false, none), "Fail") << "a failed record: no closing";
  }
}

TEST(AclDevice, EdgeCaseFirstOfTwoSwitchesSilentSecondStillConfigured) {
  sim::Faults silent;
  silent.silent = true;
  SimAgent a(9, "TVR4512", silent), b(10, "TVR4512");
  ASSERT_TRUE(a.ok() && b.ok());
  std::array<AclRecordList, 4> lists;
  lists[0] = Profiles(M("TVR4512"), AclOwner::kCpu, AclType::kEthernet);
  std::vector<std::string> words;
  AclApplyCallbacks cb;
  cb.result = [&](size_t, const char* w) { words.push_back(w); };
  ApplyProfiles({Target(a, "TVR4512"), Target(b, "TVR4512")}, AclOwner::kCpu, lists, cb, kTimeout);
  EXPECT_EQ(words, (std::vector<std::string>{"Fail", "Success"}));
  EXPECT_EQ(b.sets().size(), 3u);
}

TEST(AclDevice, EdgeCaseTvg5470SendsNoPacketContentProfiles) {
  SimAgent a(11, "TVG5470");
  ASSERT_TRUE(a.ok());
  std::array<AclRecordList, 4> lists;
  lists[3] = {{"1", "", "", "", "", "", "4"}};
  lists[0] = Profiles(M("TVG5470"), AclOwner::kAcl, AclType::kEthernet);
  ApplyProfiles({Target(a, "TVG5470")}, AclOwner::kAcl, lists, {}, kTimeout);
  ASSERT_EQ(a.sets().size(), 3u) << "two Ethernet profiles and the closing request";
}

TEST(AclDevice, EdgeCaseEmptySwitchEveryListEmptyEveryIdFree) {
  SimAgent a(12, "TVR4060");
  ASSERT_TRUE(a.ok());
  for (AclOwner owner : {AclOwner::kAcl, AclOwner::kCpu}) {
    AclReadOptions o;
    o.timeoutMs = kTimeout;
    AclReadResult r = ReadProfiles(Target(a, "TVR4060"), owner, o);
    for (const AclRecordList& l : r.records) EXPECT_TRUE(l.empty());
    EXPECT_TRUE(r.lines.empty());
    EXPECT_EQ(FreeProfileIds(r, 256).size(), 256u);
  }
}

TEST(AclDevice, EdgeCaseProtocolMaskReadsWithATrailingBlankAndWritesBack) {
  SimAgent a(13, "TVG5240-10");
  ASSERT_TRUE(a.ok());
  AclTarget t = Target(a, "TVG5240-10");
  const ModelEntry& m = M("TVG5240-10");
  ProfileFields p;
  p.profileId = "4";
  p.protocolGroup = 7;
  p.protocolChecked = true;
  p.protocolId = "17";
  p.userMaskChecked = true;
  p.userMask = "0000FFFF";
  auto table = TableLayout(m, AclOwner::kAcl, AclKind::kProfiles, AclType::kIPv4);
  ASSERT_TRUE(SetRecord(t, *table, BuildProfile(AclType::kIPv4, AclOwner::kAcl, m, p), kTimeout));
  AclReadOptions o;
  o.timeoutMs = kTimeout;
  AclReadResult r = ReadProfiles(t, AclOwner::kAcl, o);
  ASSERT_EQ(r.records[1].size(), 1u);
  AclRecord back = r.records[1][0];
  EXPECT_EQ(back[17], "0000FFFF ");
  EXPECT_EQ(back[19], "1") << "owner read from the device";
  EXPECT_EQ(back[20], "128");
  std::vector<int> free = FreeProfileIds(r, 6);
  EXPECT_EQ(free, (std::vector<int>{1, 2, 3, 5, 6}));
  // Writing it back (as another profile) sends the first eight hex digits.
  back[0] = "6";
  a.clearSets();
  ASSERT_TRUE(SetRecord(t, *table, back, kTimeout));
  bool found = false;
  const auto sets = a.sets();
  ASSERT_FALSE(sets.empty());
  for (const auto& vb : sets[0].varbinds)
    if (snmp::FormatOid(vb.name) == "1.3.6.1.4.1.32473.12.9.2.2.1.18.6") {
      found = true;
      EXPECT_EQ(vb.value.bytes, std::string("\x00\x00\xFF\xFF", 4));
    }
  EXPECT_TRUE(found);
}

TEST(AclDevice, EdgeCaseCpuReadLabelsCpuAclOrdinaryReadLabelsAcl) {
  SimAgent a(14, "TVR4820");
  ASSERT_TRUE(a.ok());
  AclTarget t = Target(a, "TVR4820");
  const ModelEntry& m = M("TVR4820");
  std::array<AclRecordList, 4> lists;
  lists[0] = Profiles(m, AclOwner::kCpu, AclType::kEthernet);
  ApplyProfiles({t}, AclOwner::kCpu, lists, {}, kTimeout);
  lists[0] = {Profiles(m, AclOwner::kAcl, AclType::kEthernet)[0]};
  ApplyProfiles({t}, AclOwner::kAcl, lists, {}, kTimeout);
  AclReadOptions o;
  o.timeoutMs = kTimeout;
  std::vector<std::string> sinkWords;
  o.sink = [&](AclType, const AclRecord&, const AclSummaryLine& l) { sinkWords.push_back(l.ownerWord); };
  AclReadResult cpu = ReadProfiles(t, AclOwner::kCpu, o);
  ASSERT_EQ(cpu.lines.size(), 2u);
  for (const auto& l : cpu.lines) EXPECT_EQ(l.ownerWord, "CPU ACL");
  EXPECT_EQ(sinkWords, (std::vector<std::string>{"CPU ACL", "CPU ACL"}));
  AclReadResult ord = ReadProfiles(t, AclOwner::kAcl, o);
  ASSERT_EQ(ord.lines.size(), 1u);
  EXPECT_EQ(ord.lines[0].ownerWord, "ACL");
  EXPECT_EQ(ord.lines[0].typeWord, "Ethernet");
  EXPECT_EQ(ord.lines[0].profileId, "1");
}

TEST(AclDevice, ReadingStopsWhenAskedAndUnknownModelsReadNothing) {
  SimAgent a(15, "TVG5240-10");
  ASSERT_TRUE(a.ok());
  std::atomic<bool> stop{true};
  AclReadOptions o;
  o.timeoutMs = kTimeout;
  o.stop = &stop;
  EXPECT_TRUE(ReadProfiles(Target(a, "TVG5240-10"), AclOwner::kAcl, o).lines.empty());
  EXPECT_EQ(a.requests(), 0u);
  o.stop = nullptr;
  EXPECT_TRUE(ReadProfiles(Target(a, "TVR-4512"), AclOwner::kAcl, o).lines.empty());
  EXPECT_TRUE(ReadRules(Target(a, "tvg5240-10"), AclOwner::kAcl, AclType::kEthernet, o).lines.empty());
  EXPECT_EQ(a.requests(), 0u);
}

TEST(AclDevice, DeleteRowDestroysOneProfileOrRule) {
  SimAgent a(16, "TVG5690");
  ASSERT_TRUE(a.ok());
  AclTarget t = Target(a, "TVG5690");
  const ModelEntry& m = M("TVG5690");
  std::array<AclRecordList, 4> lists;
  lists[0] = Rules(m, AclOwner::kCpu, AclType::kEthernet);
  ApplyRules({t}, AclOwner::kCpu, lists, {}, kTimeout);
  AclReadOptions o;
  o.timeoutMs = kTimeout;
  ASSERT_EQ(ReadRules(t, AclOwner::kCpu, AclType::kEthernet, o).lines.size(), 2u);
  const std::string rs = RowStatusColumnOid(m, AclOwner::kCpu, AclKind::kRules, AclType::kEthernet);
  EXPECT_EQ(rs, "1.3.6.1.4.1.32473.12.9.5.1.1.10");
  a.clearSets();
  EXPECT_TRUE(DeleteRow(t, rs, "3", "100", kTimeout));
  ASSERT_EQ(a.sets().size(), 1u);
  EXPECT_EQ(snmp::FormatOid(a.sets()[0].varbinds[0].name), "1.3.6.1.4.1.32473.12.9.5.1.1.10.3.100");
  EXPECT_EQ(a.sets()[0].varbinds[0].value, snmp::Value::Integer(6));
  auto left = ReadRules(t, AclOwner::kCpu, AclType::kEthernet, o);
  ASSERT_EQ(left.lines.size(), 1u);
  EXPECT_EQ(left.lines[0].accessId, "1");
  // Part 5.5: a delete without a selection (empty index) is refused unsent.
  a.clearSets();
  EXPECT_FALSE(DeleteRow(t, rs, "", "", kTimeout));
  EXPECT_FALSE(DeleteRow(t, rs, "3", "1x", kTimeout));
  EXPECT_TRUE(a.sets().empty());
}

TEST(AclDevice, BadInputNeverReachesASwitch) {
  SimAgent a(17, "TVG5240-10");
  ASSERT_TRUE(a.ok());
  AclTarget t = Target(a, "TVG5240-10");
  const ModelEntry& m = M("TVG5240-10");
  auto table = TableLayout(m, AclOwner::kAcl, AclKind::kRules, AclType::kEthernet);
  // Each invalid field is refused by ValidateRule with its message before any record exists.
  RuleFields f;
  f.profileId = "1";
  f.accessId = "1";
  f.ports = "1";
  struct Bad {
    std::string RuleFields::*field;
    const char* text;
    const char* message;
  } bad[] = {
      {&RuleFields::p8021, "8", "8021p value range is 0 to 7"},
      {&RuleFields::accessId, "201", "Access ID range is error"},
      {&RuleFields::accessId, "", "Access ID  can not null!"},
      {&RuleFields::srcMac, "00-A0-C9-FF-EE-01", "Invalid MAC Address !"},
      {&RuleFields::priority, "8", "Priority value range is 0 to 7"},
      {&RuleFields::rxRate, "156250", "Rxrate range is not error"},
      {&RuleFields::dstMac, "00A0C9FFEE0", "Invalid MAC Address !"},
      {&RuleFields::ethertype, "86DX", "Invalid Ethertype value!"},
      {&RuleFields::ports, "1,11", "Port  is error!"},
      {&RuleFields::ports, "", "Port  is error!"},
      {&RuleFields::replaceDscp, "64", "Dscp value range is 0 to 63"},
      {&RuleFields::replaceTos, "8", "Replace ToS Precedence value range is 0 to 7"},
  };
  AclRecordList pending;
  for (const Bad& b : bad) {
    RuleFields g = f;
    g.*(b.field) = b.text;
    const char* msg = ValidateRule(AclType::kEthernet, AclOwner::kAcl, m, g);
    ASSERT_NE(msg, nullptr) << b.text;
    EXPECT_STREQ(msg, b.message) << b.text;
    if (msg == nullptr) AddRule(pending, BuildRule(AclType::kEthernet, AclOwner::kAcl, m, g));
  }
  std::array<AclRecordList, 4> lists;
  lists[0] = pending;
  // Records whose IDs cannot name an instance are not sent either; the device is reported Fail.
  lists[0].push_back({"1.5", "1"});
  lists[0].push_back({"", ""});
  std::vector<std::string> words;
  AclApplyCallbacks cb;
  cb.result = [&](size_t, const char* w) { words.push_back(w); };
  ApplyRules({t}, AclOwner::kAcl, lists, cb, kTimeout);
  EXPECT_EQ(words, std::vector<std::string>{"Fail"});
  EXPECT_EQ(a.requests(), 0u) << "nothing reached the switch";
  EXPECT_FALSE(SetRecord(t, *table, AclRecord{"1", "1; drop"}, kTimeout));
  EXPECT_EQ(a.requests(), 0u);
}
