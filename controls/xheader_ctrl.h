// `CXHeaderCtrl`, the header of `CXListCtrl`. Each item shows its image from the
// header image list (when it has one) followed by its text, 6 pixels apart, in the system's
// button colours. Wine's header has no per-item custom draw (DESIGN.md section 7), so the
// control paints the whole header itself: into an off-screen bitmap, copied to the screen in
// one step, never erasing its background, so it does not flicker while the list scrolls.
#pragma once
#include <windows.h>
#include <commctrl.h>

namespace controls {

class CXHeaderCtrl {
public:
    CXHeaderCtrl();
    ~CXHeaderCtrl();
    CXHeaderCtrl(const CXHeaderCtrl&) = delete;
    CXHeaderCtrl& operator=(const CXHeaderCtrl&) = delete;

    // Takes over the drawing of an existing header control (the list's own header).
    bool SubclassHeader(HWND hwndHeader);
    void UnsubclassHeader();
    HWND GetSafeHwnd() const { return m_hWnd; }

    void SetImageList(HIMAGELIST images);
    HIMAGELIST GetImageList() const;
    // The item's image index; -1 when the item has none or is out of range.
    int GetItemImage(int item) const;
    bool SetItemImage(int item, int image);
    int GetItemCount() const;

    // Re-reads the button colours (on every system colour change).
    void ReadSystemColors();

private:
    static LRESULT CALLBACK SubclassProc(HWND, UINT, WPARAM, LPARAM, UINT_PTR, DWORD_PTR);
    LRESULT HandleMessage(UINT msg, WPARAM wParam, LPARAM lParam);
    void Paint(HDC target, const RECT& client);
    void DrawItem(HDC dc, int item, const RECT& rc);

    HWND m_hWnd = nullptr;
    int m_nPressed = -1;  // item under a held left button, drawn sunken
    COLORREF m_crBtnFace = 0, m_crBtnHighlight = 0, m_crBtnShadow = 0, m_crBtnText = 0;
};

}  // namespace controls
