#include "host/wizard_driver/wizard_driver.h"

#include <prsht.h>

#include <cstdio>
#include <thread>

#include "host/wizard_driver/png_writer.h"

namespace sentrel_gui {
namespace {
WizardDriver* g_driver = nullptr;  // the hooks carry no user data; one driver at a time
constexpr UINT kPing = WM_APP + 0x5A5;
std::string g_screenshotFolder;
FailureHandler g_failureHandler = nullptr;

void Fail(const std::string& what) {
    if (g_failureHandler)
        g_failureHandler(what);
    else
        std::fprintf(stderr, "wizard driver: %s\n", what.c_str());
}

std::string WindowText(HWND hwnd) {
    char text[2048] = {};
    GetWindowTextA(hwnd, text, sizeof text);
    return text;
}

struct FindSheet {
    std::string caption;
    HWND found = nullptr;
};
BOOL CALLBACK FindSheetProc(HWND hwnd, LPARAM lParam) {
    auto* f = reinterpret_cast<FindSheet*>(lParam);
    // A wizard shows its page's caption as its title, so the sheet is known by what it is.
    if (IsWindowVisible(hwnd) && SendMessageA(hwnd, PSM_GETCURRENTPAGEHWND, 0, 0) != 0 &&
        (f->caption.empty() || WindowText(hwnd) == f->caption)) {
        f->found = hwnd;
        return FALSE;
    }
    return TRUE;
}
// A CALLBACK function, not a lambda: the i686 build needs the stdcall convention.
BOOL CALLBACK ListWindowProc(HWND hwnd, LPARAM lParam) {
    *reinterpret_cast<std::string*>(lParam) +=
        " \"" + WindowText(hwnd) + "\"" + (IsWindowVisible(hwnd) ? "(visible)" : "");
    return TRUE;
}
}  // namespace

void SetScreenshotFolder(const std::string& folder) {
    g_screenshotFolder = folder;
    CreateDirectoryA(folder.c_str(), nullptr);
}
std::string ScreenshotFolder() { return g_screenshotFolder; }
void SetFailureHandler(FailureHandler handler) { g_failureHandler = handler; }

void WizardDriver::Run(const std::string& sheetCaption, const std::function<void()>& showWizard,
                       const std::function<void(WizardDriver&)>& script) {
    WizardDriver driver;
    g_driver = &driver;
    driver.m_uiThread = GetCurrentThreadId();
    driver.m_pingEvent = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    driver.m_boxes = std::make_unique<MessageBoxHook>(driver.m_uiThread);
    HHOOK getMessage = SetWindowsHookExA(WH_GETMESSAGE, &WizardDriver::GetMessageHook, nullptr, driver.m_uiThread);

    std::thread thread([&] {
        FindSheet find{sheetCaption};
        const DWORD start = GetTickCount();
        while (!find.found && GetTickCount() - start < 20000) {
            EnumThreadWindows(driver.m_uiThread, &FindSheetProc, reinterpret_cast<LPARAM>(&find));
            if (!find.found) Sleep(50);
        }
        if (!find.found) {
            std::string seen;
            EnumThreadWindows(driver.m_uiThread, &ListWindowProc, reinterpret_cast<LPARAM>(&seen));
            Fail("no wizard appeared; windows:" + seen);
            return;
        }
        driver.m_hwndSheet = find.found;
        driver.Settle();
        script(driver);
        // Whatever happened, the wizard ends, so the test thread's modal call returns.
        for (int attempt = 0; attempt < 3 && driver.IsOpen(); ++attempt) {
            PostMessageA(driver.m_hwndSheet, PSM_PRESSBUTTON, PSBTN_CANCEL, 0);
            driver.WaitFor([&] { return !driver.IsOpen(); }, 5000);
        }
    });
    showWizard();
    thread.join();

    UnhookWindowsHookEx(getMessage);
    driver.m_boxes.reset();
    CloseHandle(driver.m_pingEvent);
    g_driver = nullptr;
}

LRESULT CALLBACK WizardDriver::GetMessageHook(int code, WPARAM wParam, LPARAM lParam) {
    const auto* msg = reinterpret_cast<const MSG*>(lParam);
    if (code >= 0 && wParam == PM_REMOVE && msg && msg->hwnd == nullptr && msg->message == kPing && g_driver)
        SetEvent(g_driver->m_pingEvent);
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

void WizardDriver::Ping() {
    PostThreadMessageA(m_uiThread, kPing, 0, 0);
    // Once the wizard has closed, nothing may pump the thread's queue any more.
    for (int waited = 0; waited < 5000 && IsOpen(); waited += 50)
        if (WaitForSingleObject(m_pingEvent, 50) == WAIT_OBJECT_0) return;
}

void WizardDriver::Settle() {
    // Posted messages are handled in order: once a ping comes through, everything posted
    // before it has been handled. Three rounds cover what the handlers post in turn
    // (wizard buttons, a message box's OK).
    for (int i = 0; i < 3; ++i) Ping();
    Sleep(30);
}

bool WizardDriver::WaitFor(const std::function<bool()>& condition, DWORD timeoutMs) {
    const DWORD start = GetTickCount();
    while (!condition()) {
        if (GetTickCount() - start > timeoutMs) return false;
        Sleep(20);
    }
    return true;
}

// --- sheet ---------------------------------------------------------------------------------

HWND WizardDriver::ActivePage() const {
    return reinterpret_cast<HWND>(SendMessageA(m_hwndSheet, PSM_GETCURRENTPAGEHWND, 0, 0));
}

int WizardDriver::ActiveIndex() const {
    HWND page = ActivePage();
    return page ? static_cast<int>(SendMessageA(m_hwndSheet, PSM_HWNDTOINDEX, reinterpret_cast<WPARAM>(page), 0)) : -1;
}

HWND WizardDriver::PageHwnd(int index) const {
    return reinterpret_cast<HWND>(SendMessageA(m_hwndSheet, PSM_INDEXTOHWND, static_cast<WPARAM>(index), 0));
}

std::string WizardDriver::ActiveCaption() const { return WindowText(ActivePage()); }
std::string WizardDriver::Title() const { return WindowText(m_hwndSheet); }

bool WizardDriver::IsWizardButtonEnabled(int id) const {
    HWND button = GetDlgItem(m_hwndSheet, id);
    return button && IsWindowVisible(button) && IsWindowEnabled(button);
}

void WizardDriver::PressButton(int psbtn) {
    PostMessageA(m_hwndSheet, PSM_PRESSBUTTON, static_cast<WPARAM>(psbtn), 0);
    Settle();
}

// --- controls ------------------------------------------------------------------------------

HWND WizardDriver::Control(int id) const { return GetDlgItem(ActivePage(), id); }

std::string WizardDriver::Text(int id) const { return WindowText(Control(id)); }

void WizardDriver::ClickButton(int id) {
    HWND button = Control(id);
    PostMessageA(button, BM_CLICK, 0, 0);
    Settle();
}

bool WizardDriver::PickCombo(int id, const std::string& text) {
    HWND combo = Control(id);
    if (SendMessageA(combo, CB_SELECTSTRING, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(text.c_str())) == CB_ERR)
        return false;
    // CB_SELECTSTRING alone does not notify the page; a user's pick does.
    PostMessageA(GetParent(combo), WM_COMMAND, MAKEWPARAM(id, CBN_SELCHANGE), reinterpret_cast<LPARAM>(combo));
    Settle();
    return true;
}

std::vector<std::string> WizardDriver::ComboItems(int id) const {
    HWND combo = Control(id);
    std::vector<std::string> out;
    const int n = static_cast<int>(SendMessageA(combo, CB_GETCOUNT, 0, 0));
    for (int i = 0; i < n; ++i) {
        char text[256] = {};
        SendMessageA(combo, CB_GETLBTEXT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(text));
        out.emplace_back(text);
    }
    return out;
}

void WizardDriver::OpenDropDown(int id) {
    SendMessageA(Control(id), CB_SHOWDROPDOWN, TRUE, 0);
    Settle();
    SendMessageA(Control(id), CB_SHOWDROPDOWN, FALSE, 0);
    Settle();
}

bool WizardDriver::IsChecked(int id) const { return SendMessageA(Control(id), BM_GETCHECK, 0, 0) == BST_CHECKED; }

void WizardDriver::TypeText(int id, const std::string& text) {
    HWND edit = Control(id);
    PostMessageA(edit, WM_SETFOCUS, 0, 0);
    for (char c : text) PostMessageA(edit, WM_CHAR, static_cast<unsigned char>(c), 1);
    Settle();
}

void WizardDriver::Click(HWND hwnd, POINT pt, UINT down, UINT up, WPARAM button) {
    const LPARAM at = MAKELPARAM(pt.x, pt.y);
    PostMessageA(hwnd, WM_MOUSEMOVE, 0, at);
    PostMessageA(hwnd, down, button, at);
    PostMessageA(hwnd, up, 0, at);
    Settle();
}

void WizardDriver::LeftClick(HWND hwnd, POINT pt) { Click(hwnd, pt, WM_LBUTTONDOWN, WM_LBUTTONUP, MK_LBUTTON); }

void WizardDriver::RightClick(HWND hwnd, POINT pt) { Click(hwnd, pt, WM_RBUTTONDOWN, WM_RBUTTONUP, MK_RBUTTON); }

// --- list views ----------------------------------------------------------------------------

int WizardDriver::RowCount(HWND list) const { return static_cast<int>(SendMessageA(list, LVM_GETITEMCOUNT, 0, 0)); }

std::string WizardDriver::CellText(HWND list, int row, int column) const {
    char text[512] = {};
    LVITEMA item{};
    item.iSubItem = column;
    item.pszText = text;
    item.cchTextMax = sizeof text;
    SendMessageA(list, LVM_GETITEMTEXTA, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    return text;
}

RECT WizardDriver::CellRect(HWND list, int row, int column) const {
    RECT rc{};
    rc.top = column;
    rc.left = LVIR_BOUNDS;
    SendMessageA(list, LVM_GETSUBITEMRECT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&rc));
    if (column == 0) {
        RECT next{};
        next.top = 1;
        next.left = LVIR_BOUNDS;
        if (SendMessageA(list, LVM_GETSUBITEMRECT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&next)))
            rc.right = next.left;
    }
    return rc;
}

void WizardDriver::ClickCell(HWND list, int row, int column) {
    const RECT rc = CellRect(list, row, column);
    LeftClick(list, {(rc.left + rc.right) / 2, (rc.top + rc.bottom) / 2});
}

void WizardDriver::RightClickRow(HWND list, int row) {
    const RECT rc = CellRect(list, row, 1);
    RightClick(list, {(rc.left + rc.right) / 2, (rc.top + rc.bottom) / 2});
}

void WizardDriver::ClickHeader(HWND list, int column) {
    HWND header = reinterpret_cast<HWND>(SendMessageA(list, LVM_GETHEADER, 0, 0));
    RECT rc{};
    SendMessageA(header, HDM_GETITEMRECT, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&rc));
    // Like a person, scroll the column into view first.
    RECT client{};
    GetClientRect(list, &client);
    const int scrolled = static_cast<int>(GetScrollPos(list, SB_HORZ));
    const int left = rc.left - scrolled;
    if (left < 0 || left + (rc.right - rc.left) > client.right) {
        SendMessageA(list, LVM_SCROLL, static_cast<WPARAM>(left), 0);
        Settle();
    }
    // The header window moves with the scrolling; its items keep their own coordinates.
    SendMessageA(header, HDM_GETITEMRECT, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&rc));
    LeftClick(header, {(rc.left + rc.right) / 2, (rc.top + rc.bottom) / 2});
}

std::string WizardDriver::HeaderText(HWND list, int column) const {
    HWND header = reinterpret_cast<HWND>(SendMessageA(list, LVM_GETHEADER, 0, 0));
    char text[256] = {};
    HDITEMA item{};
    item.mask = HDI_TEXT;
    item.pszText = text;
    item.cchTextMax = sizeof text;
    SendMessageA(header, HDM_GETITEMA, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&item));
    return text;
}

int WizardDriver::HeaderImage(HWND list, int column) const {
    HWND header = reinterpret_cast<HWND>(SendMessageA(list, LVM_GETHEADER, 0, 0));
    HDITEMA item{};
    item.mask = HDI_IMAGE | HDI_FORMAT;
    SendMessageA(header, HDM_GETITEMA, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&item));
    return (item.fmt & HDF_IMAGE) ? item.iImage : -1;
}

int WizardDriver::SelectedRow(HWND list) const {
    return static_cast<int>(SendMessageA(list, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED));
}

std::vector<std::string> WizardDriver::WaitForColumn(HWND list, int column, DWORD timeoutMs) {
    std::vector<std::string> texts;
    const bool all = WaitFor(
        [&] {
            texts.clear();
            for (int row = 0; row < RowCount(list); ++row) {
                texts.push_back(CellText(list, row, column));
                if (texts.back().empty()) return false;
            }
            return true;
        },
        timeoutMs);
    return all ? texts : std::vector<std::string>();
}

// --- tree views ----------------------------------------------------------------------------

HTREEITEM WizardDriver::FindTreeItem(HWND tree, const std::string& text) const {
    std::function<HTREEITEM(HTREEITEM)> walk = [&](HTREEITEM item) -> HTREEITEM {
        for (; item; item = reinterpret_cast<HTREEITEM>(SendMessageA(tree, TVM_GETNEXTITEM, TVGN_NEXT,
                                                                      reinterpret_cast<LPARAM>(item)))) {
            char buffer[256] = {};
            TVITEMA tvi{};
            tvi.mask = TVIF_TEXT;
            tvi.hItem = item;
            tvi.pszText = buffer;
            tvi.cchTextMax = sizeof buffer;
            SendMessageA(tree, TVM_GETITEMA, 0, reinterpret_cast<LPARAM>(&tvi));
            if (text == buffer) return item;
            HTREEITEM child = reinterpret_cast<HTREEITEM>(
                SendMessageA(tree, TVM_GETNEXTITEM, TVGN_CHILD, reinterpret_cast<LPARAM>(item)));
            if (HTREEITEM found = walk(child)) return found;
        }
        return nullptr;
    };
    return walk(reinterpret_cast<HTREEITEM>(SendMessageA(tree, TVM_GETNEXTITEM, TVGN_ROOT, 0)));
}

HTREEITEM WizardDriver::SelectedTreeItem(HWND tree) const {
    return reinterpret_cast<HTREEITEM>(SendMessageA(tree, TVM_GETNEXTITEM, TVGN_CARET, 0));
}

RECT WizardDriver::TreeItemRect(HWND tree, HTREEITEM item) const {
    union {
        RECT rc;
        HTREEITEM item;
    } in{};
    in.item = item;  // TVM_GETITEMRECT takes the item in the rectangle's place
    SendMessageA(tree, TVM_GETITEMRECT, TRUE, reinterpret_cast<LPARAM>(&in.rc));  // the text's rectangle
    return in.rc;
}

void WizardDriver::ClickTreeItem(HWND tree, HTREEITEM item, bool right) {
    const RECT rc = TreeItemRect(tree, item);
    const POINT pt{(rc.left + rc.right) / 2, (rc.top + rc.bottom) / 2};
    if (right)
        RightClick(tree, pt);
    else
        LeftClick(tree, pt);
}

POINT WizardDriver::EmptyTreePoint(HWND tree) const {
    RECT client{};
    GetClientRect(tree, &client);
    return {client.right - 8, client.bottom - 8};
}

std::string WizardDriver::Screenshot(const std::string& name) {
    if (g_screenshotFolder.empty() || !IsOpen()) return {};
    RedrawWindow(m_hwndSheet, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_FRAME);
    Settle();
    Sleep(250);  // painting happens when the queue is empty
    const std::string path = g_screenshotFolder + "\\" + name + ".png";
    return SaveWindowPng(m_hwndSheet, path) ? path : std::string();
}

}  // namespace sentrel_gui
