#include "acl/wizard/acl_step5.h"

#include "acl/wizard/acl_wizard.h"
#include "res/resource.h"

namespace acl::wizard {

CACLStep5::CACLStep5() : CACLPage(acl::pages::kPageIPv4Profile, IDD_ACL_STEP5, kBackNext) {}

LRESULT CACLStep5::OnWizardNext() {
    Wizard().m_nProfileType = acl::pages::ProfileTypeOfPage(Index());
    return CACLPage::OnWizardNext();
}

}  // namespace acl::wizard
