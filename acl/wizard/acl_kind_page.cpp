#include "acl/wizard/acl_kind_page.h"

#include "res/resource.h"
#include "ui/controls.h"
#include "ui/text.h"

namespace acl::wizard {

CACLStep1::CACLStep1() : CACLPage(acl::pages::kPageAclKind, IDD_ACL_STEP1, kBackNext) {}

BOOL CACLStep1::OnInitDialog() {
    ui::Button group(GetDlgItem(IDC_STEP1_GROUP));
    group.SetText(ui::LoadResString(IDS_ACL));
    group.SetFont(GroupFont());
    ui::Button(GetDlgItem(IDC_STEP1_ACL)).SetText(ui::LoadResString(IDS_ACCESS_PROFILE_LIST));
    ui::Button(GetDlgItem(IDC_STEP1_CPU_ACL)).SetText(ui::LoadResString(IDS_CPU_ACCESS_PROFILE_LIST));
    m_nChoice = 1;
    CheckRadioButton(GetSafeHwnd(), IDC_STEP1_ACL, IDC_STEP1_CPU_ACL, IDC_STEP1_ACL);
    return TRUE;
}

BOOL CACLStep1::OnCommand(WPARAM wParam, LPARAM) {
    if (HIWORD(wParam) != BN_CLICKED) return FALSE;
    switch (LOWORD(wParam)) {
    case IDC_STEP1_ACL: m_nChoice = 1; return TRUE;
    case IDC_STEP1_CPU_ACL: m_nChoice = 2; return TRUE;
    default: return FALSE;
    }
}

LRESULT CACLStep1::OnWizardNext() {
    State().m_nACLKind = m_nChoice;
    return CACLPage::OnWizardNext();
}

}  // namespace acl::wizard
