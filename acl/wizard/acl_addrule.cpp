#include "acl/wizard/acl_addrule.h"

#include "acl/wizard/acl_wizard.h"
#include "res/resource.h"

namespace acl::wizard {

CACLAddrule::CACLAddrule() : CACLPage(acl::pages::kPageEthRule, IDD_ACL_ADDRULE, kBackNext) {}

LRESULT CACLAddrule::OnWizardNext() {
    Wizard().m_nRuleType = acl::pages::RuleTypeOfPage(Index());
    return CACLPage::OnWizardNext();
}

}  // namespace acl::wizard
