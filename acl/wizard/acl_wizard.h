// Part 5.1: the ACL wizard `CACLWizard`: caption "ACL", eighteen pages in index order (members
// constructed with the sheet, so every page keeps its contents for the wizard's whole life),
// and the state its pages share.
#pragma once
#include <windows.h>

#include <array>
#include <string>

#include "acl/page_logic.h"
#include "acl/wizard/acl_add_ipv4_rule.h"
#include "acl/wizard/acl_add_ipv6_rule.h"
#include "acl/wizard/acl_add_packet_rule.h"
#include "acl/wizard/acl_addrule.h"
#include "acl/wizard/acl_apply.h"
#include "acl/wizard/acl_modify_profile.h"
#include "acl/wizard/acl_modify_rule.h"
#include "acl/wizard/acl_rule_apply.h"
#include "acl/wizard/acl_select.h"
#include "acl/wizard/acl_step0.h"
#include "acl/wizard/acl_step1.h"
#include "acl/wizard/acl_step2.h"
#include "acl/wizard/acl_step3.h"
#include "acl/wizard/acl_step4.h"
#include "acl/wizard/acl_step5.h"
#include "acl/wizard/acl_step_eth.h"
#include "acl/wizard/acl_step_ipv6.h"
#include "acl/wizard/acl_step_packet.h"
#include "ui/wizard.h"

namespace acl::wizard {

// One selected switch (Part 5.1), four strings in this order.
struct ACLTarget {
    std::string strIP;
    std::string strReadCommunity;
    std::string strWriteCommunity;
    std::string strDeviceType;
};

class CACLWizard : public ui::WizardSheet {
public:
    static constexpr int kMaxTargets = acl::pages::kMaxTargets;

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

    // Page 3, for the tests that watch its reader (Part 5.2).
    CACLStep2& AddProfilePage() { return m_step2; }

protected:
    void OnInitSheet() override;

private:
    // The eighteen pages, in index order.
    CACLStep0 m_step0;
    CACLStep1 m_step1;
    CACLselect m_select;
    CACLStep2 m_step2;
    CACLStep3 m_step3;
    CACLStep4 m_step4;
    CACLStep5 m_step5;
    CACLSTEP_ETH m_stepEth;
    CACLStep_IPV6 m_stepIPv6;
    CACLStep_Packet m_stepPacket;
    CACLApply m_apply;
    CACLAddrule m_addRule;
    CACLModifyProfile m_modifyProfile;
    CACLModifyRule m_modifyRule;
    CACLAddIPv4Rule m_addIPv4Rule;
    CACLAddIPv6Rule m_addIPv6Rule;
    CACLRuleApply m_ruleApply;
    CACLAddPacketRule m_addPacketRule;
};

// The ACL Manager command: builds the wizard, shows it modally, destroys it (Part 1.1).
void RunAclWizard(HWND hwndParent);

}  // namespace acl::wizard
