// Thin control wrappers of the framework layer (DESIGN.md section 7, 7-Zip's Control/*.h):
// one-line methods over the Win32 messages, so that the pages read as what they do.
#pragma once
#include <windows.h>
#include <commctrl.h>

#include <string>

namespace ui {

inline std::string GetWindowTextString(HWND hwnd) {
    const int length = GetWindowTextLengthA(hwnd);
    std::string text(static_cast<size_t>(length > 0 ? length : 0) + 1, '\0');
    GetWindowTextA(hwnd, text.data(), length + 1);
    text.resize(static_cast<size_t>(length > 0 ? length : 0));
    return text;
}

class Button {
public:
    explicit Button(HWND hwnd = nullptr) : m_hWnd(hwnd) {}
    HWND Hwnd() const { return m_hWnd; }
    void SetText(const std::string& text) const { SetWindowTextA(m_hWnd, text.c_str()); }
    std::string GetText() const { return GetWindowTextString(m_hWnd); }
    bool IsChecked() const { return SendMessageA(m_hWnd, BM_GETCHECK, 0, 0) == BST_CHECKED; }
    void SetCheck(bool checked) const { SendMessageA(m_hWnd, BM_SETCHECK, checked ? BST_CHECKED : BST_UNCHECKED, 0); }
    void SetFont(HFONT font) const { SendMessageA(m_hWnd, WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE); }

private:
    HWND m_hWnd;
};

class ComboBox {
public:
    explicit ComboBox(HWND hwnd = nullptr) : m_hWnd(hwnd) {}
    HWND Hwnd() const { return m_hWnd; }
    void ResetContent() const { SendMessageA(m_hWnd, CB_RESETCONTENT, 0, 0); }
    int AddString(const std::string& text) const {
        return static_cast<int>(SendMessageA(m_hWnd, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str())));
    }
    int GetCount() const { return static_cast<int>(SendMessageA(m_hWnd, CB_GETCOUNT, 0, 0)); }
    std::string GetLBText(int index) const {
        const int length = static_cast<int>(SendMessageA(m_hWnd, CB_GETLBTEXTLEN, static_cast<WPARAM>(index), 0));
        if (length < 0) return {};
        std::string text(static_cast<size_t>(length) + 1, '\0');
        SendMessageA(m_hWnd, CB_GETLBTEXT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(text.data()));
        text.resize(static_cast<size_t>(length));
        return text;
    }
    // Exact, whole-string and case-sensitive, unlike CB_FINDSTRINGEXACT (which ignores case).
    int FindExact(const std::string& text) const {
        for (int i = 0, n = GetCount(); i < n; ++i)
            if (GetLBText(i) == text) return i;
        return -1;
    }

private:
    HWND m_hWnd;
};

// An image list cut from one bitmap resource of the plug-in: images `cx` by 16 pixels, the
// colour `mask` transparent. Null when it cannot be made.
HIMAGELIST LoadImageStrip(UINT nBitmap, int cx, UINT colourFlags, COLORREF mask, int grow);

// The bold group-title font of the wizard's pages: Arial, height 16, weight 700.
HFONT CreateGroupTitleFont(const std::string& face);

}  // namespace ui
