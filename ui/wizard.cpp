#include "ui/wizard.h"

#include <exception>

#include "ui/text.h"

namespace ui {
namespace {
// PropertySheet's callback carries no user data: the sheet being opened is kept here for
// the moment between PropertySheetA and PSCB_INITIALIZED (always on one thread, modal).
thread_local WizardSheet* t_openingSheet = nullptr;
constexpr UINT_PTR kSheetSubclassId = 0x53485454;  // 'SHTT'

// A CALLBACK function, not a lambda: the i686 build needs the stdcall convention.
BOOL CALLBACK SendSysColorChange(HWND hwnd, LPARAM) {
    SendMessageA(hwnd, WM_SYSCOLORCHANGE, 0, 0);
    return TRUE;
}

// Windows sends WM_SYSCOLORCHANGE to top-level windows only: the sheet passes it on to every
// window inside it, so the pages' lists and headers re-read their colours.
LRESULT CALLBACK SheetProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR) {
    if (msg == WM_SYSCOLORCHANGE) EnumChildWindows(hwnd, &SendSysColorChange, 0);
    if (msg == WM_NCDESTROY) RemoveWindowSubclass(hwnd, &SheetProc, kSheetSubclassId);
    return DefSubclassProc(hwnd, msg, wParam, lParam);
}
}  // namespace

INT_PTR CALLBACK WizardPage::DialogProc(HWND hWnd, UINT msg, WPARAM wParam, LPARAM lParam) {
    WizardPage* page = nullptr;
    if (msg == WM_INITDIALOG) {
        auto* psp = reinterpret_cast<PROPSHEETPAGEA*>(lParam);
        page = reinterpret_cast<WizardPage*>(psp->lParam);
        page->m_hWnd = hWnd;
        SetWindowLongPtrA(hWnd, DWLP_USER, reinterpret_cast<LONG_PTR>(page));
    } else {
        page = reinterpret_cast<WizardPage*>(GetWindowLongPtrA(hWnd, DWLP_USER));
    }
    if (!page) return FALSE;
    try {
        INT_PTR result = page->HandleMessage(msg, wParam, lParam);
        if (msg == WM_NCDESTROY) page->m_hWnd = nullptr;
        return result;
    } catch (...) {
        // Never let an exception reach comctl32. A Next, Back, Finish or leaving whose handler
        // failed is refused, so the user stays on the page that could not finish its work.
        if (msg != WM_NOTIFY) return FALSE;
        switch (reinterpret_cast<const NMHDR*>(lParam)->code) {
        case PSN_WIZNEXT:
        case PSN_WIZBACK:
            SetWindowLongPtrA(hWnd, DWLP_MSGRESULT, kStay);
            return TRUE;
        case PSN_KILLACTIVE:
        case PSN_WIZFINISH:
            SetWindowLongPtrA(hWnd, DWLP_MSGRESULT, TRUE);
            return TRUE;
        default:
            return FALSE;
        }
    }
}

INT_PTR WizardPage::HandleMessage(UINT msg, WPARAM wParam, LPARAM lParam) {
    auto setResult = [this](LRESULT r) {
        SetWindowLongPtrA(m_hWnd, DWLP_MSGRESULT, r);
        return TRUE;
    };
    switch (msg) {
    case WM_INITDIALOG:
        return OnInitDialog();
    case WM_DESTROY:
        OnDestroy();
        return FALSE;
    case WM_COMMAND:
        return OnCommand(wParam, lParam);
    case WM_NOTIFY: {
        const auto* hdr = reinterpret_cast<const NMHDR*>(lParam);
        switch (hdr->code) {
        case PSN_SETACTIVE:
            return setResult(OnSetActive() ? 0 : -1);
        case PSN_KILLACTIVE:
            return setResult(OnKillActive() ? FALSE : TRUE);
        case PSN_WIZNEXT:
            return setResult(OnWizardNext());
        case PSN_WIZBACK:
            return setResult(OnWizardBack());
        case PSN_WIZFINISH:
            return setResult(OnWizardFinish() ? FALSE : TRUE);
        case PSN_RESET:  // the wizard was cancelled: every created page hears it
            OnCancel();
            return TRUE;
        default: {
            LRESULT result = 0;
            if (OnNotify(hdr, &result)) return setResult(result);
            return FALSE;
        }
        }
    }
    default: {
        LRESULT result = 0;
        if (OnMessage(msg, wParam, lParam, &result)) return setResult(result);
        return FALSE;
    }
    }
}

void WizardSheet::AddPage(WizardPage* page) {
    page->m_pSheet = this;
    m_pages.push_back(page);
}

int WizardSheet::GetPageIndex(const WizardPage* page) const {
    for (size_t i = 0; i < m_pages.size(); ++i)
        if (m_pages[i] == page) return static_cast<int>(i);
    return -1;
}

int CALLBACK WizardSheet::SheetCallback(HWND hWnd, UINT msg, LPARAM) {
    if (msg == PSCB_INITIALIZED && t_openingSheet) {
        WizardSheet* sheet = t_openingSheet;
        sheet->m_hWnd = hWnd;
        SetWindowSubclass(hWnd, &SheetProc, kSheetSubclassId, 0);
        try {
            sheet->OnInitSheet();
        } catch (...) {
        }
    }
    return 0;
}

INT_PTR WizardSheet::DoModal(HWND hwndParent) {
    std::vector<PROPSHEETPAGEA> pages(m_pages.size());
    for (size_t i = 0; i < m_pages.size(); ++i) {
        PROPSHEETPAGEA& psp = pages[i];
        psp.dwSize = sizeof psp;
        psp.dwFlags = PSP_DEFAULT;
        psp.hInstance = ResourceInstance();
        psp.pszTemplate = MAKEINTRESOURCEA(m_pages[i]->m_nIDTemplate);
        psp.pfnDlgProc = &WizardPage::DialogProc;
        psp.lParam = reinterpret_cast<LPARAM>(m_pages[i]);
    }
    PROPSHEETHEADERA header{};
    header.dwSize = sizeof header;
    header.dwFlags = PSH_PROPSHEETPAGE | PSH_WIZARD | PSH_NOAPPLYNOW | PSH_USECALLBACK;
    header.hwndParent = hwndParent;
    header.hInstance = ResourceInstance();
    header.pszCaption = m_strCaption.c_str();
    header.nPages = static_cast<UINT>(pages.size());
    header.nStartPage = static_cast<UINT>(m_nStartPage);
    header.ppsp = pages.data();
    header.pfnCallback = &WizardSheet::SheetCallback;

    WizardSheet* outer = t_openingSheet;
    t_openingSheet = this;
    INT_PTR result = PropertySheetA(&header);
    t_openingSheet = outer;
    m_hWnd = nullptr;
    return result;
}

BOOL WizardSheet::SetActivePage(int index) {
    return static_cast<BOOL>(SendMessageA(m_hWnd, PSM_SETCURSEL, static_cast<WPARAM>(index), 0));
}

int WizardSheet::GetActiveIndex() const {
    HWND page = reinterpret_cast<HWND>(SendMessageA(m_hWnd, PSM_GETCURRENTPAGEHWND, 0, 0));
    for (size_t i = 0; i < m_pages.size(); ++i)
        if (m_pages[i]->GetSafeHwnd() == page && page) return static_cast<int>(i);
    return -1;
}

void WizardSheet::SetWizardButtons(DWORD dwFlags) { PostMessageA(m_hWnd, PSM_SETWIZBUTTONS, 0, dwFlags); }

void WizardSheet::PressButton(int nButton) { PostMessageA(m_hWnd, PSM_PRESSBUTTON, nButton, 0); }

}  // namespace ui
