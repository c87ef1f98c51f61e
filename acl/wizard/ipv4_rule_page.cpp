#include "acl/wizard/ipv4_rule_page.h"

#include "res/resource.h"

namespace acl::wizard {

CACLAddIPv4Rule::CACLAddIPv4Rule() : CACLPage(acl::pages::kPageIPv4Rule, IDD_ACL_ADD_IPV4_RULE, kBackNext) {}

LRESULT CACLAddIPv4Rule::OnWizardNext() {
    State().m_nRuleType = acl::pages::RuleTypeOfPage(Index());
    return CACLPage::OnWizardNext();
}

}  // namespace acl::wizard
