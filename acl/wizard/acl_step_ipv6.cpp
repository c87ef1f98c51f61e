#include "acl/wizard/acl_step_ipv6.h"

#include "acl/wizard/acl_wizard.h"
#include "res/resource.h"

namespace acl::wizard {

CACLStep_IPV6::CACLStep_IPV6() : CACLPage(acl::pages::kPageIPv6Profile, IDD_ACL_STEP_IPV6, kBackNext) {}

LRESULT CACLStep_IPV6::OnWizardNext() {
    Wizard().m_nProfileType = acl::pages::ProfileTypeOfPage(Index());
    return CACLPage::OnWizardNext();
}

}  // namespace acl::wizard
