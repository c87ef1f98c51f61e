#include "host/orblane/main_window.h"

#include <shellapi.h>
#include <algorithm>
#include <windowsx.h>

#include "host/orblane/demo_walk.h"
#include "host/orblane/menu_builder.h"
#include "host/orblane/resource.h"
#include "host/orblane/site_view.h"

namespace orblane {

namespace {

constexpr wchar_t kClassName[] = L"OrblaneNMSMainWindow";
constexpr UINT kFirstPlugInCommand = 40000;  // one per plug-in object
constexpr UINT kFirstToolbarCommand = 41000; // View-menu items that toggle plug-in toolbars
constexpr UINT_PTR kStartTimer = 1, kExitTimer = 2, kReadyTimer = 3, kWatchReadyTimer = 4;
constexpr int kSplitterWidth = 5;
constexpr int kTreeId = 201, kListId = 202, kStatusId = 203, kRebarId = 204;

// OrblaneHost.dll's exports (host/host_objects/host_state.h), found in the module that COM
// loaded for the host objects, so orblane.exe talks to the same copy the plug-in reaches.
using SetTextFn = void(WINAPI*)(const wchar_t*);
SetTextFn HostExport(const char* name) {
    HMODULE module = GetModuleHandleW(L"OrblaneHost.dll");
    return module ? reinterpret_cast<SetTextFn>(reinterpret_cast<void*>(GetProcAddress(module, name))) : nullptr;
}

std::wstring LoadHostString(HINSTANCE instance, UINT id) {
    const wchar_t* text = nullptr;
    int length = LoadStringW(instance, id, reinterpret_cast<LPWSTR>(&text), 0);
    return length > 0 ? std::wstring(text, static_cast<size_t>(length)) : std::wstring();
}

std::wstring HexResult(HRESULT hr) {
    wchar_t buffer[16];
    wsprintfW(buffer, L"0x%08lX", static_cast<unsigned long>(hr));
    return buffer;
}

// Icons for the tree: shell32's own, so the host looks like a Windows program.
HICON ShellIcon(int index) {
    HICON small = nullptr;
    ExtractIconExW(L"shell32.dll", index, nullptr, &small, 1);
    return small ? small : LoadIconW(nullptr, IDI_APPLICATION);
}

void DumpMenu(HMENU menu, const std::wstring& prefix, std::wstring& out) {
    int count = GetMenuItemCount(menu);
    for (int pos = 0; pos < count; ++pos) {
        MENUITEMINFOW info{};
        info.cbSize = sizeof(info);
        info.fMask = MIIM_FTYPE | MIIM_ID | MIIM_SUBMENU | MIIM_STATE;
        GetMenuItemInfoW(menu, static_cast<UINT>(pos), TRUE, &info);
        if (info.fType & MFT_SEPARATOR) continue;
        std::wstring path = prefix.empty() ? MenuItemText(menu, pos) : prefix + L"/" + MenuItemText(menu, pos);
        if (info.hSubMenu) {
            DumpMenu(info.hSubMenu, path, out);
        } else {
            out += path;
            out += (info.fState & MFS_CHECKED) ? L" [checked]" : L"";
            out += L"\n";
        }
    }
}

}  // namespace

MainWindow::MainWindow(Options options) : m_options(std::move(options)) {}

MainWindow::~MainWindow() {
    if (m_treeImages) ImageList_Destroy(m_treeImages);
}

bool MainWindow::Create(HINSTANCE instance, int show) {
    m_instance = instance;
    WNDCLASSEXW wc{};
    wc.cbSize = sizeof(wc);
    wc.lpfnWndProc = WndProc;
    wc.hInstance = instance;
    wc.hIcon = LoadIconW(instance, MAKEINTRESOURCEW(IDI_ORBLANE));
    wc.hIconSm = wc.hIcon;
    wc.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    wc.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
    wc.lpszClassName = kClassName;
    if (!RegisterClassExW(&wc)) return false;
    m_menu = LoadMenuW(instance, MAKEINTRESOURCEW(IDR_MAINMENU));
    std::wstring title = LoadHostString(instance, IDS_APP_TITLE);
    m_hwnd = CreateWindowExW(0, kClassName, title.c_str(), WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, CW_USEDEFAULT,
                             CW_USEDEFAULT, 960, 640, nullptr, m_menu, instance, this);
    if (!m_hwnd) return false;
    if (m_options.dumpMenus) return true;
    ShowWindow(m_hwnd, show);
    UpdateWindow(m_hwnd);
    SetTimer(m_hwnd, kStartTimer, 300, nullptr);
    if (m_options.exitAfterMs >= 0) SetTimer(m_hwnd, kExitTimer, static_cast<UINT>(m_options.exitAfterMs), nullptr);
    return true;
}

LRESULT CALLBACK MainWindow::WndProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam) {
    MainWindow* self = reinterpret_cast<MainWindow*>(GetWindowLongPtrW(hwnd, GWLP_USERDATA));
    if (msg == WM_NCCREATE) {
        self = static_cast<MainWindow*>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams);
        self->m_hwnd = hwnd;
        SetWindowLongPtrW(hwnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(self));
    }
    if (!self) return DefWindowProcW(hwnd, msg, wParam, lParam);
    try {
        return self->Handle(msg, wParam, lParam);
    } catch (...) {
        // No exception crosses a window procedure (DESIGN.md section 6).
        return DefWindowProcW(hwnd, msg, wParam, lParam);
    }
}

LRESULT MainWindow::Handle(UINT msg, WPARAM wParam, LPARAM lParam) {
    switch (msg) {
    case WM_CREATE:
        OnCreate();
        return 0;
    case WM_SIZE:
        Layout();
        return 0;
    case WM_COMMAND:
        OnCommand(LOWORD(wParam));
        return 0;
    case WM_NOTIFY:
        return OnNotify(reinterpret_cast<NMHDR*>(lParam));
    case WM_MENUSELECT:
        OnMenuSelect(LOWORD(wParam), HIWORD(wParam), reinterpret_cast<HMENU>(lParam));
        return 0;
    case WM_INITMENUPOPUP:
        OpenMenuStep(reinterpret_cast<HMENU>(wParam));
        return 0;
    case WM_EXITMENULOOP:
        SetStatus(LoadHostString(m_instance, IDS_READY));
        return 0;
    case WM_TIMER:
        if (wParam == kStartTimer) {
            KillTimer(m_hwnd, kStartTimer);
            StartUpActions();
        } else if (wParam == kReadyTimer) {
            KillTimer(m_hwnd, kReadyTimer);
            WriteReadyFile();
        } else if (wParam == kWatchReadyTimer) {
            // The ready file's reader removes it when done with us (e.g. after a screenshot).
            if (GetFileAttributesW(m_options.readyFile.c_str()) == INVALID_FILE_ATTRIBUTES) {
                KillTimer(m_hwnd, kWatchReadyTimer);
                EndMenu();
                if (m_inCommand) {
                    // A plug-in command's modal window is open: close it as the user would
                    // (a wizard takes WM_CLOSE as Cancel); the host follows when Execute returns.
                    m_exitPending = true;
                    HWND popup = GetLastActivePopup(m_hwnd);
                    if (popup && popup != m_hwnd) PostMessageW(popup, WM_CLOSE, 0, 0);
                } else {
                    PostMessageW(m_hwnd, WM_CLOSE, 0, 0);
                }
            }
        } else if (wParam == kExitTimer) {
            // A running plug-in command owns the thread's modal loop; close when it returns.
            if (m_inCommand) {
                m_exitPending = true;
            } else {
                KillTimer(m_hwnd, kExitTimer);
                EndMenu();
                PostMessageW(m_hwnd, WM_CLOSE, 0, 0);
            }
        }
        return 0;
    case WM_SETCURSOR:
        if (LOWORD(lParam) == HTCLIENT && reinterpret_cast<HWND>(wParam) == m_hwnd) {
            POINT pt;
            GetCursorPos(&pt);
            ScreenToClient(m_hwnd, &pt);
            if (pt.x >= m_splitX && pt.x < m_splitX + kSplitterWidth) {
                SetCursor(LoadCursorW(nullptr, IDC_SIZEWE));
                return TRUE;
            }
        }
        break;
    case WM_LBUTTONDOWN:
        if (GET_X_LPARAM(lParam) >= m_splitX && GET_X_LPARAM(lParam) < m_splitX + kSplitterWidth) {
            m_dragging = true;
            SetCapture(m_hwnd);
        }
        return 0;
    case WM_MOUSEMOVE:
        if (m_dragging) {
            RECT rc;
            GetClientRect(m_hwnd, &rc);
            m_splitX = std::max<int>(80, std::min<int>(GET_X_LPARAM(lParam), rc.right - 120));
            Layout();
        }
        return 0;
    case WM_LBUTTONUP:
        if (m_dragging) {
            m_dragging = false;
            ReleaseCapture();
        }
        return 0;
    case WM_CLOSE:
        if (m_inCommand) return 0;
        DestroyWindow(m_hwnd);
        return 0;
    case WM_DESTROY:
        PostQuitMessage(m_exitCode);
        return 0;
    }
    return DefWindowProcW(m_hwnd, msg, wParam, lParam);
}

void MainWindow::OnCreate() {
    // The site file is a path for the host objects of this process: ORBLANE_SITE is read when
    // they are created, OrblaneHostSetSitePath overrides it once OrblaneHost.dll is loaded.
    if (!m_options.site.empty()) {
        wchar_t full[MAX_PATH];
        if (GetFullPathNameW(m_options.site.c_str(), MAX_PATH, full, nullptr)) m_options.site = full;
        SetEnvironmentVariableW(L"ORBLANE_SITE", m_options.site.c_str());
    }

    // One host system object for the whole session keeps OrblaneHost.dll loaded, so the
    // state set through its exports (site path, selected device) lasts.
    CoCreateInstance(CLSID_HostSystem, nullptr, CLSCTX_INPROC_SERVER, IID_IHostSystem,
                     reinterpret_cast<void**>(m_hostSystem.GetAddressOf()));
    if (!m_options.site.empty())
        if (SetTextFn setSite = HostExport("OrblaneHostSetSitePath")) setSite(m_options.site.c_str());
    m_plugIns = LoadPlugIns(kFirstPlugInCommand, m_problems);

    BuildPlugInMenus();
    DrawMenuBar(m_hwnd);
    if (m_options.dumpMenus) return;

    m_rebar = CreateWindowExW(WS_EX_TOOLWINDOW, REBARCLASSNAMEW, nullptr,
                              WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_CLIPCHILDREN | RBS_VARHEIGHT |
                                  RBS_BANDBORDERS | CCS_NODIVIDER,
                              0, 0, 0, 0, m_hwnd, reinterpret_cast<HMENU>(kRebarId), m_instance, nullptr);
    REBARINFO rebarInfo{};
    rebarInfo.cbSize = sizeof(rebarInfo);
    SendMessageW(m_rebar, RB_SETBARINFO, 0, reinterpret_cast<LPARAM>(&rebarInfo));
    BuildToolbars();

    m_status = CreateWindowExW(0, STATUSCLASSNAMEW, nullptr, WS_CHILD | WS_VISIBLE | SBARS_SIZEGRIP, 0, 0, 0, 0,
                               m_hwnd, reinterpret_cast<HMENU>(kStatusId), m_instance, nullptr);
    m_tree = CreateWindowExW(WS_EX_CLIENTEDGE, WC_TREEVIEWW, nullptr,
                             WS_CHILD | WS_VISIBLE | WS_TABSTOP | TVS_HASLINES | TVS_LINESATROOT |
                                 TVS_HASBUTTONS | TVS_SHOWSELALWAYS,
                             0, 0, 0, 0, m_hwnd, reinterpret_cast<HMENU>(kTreeId), m_instance, nullptr);
    m_treeImages = MakeTreeImages();
    TreeView_SetImageList(m_tree, m_treeImages, TVSIL_NORMAL);
    m_list = CreateWindowExW(WS_EX_CLIENTEDGE, WC_LISTVIEWW, nullptr,
                             WS_CHILD | WS_VISIBLE | WS_TABSTOP | LVS_REPORT | LVS_SINGLESEL | LVS_SHOWSELALWAYS,
                             0, 0, 0, 0, m_hwnd, reinterpret_cast<HMENU>(kListId), m_instance, nullptr);
    ListView_SetExtendedListViewStyle(m_list, LVS_EX_FULLROWSELECT | LVS_EX_GRIDLINES);
    SetUpDeviceColumns(m_list);

    ReloadSite();
    SetStatus(LoadHostString(m_instance, IDS_READY));
}

HIMAGELIST MainWindow::MakeTreeImages() {
    HIMAGELIST images = ImageList_Create(16, 16, ILC_COLOR32 | ILC_MASK, kImageCount, 0);
    // shell32 icons (Wine's order): 15 globe for the network, 19 computers for a domain,
    // 5 folder for a submap, 27 monitor for a node of type 7.
    const int icons[kImageCount] = {15, 19, 5, 27};
    for (int index : icons) {
        HICON icon = ShellIcon(index);
        ImageList_AddIcon(images, icon);
        DestroyIcon(icon);
    }
    return images;
}

void MainWindow::BuildPlugInMenus() {
    // Each plug-in's menu path, "/" between levels, holds its menu item. Plug-in
    // menus go before the host's "&Help" menu, as in the real NMS.
    for (const PlugIn& p : m_plugIns) {
        int helpPos = FindMenuItem(m_menu, L"&Help", true);
        AddCommandAtPath(m_menu, p.menuPath, p.menuItem, p.commandId, helpPos);
        m_tooltips[p.commandId] = SplitPrompt(p.prompt).tooltip;
    }
    // One toolbar per title; its View-menu item is the plug-ins' toolbar menu text.
    for (const PlugIn& p : m_plugIns) {
        if (p.toolbarTitle.empty()) continue;
        bool known = false;
        for (const Toolbar& t : m_toolbars) known = known || t.title == p.toolbarTitle;
        if (known) continue;
        Toolbar t;
        t.title = p.toolbarTitle;
        t.menuText = p.toolbarMenu.empty() ? p.toolbarTitle : p.toolbarMenu;
        t.viewCommand = kFirstToolbarCommand + static_cast<UINT>(m_toolbars.size());
        m_toolbars.push_back(t);
    }
    HMENU view = GetSubMenu(m_menu, FindMenuItem(m_menu, L"&View", true));
    if (view && !m_toolbars.empty()) {
        InsertMenuW(view, 0, MF_BYPOSITION | MF_SEPARATOR, 0, nullptr);
        UINT pos = 0;
        for (const Toolbar& t : m_toolbars)
            InsertMenuW(view, pos++, MF_BYPOSITION | MF_STRING | MF_CHECKED, t.viewCommand, t.menuText.c_str());
    }
}

void MainWindow::BuildToolbars() {
    for (Toolbar& t : m_toolbars) {
        t.hwnd = CreateWindowExW(0, TOOLBARCLASSNAMEW, nullptr,
                                 WS_CHILD | WS_VISIBLE | TBSTYLE_FLAT | TBSTYLE_LIST | TBSTYLE_TOOLTIPS |
                                     CCS_NORESIZE | CCS_NODIVIDER | CCS_NOPARENTALIGN,
                                 0, 0, 0, 0, m_rebar, nullptr, m_instance, nullptr);
        SendMessageW(t.hwnd, TB_BUTTONSTRUCTSIZE, sizeof(TBBUTTON), 0);
        SendMessageW(t.hwnd, TB_LOADIMAGES, IDB_STD_SMALL_COLOR, reinterpret_cast<LPARAM>(HINST_COMMCTRL));
        // The plug-ins hand over no bitmaps; a standard image per button in turn.
        static const int images[] = {STD_PROPERTIES, STD_FIND, STD_PRINTPRE, STD_FILEOPEN, STD_REPLACE};
        int n = 0;
        for (const PlugIn& p : m_plugIns) {
            if (p.toolbarTitle != t.title) continue;
            std::wstring label = PlainMenuText(p.menuItem);
            TBBUTTON button{};
            button.iBitmap = images[n++ % ARRAYSIZE(images)];
            button.idCommand = static_cast<int>(p.commandId);
            button.fsState = TBSTATE_ENABLED;
            button.fsStyle = BTNS_BUTTON | BTNS_AUTOSIZE;
            button.iString = SendMessageW(t.hwnd, TB_ADDSTRINGW, 0,
                                          reinterpret_cast<LPARAM>((label + L'\0').c_str()));
            SendMessageW(t.hwnd, TB_ADDBUTTONSW, 1, reinterpret_cast<LPARAM>(&button));
        }
        SendMessageW(t.hwnd, TB_AUTOSIZE, 0, 0);
        SIZE size{};
        SendMessageW(t.hwnd, TB_GETMAXSIZE, 0, reinterpret_cast<LPARAM>(&size));
        REBARBANDINFOW band{};
        band.cbSize = sizeof(band);
        band.fMask = RBBIM_STYLE | RBBIM_CHILD | RBBIM_CHILDSIZE | RBBIM_SIZE | RBBIM_TEXT | RBBIM_ID;
        band.fStyle = RBBS_CHILDEDGE | RBBS_GRIPPERALWAYS;
        band.lpText = const_cast<wchar_t*>(t.title.c_str());
        band.hwndChild = t.hwnd;
        band.cxMinChild = size.cx;
        band.cyMinChild = size.cy;
        band.cx = size.cx + 200;
        band.wID = t.viewCommand;
        SendMessageW(m_rebar, RB_INSERTBANDW, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&band));
    }
}

void MainWindow::Layout() {
    if (!m_tree) return;
    RECT rc;
    GetClientRect(m_hwnd, &rc);
    int top = 0;
    if (m_rebar && SendMessageW(m_rebar, RB_GETBANDCOUNT, 0, 0) > 0) {
        SendMessageW(m_rebar, WM_SIZE, 0, 0);
        RECT rb;
        GetWindowRect(m_rebar, &rb);
        top = rb.bottom - rb.top;
        ShowWindow(m_rebar, SW_SHOW);
    } else if (m_rebar) {
        ShowWindow(m_rebar, SW_HIDE);
    }
    int bottom = rc.bottom;
    if (m_status && IsWindowVisible(m_status)) {
        SendMessageW(m_status, WM_SIZE, 0, 0);
        RECT sb;
        GetWindowRect(m_status, &sb);
        bottom -= sb.bottom - sb.top;
        int parts[2] = {std::max<int>(100, rc.right - 260), -1};
        SendMessageW(m_status, SB_SETPARTS, 2, reinterpret_cast<LPARAM>(parts));
    }
    int height = std::max(0, bottom - top);
    MoveWindow(m_tree, 0, top, m_splitX, height, TRUE);
    MoveWindow(m_list, m_splitX + kSplitterWidth, top, std::max(0, static_cast<int>(rc.right) - m_splitX - kSplitterWidth),
               height, TRUE);
}

const PlugIn* MainWindow::PlugInByCommand(UINT id) const {
    for (const PlugIn& p : m_plugIns)
        if (p.commandId == id) return &p;
    return nullptr;
}

void MainWindow::OnCommand(UINT id) {
    if (const PlugIn* p = PlugInByCommand(id)) {
        ExecutePlugIn(*p);
        return;
    }
    for (Toolbar& t : m_toolbars) {
        if (t.viewCommand != id) continue;
        t.visible = !t.visible;
        int band = static_cast<int>(SendMessageW(m_rebar, RB_IDTOINDEX, id, 0));
        SendMessageW(m_rebar, RB_SHOWBAND, band, t.visible);
        CheckMenuItem(m_menu, id, MF_BYCOMMAND | (t.visible ? MF_CHECKED : MF_UNCHECKED));
        Layout();
        return;
    }
    switch (id) {
    case IDM_FILE_REFRESH:
        ReloadSite();
        break;
    case IDM_FILE_EXIT:
        PostMessageW(m_hwnd, WM_CLOSE, 0, 0);
        break;
    case IDM_VIEW_STATUSBAR: {
        bool show = !IsWindowVisible(m_status);
        ShowWindow(m_status, show ? SW_SHOW : SW_HIDE);
        CheckMenuItem(m_menu, id, MF_BYCOMMAND | (show ? MF_CHECKED : MF_UNCHECKED));
        Layout();
        break;
    }
    case IDM_HELP_ABOUT:
        MessageBoxW(m_hwnd, LoadHostString(m_instance, IDS_ABOUT).c_str(),
                    LoadHostString(m_instance, IDS_APP_TITLE).c_str(), MB_OK | MB_ICONINFORMATION);
        break;
    }
}

void MainWindow::ExecutePlugIn(const PlugIn& plugIn) {
    if (m_inCommand) return;
    m_inCommand = true;
    SetStatus(SplitPrompt(plugIn.prompt).status);
    // Execute runs the command modally and returns E_NOTIMPL when it has finished.
    Microsoft::WRL::ComPtr<IHostPlugIn> object = plugIn.object;
    const bool walk = !m_options.walk.empty() && !m_walkDone;
    HRESULT hr = walk ? ExecuteWithWalk(object.Get()) : object->Execute(0);
    m_inCommand = false;
    if (walk) m_exitPending = true;  // the walk's process ends with its command
    if (FAILED(hr) && hr != E_NOTIMPL)
        SetStatus(PlainMenuText(plugIn.menuItem) + L" failed: " + HexResult(hr));
    else
        SetStatus(LoadHostString(m_instance, IDS_READY));
    if (m_exitPending) PostMessageW(m_hwnd, WM_CLOSE, 0, 0);
}

// DESIGN.md section 4: the demo's scripted walk drives the wizard that Execute shows; its
// report goes to <shots>\walk.txt and stdout, its verdict to the exit code.
HRESULT MainWindow::ExecuteWithWalk(IHostPlugIn* object) {
    m_walkDone = true;
    auto narrow = [](const std::wstring& text) {
        std::string out(static_cast<size_t>(WideCharToMultiByte(CP_ACP, 0, text.c_str(), -1, nullptr, 0, nullptr, nullptr)), '\0');
        WideCharToMultiByte(CP_ACP, 0, text.c_str(), -1, out.data(), static_cast<int>(out.size()), nullptr, nullptr);
        if (!out.empty()) out.pop_back();  // the terminator
        return out;
    };
    WalkSettings settings;
    settings.name = narrow(m_options.walk);
    settings.shotsFolder = m_options.shots.empty() ? std::string(".") : narrow(m_options.shots);
    BSTR selected = nullptr;
    long valid = 0;
    if (m_hostSystem && SUCCEEDED(m_hostSystem->GetSelectedDeviceIP(&selected, &valid)) && valid && selected)
        settings.hostDevice = narrow(selected);
    SysFreeString(selected);
    HRESULT hr = S_OK;
    const WalkOutcome outcome = RunWalk(settings, [&] { hr = object->Execute(0); });
    std::string report;
    for (const std::string& line : outcome.lines) report += line + "\n";
    CreateDirectoryA(settings.shotsFolder.c_str(), nullptr);
    const std::string path = settings.shotsFolder + "\\walk.txt";
    HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    DWORD written = 0;
    if (file != INVALID_HANDLE_VALUE) {
        WriteFile(file, report.data(), static_cast<DWORD>(report.size()), &written, nullptr);
        CloseHandle(file);
    }
    HANDLE out = GetStdHandle(STD_OUTPUT_HANDLE);
    if (out && out != INVALID_HANDLE_VALUE) WriteFile(out, report.data(), static_cast<DWORD>(report.size()), &written, nullptr);
    m_exitCode = outcome.ok ? 0 : 3;
    return hr;
}

LRESULT MainWindow::OnNotify(NMHDR* header) {
    if (header->code == TTN_GETDISPINFOW) {
        auto* info = reinterpret_cast<NMTTDISPINFOW*>(header);
        auto it = m_tooltips.find(static_cast<UINT>(header->idFrom));
        if (it != m_tooltips.end()) info->lpszText = const_cast<wchar_t*>(it->second.c_str());
        return 0;
    }
    if (header->hwndFrom == m_tree && header->code == TVN_SELCHANGEDW) {
        OnTreeSelection();
        return 0;
    }
    if (header->hwndFrom == m_list && header->code == LVN_ITEMCHANGED) {
        auto* change = reinterpret_cast<NMLISTVIEW*>(header);
        if ((change->uChanged & LVIF_STATE) && ((change->uOldState ^ change->uNewState) & LVIS_SELECTED))
            OnDeviceSelection();
        return 0;
    }
    if (header->hwndFrom == m_rebar && header->code == RBN_HEIGHTCHANGE) {
        Layout();
        return 0;
    }
    return 0;
}

std::wstring MainWindow::HostPrompt(UINT id) const {
    if (const PlugIn* p = PlugInByCommand(id)) return SplitPrompt(p->prompt).status;
    for (const Toolbar& t : m_toolbars)
        if (t.viewCommand == id) return L"Show or hide the " + t.title;
    return SplitPrompt(LoadHostString(m_instance, id)).status;
}

void MainWindow::OnMenuSelect(UINT id, UINT flags, HMENU menu) {
    if (flags == 0xFFFF && !menu) {
        SetStatus(LoadHostString(m_instance, IDS_READY));
    } else if (flags & (MF_POPUP | MF_SEPARATOR)) {
        SetStatus(L"");
    } else {
        // The first part of a plug-in's prompt is its status-bar text.
        SetStatus(HostPrompt(id));
    }
}

void MainWindow::OnTreeSelection() {
    HTREEITEM item = TreeView_GetSelection(m_tree);
    if (!item) return;
    TVITEMW data{};
    data.mask = TVIF_PARAM | TVIF_TEXT;
    wchar_t text[256] = {};
    data.pszText = text;
    data.cchTextMax = ARRAYSIZE(text);
    data.hItem = item;
    TreeView_GetItem(m_tree, &data);
    long id = static_cast<long>(data.lParam);
    // Opening a submap: every plug-in that has OpenedSubmapID hears of it.
    NotifyOpenedSubmap(m_plugIns, id);
    if (SetTextFn setIp = HostExport("OrblaneHostSetSelectedDeviceIP")) setIp(nullptr);
    int rows = LoadDeviceList(m_list, id);
    std::wstring right = std::wstring(text) + L" (" + std::to_wstring(id) + L"): ";
    right += rows < 0 ? L"device list failed" : std::to_wstring(rows) + (rows == 1 ? L" device" : L" devices");
    SetStatusRight(right);
    m_nodeText = right;
}

void MainWindow::OnDeviceSelection() {
    int row = ListView_GetNextItem(m_list, -1, LVNI_SELECTED);
    SetTextFn setIp = HostExport("OrblaneHostSetSelectedDeviceIP");
    if (!setIp) return;
    if (row < 0) {
        setIp(nullptr);
        return;
    }
    wchar_t ip[64] = {};
    ListView_GetItemText(m_list, row, kColIP, ip, ARRAYSIZE(ip));
    setIp(ip);
    // Show what the host system object now answers to GetSelectedDeviceIP.
    BSTR selected = nullptr;
    long valid = 0;
    if (m_hostSystem && SUCCEEDED(m_hostSystem->GetSelectedDeviceIP(&selected, &valid)) && valid && selected)
        SetStatusRight(m_nodeText + L"; selected " + selected);
    SysFreeString(selected);
}

void MainWindow::ReloadSite() {
    long selected = 0;
    bool hadSelection = false;
    if (HTREEITEM item = TreeView_GetSelection(m_tree)) {
        TVITEMW data{};
        data.mask = TVIF_PARAM;
        data.hItem = item;
        hadSelection = TreeView_GetItem(m_tree, &data);
        selected = static_cast<long>(data.lParam);
    }
    ListView_DeleteAllItems(m_list);
    std::wstring error;
    if (!LoadDomainTree(m_tree, error)) {
        SetStatusRight(L"No domain tree");
        TVINSERTSTRUCTW insert{};
        insert.hParent = TVI_ROOT;
        insert.item.mask = TVIF_TEXT | TVIF_PARAM;
        insert.item.pszText = const_cast<wchar_t*>(error.c_str());
        insert.item.lParam = -1;
        TreeView_InsertItem(m_tree, &insert);
        return;
    }
    if (hadSelection)
        if (HTREEITEM item = FindTreeNode(m_tree, selected)) TreeView_SelectItem(m_tree, item);
}

void MainWindow::StartUpActions() {
    if (m_options.hasSelectNode) {
        if (HTREEITEM item = FindTreeNode(m_tree, m_options.selectNode)) {
            TreeView_SelectItem(m_tree, item);
            TreeView_EnsureVisible(m_tree, item);
        }
    }
    if (!m_options.selectDevice.empty()) {
        int count = ListView_GetItemCount(m_list);
        for (int row = 0; row < count; ++row) {
            wchar_t ip[64] = {};
            ListView_GetItemText(m_list, row, kColIP, ip, ARRAYSIZE(ip));
            if (m_options.selectDevice == ip) {
                ListView_SetItemState(m_list, row, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
                ListView_EnsureVisible(m_list, row, FALSE);
                break;
            }
        }
        SetFocus(m_list);
    }
    if (!m_options.run.empty()) {
        for (const PlugIn& p : m_plugIns) {
            if (p.menuItem == m_options.run || PlainMenuText(p.menuItem) == m_options.run) {
                PostMessageW(m_hwnd, WM_COMMAND, p.commandId, 0);
                break;
            }
        }
    }
    if (!m_options.openMenu.empty()) {
        // Drop the menu down as a user would with the keyboard: Alt + access key opens the
        // top-level popup, then each level's access key opens the next (WM_INITMENUPOPUP).
        m_menuLevels = SplitMenuPath(m_options.openMenu);
        m_menuDepth = 0;
        if (!m_menuLevels.empty()) {
            if (wchar_t key = AccessKey(m_menuLevels[0])) {
                PostMessageW(m_hwnd, WM_SYSCOMMAND, SC_KEYMENU, key);
                return;
            }
        }
    }
    SetTimer(m_hwnd, kReadyTimer, 200, nullptr);
}

void MainWindow::OpenMenuStep(HMENU opened) {
    if (m_menuLevels.empty() || m_menuDepth >= m_menuLevels.size()) return;
    std::wstring path;
    for (size_t i = 0; i <= m_menuDepth; ++i) path += (i ? L"/" : L"") + m_menuLevels[i];
    if (FindPopupAtPath(m_menu, path) != opened) return;
    ++m_menuDepth;
    if (m_menuDepth < m_menuLevels.size()) {
        std::wstring next = m_menuLevels[m_menuDepth];
        if (FindMenuItem(opened, next, true) >= 0) {
            if (wchar_t key = AccessKey(next)) {
                PostMessageW(m_hwnd, WM_CHAR, key, 0);
                return;
            }
        } else {
            // The last level may name a command: move the highlight onto it.
            int pos = FindMenuItem(opened, next, false);
            for (int i = 0; i < pos; ++i) {
                MENUITEMINFOW info{};
                info.cbSize = sizeof(info);
                info.fMask = MIIM_FTYPE;
                GetMenuItemInfoW(opened, static_cast<UINT>(i), TRUE, &info);
                if (!(info.fType & MFT_SEPARATOR)) PostMessageW(m_hwnd, WM_KEYDOWN, VK_DOWN, 0);
            }
        }
    }
    m_menuLevels.clear();
    SetTimer(m_hwnd, kReadyTimer, 500, nullptr);
}

void MainWindow::WriteReadyFile() {
    if (m_readyWritten || m_options.readyFile.empty()) return;
    m_readyWritten = true;
    HANDLE file = CreateFileW(m_options.readyFile.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                              FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return;
    DWORD written = 0;
    WriteFile(file, "ready\n", 6, &written, nullptr);
    CloseHandle(file);
    SetTimer(m_hwnd, kWatchReadyTimer, 200, nullptr);
}

void MainWindow::SetStatus(const std::wstring& text) {
    if (m_status) SendMessageW(m_status, SB_SETTEXTW, 0, reinterpret_cast<LPARAM>(text.c_str()));
}

void MainWindow::SetStatusRight(const std::wstring& text) {
    if (m_status) SendMessageW(m_status, SB_SETTEXTW, 1, reinterpret_cast<LPARAM>(text.c_str()));
}

std::wstring MainWindow::DumpMenus() const {
    std::wstring out;
    DumpMenu(m_menu, L"", out);
    return out;
}

void MainWindow::ReleasePlugIns() {
    m_plugIns.clear();
    m_hostSystem.Reset();
}

}  // namespace orblane
