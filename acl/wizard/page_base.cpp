#include "acl/wizard/page_base.h"

#include "res/resource.h"
#include "ui/controls.h"
#include "ui/text.h"
#include "ui/win_handles.h"

namespace acl::wizard {
namespace {

// Posted to a page by SetCaption; the switch readers use WM_APP + 0x31.
constexpr UINT kRetitleMessage = WM_APP + 0x28;

}  // namespace

HFONT CACLPage::GroupFont() {
    static const ui::UniqueGdiObject font(ui::CreateGroupTitleFont(ui::LoadResString(IDS_GROUP_FONT)));
    return static_cast<HFONT>(font.get());
}

void CACLPage::SortProfileList(controls::CXListCtrl& list, acl::pages::SortToggle& sort, int column) {
    const bool ascending = sort.Click(column);
    list.SortRows(
        column,
        [column](const std::string& a, const std::string& b) { return acl::pages::CompareProfileColumn(column, a, b); },
        ascending);
}

acl::pages::NavInput CACLPage::MakeNavInput() const {
    acl::pages::NavInput in;
    in.nProfileType = State().m_nProfileType;
    in.nRuleType = State().m_nRuleType;
    return in;
}

LRESULT CACLPage::Go(const acl::pages::Jump& jump) {
    using acl::pages::Jump;
    switch (jump.kind) {
    case Jump::kStep:
    case Jump::kFinish:
        return kMoveOn;
    case Jump::kDirect:
        Sheet()->SetActivePage(jump.nTarget);
        return kStay;  // the sheet already shows the target
    case Jump::kPassing:
        // The passing page's activation runs, then the wizard steps by one from it.
        Sheet()->SetActivePage(jump.nPassing);
        return kMoveOn;
    case Jump::kStay:
    default:
        return kStay;
    }
}

BOOL CACLPage::OnSetActive() {
    if (m_dwButtons != kKeepButtons) Sheet()->SetWizardButtons(m_dwButtons);
    return TRUE;
}

void CACLPage::SetCaption(const std::string& caption) {
    SetWindowTextA(GetSafeHwnd(), caption.c_str());
    PostMessageA(GetSafeHwnd(), kRetitleMessage, 0, 0);
}

BOOL CACLPage::OnMessage(UINT msg, WPARAM, LPARAM, LRESULT* pResult) {
    if (msg != kRetitleMessage) return FALSE;
    char caption[128] = "";
    GetWindowTextA(GetSafeHwnd(), caption, sizeof caption);
    if (PropSheet_GetCurrentPageHwnd(Sheet()->GetSafeHwnd()) == GetSafeHwnd())
        PropSheet_SetTitle(Sheet()->GetSafeHwnd(), 0, caption);
    *pResult = 0;
    return TRUE;
}

LRESULT CACLPage::OnWizardNext() { return Go(acl::pages::NextJump(m_nIndex, MakeNavInput())); }

LRESULT CACLPage::OnWizardBack() { return Go(acl::pages::BackJump(m_nIndex, MakeNavInput())); }

}  // namespace acl::wizard
