#include "acl/wizard/rule_apply_page.h"

#include "acl/acl_staging.h"
#include "res/resource.h"

namespace acl::wizard {

CACLRuleApply::CACLRuleApply() : CACLPage(acl::pages::kPageRuleApply, IDD_ACL_RULE_APPLY, kBackFinish) {}

BOOL CACLRuleApply::OnWizardFinish() {
    ::DeleteRuleStagingFiles();
    return TRUE;
}

// Runs whenever the wizard is cancelled after this page was created, whichever page shows.
void CACLRuleApply::OnCancel() { ::DeleteRuleStagingFiles(); }

}  // namespace acl::wizard
