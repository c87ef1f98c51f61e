#include "controls/xlist_ctrl.h"

#include <windowsx.h>

#include <algorithm>

#include "res/resource.h"
#include "ui/text.h"
#include "ui/win_handles.h"

namespace controls {
namespace {
constexpr UINT_PTR kListSubclassId = 0x584C5354;  // 'XLST'
constexpr int kBoxSize = 13;  // check box edge, pixels
constexpr char kControlProperty[] = "Sentrel.CXListCtrl";  // the window's CXListCtrl, for FromHandle

std::string ListItemText(HWND list, int row, int column) {
    std::string text(260, '\0');
    for (;;) {
        LVITEMA item{};
        item.iSubItem = column;
        item.pszText = text.data();
        item.cchTextMax = static_cast<int>(text.size());
        const int length = static_cast<int>(SendMessageA(list, LVM_GETITEMTEXTA, static_cast<WPARAM>(row),
                                                         reinterpret_cast<LPARAM>(&item)));
        if (length < static_cast<int>(text.size()) - 1) {
            text.resize(static_cast<size_t>(std::max(length, 0)));
            return text;
        }
        text.assign(text.size() * 2, '\0');
    }
}
}  // namespace

UINT CXListCtrl::CheckboxClickedMessage() {
    // The message's name is the system's own text: "WM_XLISTCTRL_CHECKBOX_CLICKED".
    static const UINT message = RegisterWindowMessageA(ui::LoadResString(IDS_XLISTCTRL_CHECKBOX_CLICKED).c_str());
    return message;
}

CXListCtrl::CXListCtrl() { ReadSystemColors(); }

CXListCtrl* CXListCtrl::FromHandle(HWND hwndList) {
    return hwndList ? static_cast<CXListCtrl*>(GetPropA(hwndList, kControlProperty)) : nullptr;
}

CXListCtrl::~CXListCtrl() { Detach(); }

void CXListCtrl::ReadSystemColors() {
    m_crBtnFace = GetSysColor(COLOR_BTNFACE);
    m_crBtnHighlight = GetSysColor(COLOR_BTNHIGHLIGHT);
    m_crBtnShadow = GetSysColor(COLOR_BTNSHADOW);
    m_crBtnText = GetSysColor(COLOR_BTNTEXT);
    m_crGrayText = GetSysColor(COLOR_GRAYTEXT);
    m_crHighlight = GetSysColor(COLOR_HIGHLIGHT);
    m_crHighlightText = GetSysColor(COLOR_HIGHLIGHTTEXT);
    m_crWindow = GetSysColor(COLOR_WINDOW);
    m_crWindowText = GetSysColor(COLOR_WINDOWTEXT);
}

bool CXListCtrl::Attach(HWND hwndList) {
    if (!hwndList || m_hWnd) return false;
    m_hWnd = hwndList;
    m_hWndParent = GetParent(hwndList);
    // The list's own messages (clicks, header notifications) and the notifications it sends
    // its parent (custom draw, row deletion) both come to us: the framework's reflection.
    SetWindowSubclass(m_hWnd, &CXListCtrl::ListProc, kListSubclassId, reinterpret_cast<DWORD_PTR>(this));
    SetWindowSubclass(m_hWndParent, &CXListCtrl::ParentProc, reinterpret_cast<UINT_PTR>(this),
                      reinterpret_cast<DWORD_PTR>(this));
    AttachHeader();
    SetPropA(m_hWnd, kControlProperty, this);
    return true;
}

void CXListCtrl::Detach() {
    if (m_hWnd && IsWindow(m_hWnd)) {
        RemoveWindowSubclass(m_hWnd, &CXListCtrl::ListProc, kListSubclassId);
        RemovePropA(m_hWnd, kControlProperty);
    }
    if (m_hWndParent && IsWindow(m_hWndParent))
        RemoveWindowSubclass(m_hWndParent, &CXListCtrl::ParentProc, reinterpret_cast<UINT_PTR>(this));
    m_header.UnsubclassHeader();
    m_hWnd = m_hWndParent = nullptr;
    m_records.clear();  // records of rows the window never reported deleted
}

// ---------------------------------------------------------------------------------------
// Columns

int CXListCtrl::InsertColumn(int column, const std::string& text, int width, int format) {
    LVCOLUMNA col{};
    col.mask = LVCF_FMT | LVCF_TEXT | LVCF_WIDTH | LVCF_SUBITEM;
    col.fmt = format;
    col.cx = width;
    col.pszText = const_cast<char*>(text.c_str());
    col.iSubItem = column;
    const int index = static_cast<int>(SendMessageA(m_hWnd, LVM_INSERTCOLUMNA, static_cast<WPARAM>(column),
                                                    reinterpret_cast<LPARAM>(&col)));
    AttachHeader();
    return index;
}

// A list view created hidden may make its header only with its first column (Wine does), so
// the header is taken over on Attach or, failing that, here.
void CXListCtrl::AttachHeader() {
    if (!m_header.GetSafeHwnd()) m_header.SubclassHeader(ListView_GetHeader(m_hWnd));
}

int CXListCtrl::GetColumnCount() const { return m_header.GetItemCount(); }

void CXListCtrl::DeleteAllColumns() {
    DeleteAllItems();  // rows hold one cell per column of their time
    for (int n = GetColumnCount(); n > 0; --n) SendMessageA(m_hWnd, LVM_DELETECOLUMN, 0, 0);
}

void CXListCtrl::SetExtendedStyle(DWORD styles) { ListView_SetExtendedListViewStyle(m_hWnd, styles); }

bool CXListCtrl::SetHeaderCheckState(int column, int state) {
    if (!m_header.SetItemImage(column, state)) return false;
    if (state != kHeaderNoCheck) SyncHeaderCheck(column);
    return true;
}

int CXListCtrl::GetHeaderCheckState(int column) const {
    const int image = m_header.GetItemImage(column);
    return image < 0 ? kHeaderNoCheck : image;
}

// ---------------------------------------------------------------------------------------
// Rows and cells

CXListCtrl::RowRecord* CXListCtrl::Record(int row) const {
    if (!m_hWnd || row < 0 || row >= GetItemCount()) return nullptr;
    LVITEMA item{};
    item.mask = LVIF_PARAM;
    item.iItem = row;
    if (!SendMessageA(m_hWnd, LVM_GETITEMA, 0, reinterpret_cast<LPARAM>(&item))) return nullptr;
    auto* record = reinterpret_cast<RowRecord*>(item.lParam);
    return m_records.count(record) ? record : nullptr;
}

CXListCtrl::CellRecord* CXListCtrl::Cell(int row, int column) const {
    RowRecord* record = Record(row);
    if (!record || column < 0 || column >= static_cast<int>(record->cells.size())) return nullptr;
    return &record->cells[static_cast<size_t>(column)];
}

int CXListCtrl::InsertItem(int row, const std::string& text) {
    return InsertItem(row, text, m_crWindowText, m_crWindow);
}

int CXListCtrl::InsertItem(int row, const std::string& text, COLORREF crText, COLORREF crBackground) {
    if (!m_hWnd || row < 0) return -1;
    auto record = std::make_unique<RowRecord>();
    record->cells.assign(static_cast<size_t>(std::max(GetColumnCount(), 1)), CellRecord{m_crWindowText, m_crWindow, -1});
    record->cells[0].crText = crText;
    record->cells[0].crBackground = crBackground;
    RowRecord* raw = record.get();
    m_records.emplace(raw, std::move(record));

    LVITEMA item{};
    item.mask = LVIF_TEXT | LVIF_PARAM;
    item.iItem = row;
    item.pszText = const_cast<char*>(text.c_str());
    item.lParam = reinterpret_cast<LPARAM>(raw);
    const int index = static_cast<int>(SendMessageA(m_hWnd, LVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&item)));
    if (index < 0) m_records.erase(raw);
    return index;
}

bool CXListCtrl::SetItemText(int row, int column, const std::string& text) {
    if (!Record(row) || column < 0 || column >= GetColumnCount()) return false;
    LVITEMA item{};
    item.iSubItem = column;
    item.pszText = const_cast<char*>(text.c_str());
    if (!SendMessageA(m_hWnd, LVM_SETITEMTEXTA, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item)))
        return false;
    InvalidateCell(row, column);
    return true;
}

std::string CXListCtrl::GetItemText(int row, int column) const {
    if (row < 0 || row >= GetItemCount() || column < 0 || column >= GetColumnCount()) return {};
    return ListItemText(m_hWnd, row, column);
}

bool CXListCtrl::DeleteItem(int row) {
    // The record is freed when the list reports the row deleted (LVN_DELETEITEM).
    if (!Record(row)) return false;
    return SendMessageA(m_hWnd, LVM_DELETEITEM, static_cast<WPARAM>(row), 0) != 0;
}

bool CXListCtrl::DeleteAllItems() {
    if (!m_hWnd) return false;
    const bool ok = SendMessageA(m_hWnd, LVM_DELETEALLITEMS, 0, 0) != 0;
    if (GetItemCount() == 0) m_records.clear();
    return ok;
}

int CXListCtrl::GetItemCount() const {
    return m_hWnd ? static_cast<int>(SendMessageA(m_hWnd, LVM_GETITEMCOUNT, 0, 0)) : 0;
}

bool CXListCtrl::SetCheckState(int row, int column, int state) {
    CellRecord* cell = Cell(row, column);
    if (!cell) return false;
    cell->nCheckState = state;
    InvalidateCell(row, column);
    SyncHeaderCheck(column);
    return true;
}

int CXListCtrl::GetCheckState(int row, int column) const {
    const CellRecord* cell = Cell(row, column);
    return cell ? cell->nCheckState : -1;
}

bool CXListCtrl::SetCellColors(int row, int column, COLORREF crText, COLORREF crBackground) {
    CellRecord* cell = Cell(row, column);
    if (!cell) return false;
    cell->crText = crText;
    cell->crBackground = crBackground;
    InvalidateCell(row, column);
    return true;
}

bool CXListCtrl::GetCellColors(int row, int column, COLORREF* crText, COLORREF* crBackground) const {
    const CellRecord* cell = Cell(row, column);
    if (!cell) return false;
    if (crText) *crText = cell->crText;
    if (crBackground) *crBackground = cell->crBackground;
    return true;
}

bool CXListCtrl::SetRowEnabled(int row, bool enabled) {
    RowRecord* record = Record(row);
    if (!record) return false;
    record->bEnabled = enabled;
    RECT rc{};
    if (ListView_GetItemRect(m_hWnd, row, &rc, LVIR_BOUNDS)) InvalidateRect(m_hWnd, &rc, FALSE);
    return true;
}

bool CXListCtrl::IsRowEnabled(int row) const {
    const RowRecord* record = Record(row);
    return record && record->bEnabled;
}

bool CXListCtrl::SetRowData(int row, DWORD_PTR value) {
    RowRecord* record = Record(row);
    if (!record) return false;
    record->dwRowData = value;
    return true;
}

DWORD_PTR CXListCtrl::GetRowData(int row) const {
    const RowRecord* record = Record(row);
    return record ? record->dwRowData : 0;
}

int CXListCtrl::GetFirstSelectedRow() const {
    return m_hWnd ? static_cast<int>(SendMessageA(m_hWnd, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED)) : -1;
}

bool CXListCtrl::SelectRow(int row, bool focus) {
    if (!Record(row)) return false;
    const UINT states = LVIS_SELECTED | (focus ? LVIS_FOCUSED : 0);
    ListView_SetItemState(m_hWnd, row, states, states);
    ListView_EnsureVisible(m_hWnd, row, FALSE);
    return true;
}

bool CXListCtrl::GetCellRect(int row, int column, int kind, RECT* rect) const {
    if (!rect || row < 0 || row >= GetItemCount() || column < 0 || column >= GetColumnCount()) return false;
    RECT rc{};
    rc.top = column;
    rc.left = kind;
    if (!SendMessageA(m_hWnd, LVM_GETSUBITEMRECT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&rc)))
        return false;
    if (column == 0 && GetColumnCount() >= 2) {
        // Subitem 0's rectangle is the whole row: it ends where column 1 begins.
        RECT next{};
        next.top = 1;
        next.left = LVIR_BOUNDS;
        if (SendMessageA(m_hWnd, LVM_GETSUBITEMRECT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&next)))
            rc.right = next.left;
    }
    *rect = rc;
    return true;
}

void CXListCtrl::InvalidateCell(int row, int column) {
    RECT rc{};
    if (GetCellRect(row, column, LVIR_BOUNDS, &rc)) InvalidateRect(m_hWnd, &rc, FALSE);
}

void CXListCtrl::SyncHeaderCheck(int column) {
    const int state = GetHeaderCheckState(column);
    if (state != kHeaderUnchecked && state != kHeaderChecked) return;
    bool all = true;
    const int n = GetItemCount();
    if (n == 0) all = false;  // an empty column is not "all checked"
    for (int row = 0; row < n && all; ++row) all = GetCheckState(row, column) == 1;
    const int wanted = all ? kHeaderChecked : kHeaderUnchecked;
    if (wanted != state) m_header.SetItemImage(column, wanted);
}

void CXListCtrl::OnHeaderClick(int column) {
    const int state = GetHeaderCheckState(column);
    if (state != kHeaderUnchecked && state != kHeaderChecked) return;
    const int newState = state == kHeaderUnchecked ? kHeaderChecked : kHeaderUnchecked;
    m_header.SetItemImage(column, newState);
    const int cellState = newState == kHeaderChecked ? 1 : 0;
    for (int row = 0, n = GetItemCount(); row < n; ++row) {
        CellRecord* cell = Cell(row, column);
        if (cell && cell->nCheckState >= 0) {
            cell->nCheckState = cellState;
            InvalidateCell(row, column);
        }
    }
}

namespace {
// Sort keys of the rows, taken before sorting: the list must not be asked while it sorts.
struct SortKey {
    std::string text;
    int nIndex;
};
struct SortContext {
    std::unordered_map<LPARAM, SortKey> keys;
    const std::function<int(const std::string&, const std::string&)>* compare;
    bool ascending;
};

int CALLBACK CompareRows(LPARAM a, LPARAM b, LPARAM context) {
    const auto* c = reinterpret_cast<const SortContext*>(context);
    const auto ia = c->keys.find(a), ib = c->keys.find(b);
    if (ia == c->keys.end() || ib == c->keys.end()) return 0;
    int result = 0;
    try {
        result = (*c->compare)(ia->second.text, ib->second.text);
    } catch (...) {
    }
    if (!c->ascending) result = -result;
    if (result != 0) return result;
    return ia->second.nIndex < ib->second.nIndex ? -1 : (ia->second.nIndex > ib->second.nIndex ? 1 : 0);
}
}  // namespace

void CXListCtrl::SortRows(int column, const std::function<int(const std::string&, const std::string&)>& compare,
                          bool ascending) {
    SortContext context{{}, &compare, ascending};
    for (int row = 0, n = GetItemCount(); row < n; ++row) {
        LVITEMA item{};
        item.mask = LVIF_PARAM;
        item.iItem = row;
        SendMessageA(m_hWnd, LVM_GETITEMA, 0, reinterpret_cast<LPARAM>(&item));
        context.keys[item.lParam] = {GetItemText(row, column), row};
    }
    // Equal texts keep their order: the row's index before the sort breaks ties.
    SendMessageA(m_hWnd, LVM_SORTITEMS, reinterpret_cast<WPARAM>(&context), reinterpret_cast<LPARAM>(&CompareRows));
}

// ---------------------------------------------------------------------------------------
// Messages

LRESULT CALLBACK CXListCtrl::ListProc(HWND hWnd, UINT msg, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                      DWORD_PTR refData) {
    auto* self = reinterpret_cast<CXListCtrl*>(refData);
    try {
        if (msg == WM_NCDESTROY) {
            LRESULT r = DefSubclassProc(hWnd, msg, wParam, lParam);
            self->Detach();
            return r;
        }
        return self->OnListMessage(msg, wParam, lParam);
    } catch (...) {
        return DefSubclassProc(hWnd, msg, wParam, lParam);
    }
}

LRESULT CALLBACK CXListCtrl::ParentProc(HWND hWnd, UINT msg, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                        DWORD_PTR refData) {
    auto* self = reinterpret_cast<CXListCtrl*>(refData);
    try {
        if (msg == WM_NOTIFY) {
            const auto* hdr = reinterpret_cast<const NMHDR*>(lParam);
            LRESULT result = 0;
            if (hdr && hdr->hwndFrom == self->m_hWnd && self->OnParentNotify(hdr, &result)) return result;
        } else if (msg == WM_SYSCOLORCHANGE) {
            self->ReadSystemColors();
            self->m_header.ReadSystemColors();
        }
    } catch (...) {
    }
    return DefSubclassProc(hWnd, msg, wParam, lParam);
}

bool CXListCtrl::OnParentNotify(const NMHDR* hdr, LRESULT* result) {
    switch (hdr->code) {
    case NM_CUSTOMDRAW:
        *result = OnCustomDraw(reinterpret_cast<NMLVCUSTOMDRAW*>(const_cast<NMHDR*>(hdr)));
        return true;
    case LVN_DELETEITEM: {
        // a row's record is freed with its row (one row, all rows, or the control).
        const auto* nm = reinterpret_cast<const NMLISTVIEW*>(hdr);
        m_records.erase(reinterpret_cast<RowRecord*>(nm->lParam));
        return false;  // the parent may want to hear it too
    }
    default:
        return false;
    }
}

int CXListCtrl::ColumnAt(int row, POINT pt) const {
    for (int column = 0, n = GetColumnCount(); column < n; ++column) {
        RECT rc{};
        if (GetCellRect(row, column, LVIR_BOUNDS, &rc) && PtInRect(&rc, pt)) return column;
    }
    return -1;
}

LRESULT CXListCtrl::OnListMessage(UINT msg, WPARAM wParam, LPARAM lParam) {
    switch (msg) {
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK: {
        LVHITTESTINFO hit{};
        hit.pt = {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
        const int row = static_cast<int>(SendMessageA(m_hWnd, LVM_SUBITEMHITTEST, 0, reinterpret_cast<LPARAM>(&hit)));
        if (row < 0 || !Record(row)) break;
        if (!IsRowEnabled(row)) return 0;  // ignored entirely: no selection change
        const int column = ColumnAt(row, hit.pt);
        CellRecord* cell = Cell(row, column);
        if (cell && cell->nCheckState >= 0) {
            // The whole cell counts, not only the box.
            cell->nCheckState = cell->nCheckState == 1 ? 0 : 1;
            InvalidateCell(row, column);
            SendMessageA(m_hWndParent, CheckboxClickedMessage(), static_cast<WPARAM>(row), static_cast<LPARAM>(column));
            SyncHeaderCheck(column);
        }
        break;  // then the default handling: the selection moves to the row
    }
    case WM_NOTIFY: {
        const auto* hdr = reinterpret_cast<const NMHDR*>(lParam);
        if (hdr && hdr->hwndFrom == m_header.GetSafeHwnd() && (hdr->code == HDN_ITEMCLICKA || hdr->code == HDN_ITEMCLICKW)) {
            // The header box toggles its column; the click then goes on as a column click.
            OnHeaderClick(reinterpret_cast<const NMHEADERA*>(hdr)->iItem);
        }
        break;
    }
    case WM_SYSCOLORCHANGE:
        ReadSystemColors();
        m_header.ReadSystemColors();
        break;
    default:
        break;
    }
    return DefSubclassProc(m_hWnd, msg, wParam, lParam);
}

// ---------------------------------------------------------------------------------------
// Drawing: the control draws every cell itself.

LRESULT CXListCtrl::OnCustomDraw(NMLVCUSTOMDRAW* cd) {
    switch (cd->nmcd.dwDrawStage) {
    case CDDS_PREPAINT: return CDRF_NOTIFYITEMDRAW;
    case CDDS_ITEMPREPAINT: return CDRF_NOTIFYSUBITEMDRAW;
    case CDDS_ITEMPREPAINT | CDDS_SUBITEM:
        DrawCell(cd->nmcd.hdc, static_cast<int>(cd->nmcd.dwItemSpec), cd->iSubItem);
        return CDRF_SKIPDEFAULT;
    default: return CDRF_DODEFAULT;
    }
}

void CXListCtrl::DrawCell(HDC dc, int row, int column) {
    const RowRecord* record = Record(row);
    RECT rc{};
    if (!record || !GetCellRect(row, column, LVIR_BOUNDS, &rc)) return;
    const CellRecord cell = column < static_cast<int>(record->cells.size())
                                ? record->cells[static_cast<size_t>(column)]
                                : CellRecord{m_crWindowText, m_crWindow, -1};

    // 1. Colours.
    COLORREF text = record->bEnabled ? cell.crText : m_crGrayText;
    COLORREF back = cell.crBackground;
    const LONG_PTR style = GetWindowLongPtrA(m_hWnd, GWL_STYLE);
    const bool fullRow = (ListView_GetExtendedListViewStyle(m_hWnd) & LVS_EX_FULLROWSELECT) != 0;
    const bool selected = (ListView_GetItemState(m_hWnd, row, LVIS_SELECTED) & LVIS_SELECTED) != 0;
    if (selected && (fullRow || column == 0)) {
        if (GetFocus() == m_hWnd) {
            text = m_crHighlightText;
            back = m_crHighlight;
        } else if (style & LVS_SHOWSELALWAYS) {
            text = m_crWindowText;
            back = m_crBtnFace;
        }
    }

    ui::UniqueGdiObject brush(CreateSolidBrush(back));
    FillRect(dc, &rc, static_cast<HBRUSH>(brush.get()));

    if (cell.nCheckState == 0 || cell.nCheckState == 1) {
        // 2. A sunken square box, with a check mark when checked.
        const int size = std::min<int>(kBoxSize, rc.bottom - rc.top - 2);
        RECT box;
        box.left = rc.left + std::max<int>(2, (rc.right - rc.left - size) / 2);
        box.top = rc.top + (rc.bottom - rc.top - size) / 2;
        box.right = box.left + size;
        box.bottom = box.top + size;
        ui::UniqueGdiObject white(CreateSolidBrush(record->bEnabled ? m_crWindow : m_crBtnFace));
        FillRect(dc, &box, static_cast<HBRUSH>(white.get()));
        DrawEdge(dc, &box, EDGE_SUNKEN, BF_RECT);
        if (cell.nCheckState == 1) {
            ui::UniqueGdiObject pen(CreatePen(PS_SOLID, 2, record->bEnabled ? m_crWindowText : m_crGrayText));
            HGDIOBJ old = SelectObject(dc, pen.get());
            const POINT mark[3] = {{box.left + 3, box.top + size / 2},
                                   {box.left + size / 2 - 1, box.bottom - 4},
                                   {box.right - 4, box.top + 3}};
            Polyline(dc, mark, 3);
            SelectObject(dc, old);
        }
        return;
    }

    // 3. The text.
    const std::string label = GetItemText(row, column);
    if (label.empty()) return;
    HFONT font = reinterpret_cast<HFONT>(SendMessageA(m_hWnd, WM_GETFONT, 0, 0));
    HGDIOBJ oldFont = font ? SelectObject(dc, font) : nullptr;
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, text);
    RECT rcText = rc;
    rcText.left += 6;
    rcText.right -= 2;
    DrawTextA(dc, label.c_str(), -1, &rcText, DT_LEFT | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
    if (oldFont) SelectObject(dc, oldFont);
}

}  // namespace controls
