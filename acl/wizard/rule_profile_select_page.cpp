#include "acl/wizard/rule_profile_select_page.h"

#include "res/resource.h"
#include "ui/text.h"

namespace acl::wizard {

CACLStep4::CACLStep4() : CACLPage(acl::pages::kPageSelectProfile, IDD_ACL_STEP4, kBackNext) {}

acl::pages::NavInput CACLStep4::MakeNavInput() const {
    acl::pages::NavInput in = CACLPage::MakeNavInput();
    in.strProfileTypeName = m_strProfileTypeName;
    return in;
}

LRESULT CACLStep4::OnWizardNext() {
    const acl::pages::Jump jump = acl::pages::NextJump(Index(), MakeNavInput());
    if (jump.kind == acl::pages::Jump::kStay) {
        ui::MessageBoxOk(GetSafeHwnd(), ui::LoadResString(IDS_MSG_NO_PROFILE));
        return kStay;
    }
    return Go(jump);
}

}  // namespace acl::wizard
