#include "acl/wizard/acl_apply.h"

#include "acl/wizard/acl_wizard.h"
#include "acl/wizard/staging_cleanup.h"
#include "res/resource.h"

namespace acl::wizard {

CACLApply::CACLApply() : CACLPage(acl::pages::kPageApply, IDD_ACL_APPLY, kBackFinish) {}

BOOL CACLApply::OnWizardFinish() {
    RemoveProfileStagingFiles();
    return TRUE;
}

// Runs whenever the wizard is cancelled after this page was created, whichever page shows.
void CACLApply::OnCancel() { RemoveProfileStagingFiles(); }

}  // namespace acl::wizard
