// `CXListCtrl`, the report list of every dialog: a record per row with per-cell
// colours and an optional check box in any cell, drawn by the control itself; a click toggles
// a check box and tells the parent through the registered message
// "WM_XLISTCTRL_CHECKBOX_CLICKED"; a header check box follows, and can set, its column.
#pragma once
#include <windows.h>
#include <commctrl.h>

#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "controls/xheader_ctrl.h"

namespace controls {

class CXListCtrl {
public:
    struct CellRecord {
        COLORREF crText;
        COLORREF crBackground;
        int nCheckState = -1;  // -1 no check box, 0 unchecked, 1 checked
    };
    struct RowRecord {
        std::vector<CellRecord> cells;  // one per column that existed when the row was inserted
        bool bEnabled = true;
        DWORD_PTR dwRowData = 0;
    };

    // Header check states: the header item's image index.
    static constexpr int kHeaderNoCheck = 0;
    static constexpr int kHeaderUnchecked = 1;
    static constexpr int kHeaderChecked = 2;

    CXListCtrl();
    ~CXListCtrl();
    CXListCtrl(const CXListCtrl&) = delete;
    CXListCtrl& operator=(const CXListCtrl&) = delete;

    // Binds to the dialog's list-view control; the header is subclassed here.
    bool Attach(HWND hwndList);
    void Detach();
    HWND GetSafeHwnd() const { return m_hWnd; }
    CXHeaderCtrl& GetHeaderCtrl() { return m_header; }

    // The control bound to a list-view window, or null (the framework's FromHandlePermanent).
    static CXListCtrl* FromHandle(HWND hwndList);

    // The registered message sent to the parent: wParam row, lParam column.
    static UINT CheckboxClickedMessage();

    // --- columns (all before the first row: a row gets one cell per existing column) ---
    int InsertColumn(int column, const std::string& text, int width, int format = LVCFMT_LEFT);
    int GetColumnCount() const;
    // Removes every column (and every row with it), so a list can take another layout.
    void DeleteAllColumns();
    void SetExtendedStyle(DWORD styles);
    // Gives the column's header a check box (kHeaderUnchecked/kHeaderChecked) or takes it away.
    bool SetHeaderCheckState(int column, int state);
    int GetHeaderCheckState(int column) const;  // kHeaderNoCheck when none

    // --- rows ---
    int InsertItem(int row, const std::string& text);
    int InsertItem(int row, const std::string& text, COLORREF crText, COLORREF crBackground);
    bool SetItemText(int row, int column, const std::string& text);
    std::string GetItemText(int row, int column) const;
    bool DeleteItem(int row);
    bool DeleteAllItems();
    int GetItemCount() const;

    bool SetCheckState(int row, int column, int state);
    int GetCheckState(int row, int column) const;
    bool SetCellColors(int row, int column, COLORREF crText, COLORREF crBackground);
    bool GetCellColors(int row, int column, COLORREF* crText, COLORREF* crBackground) const;
    bool SetRowEnabled(int row, bool enabled);
    bool IsRowEnabled(int row) const;
    bool SetRowData(int row, DWORD_PTR value);
    DWORD_PTR GetRowData(int row) const;

    int GetFirstSelectedRow() const;
    bool SelectRow(int row, bool focus = true);
    // The cell's rectangle (kind LVIR_BOUNDS, LVIR_LABEL, ...); column 0 of a list with two
    // or more columns ends where column 1 begins.
    bool GetCellRect(int row, int column, int kind, RECT* rect) const;

    // Sorts the rows by one column's texts; equal texts keep their order.
    void SortRows(int column, const std::function<int(const std::string&, const std::string&)>& compare,
                  bool ascending);

    // Row records alive now (they are freed with their rows).
    size_t LiveRowRecords() const { return m_records.size(); }
    void ReadSystemColors();

private:
    static LRESULT CALLBACK ListProc(HWND, UINT, WPARAM, LPARAM, UINT_PTR, DWORD_PTR);
    static LRESULT CALLBACK ParentProc(HWND, UINT, WPARAM, LPARAM, UINT_PTR, DWORD_PTR);
    LRESULT OnListMessage(UINT msg, WPARAM wParam, LPARAM lParam);
    bool OnParentNotify(const NMHDR* hdr, LRESULT* result);
    LRESULT OnCustomDraw(NMLVCUSTOMDRAW* cd);
    void DrawCell(HDC dc, int row, int column);
    void AttachHeader();
    RowRecord* Record(int row) const;
    CellRecord* Cell(int row, int column) const;
    void InvalidateCell(int row, int column);
    void SyncHeaderCheck(int column);
    void OnHeaderClick(int column);
    int ColumnAt(int row, POINT pt) const;

    HWND m_hWnd = nullptr;
    HWND m_hWndParent = nullptr;
    CXHeaderCtrl m_header;
    std::unordered_map<RowRecord*, std::unique_ptr<RowRecord>> m_records;
    COLORREF m_crBtnFace = 0, m_crBtnHighlight = 0, m_crBtnShadow = 0, m_crBtnText = 0, m_crGrayText = 0,
             m_crHighlight = 0, m_crHighlightText = 0, m_crWindow = 0, m_crWindowText = 0;
};

}  // namespace controls
