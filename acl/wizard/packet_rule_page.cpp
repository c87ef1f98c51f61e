#include "acl/wizard/packet_rule_page.h"

#include "res/resource.h"

namespace acl::wizard {

CACLAddPacketRule::CACLAddPacketRule() : CACLPage(acl::pages::kPagePacketRule, IDD_ACL_ADD_PACKET_RULE, kBackNext) {}

LRESULT CACLAddPacketRule::OnWizardNext() {
    State().m_nRuleType = acl::pages::RuleTypeOfPage(Index());
    return CACLPage::OnWizardNext();
}

}  // namespace acl::wizard
