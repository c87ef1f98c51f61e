#include "acl/wizard/acl_step_eth.h"

#include "acl/wizard/acl_wizard.h"
#include "res/resource.h"

namespace acl::wizard {

CACLSTEP_ETH::CACLSTEP_ETH() : CACLPage(acl::pages::kPageEthProfile, IDD_ACL_STEP_ETH, kBackNext) {}

LRESULT CACLSTEP_ETH::OnWizardNext() {
    Wizard().m_nProfileType = acl::pages::ProfileTypeOfPage(Index());
    return CACLPage::OnWizardNext();
}

}  // namespace acl::wizard
