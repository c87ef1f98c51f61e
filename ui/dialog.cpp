#include "ui/dialog.h"

#include "ui/text.h"

namespace ui {

INT_PTR Dialog::DoModal(HWND hwndParent) {
    return DialogBoxParamA(ResourceInstance(), MAKEINTRESOURCEA(m_nIDTemplate), hwndParent, &Dialog::DialogProc,
                           reinterpret_cast<LPARAM>(this));
}

INT_PTR CALLBACK Dialog::DialogProc(HWND hWnd, UINT msg, WPARAM wParam, LPARAM lParam) {
    Dialog* self = nullptr;
    if (msg == WM_INITDIALOG) {
        self = reinterpret_cast<Dialog*>(lParam);
        self->m_hWnd = hWnd;
        SetWindowLongPtrA(hWnd, DWLP_USER, lParam);
    } else {
        self = reinterpret_cast<Dialog*>(GetWindowLongPtrA(hWnd, DWLP_USER));
    }
    if (!self) return FALSE;
    try {
        switch (msg) {
        case WM_INITDIALOG:
            return self->OnInitDialog();
        case WM_COMMAND:
            if (self->OnCommand(wParam, lParam)) return TRUE;
            if (LOWORD(wParam) == IDOK) {
                self->OnOK();
                return TRUE;
            }
            if (LOWORD(wParam) == IDCANCEL) {
                self->OnCancel();
                return TRUE;
            }
            return FALSE;
        case WM_NOTIFY: {
            LRESULT result = 0;
            if (!self->OnNotify(reinterpret_cast<const NMHDR*>(lParam), &result)) return FALSE;
            SetWindowLongPtrA(hWnd, DWLP_MSGRESULT, result);
            return TRUE;
        }
        case WM_NCDESTROY:
            self->m_hWnd = nullptr;
            return FALSE;
        default: {
            LRESULT result = 0;
            if (!self->OnMessage(msg, wParam, lParam, &result)) return FALSE;
            SetWindowLongPtrA(hWnd, DWLP_MSGRESULT, result);
            return TRUE;
        }
        }
    } catch (...) {
        return FALSE;  // never let an exception reach user32
    }
}

}  // namespace ui
