// Part 2.2: the model catalogue, its tables and its range-check rule. The "Edge cases worth
// testing" of Part 2.2 are the tests marked "Part 2.2 edge case".
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "snmp/model_catalogue.h"

namespace {

const ModelEntry& M(const char* text) {
  const ModelEntry* m = LookupModel(text);
  EXPECT_NE(m, nullptr) << text;
  static ModelEntry none{};
  return m ? *m : none;
}

const AclType kTypes[] = {AclType::kEthernet, AclType::kIPv4, AclType::kIPv6, AclType::kPacketContent};

std::string Types(const ModelEntry& m, AclOwner owner, bool rules) {
  const char* names[] = {"E", "4", "6", "P"};
  std::string s;
  for (AclType t : kTypes)
    if (rules ? m.offersRuleType(owner, t) : m.offersProfileType(owner, t)) s += names[static_cast<int>(t)];
  return s;
}

}  // namespace

// Part 2.2 edge case.
TEST(Catalogue, DashedAndLowerCaseTextsAreDifferentKeys) {
  ASSERT_NE(LookupModel("TVR4512"), nullptr);
  EXPECT_TRUE(LookupModel("TVR4512")->supported);
  ASSERT_NE(LookupModel("TVR-4512"), nullptr);
  EXPECT_FALSE(LookupModel("TVR-4512")->supported);
  EXPECT_EQ(LookupModel("tvr4512"), nullptr);
  EXPECT_EQ(LookupSupportedModel("TVR-4512"), nullptr);
  EXPECT_EQ(LookupSupportedModel("TVR4512"), LookupModel("TVR4512"));
}

TEST(Catalogue, LookupIsExactWholeTextNoTrimNoPrefix) {
  for (const char* bad : {"", "TVR4512 ", " TVR4512", "TVR451", "TVR45120", "TVG5240", "TVG5240-1",
                          "TVG5240-10\n", "Tvg5690"})
    EXPECT_EQ(LookupModel(bad), nullptr) << "'" << bad << "'";
  EXPECT_EQ(LookupModel(std::string_view("TVR4512\0x", 9)), nullptr);
  std::set<std::string> texts;
  for (const ModelEntry* m = CatalogueBegin(); m != CatalogueEnd(); ++m) {
    EXPECT_TRUE(texts.insert(m->typeText).second) << "duplicate " << m->typeText;
    EXPECT_EQ(LookupModel(m->typeText), m);
  }
  EXPECT_EQ(texts.size(), 16u);
}

TEST(Catalogue, Table1SupportLayoutPortsShapes) {
  struct Row { const char* text; MibLayout layout; int ports; const char* ordRules; PacketShape shape; };
  const Row rows[] = {
      {"TVG5240-10", MibLayout::kLayout2, 10, "E46P", PacketShape::kChunks4},
      {"TVG5470", MibLayout::kLayout2, 24, "E46", PacketShape::kNone},
      {"TVG5690", MibLayout::kLayout2, 50, "E46P", PacketShape::kChunks4},
      {"TVR4060", MibLayout::kLayout2, 26, "E4P", PacketShape::kOffsetItems},
      {"TVR4510", MibLayout::kLayout1, 26, "E4P", PacketShape::kBlock16},
      {"TVR4820", MibLayout::kLayout2, 28, "E46P", PacketShape::kBlock16},
      {"TVR4512", MibLayout::kLayout2, 28, "E46P", PacketShape::kChunks4},
  };
  for (const Row& r : rows) {
    const ModelEntry& m = M(r.text);
    EXPECT_TRUE(m.supported) << r.text;
    EXPECT_EQ(m.mibLayout, r.layout) << r.text;
    EXPECT_EQ(m.portCount, r.ports) << r.text;
    EXPECT_EQ(Types(m, AclOwner::kAcl, true), r.ordRules) << r.text;
    EXPECT_EQ(m.packetShape(AclOwner::kAcl), r.shape) << r.text;
    EXPECT_EQ(m.packetShape(AclOwner::kCpu), PacketShape::kBlock16) << r.text << ": CPU ACL always Block16";
  }
  for (const char* text : {"TVG-5240", "TVG-5140", "TVG-5440", "TVG-5640", "TVG5580", "TVR-4510",
                           "TVR-4820", "TVR-4512", "TVR-4060"}) {
    const ModelEntry& m = M(text);
    EXPECT_FALSE(m.supported) << text;
    // An unsupported entry has no ACL function: no types, no ranges, no closing request.
    for (AclOwner o : {AclOwner::kAcl, AclOwner::kCpu}) {
      for (AclType t : kTypes) {
        EXPECT_FALSE(m.offersRuleType(o, t));
        EXPECT_FALSE(m.offersProfileType(o, t));
        EXPECT_FALSE(m.accessIdRange(o, t).has_value());
      }
      EXPECT_FALSE(m.closingRequest(o, AclKind::kProfiles).has_value());
      EXPECT_EQ(m.packetShape(o), PacketShape::kNone);
    }
    EXPECT_FALSE(m.rxRange().has_value());
  }
}

TEST(Catalogue, Table2ProfileAndCpuTypes) {
  struct Row { const char* text; const char* ordProfiles; const char* cpuProfiles; const char* cpuRules; PacketShape profileShape; };
  const Row rows[] = {
      {"TVG5240-10", "E46P", "E46P", "E46P", PacketShape::kChunks4},
      {"TVG5470", "E46", "E4P", "E4P", PacketShape::kNone},
      {"TVG5690", "E46P", "E46P", "E46P", PacketShape::kChunks4},
      {"TVR4060", "E4P", "E4P", "E4P", PacketShape::kBlock16},
      {"TVR4510", "E4P", "E4P", "E4P", PacketShape::kBlock16},
      {"TVR4820", "E46P", "E4P", "E4P", PacketShape::kBlock16},
      {"TVR4512", "E46P", "E46P", "E46P", PacketShape::kChunks4},
  };
  for (const Row& r : rows) {
    const ModelEntry& m = M(r.text);
    EXPECT_EQ(Types(m, AclOwner::kAcl, false), r.ordProfiles) << r.text;
    EXPECT_EQ(Types(m, AclOwner::kCpu, false), r.cpuProfiles) << r.text;
    EXPECT_EQ(Types(m, AclOwner::kCpu, true), r.cpuRules) << r.text;
    EXPECT_EQ(m.packetShape(AclOwner::kAcl, AclKind::kProfiles), r.profileShape) << r.text;
  }
  // TVR4060: OffsetItems rules against a Block16 profile.
  EXPECT_EQ(M("TVR4060").packetShape(AclOwner::kAcl, AclKind::kRules), PacketShape::kOffsetItems);
  EXPECT_EQ(M("TVR4060").packetShape(AclOwner::kAcl, AclKind::kProfiles), PacketShape::kBlock16);
}

TEST(Catalogue, Table3AccessIdLabelsAndRanges) {
  // {label max} per {Ethernet, IPv4, IPv6, Packet Content}; 0 = no dialog row.
  struct Row { const char* text; long acl[4]; long cpu[4]; };
  const Row rows[] = {
      {"TVG5240-10", {200, 200, 200, 200}, {200, 200, 200, 200}},
      {"TVG5470", {128, 128, 128, 0}, {100, 100, 100, 200}},
      {"TVG5690", {128, 128, 128, 128}, {100, 128, 100, 100}},
      {"TVR4060", {65535, 65535, 65535, 65535}, {65535, 5, 65535, 5}},
      {"TVR4510", {65535, 65535, 65535, 65535}, {65535, 65535, 65535, 65535}},
      {"TVR4820", {65535, 65535, 65535, 65535}, {65535, 65535, 65535, 65535}},
      {"TVR4512", {128, 128, 128, 128}, {100, 100, 100, 100}},
  };
  for (const Row& r : rows) {
    const ModelEntry& m = M(r.text);
    for (int owner = 0; owner < 2; ++owner) {
      for (int t = 0; t < 4; ++t) {
        long max = owner ? r.cpu[t] : r.acl[t];
        auto range = m.accessIdRange(owner ? AclOwner::kCpu : AclOwner::kAcl, kTypes[t]);
        if (max == 0) {
          EXPECT_FALSE(range.has_value()) << r.text;
          continue;
        }
        ASSERT_TRUE(range.has_value()) << r.text << " " << owner << " " << t;
        long min = (std::string(r.text) == "TVR4510" && kTypes[t] == AclType::kIPv6) ? 0 : 1;
        EXPECT_EQ(range->min, min) << r.text;
        EXPECT_EQ(range->max, max) << r.text;
        std::string label = "Access ID(" + std::to_string(min) + "-" + std::to_string(max) + ")";
        EXPECT_EQ(std::string(range->label), label) << r.text << " " << owner << " " << t;
      }
    }
  }
}

// Part 2.2 edge case.
TEST(Catalogue, Tvr4510Ipv6RulesAcceptAccessId0AndNothingElseDoes) {
  for (AclOwner o : {AclOwner::kAcl, AclOwner::kCpu}) {
    EXPECT_EQ(CheckAccessId(M("TVR4510"), o, AclType::kIPv6, "0"), RangeCheck::kInRange);
    EXPECT_EQ(CheckAccessId(M("TVR4510"), o, AclType::kIPv6, "65535"), RangeCheck::kInRange);
    EXPECT_EQ(CheckAccessId(M("TVR4510"), o, AclType::kIPv6, "65536"), RangeCheck::kOutOfRange);
  }
  for (const ModelEntry* m = CatalogueBegin(); m != CatalogueEnd(); ++m) {
    if (!m->supported) continue;
    for (AclOwner o : {AclOwner::kAcl, AclOwner::kCpu})
      for (AclType t : kTypes) {
        auto r = m->accessIdRange(o, t);
        if (!r) continue;
        bool zeroOk = std::string(m->typeText) == "TVR4510" && t == AclType::kIPv6;
        EXPECT_EQ(r->min, zeroOk ? 0 : 1) << m->typeText;
        EXPECT_EQ(CheckAccessId(*m, o, t, "0"), zeroOk ? RangeCheck::kInRange : RangeCheck::kOutOfRange)
            << m->typeText << " " << static_cast<int>(t);
        EXPECT_EQ(CheckAccessId(*m, o, t, "1"), RangeCheck::kInRange);
      }
  }
}

// Part 2.2 edge case.
TEST(Catalogue, Tvg5470CpuPacketContentRulesGoTo200OthersStopAt100) {
  const ModelEntry& m = M("TVG5470");
  EXPECT_EQ(CheckAccessId(m, AclOwner::kCpu, AclType::kPacketContent, "200"), RangeCheck::kInRange);
  EXPECT_EQ(CheckAccessId(m, AclOwner::kCpu, AclType::kPacketContent, "201"), RangeCheck::kOutOfRange);
  for (AclType t : {AclType::kEthernet, AclType::kIPv4, AclType::kIPv6}) {
    EXPECT_EQ(CheckAccessId(m, AclOwner::kCpu, t, "100"), RangeCheck::kInRange);
    EXPECT_EQ(CheckAccessId(m, AclOwner::kCpu, t, "101"), RangeCheck::kOutOfRange);
    EXPECT_EQ(CheckAccessId(m, AclOwner::kCpu, t, "200"), RangeCheck::kOutOfRange);
  }
}

// Part 2.2 edge case.
TEST(Catalogue, Tvr4060CpuIpv4AndPacketContentOnly1To5) {
  const ModelEntry& m = M("TVR4060");
  for (AclType t : {AclType::kIPv4, AclType::kPacketContent}) {
    EXPECT_EQ(CheckAccessId(m, AclOwner::kCpu, t, "1"), RangeCheck::kInRange);
    EXPECT_EQ(CheckAccessId(m, AclOwner::kCpu, t, "5"), RangeCheck::kInRange);
    EXPECT_EQ(CheckAccessId(m, AclOwner::kCpu, t, "6"), RangeCheck::kOutOfRange);
    EXPECT_EQ(std::string(m.accessIdRange(AclOwner::kCpu, t)->label), "Access ID(1-5)");
  }
  EXPECT_EQ(CheckAccessId(m, AclOwner::kCpu, AclType::kEthernet, "65535"), RangeCheck::kInRange);
  EXPECT_EQ(CheckAccessId(m, AclOwner::kCpu, AclType::kEthernet, "6"), RangeCheck::kInRange);
  EXPECT_EQ(CheckAccessId(m, AclOwner::kCpu, AclType::kEthernet, "65536"), RangeCheck::kOutOfRange);
  // The ordinary ACL of the same model is not limited to 5.
  EXPECT_EQ(CheckAccessId(m, AclOwner::kAcl, AclType::kIPv4, "6"), RangeCheck::kInRange);
}

// Part 2.2 edge case.
TEST(Catalogue, Tvr4060RxRateZeroOr64To1024000) {
  const ModelEntry& m = M("TVR4060");
  auto rx = m.rxRange();
  ASSERT_TRUE(rx.has_value());
  EXPECT_STREQ(rx->label, "Rx Rate(0 or 64-1024000)");
  EXPECT_EQ(rx->packetContentLabel, nullptr);
  EXPECT_EQ(CheckRxRate(m, "0"), RangeCheck::kInRange);
  for (int v = 1; v <= 63; ++v) EXPECT_EQ(CheckRxRate(m, std::to_string(v)), RangeCheck::kOutOfRange) << v;
  EXPECT_EQ(CheckRxRate(m, "64"), RangeCheck::kInRange);
  EXPECT_EQ(CheckRxRate(m, "1024000"), RangeCheck::kInRange);
  EXPECT_EQ(CheckRxRate(m, "1024001"), RangeCheck::kOutOfRange);
  EXPECT_EQ(CheckRxRate(m, "99999999999"), RangeCheck::kOutOfRange);
  EXPECT_EQ(CheckRxRate(m, ""), RangeCheck::kEmpty);
}

TEST(Catalogue, Table4RxRates) {
  for (const char* t : {"TVG5240-10", "TVG5470", "TVG5690"}) {
    auto rx = M(t).rxRange();
    ASSERT_TRUE(rx.has_value()) << t;
    EXPECT_STREQ(rx->label, "Rx Rate(1-156249)");
    EXPECT_STREQ(rx->packetContentLabel, "Rx Rate (1-156249)");
    EXPECT_EQ(CheckRxRate(M(t), "0"), RangeCheck::kOutOfRange);
    EXPECT_EQ(CheckRxRate(M(t), "1"), RangeCheck::kInRange);
    EXPECT_EQ(CheckRxRate(M(t), "156249"), RangeCheck::kInRange);
    EXPECT_EQ(CheckRxRate(M(t), "156250"), RangeCheck::kOutOfRange);
  }
  auto rx = M("TVR4512").rxRange();
  ASSERT_TRUE(rx.has_value());
  EXPECT_STREQ(rx->label, "Rx Rate(1-15624)");
  EXPECT_STREQ(rx->packetContentLabel, "Rx Rate (1-15624)");
  EXPECT_EQ(CheckRxRate(M("TVR4512"), "15625"), RangeCheck::kOutOfRange);
  EXPECT_FALSE(M("TVR4510").rxRange().has_value());
  EXPECT_FALSE(M("TVR4820").rxRange().has_value());
}

TEST(Catalogue, Table5ClosingRequests) {
  const char* k6 = "1.3.6.1.4.1.32473.12.1.2.6.0";
  const char* k18 = "1.3.6.1.4.1.32473.12.1.2.18.4.0";
  struct Row { const char* text; const char* oid; int ordProf, cpuProf, ordRules, cpuRules; };
  const Row rows[] = {
      {"TVG5690", k18, 3, 4, 3, 3},    {"TVR4510", k6, 3, 3, 3, 3},
      {"TVG5240-10", k6, 5, 5, 5, 5},  {"TVG5470", k6, 5, 5, 5, 5},
      {"TVR4060", k6, 5, 5, 5, 5},     {"TVR4820", k6, 5, 5, 5, 5},
      {"TVR4512", k6, 5, 5, 5, 5},
  };
  for (const Row& r : rows) {
    const ModelEntry& m = M(r.text);
    auto check = [&](AclOwner o, AclKind k, int v) {
      auto c = m.closingRequest(o, k);
      ASSERT_TRUE(c.has_value()) << r.text;
      EXPECT_STREQ(c->oid, r.oid) << r.text;
      EXPECT_EQ(c->value, v) << r.text << " owner " << static_cast<int>(o) << " kind " << static_cast<int>(k);
    };
    check(AclOwner::kAcl, AclKind::kProfiles, r.ordProf);
    check(AclOwner::kCpu, AclKind::kProfiles, r.cpuProf);
    check(AclOwner::kAcl, AclKind::kRules, r.ordRules);
    check(AclOwner::kCpu, AclKind::kRules, r.cpuRules);
  }
}

TEST(Catalogue, RangeCheckRule) {
  EXPECT_EQ(CheckRange("", 1, 10), RangeCheck::kEmpty);
  EXPECT_EQ(CheckRange("12ab", 1, 12), RangeCheck::kInRange) << "conversion stops at the first non-digit";
  EXPECT_EQ(CheckRange("12ab", 1, 11), RangeCheck::kOutOfRange);
  EXPECT_EQ(CheckRange("ab", 1, 10), RangeCheck::kOutOfRange) << "no digits reads as 0";
  EXPECT_EQ(CheckRange("ab", 64, 100, true), RangeCheck::kInRange) << "0 besides the range";
  EXPECT_EQ(CheckRange("1", 1, 1), RangeCheck::kInRange);
  EXPECT_EQ(CheckRange("-1", 0, 10), RangeCheck::kOutOfRange);
  EXPECT_EQ(ParseLeadingDecimal("  42x"), 42);
  EXPECT_EQ(ParseLeadingDecimal("+7"), 7);
  EXPECT_EQ(ParseLeadingDecimal("-7"), -7);
  EXPECT_EQ(ParseLeadingDecimal(""), 0);
  EXPECT_EQ(ParseLeadingDecimal("007"), 7);
  EXPECT_GT(ParseLeadingDecimal("999999999999999999999999"), 1000000000L);
}
