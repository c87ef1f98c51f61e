// Part 5.1: the ACL wizard `CACLWizard`: caption "ACL", eighteen pages in index order,
// and the state its pages share.
#pragma once
#include <windows.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "ui/wizard.h"

namespace acl::wizard {

// One selected switch (Part 5.1), four strings in this order.
struct ACLTarget {
    std::string strIP;
    std::string strReadCommunity;
    std::string strWriteCommunity;
    std::string strDeviceType;
};

// Page indices: how pages jump to each other (Part 5.1's table).
enum PageIndex : int {
    kPageDeviceList = 0,       // CACLStep0
    kPageAclKind = 1,          // CACLStep1
    kPageSelect = 2,           // CACLselect
    kPageAddProfile = 3,       // CACLStep2
    kPageAddAclProfile = 4,    // CACLStep3
    kPageSelectProfile = 5,    // CACLStep4
    kPageIPv4Profile = 6,      // CACLStep5
    kPageEthProfile = 7,       // CACLSTEP_ETH
    kPageIPv6Profile = 8,      // CACLStep_IPV6
    kPagePacketProfile = 9,    // CACLStep_Packet
    kPageApply = 10,           // CACLApply
    kPageEthRule = 11,         // CACLAddrule
    kPageModifyProfile = 12,   // CACLModifyProfile
    kPageModifyRule = 13,      // CACLModifyRule
    kPageIPv4Rule = 14,        // CACLAddIPv4Rule
    kPageIPv6Rule = 15,        // CACLAddIPv6Rule
    kPageRuleApply = 16,       // CACLRuleApply
    kPagePacketRule = 17,      // CACLAddPacketRule
    kPageCount = 18
};

class CACLWizard : public ui::WizardSheet {
public:
    static constexpr int kMaxTargets = 10;

    CACLWizard();
    ~CACLWizard() override;

    // Shared state (Part 5.1, Data model).
    std::array<ACLTarget, kMaxTargets> m_aTargets{};
    long m_nTargetCount = 0;
    long m_nACLKind = 1;
    long m_nProfileType = 0;
    long m_nRuleType = 0;
    long m_nFrameOption = 0;
    std::string m_strProfileID;
    std::string m_strProfileName;
    std::array<long, 200> m_anUsedProfileIDs{};
    std::array<std::string, 5> m_astrEthProfile{};
    std::array<std::string, 11> m_astrIPv4Profile{};
    std::array<std::string, 4> m_astrIPv6Profile{};
    std::string m_strPacketProfileID;
    BYTE m_bProfilesApplied = 0;
    BYTE m_bRulesApplied = 0;

protected:
    void OnInitSheet() override;

private:
    std::vector<std::unique_ptr<ui::WizardPage>> m_pages;
};

// The ACL Manager command: builds the wizard, shows it modally, destroys it (Part 1.1).
void RunAclWizard(HWND hwndParent);

}  // namespace acl::wizard
