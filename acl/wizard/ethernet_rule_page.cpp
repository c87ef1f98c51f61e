#include "acl/wizard/ethernet_rule_page.h"

#include "res/resource.h"

namespace acl::wizard {

CACLAddrule::CACLAddrule() : CACLPage(acl::pages::kPageEthRule, IDD_ACL_ADDRULE, kBackNext) {}

LRESULT CACLAddrule::OnWizardNext() {
    State().m_nRuleType = acl::pages::RuleTypeOfPage(Index());
    return CACLPage::OnWizardNext();
}

}  // namespace acl::wizard
