// The ACL wizard `CACLWizard`: caption "ACL", eighteen pages in index order. The pages are
// members constructed with the sheet, so every page keeps its contents for the wizard's whole
// life; the sheet is the only place that knows them all.
#pragma once
#include <windows.h>

#include "acl/acl_audit.h"
// The pages in index order.
#include "acl/wizard/device_list_page.h"
#include "acl/wizard/acl_kind_page.h"
#include "acl/wizard/action_choice_page.h"
#include "acl/wizard/add_profile_page.h"
#include "acl/wizard/profile_passing_page.h"
#include "acl/wizard/rule_profile_select_page.h"
#include "acl/wizard/ipv4_profile_page.h"
#include "acl/wizard/ethernet_profile_page.h"
#include "acl/wizard/ipv6_profile_page.h"
#include "acl/wizard/packet_profile_page.h"
#include "acl/wizard/profile_apply_page.h"
#include "acl/wizard/ethernet_rule_page.h"
#include "acl/wizard/modify_profile_page.h"
#include "acl/wizard/modify_rule_page.h"
#include "acl/wizard/ipv4_rule_page.h"
#include "acl/wizard/ipv6_rule_page.h"
#include "acl/wizard/rule_apply_page.h"
#include "acl/wizard/packet_rule_page.h"
#include "acl/wizard/wizard_state.h"
#include "ui/wizard.h"

namespace acl::wizard {

class CACLWizard : public ui::WizardSheet, public WizardState {
public:
    CACLWizard();
    ~CACLWizard() override;

    // "Add profile", for the tests that watch its reader.
    CACLStep2& AddProfilePage() { return m_step2; }
    // The modify pages, for the tests that watch their readers.
    CACLModifyProfile& ModifyProfilePage() { return m_modifyProfile; }
    CACLModifyRule& ModifyRulePage() { return m_modifyRule; }

protected:
    void OnInitSheet() override;

private:
    // sentrel-acl's audit log (%LOCALAPPDATA%\Sentrel\audit.jsonl) gets every SET the wizard
    // sends while it is open; declared before the pages so it outlives their workers.
    AclAuditLog m_auditLog{DefaultAuditLogPath()};
    bool m_auditing = false;
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

// The ACL Manager command: builds the wizard, shows it modally, destroys it.
void RunAclWizard(HWND hwndParent);

}  // namespace acl::wizard
