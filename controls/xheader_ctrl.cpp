#include "controls/xheader_ctrl.h"

#include <windowsx.h>

#include <exception>
#include <string>

#include "ui/win_handles.h"

namespace controls {
namespace {
constexpr UINT_PTR kSubclassId = 0x58484452;  // 'XHDR'
constexpr int kImageTextGap = 6;              // image and text 6 pixels apart
constexpr int kPadding = 6;
}  // namespace

CXHeaderCtrl::CXHeaderCtrl() { ReadSystemColors(); }

CXHeaderCtrl::~CXHeaderCtrl() { UnsubclassHeader(); }

void CXHeaderCtrl::ReadSystemColors() {
    m_crBtnFace = GetSysColor(COLOR_BTNFACE);
    m_crBtnHighlight = GetSysColor(COLOR_BTNHIGHLIGHT);
    m_crBtnShadow = GetSysColor(COLOR_BTNSHADOW);
    m_crBtnText = GetSysColor(COLOR_BTNTEXT);
}

bool CXHeaderCtrl::SubclassHeader(HWND hwndHeader) {
    if (!hwndHeader || m_hWnd) return false;
    if (!SetWindowSubclass(hwndHeader, &CXHeaderCtrl::SubclassProc, kSubclassId, reinterpret_cast<DWORD_PTR>(this)))
        return false;
    m_hWnd = hwndHeader;
    InvalidateRect(m_hWnd, nullptr, FALSE);
    return true;
}

void CXHeaderCtrl::UnsubclassHeader() {
    if (m_hWnd && IsWindow(m_hWnd)) RemoveWindowSubclass(m_hWnd, &CXHeaderCtrl::SubclassProc, kSubclassId);
    m_hWnd = nullptr;
}

void CXHeaderCtrl::SetImageList(HIMAGELIST images) {
    if (m_hWnd) SendMessageA(m_hWnd, HDM_SETIMAGELIST, 0, reinterpret_cast<LPARAM>(images));
}

HIMAGELIST CXHeaderCtrl::GetImageList() const {
    return m_hWnd ? reinterpret_cast<HIMAGELIST>(SendMessageA(m_hWnd, HDM_GETIMAGELIST, 0, 0)) : nullptr;
}

int CXHeaderCtrl::GetItemCount() const {
    return m_hWnd ? static_cast<int>(SendMessageA(m_hWnd, HDM_GETITEMCOUNT, 0, 0)) : 0;
}

int CXHeaderCtrl::GetItemImage(int item) const {
    if (item < 0 || item >= GetItemCount()) return -1;
    HDITEMA hdi{};
    hdi.mask = HDI_IMAGE | HDI_FORMAT;
    if (!SendMessageA(m_hWnd, HDM_GETITEMA, static_cast<WPARAM>(item), reinterpret_cast<LPARAM>(&hdi))) return -1;
    return (hdi.fmt & HDF_IMAGE) ? hdi.iImage : -1;
}

bool CXHeaderCtrl::SetItemImage(int item, int image) {
    if (item < 0 || item >= GetItemCount()) return false;
    HDITEMA hdi{};
    hdi.mask = HDI_FORMAT;
    SendMessageA(m_hWnd, HDM_GETITEMA, static_cast<WPARAM>(item), reinterpret_cast<LPARAM>(&hdi));
    hdi.mask = HDI_IMAGE | HDI_FORMAT;
    hdi.fmt |= HDF_IMAGE;
    hdi.iImage = image;
    if (!SendMessageA(m_hWnd, HDM_SETITEMA, static_cast<WPARAM>(item), reinterpret_cast<LPARAM>(&hdi))) return false;
    RECT rc{};
    if (SendMessageA(m_hWnd, HDM_GETITEMRECT, static_cast<WPARAM>(item), reinterpret_cast<LPARAM>(&rc)))
        InvalidateRect(m_hWnd, &rc, FALSE);
    return true;
}

LRESULT CALLBACK CXHeaderCtrl::SubclassProc(HWND hWnd, UINT msg, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                            DWORD_PTR refData) {
    auto* self = reinterpret_cast<CXHeaderCtrl*>(refData);
    try {
        if (msg == WM_NCDESTROY) {
            RemoveWindowSubclass(hWnd, &CXHeaderCtrl::SubclassProc, kSubclassId);
            self->m_hWnd = nullptr;
            return DefSubclassProc(hWnd, msg, wParam, lParam);
        }
        return self->HandleMessage(msg, wParam, lParam);
    } catch (...) {
        return DefSubclassProc(hWnd, msg, wParam, lParam);  // nothing crosses the window procedure
    }
}

LRESULT CXHeaderCtrl::HandleMessage(UINT msg, WPARAM wParam, LPARAM lParam) {
    switch (msg) {
    case WM_ERASEBKGND:
        return 1;  // never erased: the paint covers every pixel
    case WM_PAINT: {
        PAINTSTRUCT ps;
        HDC dc = BeginPaint(m_hWnd, &ps);
        RECT client{};
        GetClientRect(m_hWnd, &client);
        Paint(dc, client);
        EndPaint(m_hWnd, &ps);
        return 0;
    }
    case WM_PRINTCLIENT: {
        RECT client{};
        GetClientRect(m_hWnd, &client);
        Paint(reinterpret_cast<HDC>(wParam), client);
        return 0;
    }
    case WM_SYSCOLORCHANGE:
        ReadSystemColors();
        break;
    case WM_LBUTTONDOWN: {
        HDHITTESTINFO hit{};
        hit.pt = {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
        SendMessageA(m_hWnd, HDM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit));
        m_nPressed = (hit.flags & HHT_ONHEADER) ? hit.iItem : -1;
        InvalidateRect(m_hWnd, nullptr, FALSE);
        break;
    }
    case WM_LBUTTONUP:
    case WM_CAPTURECHANGED:
        if (m_nPressed >= 0) {
            m_nPressed = -1;
            InvalidateRect(m_hWnd, nullptr, FALSE);
        }
        break;
    default:
        break;
    }
    return DefSubclassProc(m_hWnd, msg, wParam, lParam);
}

void CXHeaderCtrl::Paint(HDC target, const RECT& client) {
    const int width = client.right - client.left, height = client.bottom - client.top;
    if (width <= 0 || height <= 0) return;
    HDC dc = CreateCompatibleDC(target);
    if (!dc) return;
    ui::UniqueGdiObject bitmap(CreateCompatibleBitmap(target, width, height));
    HGDIOBJ oldBitmap = SelectObject(dc, bitmap.get());
    HFONT font = reinterpret_cast<HFONT>(SendMessageA(m_hWnd, WM_GETFONT, 0, 0));
    HGDIOBJ oldFont = font ? SelectObject(dc, font) : nullptr;

    ui::UniqueGdiObject face(CreateSolidBrush(m_crBtnFace));
    FillRect(dc, &client, static_cast<HBRUSH>(face.get()));
    const int count = GetItemCount();
    for (int i = 0; i < count; ++i) {
        RECT rc{};
        if (SendMessageA(m_hWnd, HDM_GETITEMRECT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&rc)))
            DrawItem(dc, i, rc);
    }
    BitBlt(target, 0, 0, width, height, dc, 0, 0, SRCCOPY);  // one step to the screen

    if (oldFont) SelectObject(dc, oldFont);
    SelectObject(dc, oldBitmap);
    DeleteDC(dc);
}

void CXHeaderCtrl::DrawItem(HDC dc, int item, const RECT& rcItem) {
    RECT rc = rcItem;
    // Edges in the button colours: raised, or sunken while pressed.
    const bool pressed = item == m_nPressed;
    ui::UniqueGdiObject light(CreatePen(PS_SOLID, 1, pressed ? m_crBtnShadow : m_crBtnHighlight));
    ui::UniqueGdiObject dark(CreatePen(PS_SOLID, 1, pressed ? m_crBtnHighlight : m_crBtnShadow));
    HGDIOBJ oldPen = SelectObject(dc, light.get());
    MoveToEx(dc, rc.left, rc.bottom - 1, nullptr);
    LineTo(dc, rc.left, rc.top);
    LineTo(dc, rc.right - 1, rc.top);
    SelectObject(dc, dark.get());
    MoveToEx(dc, rc.right - 1, rc.top + 2, nullptr);
    LineTo(dc, rc.right - 1, rc.bottom - 2);
    MoveToEx(dc, rc.left, rc.bottom - 1, nullptr);
    LineTo(dc, rc.right, rc.bottom - 1);
    SelectObject(dc, oldPen);

    char text[256] = {};
    HDITEMA hdi{};
    hdi.mask = HDI_TEXT | HDI_IMAGE | HDI_FORMAT;
    hdi.pszText = text;
    hdi.cchTextMax = sizeof text;
    SendMessageA(m_hWnd, HDM_GETITEMA, static_cast<WPARAM>(item), reinterpret_cast<LPARAM>(&hdi));

    int x = rc.left + (pressed ? 1 : 0) + 2;
    const int shift = pressed ? 1 : 0;
    HIMAGELIST images = GetImageList();
    if ((hdi.fmt & HDF_IMAGE) && images && hdi.iImage >= 0) {
        int cx = 0, cy = 0;
        ImageList_GetIconSize(images, &cx, &cy);
        const int y = rc.top + (rc.bottom - rc.top - cy) / 2 + shift;
        ImageList_Draw(images, hdi.iImage, dc, x, y, ILD_TRANSPARENT);
        x += cx + kImageTextGap;
    } else {
        x += kPadding - 2;
    }
    if (text[0]) {
        RECT rcText{x, rc.top + shift, rc.right - kPadding, rc.bottom + shift};
        SetBkMode(dc, TRANSPARENT);
        SetTextColor(dc, m_crBtnText);
        DrawTextA(dc, text, -1, &rcText, DT_LEFT | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
    }
}

}  // namespace controls
