// Plain logic of the wizard's first pages, kept free of windows so that it
// is tested natively (DESIGN.md section 3): column comparisons for sorting the device list,
// the target-selection rules of page 0 and the navigation table of all pages.
#pragma once
#include <cstddef>
#include <string>
#include <vector>

namespace acl::pages {

// ---------------------------------------------------------------------------------------
// Sorting of the device list: a click on a column header sorts by that column.

// Device list columns.
enum DeviceColumn : int {
    kColCheck = 0,
    kColName = 1,
    kColType = 2,
    kColIP = 3,
    kColReadCommunity = 4,
    kColWriteCommunity = 5,
    kColDeviceID = 6,
    kDeviceColumnCount = 7
};

// Dotted addresses part by part as numbers: four parts, then equal. A part that is missing
// or not a number counts as 0 (the system never checks the host's texts).
int CompareDottedAddress(const std::string& a, const std::string& b);
// Decimal numbers, converted as the C library's ASCII-to-integer does.
int CompareNumberText(const std::string& a, const std::string& b);
// Plain byte-wise string comparison.
int CompareText(const std::string& a, const std::string& b);
// The comparison of a device-list column: 3 addresses, 6 numbers, the rest strings.
int CompareDeviceColumn(int column, const std::string& a, const std::string& b);
// The profile lists of Add profile and the Confirmation Page sort column 0 (the profile ID) as numbers, the rest as strings.
int CompareProfileColumn(int column, const std::string& a, const std::string& b);

// Sort direction of the device list: ascending on the first click and toggling on each further click; we count clicks per column, so a click
// on a new column always sorts it ascending and further clicks on it toggle, as users expect.
class SortToggle {
public:
    // Records a click on `column`; returns true for ascending.
    bool Click(int column);
    int Column() const { return m_nColumn; }

private:
    int m_nColumn = -1;
    bool m_bAscending = true;
};

// ---------------------------------------------------------------------------------------
// Target validation (page 0, Next).

inline constexpr int kMaxTargets = 10;  // the sheet's array of `ACLTarget`

struct CheckedDevice {
    std::string strDeviceType;      // column 2
    std::string strIP;              // column 3
    std::string strReadCommunity;   // column 4
    std::string strWriteCommunity;  // column 5
};

enum class TargetVerdict {
    kAccepted,         // move to page 1
    kNoDevice,         // "Please select the device !"
    kNotSupported,     // "Havent't developed the ACL function for the device!"
    kDifferentType,    // "Please select the same device type!"
    kTooManyDevices,   // more than kMaxTargets checked: our own message
};

struct TargetSelection {
    TargetVerdict verdict = TargetVerdict::kNoDevice;
    // The rows stored as targets, in list order; on a refusal those accepted before the
    // failing row, at most kMaxTargets.
    std::vector<CheckedDevice> targets;
    int nCheckedCount = 0;  // every checked row, for the too-many message
};

// Walks the checked rows in list order. The first row's type must be among `supportedTypes`
// (exact, whole string); every further row must have the type of the row before it.
// More than kMaxTargets rows that pass both rules are refused as a whole (never a silent
// cut): the type rules are judged first over all rows, and only a selection that passes them can be refused for its size.
TargetSelection SelectTargets(const std::vector<CheckedDevice>& checkedRows,
                              const std::vector<std::string>& supportedTypes);

// ---------------------------------------------------------------------------------------
// Navigation between all pages.

enum Page : int {
    kPageDeviceList = 0,      // CACLStep0
    kPageAclKind = 1,         // CACLStep1
    kPageSelect = 2,          // CACLselect
    kPageAddProfile = 3,      // CACLStep2
    kPageAddAclProfile = 4,   // CACLStep3
    kPageSelectProfile = 5,   // CACLStep4
    kPageIPv4Profile = 6,     // CACLStep5
    kPageEthProfile = 7,      // CACLSTEP_ETH
    kPageIPv6Profile = 8,     // CACLStep_IPV6
    kPagePacketProfile = 9,   // CACLStep_Packet
    kPageApply = 10,          // CACLApply
    kPageEthRule = 11,        // CACLAddrule
    kPageModifyProfile = 12,  // CACLModifyProfile
    kPageModifyRule = 13,     // CACLModifyRule
    kPageIPv4Rule = 14,       // CACLAddIPv4Rule
    kPageIPv6Rule = 15,       // CACLAddIPv6Rule
    kPageRuleApply = 16,      // CACLRuleApply
    kPagePacketRule = 17,     // CACLAddPacketRule
    kPageCount = 18
};

// How a page leaves by Next or Back.
struct Jump {
    enum Kind {
        kStay,         // the page stays
        kStep,         // the wizard's own step to the neighbouring page (index +1 / -1)
        kDirect,       // activate `nTarget` directly
        kPassing,      // activate `nPassing`, then let the wizard step by one from there
        kFinish,       // the page's Next is the Finish button
    } kind = kStay;
    int nTarget = -1;   // the page the user sees next (-1 for kStay and kFinish)
    int nPassing = -1;  // kPassing only: the page whose activation runs in passing
};

// What the navigation depends on, from the sheet's shared state and the page's choices.
struct NavInput {
    int nActionChoice = 0;     // page 2: 1 create profile, 2 create rule, 3 modify profile, 4 modify rule
    int nProfileChoice = 0;    // page 3: 1 Ethernet, 2 IPv4, 3 IPv6, 4 Packet Content (the radios)
    std::string strProfileTypeName;  // page 5: the selected profile's type name, "" when none
    long nProfileType = 0;     // m_nProfileType: 1 Ethernet, 2 IPv4, 3 IPv6, 5 Packet Content
    long nRuleType = 0;        // m_nRuleType: 1 Ethernet, 2 IPv4, 3 IPv6, 4 Packet Content
};

Jump NextJump(int page, const NavInput& in);
Jump BackJump(int page, const NavInput& in);

// The value a profile definition page (6 to 9) sets in m_nProfileType on Next, and a rule
// page (11, 14, 15, 17) in m_nRuleType; 0 for other pages.
long ProfileTypeOfPage(int page);
long RuleTypeOfPage(int page);

// ---------------------------------------------------------------------------------------
// "Add profile" (`CACLStep2`).

// What Add profile offers on a model for an ACL kind (1 ordinary, 2 CPU).
struct AddProfileModelRow {
    int nProfileIds = 0;         // N: "Select Profile ID" offers "1" to "N"
    bool bPacketEnabled = true;  // "Packet Content ACL" radio
    bool bIPv6Enabled = true;    // "IPv6 ACL" radio
    bool bProfileNameShown = false;  // "Profile Name" label and edit (never for the CPU ACL)
};
// The row of `model` (exact, case-sensitive) for `nACLKind`; false for a model string not in
// the table, for which the page keeps its controls unchanged.
bool AddProfileModelTable(const std::string& model, long nACLKind, AddProfileModelRow& row);

// Next, step 1: `m_nFrameOption` from the texts the two drop-down lists show: 1 if the frame
// list shows "UnTagged", else 2; a protocol text "ICMP", "IGMP", "TCP", "UDP", "ProtocolID"
// gives 3 to 7 and overrides the frame value.
long FrameOption(const std::string& frameText, const std::string& protocolText);

enum class AddProfileVerdict {
    kOk,
    kNoProfileName,  // "Please input Profilename!" (TVR4512, ordinary ACL)
    kNoProfileId,    // "Please select profile ID!!"
};
// Next, steps 2 and 3, in that order.
AddProfileVerdict CheckAddProfile(const std::string& model, long nACLKind, const std::string& profileName,
                                  const std::string& selectedId);

// Opening "Select Profile ID": `usedIds` (column 0 of every row of the profile list, as
// integers, copied into m_anUsedProfileIDs from index 0) are compared with the first N
// entries; the drop-down items whose text equals a used ID greater than 0 are removed.
// Returns the indexes of the items to remove, highest first (so removing them in order
// keeps the others' indexes valid).
std::vector<int> UsedProfileIdItems(const std::vector<std::string>& items, const std::vector<long>& usedIds,
                                    int nProfileIds);
// The C library's ASCII-to-integer of a list cell (Add profile copies column 0 as integers).
long CellToInteger(const std::string& text);

}  // namespace acl::pages
