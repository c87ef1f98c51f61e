// What the wizard's pages share: the target switches, the ACL kind, the profile being created
// and the one chosen for new rules, the used profile IDs and the applied flags. The sheet owns
// it; a page sees only this, never another page.
#pragma once
#include <windows.h>

#include <array>
#include <string>

#include "acl/page_logic.h"

namespace acl::wizard {

// One selected switch, four strings in this order.
struct ACLTarget {
    std::string strIP;
    std::string strReadCommunity;
    std::string strWriteCommunity;
    std::string strDeviceType;
};

struct WizardState {
    static constexpr int kMaxTargets = acl::pages::kMaxTargets;

    std::array<ACLTarget, kMaxTargets> m_aTargets{};
    long m_nTargetCount = 0;
    long m_nACLKind = 1;       // 1 ordinary ACL, 2 CPU ACL
    long m_nProfileType = 0;   // 1 Ethernet, 2 IPv4, 3 IPv6, 5 packet content
    long m_nRuleType = 0;      // 1 Ethernet, 2 IPv4, 3 IPv6, 4 packet content
    long m_nFrameOption = 0;   // 1 untagged, 2 tagged, 3 ICMP ... 7 protocol ID
    std::string m_strProfileID;
    std::string m_strProfileName;
    std::array<long, 200> m_anUsedProfileIDs{};  // 0 marks an unused slot
    std::array<std::string, 5> m_astrEthProfile{};
    std::array<std::string, 11> m_astrIPv4Profile{};
    std::array<std::string, 4> m_astrIPv6Profile{};
    std::string m_strPacketProfileID;
    // Set by an apply; while set, the pages of that flow empty their pending lists when shown.
    BYTE m_bProfilesApplied = 0;
    BYTE m_bRulesApplied = 0;
};

}  // namespace acl::wizard
