// The plain logic behind the device list's sorting, page 0's target selection and Add
// profile's choices. (The navigation table is driven page by page by the GUI flows.)
#include "acl/page_logic.h"

#include <gtest/gtest.h>

using namespace acl::pages;

// --- sorting -------------------------------------------------------------------------------

TEST(DeviceListSort, ColumnsCompareAsTheirContent) {
    EXPECT_LT(CompareDottedAddress("127.0.0.9", "127.0.0.10"), 0) << "not as strings";
    EXPECT_GT(CompareDottedAddress("10.0.0.2", "9.255.255.255"), 0);
    EXPECT_EQ(0, CompareDottedAddress("1.2.3.4.5", "1.2.3.4.9")) << "a fifth part is not looked at";
    EXPECT_LT(CompareDottedAddress("1.2.3", "1.2.3.1"), 0) << "a missing part counts as 0";
    EXPECT_EQ(0, CompareNumberText("abc", "0")) << "text that is not a number is 0";
    EXPECT_LT(CompareNumberText("-3", "2"), 0);
    EXPECT_LT(CompareDeviceColumn(kColName, "core-sw10", "core-sw9"), 0);
    EXPECT_LT(CompareDeviceColumn(kColReadCommunity, "Public", "public"), 0) << "case-sensitive";
    EXPECT_GT(CompareDeviceColumn(kColIP, "127.0.0.10", "127.0.0.9"), 0);
    EXPECT_GT(CompareDeviceColumn(kColDeviceID, "10", "9"), 0);
    EXPECT_LT(CompareProfileColumn(0, "9", "10"), 0) << "the profile ID compares as a number";
    EXPECT_GT(CompareProfileColumn(1, "9", "10"), 0) << "other columns compare as strings";
}

// --- target selection ------------------------------------------------------------------------

namespace {
CheckedDevice Dev(const std::string& type, const std::string& ip) { return {type, ip, "public", "private"}; }
const std::vector<std::string> kSupported = {"TVR4820", "TVG5690", "TVG5240-10"};
// n checked rows of one type, then `more`.
std::vector<CheckedDevice> Rows(int n, std::vector<CheckedDevice> more = {}) {
    std::vector<CheckedDevice> rows;
    for (int i = 0; i < n; ++i) rows.push_back(Dev("TVR4820", "127.0.1." + std::to_string(i)));
    rows.insert(rows.end(), more.begin(), more.end());
    return rows;
}
}  // namespace

// Page 0's rules in their order: something checked, a supported type (exact text), the same
// type on every row, then at most ten targets; the rows before a refused one stay targets.
TEST(TargetSelection, TypeRulesInOrderThenTheCount) {
    const struct {
        std::vector<CheckedDevice> rows;
        TargetVerdict verdict;
        size_t kept;
    } cases[] = {
        {{}, TargetVerdict::kNoDevice, 0},
        {Rows(2), TargetVerdict::kAccepted, 2},
        {Rows(1, {Dev("TVG5690", "127.0.0.4")}), TargetVerdict::kDifferentType, 1},
        {{Dev("TVG-5240", "127.0.0.9"), Dev("TVR4820", "127.0.0.2")}, TargetVerdict::kNotSupported, 0},
        {{Dev("tvr4820", "1.1.1.1")}, TargetVerdict::kNotSupported, 0},
        {{Dev("TVR482", "1.1.1.1")}, TargetVerdict::kNotSupported, 0},
        {Rows(10), TargetVerdict::kAccepted, 10},
        {Rows(11), TargetVerdict::kTooManyDevices, 10},
        {Rows(11, {Dev("TVG5690", "127.0.2.1")}), TargetVerdict::kDifferentType, 10},
    };
    for (const auto& c : cases) {
        auto s = SelectTargets(c.rows, kSupported);
        EXPECT_EQ(c.verdict, s.verdict) << c.rows.size();
        ASSERT_EQ(c.kept, s.targets.size()) << c.rows.size();
        for (size_t i = 0; i < c.kept; ++i) EXPECT_EQ(c.rows[i].strIP, s.targets[i].strIP);
    }
    EXPECT_EQ(11, SelectTargets(Rows(11), kSupported).nCheckedCount);
    EXPECT_EQ("private", SelectTargets(Rows(1), kSupported).targets.at(0).strWriteCommunity);
}

// --- "Add profile" ----------------------------------------------------------------------

TEST(AddProfile, NameIsCheckedBeforeTheId) {
    EXPECT_EQ(AddProfileVerdict::kNoProfileName, CheckAddProfile("TVR4512", 1, "", ""));
    EXPECT_EQ(AddProfileVerdict::kNoProfileId, CheckAddProfile("TVR4512", 1, "web", ""));
    EXPECT_EQ(AddProfileVerdict::kNoProfileId, CheckAddProfile("TVR4512", 2, "", "")) << "CPU: no name";
    EXPECT_EQ(AddProfileVerdict::kNoProfileId, CheckAddProfile("TVG5690", 1, "", ""));
    EXPECT_EQ(AddProfileVerdict::kOk, CheckAddProfile("TVG5690", 1, "", "3"));
    EXPECT_EQ(AddProfileVerdict::kOk, CheckAddProfile("TVR4512", 1, "web", "3"));
}

// Which IDs a switch's profiles take from the drop-down, opened again and again, is the
// add-profile flow's; here the edges it does not reach.
TEST(AddProfile, OnlyTheCountedIdsAreUsedAndCellsReadAsTheirLeadingNumber) {
    EXPECT_TRUE(UsedProfileIdItems({"1", "2"}, {2}, 0).empty()) << "only the first N entries count";
    EXPECT_EQ(7, CellToInteger("7"));
    EXPECT_EQ(12, CellToInteger(" 12ab"));
    EXPECT_EQ(0, CellToInteger("x"));
}
