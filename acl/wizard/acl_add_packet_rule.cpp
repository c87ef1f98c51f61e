#include "acl/wizard/acl_add_packet_rule.h"

#include "acl/wizard/acl_wizard.h"
#include "res/resource.h"

namespace acl::wizard {

CACLAddPacketRule::CACLAddPacketRule() : CACLPage(acl::pages::kPagePacketRule, IDD_ACL_ADD_PACKET_RULE, kBackNext) {}

LRESULT CACLAddPacketRule::OnWizardNext() {
    Wizard().m_nRuleType = acl::pages::RuleTypeOfPage(Index());
    return CACLPage::OnWizardNext();
}

}  // namespace acl::wizard
