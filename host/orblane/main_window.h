// The main window of the stand-in Orblane NMS host: menu bar and toolbars built from the
// registered plug-ins, the site's domain tree on the left and the devices of the
// selected node on the right, a status bar that shows the plug-ins' prompts.
#pragma once
#include <windows.h>
#include <commctrl.h>
#include <wrl/client.h>
#include <map>
#include <string>
#include <vector>

#include "host/orblane/plugin_host.h"

namespace orblane {

// What the command line asks for (orblane.exe --help lists it).
struct Options {
    std::wstring site;          // site file; empty: ORBLANE_SITE or OrblaneHost.dll's default
    long selectNode = 0;        // tree node to open at start
    bool hasSelectNode = false;
    std::wstring selectDevice;  // IP of the device row to select at start
    std::wstring openMenu;      // menu path to drop down after start, e.g. "&Plug-In/&Halvo Console Plug-In"
    std::wstring run;           // menu item text of a plug-in command to execute after start
    std::wstring readyFile;     // written once the start-up actions are done (menu open)
    int exitAfterMs = -1;       // close the window after this many ms
    bool dumpMenus = false;     // print the menu bar to stdout and exit
    std::wstring walk;          // the demo's scripted walk through the --run command's wizard
    std::wstring shots;         // its screenshot folder (and report walk.txt); default: current
};

class MainWindow {
public:
    explicit MainWindow(Options options);
    ~MainWindow();
    bool Create(HINSTANCE instance, int show);
    HWND hwnd() const { return m_hwnd; }
    // Releases the plug-in objects and the host's own (before CoUninitialize).
    void ReleasePlugIns();
    // Text dump of the menu bar, one line per item with its full path (for tests and people).
    std::wstring DumpMenus() const;
    const std::vector<PlugInProblem>& problems() const { return m_problems; }
    const std::vector<PlugIn>& plugIns() const { return m_plugIns; }
    // 0, or 3 when the --walk failed (the process's exit code).
    int exitCode() const { return m_exitCode; }

private:
    struct Toolbar {
        std::wstring title;
        std::wstring menuText;
        HWND hwnd = nullptr;
        UINT viewCommand = 0;
        bool visible = true;
    };

    static LRESULT CALLBACK WndProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam);
    LRESULT Handle(UINT msg, WPARAM wParam, LPARAM lParam);
    void OnCreate();
    void BuildPlugInMenus();
    void BuildToolbars();
    void Layout();
    void OnCommand(UINT id);
    LRESULT OnNotify(NMHDR* header);
    void OnMenuSelect(UINT id, UINT flags, HMENU menu);
    void OnTreeSelection();
    void OnDeviceSelection();
    void ReloadSite();
    void ExecutePlugIn(const PlugIn& plugIn);
    HRESULT ExecuteWithWalk(IHostPlugIn* object);
    void StartUpActions();
    void OpenMenuStep(HMENU opened);
    void SetStatus(const std::wstring& text);
    void SetStatusRight(const std::wstring& text);
    void WriteReadyFile();
    std::wstring HostPrompt(UINT id) const;
    const PlugIn* PlugInByCommand(UINT id) const;
    HIMAGELIST MakeTreeImages();

    Options m_options;
    HINSTANCE m_instance = nullptr;
    HWND m_hwnd = nullptr;
    HWND m_rebar = nullptr;
    HWND m_status = nullptr;
    HWND m_tree = nullptr;
    HWND m_list = nullptr;
    HIMAGELIST m_treeImages = nullptr;
    HMENU m_menu = nullptr;
    int m_splitX = 260;
    bool m_dragging = false;
    bool m_inCommand = false;
    bool m_exitPending = false;
    Microsoft::WRL::ComPtr<IHostSystem> m_hostSystem;
    std::vector<PlugIn> m_plugIns;
    std::vector<PlugInProblem> m_problems;
    std::vector<Toolbar> m_toolbars;
    std::map<UINT, std::wstring> m_tooltips;
    // --open-menu: the levels still to open.
    std::vector<std::wstring> m_menuLevels;
    size_t m_menuDepth = 0;
    bool m_readyWritten = false;
    bool m_walkDone = false;
    int m_exitCode = 0;
    std::wstring m_nodeText;  // status-bar text of the opened node
};

}  // namespace orblane
