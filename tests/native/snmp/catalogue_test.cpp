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
