#include "acl/wizard/acl_add_ipv4_rule.h"

#include "acl/wizard/acl_wizard.h"
#include "res/resource.h"

namespace acl::wizard {

CACLAddIPv4Rule::CACLAddIPv4Rule() : CACLPage(acl::pages::kPageIPv4Rule, IDD_ACL_ADD_IPV4_RULE, kBackNext) {}

LRESULT CACLAddIPv4Rule::OnWizardNext() {
    Wizard().m_nRuleType = acl::pages::RuleTypeOfPage(Index());
    return CACLPage::OnWizardNext();
}

}  // namespace acl::wizard
