// The check-box list control in a real window, acted on with the mouse (posted
// button messages at cell and header positions) and looked at through its pixels.
#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include <vector>

#include "controls/xlist_ctrl.h"
#include "res/resource.h"
#include "host/wizard_driver/png_writer.h"
#include "tests/win/support/win_test_util.h"
#include "ui/controls.h"
#include "ui/text.h"
#include "ui/win_handles.h"

using controls::CXListCtrl;

namespace {

struct ParentLog {
    std::vector<std::pair<int, int>> checkboxClicks;  // (row, column) of the registered message
    std::vector<int> columnClicks;
};
ParentLog* g_log = nullptr;

LRESULT CALLBACK ParentProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam) {
    if (g_log && msg == CXListCtrl::CheckboxClickedMessage()) {
        g_log->checkboxClicks.emplace_back(static_cast<int>(wParam), static_cast<int>(lParam));
        return 0;
    }
    if (g_log && msg == WM_NOTIFY && reinterpret_cast<NMHDR*>(lParam)->code == LVN_COLUMNCLICK) {
        g_log->columnClicks.push_back(reinterpret_cast<NMLISTVIEW*>(lParam)->iSubItem);
        return 0;
    }
    return DefWindowProcA(hwnd, msg, wParam, lParam);
}

void Pump() {
    for (int round = 0; round < 3; ++round) {
        MSG msg;
        while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)) {
            TranslateMessage(&msg);
            DispatchMessageA(&msg);
        }
        Sleep(10);
    }
}

class XListCtrlTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        INITCOMMONCONTROLSEX icc{sizeof icc, ICC_LISTVIEW_CLASSES};
        InitCommonControlsEx(&icc);
        ui::SetResourceInstance(GetModuleHandleA(nullptr));  // the plug-in's resources are linked in
        WNDCLASSA wc{};
        wc.lpfnWndProc = &ParentProc;
        wc.hInstance = GetModuleHandleA(nullptr);
        wc.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
        wc.lpszClassName = "XListCtrlTestParent";
        RegisterClassA(&wc);
        // One parent for the suite: creating top-level windows under Wine is slow.
        s_parent = CreateWindowExA(0, "XListCtrlTestParent", "CXListCtrl", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 20, 20,
                                   560, 260, nullptr, nullptr, GetModuleHandleA(nullptr), nullptr);
    }
    static void TearDownTestSuite() {
        DestroyWindow(s_parent);
        Pump();
    }

    void SetUp() override {
        g_log = &m_log;
        m_parent = s_parent;
        ASSERT_NE(nullptr, m_parent);
        m_hwndList = CreateWindowExA(0, WC_LISTVIEWA, "", WS_CHILD | WS_VISIBLE | WS_BORDER | LVS_REPORT | LVS_SINGLESEL,
                                     10, 10, 520, 200, m_parent, reinterpret_cast<HMENU>(100), nullptr, nullptr);
        ASSERT_TRUE(m_list.Attach(m_hwndList));
        m_list.SetExtendedStyle(LVS_EX_FULLROWSELECT);
        m_images.reset(ui::LoadImageStrip(IDB_HEADER_CHECKS, 16, ILC_COLOR24, RGB(255, 0, 255), 3));
        ASSERT_TRUE(m_images);
        m_list.GetHeaderCtrl().SetImageList(m_images.get());
        m_list.InsertColumn(0, "Name", 140);
        m_list.InsertColumn(1, "Enabled", 120);
        m_list.InsertColumn(2, "Note", 200);
        Pump();
    }

    void TearDown() override {
        DestroyWindow(m_hwndList);
        Pump();
        g_log = nullptr;
    }

    // Three rows with a check box in column 1.
    void AddCheckRows() {
        for (int i = 0; i < 3; ++i) {
            ASSERT_EQ(i, m_list.InsertItem(i, "row " + std::to_string(i)));
            m_list.SetItemText(i, 2, "note " + std::to_string(i));
            m_list.SetCheckState(i, 1, 0);
        }
        m_list.SetHeaderCheckState(1, CXListCtrl::kHeaderUnchecked);
        Pump();
    }

    RECT Cell(int row, int column) {
        RECT rc{};
        m_list.GetCellRect(row, column, LVIR_BOUNDS, &rc);
        return rc;
    }
    void Click(UINT down, UINT up, HWND hwnd, POINT pt) {
        const LPARAM at = MAKELPARAM(pt.x, pt.y);
        PostMessageA(hwnd, down, down == WM_LBUTTONDOWN ? MK_LBUTTON : MK_RBUTTON, at);
        PostMessageA(hwnd, up, 0, at);
        Pump();
    }
    void ClickCell(int row, int column) {
        RECT rc = Cell(row, column);
        Click(WM_LBUTTONDOWN, WM_LBUTTONUP, m_hwndList, {(rc.left + rc.right) / 2, (rc.top + rc.bottom) / 2});
    }
    void ClickHeader(int column) {
        HWND header = m_list.GetHeaderCtrl().GetSafeHwnd();
        RECT rc{};
        SendMessageA(header, HDM_GETITEMRECT, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&rc));
        Click(WM_LBUTTONDOWN, WM_LBUTTONUP, header, {(rc.left + rc.right) / 2, (rc.top + rc.bottom) / 2});
    }
    // The window's pixels as painted now, read back from its DC.
    struct Pixels {
        HWND hwnd;
        HDC dc;
        ~Pixels() { ReleaseDC(hwnd, dc); }
        COLORREF At(int x, int y) const { return GetPixel(dc, x, y); }
        bool AnyIn(const RECT& rc, COLORREF colour) const {
            for (int x = rc.left; x < rc.right; ++x)
                for (int y = rc.top; y < rc.bottom; ++y)
                    if (At(x, y) == colour) return true;
            return false;
        }
    };
    Pixels Paint(HWND hwnd) {
        RedrawWindow(hwnd, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
        Pump();
        return Pixels{hwnd, GetDC(hwnd)};
    }
    void Shot(const char* name) {
        RedrawWindow(m_parent, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
        Pump();
        sentrel_gui::SaveWindowPng(m_parent, sentrel_test::WinPath(SCREENSHOT_DIR) + "\\" + name + ".png");
    }

    static inline HWND s_parent = nullptr;
    ParentLog m_log;
    HWND m_parent = nullptr;
    HWND m_hwndList = nullptr;
    CXListCtrl m_list;
    ui::UniqueImageList m_images;
};

// Out of range, every operation refuses and changes nothing; a cell without a box answers -1.
TEST_F(XListCtrlTest, OutOfRangeCellsAndCellsWithoutABox) {
    AddCheckRows();
    EXPECT_EQ(3, m_list.GetColumnCount());
    for (auto [row, column] : {std::pair{0, 3}, {0, -1}, {3, 0}}) EXPECT_FALSE(m_list.SetItemText(row, column, "x"));
    EXPECT_EQ("note 0", m_list.GetItemText(0, 2));
    EXPECT_EQ(-1, m_list.GetCheckState(1, 2));
    EXPECT_EQ(-1, m_list.GetCheckState(7, 1));
    EXPECT_FALSE(m_list.DeleteItem(5));
    EXPECT_EQ(-1, m_list.InsertItem(-1, "negative"));
    RECT rc{}, c0 = Cell(0, 0), c1 = Cell(0, 1);
    EXPECT_FALSE(m_list.GetCellRect(0, 3, LVIR_BOUNDS, &rc));
    EXPECT_EQ(c1.left, c0.right) << "column 0 ends where column 1 begins";
    ClickCell(1, 2);  // a cell without a box: the click only selects the row
    EXPECT_EQ(1, m_list.GetFirstSelectedRow());
    EXPECT_EQ(0, m_list.GetCheckState(1, 1));
    EXPECT_TRUE(m_log.checkboxClicks.empty());
}

// A click anywhere in a check cell toggles it, tells the parent and keeps the header box in
// line; a header click sets the whole column and is still a column click for the parent.
TEST_F(XListCtrlTest, CheckCellsAndTheirHeaderBox) {
    AddCheckRows();
    RECT rc = Cell(2, 1);
    Click(WM_LBUTTONDOWN, WM_LBUTTONUP, m_hwndList, {rc.right - 3, rc.top + 2});  // far from the box
    EXPECT_EQ(1, m_list.GetCheckState(2, 1));
    EXPECT_EQ((std::vector<std::pair<int, int>>{{2, 1}}), m_log.checkboxClicks);
    EXPECT_EQ(2, m_list.GetFirstSelectedRow()) << "then the selection moves to the row";
    ClickCell(0, 1);
    EXPECT_EQ(CXListCtrl::kHeaderUnchecked, m_list.GetHeaderCheckState(1));
    ClickCell(1, 1);  // the last unchecked cell
    EXPECT_EQ(CXListCtrl::kHeaderChecked, m_list.GetHeaderCheckState(1));
    Shot("xlist-all-checked");
    m_list.SetCheckState(1, 1, 0);  // the same through the interface
    EXPECT_EQ(CXListCtrl::kHeaderUnchecked, m_list.GetHeaderCheckState(1));
    m_list.InsertItem(3, "no box");
    ClickHeader(1);
    for (int row = 0; row < 3; ++row) EXPECT_EQ(1, m_list.GetCheckState(row, 1)) << row;
    EXPECT_EQ(-1, m_list.GetCheckState(3, 1)) << "a cell without a box gets none";
    ClickHeader(1);
    for (int row = 0; row < 3; ++row) EXPECT_EQ(0, m_list.GetCheckState(row, 1)) << row;
    ClickHeader(2);  // no header box: only the column click
    EXPECT_EQ(CXListCtrl::kHeaderNoCheck, m_list.GetHeaderCheckState(2));
    EXPECT_EQ((std::vector<int>{1, 1, 2}), m_log.columnClicks);
}

TEST_F(XListCtrlTest, ADisabledRowIgnoresClicksAndIsGrey) {
    AddCheckRows();
    ASSERT_TRUE(m_list.SetRowEnabled(1, false));
    ClickCell(1, 1);
    EXPECT_EQ(0, m_list.GetCheckState(1, 1));
    EXPECT_EQ(-1, m_list.GetFirstSelectedRow()) << "no selection change";
    EXPECT_TRUE(m_log.checkboxClicks.empty());
    // Some pixel of its text is drawn in the grey text colour.
    RECT rc = Cell(1, 0);
    rc.right = rc.left + 60;
    EXPECT_TRUE(Paint(m_hwndList).AnyIn(rc, GetSysColor(COLOR_GRAYTEXT)));
}

// A row's record lives as long as its row: one row, all rows, or the control.
TEST_F(XListCtrlTest, RowRecordsAreFreedWithTheirRowsAndNewRowsStartFresh) {
    AddCheckRows();
    m_list.SetCellColors(0, 2, RGB(255, 0, 0), RGB(0, 0, 255));
    m_list.SetRowData(0, 42);
    ASSERT_TRUE(m_list.DeleteItem(2));
    EXPECT_EQ(2u, m_list.LiveRowRecords());
    ASSERT_TRUE(m_list.DeleteAllItems());
    EXPECT_EQ(0u, m_list.LiveRowRecords());
    ASSERT_EQ(0, m_list.InsertItem(0, "again"));
    EXPECT_EQ(-1, m_list.GetCheckState(0, 1));
    EXPECT_EQ(0u, m_list.GetRowData(0));
    COLORREF text = 0, back = 0;
    ASSERT_TRUE(m_list.GetCellColors(0, 2, &text, &back));
    EXPECT_EQ(GetSysColor(COLOR_WINDOW), back);
    AddCheckRows();
    DestroyWindow(m_hwndList);
    Pump();
    EXPECT_EQ(0u, m_list.LiveRowRecords());
}

TEST_F(XListCtrlTest, BlackOnWhiteRowShowsItsColoursInColumnZeroAndWindowColoursElsewhere) {
    ASSERT_EQ(0, m_list.InsertItem(0, "black on white", RGB(0, 0, 0), RGB(255, 255, 255)));
    m_list.SetItemText(0, 2, "default");
    ASSERT_EQ(1, m_list.InsertItem(1, "red on yellow", RGB(255, 0, 0), RGB(255, 255, 0)));
    m_list.SetItemText(1, 2, "default");
    Pump();
    COLORREF text = 0, back = 0;
    m_list.GetCellColors(0, 0, &text, &back);
    EXPECT_EQ(RGB(0, 0, 0), text);
    EXPECT_EQ(RGB(255, 255, 255), back);
    m_list.GetCellColors(0, 2, &text, &back);
    EXPECT_EQ(GetSysColor(COLOR_WINDOWTEXT), text);
    EXPECT_EQ(GetSysColor(COLOR_WINDOW), back);

    // On the screen: column 0's own background, the window colour in the other columns.
    RECT c0 = Cell(1, 0), c2 = Cell(1, 2), b0 = Cell(0, 0), b2 = Cell(0, 2);
    const Pixels pixels = Paint(m_hwndList);
    EXPECT_EQ(RGB(255, 255, 0), pixels.At(c0.right - 2, c0.top + 1));
    EXPECT_TRUE(pixels.AnyIn(c0, RGB(255, 0, 0))) << "red text";
    EXPECT_EQ(GetSysColor(COLOR_WINDOW), pixels.At(c2.right - 2, c2.top + 1));
    EXPECT_TRUE(pixels.AnyIn(c2, GetSysColor(COLOR_WINDOWTEXT)));
    EXPECT_FALSE(pixels.AnyIn(c2, RGB(255, 0, 0))) << "the other cells keep the default colours";
    EXPECT_EQ(RGB(255, 255, 255), pixels.At(b0.right - 2, b0.top + 1));
    EXPECT_TRUE(pixels.AnyIn(b0, RGB(0, 0, 0))) << "the text of column 0 is black";
    EXPECT_EQ(GetSysColor(COLOR_WINDOW), pixels.At(b2.right - 2, b2.top + 1));
    Shot("xlist-colours");
}

TEST_F(XListCtrlTest, HeaderDrawsTheImageAndTheTextSixPixelsApart) {
    AddCheckRows();
    m_list.SetCheckState(0, 1, 1);
    m_list.SetCheckState(1, 1, 1);
    m_list.SetCheckState(2, 1, 1);
    Pump();
    // The checked box image (index 2): its white inside sits in the header item of column 1.
    HWND header = m_list.GetHeaderCtrl().GetSafeHwnd();
    RECT item{};
    SendMessageA(header, HDM_GETITEMRECT, 1, reinterpret_cast<LPARAM>(&item));
    const Pixels pixels = Paint(header);
    RECT image{item.left, item.top, item.left + 22, item.bottom};
    EXPECT_TRUE(pixels.AnyIn(image, RGB(0, 0, 0))) << "the check mark of the checked-box image";
    EXPECT_FALSE(pixels.AnyIn(item, RGB(255, 0, 255))) << "magenta is transparent";
    // The text starts 6 pixels after the 16-pixel image: nothing of it left of that.
    RECT gap{item.left + 2 + 16 + 1, item.top + 3, item.left + 2 + 16 + 6, item.bottom - 3};
    EXPECT_FALSE(pixels.AnyIn(gap, GetSysColor(COLOR_BTNTEXT)));
    RECT text{item.left + 2 + 16 + 6, item.top, item.right - 6, item.bottom};
    EXPECT_TRUE(pixels.AnyIn(text, GetSysColor(COLOR_BTNTEXT))) << "the text follows";
    Shot("xlist-header");
}

}  // namespace

// A list created hidden (a details list shown only later): under Wine the list view makes its
// header only with the first column; the control must still count its columns, take its
// texts, and draw the header once shown.
TEST_F(XListCtrlTest, AListAttachedWhileHiddenGetsItsColumnsAndCells) {
    HWND hwnd = CreateWindowExA(0, WC_LISTVIEWA, "", WS_CHILD | WS_BORDER | LVS_REPORT, 10, 10, 360, 140, m_parent,
                                reinterpret_cast<HMENU>(101), nullptr, nullptr);
    {
        CXListCtrl list;
        ASSERT_TRUE(list.Attach(hwnd));
        list.InsertColumn(0, "ACL Profile Details", 130);
        list.InsertColumn(1, " ", 155);
        EXPECT_EQ(2, list.GetColumnCount());
        ASSERT_EQ(0, list.InsertItem(0, "Profile ID"));
        EXPECT_TRUE(list.SetItemText(0, 1, "3"));
        EXPECT_EQ("3", list.GetItemText(0, 1));
        EXPECT_NE(nullptr, list.GetHeaderCtrl().GetSafeHwnd()) << "the header is ours once it exists";
        ShowWindow(hwnd, SW_SHOW);
        list.DeleteAllColumns();
        EXPECT_EQ(0, list.GetColumnCount());
        EXPECT_EQ(0, list.GetItemCount()) << "rows go with the columns";
    }
    DestroyWindow(hwnd);
}
