#include "acl/wizard/ipv6_rule_page.h"

#include "res/resource.h"

namespace acl::wizard {

CACLAddIPv6Rule::CACLAddIPv6Rule() : CACLPage(acl::pages::kPageIPv6Rule, IDD_ACL_ADD_IPV6_RULE, kBackNext) {}

LRESULT CACLAddIPv6Rule::OnWizardNext() {
    State().m_nRuleType = acl::pages::RuleTypeOfPage(Index());
    return CACLPage::OnWizardNext();
}

}  // namespace acl::wizard
