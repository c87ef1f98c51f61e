#include "acl/wizard/acl_apply.h"

#include "acl/wizard/acl_wizard.h"
#include "acl/acl_staging.h"
#include "res/resource.h"

namespace acl::wizard {

CACLApply::CACLApply() : CACLPage(acl::pages::kPageApply, IDD_ACL_APPLY, kBackFinish) {}

BOOL CACLApply::OnWizardFinish() {
    ::DeleteProfileStagingFiles();
    return TRUE;
}

// Runs whenever the wizard is cancelled after this page was created, whichever page shows.
void CACLApply::OnCancel() { ::DeleteProfileStagingFiles(); }

}  // namespace acl::wizard
