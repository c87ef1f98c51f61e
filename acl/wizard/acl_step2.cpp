#include "acl/wizard/acl_step2.h"

#include "acl/wizard/acl_wizard.h"
#include "res/resource.h"

namespace acl::wizard {

CACLStep2::CACLStep2() : CACLPage(acl::pages::kPageAddProfile, IDD_ACL_STEP2, kBackNext) {}

BOOL CACLStep2::OnInitDialog() {
    m_nProfileChoice = 1;
    CheckRadioButton(GetSafeHwnd(), IDC_STEP2_ETHERNET, IDC_STEP2_PACKET, IDC_STEP2_ETHERNET);
    return TRUE;
}

BOOL CACLStep2::OnCommand(WPARAM wParam, LPARAM) {
    if (HIWORD(wParam) != BN_CLICKED) return FALSE;
    const int id = LOWORD(wParam);
    if (id < IDC_STEP2_ETHERNET || id > IDC_STEP2_PACKET) return FALSE;
    m_nProfileChoice = id - IDC_STEP2_ETHERNET + 1;
    return TRUE;
}

acl::pages::NavInput CACLStep2::MakeNavInput() const {
    acl::pages::NavInput in = CACLPage::MakeNavInput();
    in.nProfileChoice = m_nProfileChoice;
    return in;
}

}  // namespace acl::wizard
