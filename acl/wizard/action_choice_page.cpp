#include "acl/wizard/action_choice_page.h"

#include "res/resource.h"
#include "ui/controls.h"
#include "ui/text.h"

namespace acl::wizard {
namespace {
constexpr int kChoiceIds[4] = {IDC_SELECT_CHOICE1, IDC_SELECT_CHOICE2, IDC_SELECT_CHOICE3, IDC_SELECT_CHOICE4};
constexpr UINT kOrdinaryTexts[4] = {IDS_CREATE_PROFILE, IDS_CREATE_RULE, IDS_MODIFY_PROFILE, IDS_MODIFY_RULE};
constexpr UINT kCpuTexts[4] = {IDS_CREATE_CPU_PROFILE, IDS_CREATE_CPU_RULE, IDS_MODIFY_CPU_PROFILE,
                               IDS_MODIFY_CPU_RULE};
}  // namespace

CACLselect::CACLselect() : CACLPage(acl::pages::kPageSelect, IDD_ACL_SELECT, kKeepButtons) {}

BOOL CACLselect::OnInitDialog() {
    ui::Button create(GetDlgItem(IDC_SELECT_GROUP_CREATE));
    create.SetText(ui::LoadResString(IDS_GROUP_CREATE));
    create.SetFont(GroupFont());
    ui::Button modify(GetDlgItem(IDC_SELECT_GROUP_MODIFY));
    modify.SetText(ui::LoadResString(IDS_GROUP_MODIFY));
    modify.SetFont(GroupFont());
    m_nChoice = 1;
    CheckRadioButton(GetSafeHwnd(), IDC_SELECT_CHOICE1, IDC_SELECT_CHOICE4, IDC_SELECT_CHOICE1);
    return TRUE;
}

BOOL CACLselect::OnSetActive() {
    WizardState& wizard = State();
    // A new action: the flags of an earlier apply no longer empty the pending lists.
    wizard.m_bProfilesApplied = 0;
    wizard.m_bRulesApplied = 0;
    const UINT* texts = wizard.m_nACLKind == 1 ? kOrdinaryTexts : kCpuTexts;
    for (int i = 0; i < 4; ++i) ui::Button(GetDlgItem(kChoiceIds[i])).SetText(ui::LoadResString(texts[i]));
    return CACLPage::OnSetActive();  // sets no buttons: those of page 1 stay
}

BOOL CACLselect::OnCommand(WPARAM wParam, LPARAM) {
    if (HIWORD(wParam) != BN_CLICKED) return FALSE;
    for (int i = 0; i < 4; ++i) {
        if (LOWORD(wParam) == kChoiceIds[i]) {
            m_nChoice = i + 1;
            return TRUE;
        }
    }
    return FALSE;
}

acl::pages::NavInput CACLselect::MakeNavInput() const {
    acl::pages::NavInput in = CACLPage::MakeNavInput();
    in.nActionChoice = m_nChoice;
    return in;
}

}  // namespace acl::wizard
