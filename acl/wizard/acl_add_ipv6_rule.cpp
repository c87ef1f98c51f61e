#include "acl/wizard/acl_add_ipv6_rule.h"

#include "acl/wizard/acl_wizard.h"
#include "res/resource.h"

namespace acl::wizard {

CACLAddIPv6Rule::CACLAddIPv6Rule() : CACLPage(acl::pages::kPageIPv6Rule, IDD_ACL_ADD_IPV6_RULE, kBackNext) {}

LRESULT CACLAddIPv6Rule::OnWizardNext() {
    Wizard().m_nRuleType = acl::pages::RuleTypeOfPage(Index());
    return CACLPage::OnWizardNext();
}

}  // namespace acl::wizard
