// Our stand-in for the framework's modal dialog (DESIGN.md section 2): the static dialog
// procedure takes `this` from the creation parameter and maps messages to virtuals; OK and
// Cancel end the dialog. The rule and modify dialogs derive from it.
// No exception leaves the window procedure.
#pragma once
#include <windows.h>

namespace ui {

class Dialog {
public:
    explicit Dialog(UINT nIDTemplate) : m_nIDTemplate(nIDTemplate) {}
    virtual ~Dialog() = default;
    Dialog(const Dialog&) = delete;
    Dialog& operator=(const Dialog&) = delete;

    // Shows the dialog modally; returns IDOK, IDCANCEL or the value given to EndDialog.
    INT_PTR DoModal(HWND hwndParent);
    HWND GetSafeHwnd() const { return m_hWnd; }
    HWND GetDlgItem(int id) const { return ::GetDlgItem(m_hWnd, id); }
    void EndDialog(INT_PTR result) { ::EndDialog(m_hWnd, result); }

protected:
    virtual BOOL OnInitDialog() { return TRUE; }
    virtual void OnOK() { EndDialog(IDOK); }
    virtual void OnCancel() { EndDialog(IDCANCEL); }
    virtual BOOL OnCommand(WPARAM, LPARAM) { return FALSE; }
    virtual BOOL OnNotify(const NMHDR*, LRESULT*) { return FALSE; }
    virtual BOOL OnMessage(UINT, WPARAM, LPARAM, LRESULT*) { return FALSE; }

private:
    static INT_PTR CALLBACK DialogProc(HWND hWnd, UINT msg, WPARAM wParam, LPARAM lParam);

    UINT m_nIDTemplate;
    HWND m_hWnd = nullptr;
};

}  // namespace ui
