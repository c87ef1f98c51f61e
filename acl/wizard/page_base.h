// What every page of the ACL wizard has in common: its wizard buttons on activation, the
// shared state, and moving by the navigation table (acl/page_logic.h): a page that goes
// elsewhere than its neighbour activates that page itself, so the pages passed on the way
// run their activation as the user would see them do.
#pragma once
#include <string>
#include <windows.h>

#include "acl/page_logic.h"
#include "controls/xlist_ctrl.h"
#include "acl/wizard/wizard_state.h"
#include "ui/wizard.h"

namespace acl::wizard {

class CACLPage : public ui::WizardPage {
public:
    static constexpr DWORD kNext = PSWIZB_NEXT;
    static constexpr DWORD kBackNext = PSWIZB_BACK | PSWIZB_NEXT;
    static constexpr DWORD kBackFinish = PSWIZB_BACK | PSWIZB_FINISH;
    static constexpr DWORD kKeepButtons = 0;  // CACLselect keeps the buttons of the page before

    CACLPage(int nIndex, UINT nIDTemplate, DWORD dwButtons)
        : WizardPage(nIDTemplate), m_nIndex(nIndex), m_dwButtons(dwButtons) {}

    int Index() const { return m_nIndex; }
    // The sheet hands every page its state before the page is shown.
    void Share(WizardState& state) { m_pState = &state; }

protected:
    WizardState& State() const { return *m_pState; }
    // The bold font of the group titles ("Arial"), made on first use, kept for the
    // process.
    static HFONT GroupFont();
    // a click on a profile list's header sorts by that column (column 0 as
    // numbers, the others as strings), the direction toggling.
    static void SortProfileList(controls::CXListCtrl& list, acl::pages::SortToggle& sort, int column);
    // What the navigation table needs: the sheet's state plus this page's own choices.
    virtual acl::pages::NavInput MakeNavInput() const;
    // Carries out a jump of the table; the result is what PSN_WIZNEXT/PSN_WIZBACK return.
    LRESULT Go(const acl::pages::Jump& jump);
    // The page's caption by ACL kind, on the page and on the title bar. The sheet titles itself
    // with the template's caption once the activation is over, so the title follows after it.
    void SetCaption(const std::string& caption);

    BOOL OnSetActive() override;
    BOOL OnMessage(UINT msg, WPARAM wParam, LPARAM lParam, LRESULT* pResult) override;
    LRESULT OnWizardNext() override;
    LRESULT OnWizardBack() override;

private:
    int m_nIndex;
    DWORD m_dwButtons;
    WizardState* m_pState = nullptr;
};

}  // namespace acl::wizard
