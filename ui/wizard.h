// Our stand-in for the framework's property sheet in wizard mode (DESIGN.md section 2):
// a sheet that owns nothing but the page list, and a page base class whose static dialog
// procedure takes `this` from PROPSHEETPAGE::lParam and maps PSN_* codes to virtuals.
// No exception leaves a window procedure.
#pragma once
#include <windows.h>
#include <commctrl.h>
#include <prsht.h>

#include <string>
#include <vector>

namespace ui {

class WizardSheet;

class WizardPage {
public:
    explicit WizardPage(UINT nIDTemplate) : m_nIDTemplate(nIDTemplate) {}
    virtual ~WizardPage() = default;
    WizardPage(const WizardPage&) = delete;
    WizardPage& operator=(const WizardPage&) = delete;

    HWND GetSafeHwnd() const { return m_hWnd; }
    HWND GetDlgItem(int id) const { return ::GetDlgItem(m_hWnd, id); }
    UINT TemplateID() const { return m_nIDTemplate; }
    WizardSheet* Sheet() const { return m_pSheet; }

    // Return values of OnWizardNext/OnWizardBack: go to the next/previous page, or stay.
    static constexpr LRESULT kMoveOn = 0;
    static constexpr LRESULT kStay = -1;

protected:
    // Framework hooks, called on the user-interface thread.
    virtual BOOL OnInitDialog() { return TRUE; }
    virtual BOOL OnSetActive() { return TRUE; }
    virtual BOOL OnKillActive() { return TRUE; }
    virtual LRESULT OnWizardNext() { return kMoveOn; }
    virtual LRESULT OnWizardBack() { return kMoveOn; }
    virtual BOOL OnWizardFinish() { return TRUE; }
    virtual void OnCancel() {}
    virtual BOOL OnCommand(WPARAM, LPARAM) { return FALSE; }
    virtual BOOL OnNotify(const NMHDR*, LRESULT*) { return FALSE; }
    // Any other message; return TRUE when handled (with *pResult set).
    virtual BOOL OnMessage(UINT, WPARAM, LPARAM, LRESULT*) { return FALSE; }
    // Called when the page's window is destroyed (the sheet closes).
    virtual void OnDestroy() {}

private:
    friend class WizardSheet;
    static INT_PTR CALLBACK DialogProc(HWND hWnd, UINT msg, WPARAM wParam, LPARAM lParam);
    INT_PTR HandleMessage(UINT msg, WPARAM wParam, LPARAM lParam);

    UINT m_nIDTemplate;
    HWND m_hWnd = nullptr;
    WizardSheet* m_pSheet = nullptr;
};

class WizardSheet {
public:
    explicit WizardSheet(std::string caption) : m_strCaption(std::move(caption)) {}
    virtual ~WizardSheet() = default;
    WizardSheet(const WizardSheet&) = delete;
    WizardSheet& operator=(const WizardSheet&) = delete;

    // Pages are shown in the order added; the index is how pages jump to each other.
    void AddPage(WizardPage* page);
    int GetPageCount() const { return static_cast<int>(m_pages.size()); }
    WizardPage* GetPage(int index) const { return m_pages.at(static_cast<size_t>(index)); }
    int GetPageIndex(const WizardPage* page) const;
    void SetStartPage(int index) { m_nStartPage = index; }

    // Shows the sheet modally; returns when it closes (positive after Finish, 0 after Cancel).
    INT_PTR DoModal(HWND hwndParent);

    HWND GetSafeHwnd() const { return m_hWnd; }
    // Makes the page at `index` the active one (its activation runs).
    BOOL SetActivePage(int index);
    int GetActiveIndex() const;
    // Posted, so the change takes effect after the activation handler returns.
    void SetWizardButtons(DWORD dwFlags);
    void PressButton(int nButton);

protected:
    // Called once the sheet window exists, before the first page shows.
    virtual void OnInitSheet() {}

private:
    static int CALLBACK SheetCallback(HWND hWnd, UINT msg, LPARAM lParam);

    std::string m_strCaption;
    std::vector<WizardPage*> m_pages;
    int m_nStartPage = 0;
    HWND m_hWnd = nullptr;
};

}  // namespace ui
