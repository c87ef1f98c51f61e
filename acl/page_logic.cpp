#include "acl/page_logic.h"

#include <algorithm>
#include <climits>

namespace acl::pages {
namespace {

// ASCII-to-integer as the C library does it (blanks, sign, digits), clamped to 32 bits.
long long ParseLeadingNumber(const std::string& text, size_t& i) {
    while (i < text.size() && (text[i] == ' ' || (text[i] >= '\t' && text[i] <= '\r'))) ++i;
    bool negative = false;
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) negative = text[i++] == '-';
    long long value = 0;
    for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i)
        value = std::min<long long>(value * 10 + (text[i] - '0'), static_cast<long long>(INT_MAX) + 1);
    if (negative) value = -value;
    return std::clamp<long long>(value, INT_MIN, INT_MAX);
}

template <typename T>
int ThreeWay(T a, T b) {
    return a < b ? -1 : (a > b ? 1 : 0);
}

// The four parts of a dotted address; missing or non-numeric parts are 0.
void AddressParts(const std::string& text, long long parts[4]) {
    size_t i = 0;
    for (int p = 0; p < 4; ++p) {
        parts[p] = 0;
        if (i > text.size()) continue;
        size_t end = text.find('.', i);
        if (end == std::string::npos) end = text.size();
        size_t j = 0;
        parts[p] = ParseLeadingNumber(text.substr(i, end - i), j);
        i = end + 1;
    }
}

}  // namespace

int CompareDottedAddress(const std::string& a, const std::string& b) {
    long long pa[4], pb[4];
    AddressParts(a, pa);
    AddressParts(b, pb);
    for (int p = 0; p < 4; ++p)
        if (int c = ThreeWay(pa[p], pb[p])) return c;
    return 0;
}

int CompareNumberText(const std::string& a, const std::string& b) {
    size_t i = 0, j = 0;
    return ThreeWay(ParseLeadingNumber(a, i), ParseLeadingNumber(b, j));
}

int CompareText(const std::string& a, const std::string& b) {
    int c = a.compare(b);
    return c < 0 ? -1 : (c > 0 ? 1 : 0);
}

int CompareDeviceColumn(int column, const std::string& a, const std::string& b) {
    switch (column) {
    case kColIP: return CompareDottedAddress(a, b);
    case kColDeviceID: return CompareNumberText(a, b);
    default: return CompareText(a, b);
    }
}

int CompareProfileColumn(int column, const std::string& a, const std::string& b) {
    return column == 0 ? CompareNumberText(a, b) : CompareText(a, b);
}

bool SortToggle::Click(int column) {
    if (column != m_nColumn) {
        m_nColumn = column;
        m_bAscending = true;
    } else {
        m_bAscending = !m_bAscending;
    }
    return m_bAscending;
}

TargetSelection SelectTargets(const std::vector<CheckedDevice>& checkedRows,
                              const std::vector<std::string>& supportedTypes) {
    TargetSelection out;
    out.nCheckedCount = static_cast<int>(checkedRows.size());
    if (checkedRows.empty()) {
        out.verdict = TargetVerdict::kNoDevice;
        return out;
    }
    for (size_t i = 0; i < checkedRows.size(); ++i) {
        const CheckedDevice& row = checkedRows[i];
        if (i == 0) {
            if (std::find(supportedTypes.begin(), supportedTypes.end(), row.strDeviceType) == supportedTypes.end()) {
                out.verdict = TargetVerdict::kNotSupported;
                return out;
            }
        } else if (row.strDeviceType != checkedRows[i - 1].strDeviceType) {
            out.verdict = TargetVerdict::kDifferentType;
            return out;
        }
        if (out.targets.size() < static_cast<size_t>(kMaxTargets)) out.targets.push_back(row);
    }
    out.verdict = checkedRows.size() > static_cast<size_t>(kMaxTargets) ? TargetVerdict::kTooManyDevices
                                                                       : TargetVerdict::kAccepted;
    return out;
}

namespace {
Jump Stay() { return {}; }
Jump Step(int target) { return {Jump::kStep, target, -1}; }
Jump Direct(int target) { return {Jump::kDirect, target, -1}; }
Jump Passing(int passing, int target) { return {Jump::kPassing, target, passing}; }
Jump Finish() { return {Jump::kFinish, -1, -1}; }
}  // namespace

Jump NextJump(int page, const NavInput& in) {
    switch (page) {
    case kPageDeviceList: return Step(kPageAclKind);  // after target validation
    case kPageAclKind: return Step(kPageSelect);
    case kPageSelect:
        switch (in.nActionChoice) {
        case 1: return Direct(kPageAddProfile);
        case 2: return Direct(kPageSelectProfile);
        case 3: return Direct(kPageModifyProfile);
        case 4: return Direct(kPageModifyRule);
        default: return Stay();
        }
    case kPageAddProfile:  // by the profile type radio
        switch (in.nProfileChoice) {
        case 1: return Direct(kPageEthProfile);
        case 2: return Direct(kPageIPv4Profile);
        case 3: return Direct(kPageIPv6Profile);
        case 4: return Direct(kPagePacketProfile);
        default: return Stay();
        }
    case kPageAddAclProfile: return Stay();  // never left on screen
    case kPageSelectProfile:
        if (in.strProfileTypeName == "Ethernet") return Direct(kPageEthRule);
        if (in.strProfileTypeName == "IPv4") return Direct(kPageIPv4Rule);
        if (in.strProfileTypeName == "IPv6") return Direct(kPageIPv6Rule);
        if (in.strProfileTypeName == "Packet Content") return Direct(kPagePacketRule);
        return Stay();  // with "Have not profile,can not add rule!Please select profile first!"
    case kPageIPv4Profile:
    case kPageEthProfile:
    case kPageIPv6Profile:
    case kPagePacketProfile:
        // Activates page 9 and steps on by one, so page 9's activation runs in passing.
        return Passing(kPagePacketProfile, kPageApply);
    case kPageEthRule:
    case kPageIPv4Rule:
    case kPageIPv6Rule:
    case kPagePacketRule: return Direct(kPageRuleApply);
    case kPageApply:
    case kPageModifyProfile:
    case kPageModifyRule:
    case kPageRuleApply: return Finish();
    default: return Stay();
    }
}

Jump BackJump(int page, const NavInput& in) {
    switch (page) {
    case kPageDeviceList: return Stay();
    case kPageAclKind: return Step(kPageDeviceList);
    case kPageSelect: return Step(kPageAclKind);
    case kPageAddProfile: return Step(kPageSelect);
    case kPageAddAclProfile: return Step(kPageAddProfile);
    // Back to the action choice through page 3, whose activation runs in passing.
    case kPageSelectProfile:
    case kPageModifyProfile:
    case kPageModifyRule: return Passing(kPageAddProfile, kPageSelect);
    // Back to "Add profile" through page 4, whose activation runs in passing.
    case kPageIPv4Profile:
    case kPageEthProfile:
    case kPageIPv6Profile:
    case kPagePacketProfile: return Passing(kPageAddAclProfile, kPageAddProfile);
    case kPageApply:
        switch (in.nProfileType) {
        case 1: return Direct(kPageEthProfile);
        case 2: return Direct(kPageIPv4Profile);
        case 3: return Direct(kPageIPv6Profile);
        case 5: return Direct(kPagePacketProfile);
        default: return Stay();
        }
    case kPageEthRule:
    case kPageIPv4Rule:
    case kPageIPv6Rule:
    case kPagePacketRule: return Direct(kPageSelectProfile);
    case kPageRuleApply:
        switch (in.nRuleType) {
        case 1: return Direct(kPageEthRule);
        case 2: return Direct(kPageIPv4Rule);
        case 3: return Direct(kPageIPv6Rule);
        case 4: return Direct(kPagePacketRule);
        default: return Direct(kPageSelectProfile);
        }
    default: return Stay();
    }
}

long ProfileTypeOfPage(int page) {
    switch (page) {
    case kPageIPv4Profile: return 2;
    case kPageEthProfile: return 1;
    case kPageIPv6Profile: return 3;
    case kPagePacketProfile: return 5;
    default: return 0;
    }
}

long RuleTypeOfPage(int page) {
    switch (page) {
    case kPageEthRule: return 1;
    case kPageIPv4Rule: return 2;
    case kPageIPv6Rule: return 3;
    case kPagePacketRule: return 4;
    default: return 0;
    }
}

// --- "Add profile" -----------------------------------------------------------------------

bool AddProfileModelTable(const std::string& model, long nACLKind, AddProfileModelRow& row) {
    struct Entry {
        const char* model;
        AddProfileModelRow acl, cpu;
    };
    // Per model: profile IDs, Packet Content radio, IPv6 radio, Profile Name.
    static const Entry kTable[] = {
        {"TVG5240-10", {200, true, true, false}, {5, true, true, false}},
        {"TVR4512", {6, true, true, true}, {5, true, true, false}},
        {"TVG5690", {14, true, true, false}, {5, true, true, false}},
        {"TVG5470", {6, false, true, false}, {5, true, false, false}},
        {"TVR4510", {255, true, false, false}, {5, true, false, false}},
        {"TVR4820", {255, true, true, false}, {10, true, false, false}},
        {"TVR4060", {256, true, false, false}, {3, true, false, false}},
    };
    for (const Entry& e : kTable)
        if (model == e.model) {
            row = nACLKind == 1 ? e.acl : e.cpu;
            return true;
        }
    return false;
}

long FrameOption(const std::string& frameText, const std::string& protocolText) {
    long option = frameText == "UnTagged" ? 1 : 2;
    static const char* const kProtocols[] = {"ICMP", "IGMP", "TCP", "UDP", "ProtocolID"};
    for (int i = 0; i < 5; ++i)
        if (protocolText == kProtocols[i]) option = 3 + i;
    return option;
}

AddProfileVerdict CheckAddProfile(const std::string& model, long nACLKind, const std::string& profileName,
                                  const std::string& selectedId) {
    if (model == "TVR4512" && nACLKind == 1 && profileName.empty()) return AddProfileVerdict::kNoProfileName;
    if (selectedId.empty()) return AddProfileVerdict::kNoProfileId;
    return AddProfileVerdict::kOk;
}

long CellToInteger(const std::string& text) {
    size_t i = 0;
    return static_cast<long>(ParseLeadingNumber(text, i));
}

std::vector<int> UsedProfileIdItems(const std::vector<std::string>& items, const std::vector<long>& usedIds,
                                    int nProfileIds) {
    std::vector<int> remove;
    const size_t n = std::min(usedIds.size(), static_cast<size_t>(nProfileIds > 0 ? nProfileIds : 0));
    for (size_t k = 0; k < n; ++k) {
        if (usedIds[k] <= 0) continue;
        const std::string text = std::to_string(usedIds[k]);
        for (size_t i = 0; i < items.size(); ++i)
            if (items[i] == text && std::find(remove.begin(), remove.end(), static_cast<int>(i)) == remove.end())
                remove.push_back(static_cast<int>(i));
    }
    std::sort(remove.rbegin(), remove.rend());
    return remove;
}

}  // namespace acl::pages
