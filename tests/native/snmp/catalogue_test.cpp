// The model catalogue: exact lookup and the range checks the rule dialogs rely on. The tables
// themselves are checked through behaviour: the round trip against the simulated switches and
// the requests pinned on the wire (tests/native/acl).
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "snmp/model_catalogue.h"

TEST(Catalogue, LookupIsExactCaseSensitiveAndWhole) {
  ASSERT_NE(LookupSupportedModel("TVR4512"), nullptr);
  ASSERT_NE(LookupModel("TVR-4512"), nullptr) << "a known text of its own";
  EXPECT_FALSE(LookupModel("TVR-4512")->supported);
  EXPECT_EQ(LookupSupportedModel("TVR-4512"), nullptr);
  for (const char* bad : {"", "tvr4512", "TVR4512 ", " TVR4512", "TVR451", "TVR45120", "TVG5240", "TVG5240-1",
                          "TVG5240-10\n", "Tvg5690"})
    EXPECT_EQ(LookupModel(bad), nullptr) << "'" << bad << "'";
  EXPECT_EQ(LookupModel(std::string_view("TVR4512\0x", 9)), nullptr);
  std::set<std::string> texts;
  for (const ModelEntry* m = CatalogueBegin(); m != CatalogueEnd(); ++m) {
    EXPECT_TRUE(texts.insert(m->typeText).second) << "duplicate " << m->typeText;
    EXPECT_EQ(LookupModel(m->typeText), m);
  }
}

// The limits where the models differ: Access IDs by owner and rule type, Rx Rate (-1 as type).
TEST(Catalogue, AccessIdAndRxRateLimitsWhereModelsDiffer) {
  const AclOwner O = AclOwner::kAcl, C = AclOwner::kCpu;
  const AclType E = AclType::kEthernet, V4 = AclType::kIPv4, V6 = AclType::kIPv6, PC = AclType::kPacketContent;
  const struct {
    const char* model;
    AclOwner owner;
    int type;  // an AclType, or -1 for the Rx Rate
    const char* text;
    RangeCheck want;
  } cases[] = {
      {"TVR4510", O, int(V6), "0", RangeCheck::kInRange},     {"TVR4510", C, int(V6), "65535", RangeCheck::kInRange},
      {"TVR4510", O, int(V6), "65536", RangeCheck::kOutOfRange}, {"TVR4510", O, int(E), "0", RangeCheck::kOutOfRange},
      {"TVG5240-10", O, int(E), "200", RangeCheck::kInRange}, {"TVG5240-10", O, int(E), "201", RangeCheck::kOutOfRange},
      {"TVG5470", C, int(PC), "200", RangeCheck::kInRange},   {"TVG5470", C, int(PC), "201", RangeCheck::kOutOfRange},
      {"TVG5470", C, int(V4), "100", RangeCheck::kInRange},   {"TVG5470", C, int(V4), "101", RangeCheck::kOutOfRange},
      {"TVG5690", C, int(V4), "128", RangeCheck::kInRange},   {"TVG5690", C, int(E), "101", RangeCheck::kOutOfRange},
      {"TVR4060", C, int(V4), "5", RangeCheck::kInRange},     {"TVR4060", C, int(V4), "6", RangeCheck::kOutOfRange},
      {"TVR4060", C, int(PC), "6", RangeCheck::kOutOfRange},  {"TVR4060", C, int(E), "65535", RangeCheck::kInRange},
      {"TVR4060", O, int(V4), "6", RangeCheck::kInRange},     {"TVR4512", O, int(PC), "129", RangeCheck::kOutOfRange},
      {"TVR4512", C, int(E), "100", RangeCheck::kInRange},    {"TVR4512", C, int(E), "101", RangeCheck::kOutOfRange},
      {"TVR4060", O, -1, "0", RangeCheck::kInRange},          {"TVR4060", O, -1, "63", RangeCheck::kOutOfRange},
      {"TVR4060", O, -1, "64", RangeCheck::kInRange},         {"TVR4060", O, -1, "1024000", RangeCheck::kInRange},
      {"TVR4060", O, -1, "1024001", RangeCheck::kOutOfRange}, {"TVR4060", O, -1, "99999999999", RangeCheck::kOutOfRange},
      {"TVG5690", O, -1, "0", RangeCheck::kOutOfRange},       {"TVG5690", O, -1, "156249", RangeCheck::kInRange},
      {"TVG5470", O, -1, "156250", RangeCheck::kOutOfRange},  {"TVR4512", O, -1, "15625", RangeCheck::kOutOfRange},
      {"TVR4512", O, -1, "", RangeCheck::kEmpty},             {"TVR4820", O, -1, "1", RangeCheck::kOutOfRange},
  };
  for (const auto& c : cases) {
    const ModelEntry* m = LookupSupportedModel(c.model);
    ASSERT_NE(m, nullptr) << c.model;
    RangeCheck got = c.type < 0 ? CheckRxRate(*m, c.text) : CheckAccessId(*m, c.owner, AclType(c.type), c.text);
    EXPECT_EQ(got, c.want) << c.model << " owner " << int(c.owner) << " type " << c.type << " '" << c.text << "'";
  }
}

TEST(Catalogue, RangeCheckRule) {
  EXPECT_EQ(CheckRange("", 1, 10), RangeCheck::kEmpty);
  EXPECT_EQ(CheckRange("12ab", 1, 12), RangeCheck::kInRange) << "conversion stops at the first non-digit";
  EXPECT_EQ(CheckRange("12ab", 1, 11), RangeCheck::kOutOfRange);
  EXPECT_EQ(CheckRange("ab", 1, 10), RangeCheck::kOutOfRange) << "no digits reads as 0";
  EXPECT_EQ(CheckRange("ab", 64, 100, true), RangeCheck::kInRange) << "0 besides the range";
  EXPECT_EQ(CheckRange("-1", 0, 10), RangeCheck::kOutOfRange);
  EXPECT_EQ(ParseLeadingDecimal("  +42x"), 42);
  EXPECT_EQ(ParseLeadingDecimal("-7"), -7);
  EXPECT_GT(ParseLeadingDecimal("999999999999999999999999"), 1000000000L);
}
