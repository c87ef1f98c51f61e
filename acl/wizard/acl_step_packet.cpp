#include "acl/wizard/acl_step_packet.h"

#include "acl/wizard/acl_wizard.h"
#include "res/resource.h"

namespace acl::wizard {

CACLStep_Packet::CACLStep_Packet() : CACLPage(acl::pages::kPagePacketProfile, IDD_ACL_STEP_PACKET, kBackNext) {}

LRESULT CACLStep_Packet::OnWizardNext() {
    Wizard().m_nProfileType = acl::pages::ProfileTypeOfPage(Index());
    return CACLPage::OnWizardNext();
}

}  // namespace acl::wizard
