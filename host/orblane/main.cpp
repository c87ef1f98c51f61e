// orblane.exe: the stand-in Orblane NMS host (DESIGN.md section 1). It loads the registered
// plug-ins the way the real host does, shows the site of the stand-in host objects,
// reports opened submaps and runs plug-in commands from its menus.
#include <windows.h>
#include <commctrl.h>
#include <objbase.h>
#include <shellapi.h>

#include <string>

#include "host/orblane/demo_walk.h"
#include "host/orblane/main_window.h"
#include "host/orblane/resource.h"

namespace {

constexpr wchar_t kUsage[] =
    L"Usage: orblane.exe [options] [site.xml]\n"
    L"  site.xml               the site file (domain tree and device lists) of the host objects;\n"
    L"                         default: ORBLANE_SITE, else site.xml beside OrblaneHost.dll\n"
    L"  --select-node <id>     open this tree node (submap) at start\n"
    L"  --select-device <ip>   select this device row at start\n"
    L"  --open-menu <path>     drop this menu path down after start, levels separated by \"/\",\n"
    L"                         e.g. \"&Plug-In/&Halvo Console Plug-In\"\n"
    L"  --run <item>           run the plug-in command with this menu item text after start\n"
    L"  --ready-file <file>    write this file once the start-up actions are done (menu open);\n"
    L"                         the window closes when the file is deleted again\n"
    L"  --exit-after <ms>      close the window after that many milliseconds\n"
    L"  --dump-menus           print the menu bar (one line per item) and the plug-ins, then exit\n"
    L"  --walk <name>          with --run: walk through the command's wizard like a person, save a\n"
    L"                         screenshot of every page, write the report walk.txt and exit\n"
    L"                         (0 when the walk succeeded, 3 when not); walks: profiles-and-rules\n"
    L"  --shots <folder>       where --walk puts its screenshots and walk.txt (default: .)\n"
    L"  --help                 this text\n";

void Print(const std::wstring& text) {
    HANDLE out = GetStdHandle(STD_OUTPUT_HANDLE);
    if (!out || out == INVALID_HANDLE_VALUE) return;
    int size = WideCharToMultiByte(CP_UTF8, 0, text.c_str(), static_cast<int>(text.size()), nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.c_str(), static_cast<int>(text.size()), utf8.data(), size, nullptr, nullptr);
    DWORD written = 0;
    WriteFile(out, utf8.data(), static_cast<DWORD>(utf8.size()), &written, nullptr);
}

// Returns false (with a message in `error`) on a bad command line.
bool ParseOptions(orblane::Options& options, bool& help, std::wstring& error) {
    int argc = 0;
    LPWSTR* argv = CommandLineToArgvW(GetCommandLineW(), &argc);
    if (!argv) return true;
    bool ok = true;
    for (int i = 1; i < argc && ok; ++i) {
        std::wstring arg = argv[i];
        auto value = [&](std::wstring& into) {
            if (i + 1 >= argc) {
                error = arg + L" needs a value";
                ok = false;
                return;
            }
            into = argv[++i];
        };
        std::wstring text;
        if (arg == L"--help" || arg == L"-h" || arg == L"/?") {
            help = true;
        } else if (arg == L"--site") {
            value(options.site);
        } else if (arg == L"--select-node") {
            value(text);
            options.selectNode = wcstol(text.c_str(), nullptr, 10);
            options.hasSelectNode = ok;
        } else if (arg == L"--select-device") {
            value(options.selectDevice);
        } else if (arg == L"--open-menu") {
            value(options.openMenu);
        } else if (arg == L"--run") {
            value(options.run);
        } else if (arg == L"--ready-file") {
            value(options.readyFile);
        } else if (arg == L"--exit-after") {
            value(text);
            options.exitAfterMs = static_cast<int>(wcstol(text.c_str(), nullptr, 10));
        } else if (arg == L"--walk") {
            value(options.walk);
            if (ok && !orblane::IsWalkName(std::string(options.walk.begin(), options.walk.end()))) {
                error = L"unknown walk " + options.walk;
                ok = false;
            }
        } else if (arg == L"--shots") {
            value(options.shots);
        } else if (arg == L"--dump-menus") {
            options.dumpMenus = true;
        } else if (arg.size() > 1 && arg[0] == L'-' && arg[1] == L'-') {
            error = L"unknown option " + arg;
            ok = false;
        } else if (options.site.empty()) {
            options.site = arg;
        } else {
            error = L"more than one site file: " + arg;
            ok = false;
        }
    }
    LocalFree(argv);
    if (ok && !options.walk.empty() && options.run.empty()) {
        error = L"--walk needs --run (the command whose wizard it walks through)";
        ok = false;
    }
    return ok;
}

void ReportPlugIns(const orblane::MainWindow& window) {
    for (const orblane::PlugIn& p : window.plugIns())
        Print(L"orblane: plug-in " + p.clsidText + L": \"" + p.menuPath + L"\" / \"" + p.menuItem + L"\"\n");
    for (const orblane::PlugInProblem& problem : window.problems()) {
        wchar_t hr[16];
        wsprintfW(hr, L"0x%08lX", static_cast<unsigned long>(problem.hr));
        Print(L"orblane: plug-in " + problem.clsidText + L" left out: " + problem.what + L" (" + hr + L")\n");
    }
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int show) {
    orblane::Options options;
    bool help = false;
    std::wstring error;
    if (!ParseOptions(options, help, error) || help) {
        if (!error.empty()) Print(L"orblane: " + error + L"\n");
        Print(kUsage);
        return help ? 0 : 2;
    }

    INITCOMMONCONTROLSEX controls{sizeof(controls), ICC_WIN95_CLASSES | ICC_COOL_CLASSES | ICC_BAR_CLASSES};
    InitCommonControlsEx(&controls);
    // The plug-in runs on the host's user-interface thread (Overview, Threads): an STA.
    if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {
        Print(L"orblane: COM could not be initialised\n");
        return 1;
    }
    int exitCode = 0;
    {
        orblane::MainWindow window(options);
        if (!window.Create(instance, show)) {
            Print(L"orblane: the main window could not be created (error " + std::to_wstring(GetLastError()) + L")\n");
            exitCode = 1;
        } else if (options.dumpMenus) {
            ReportPlugIns(window);
            Print(window.DumpMenus());
            DestroyWindow(window.hwnd());
        } else {
            ReportPlugIns(window);
            HACCEL accelerators = LoadAcceleratorsW(instance, MAKEINTRESOURCEW(IDR_MAINMENU));
            MSG msg;
            while (GetMessageW(&msg, nullptr, 0, 0) > 0) {
                if (TranslateAcceleratorW(window.hwnd(), accelerators, &msg)) continue;
                TranslateMessage(&msg);
                DispatchMessageW(&msg);
            }
            exitCode = static_cast<int>(msg.wParam);
        }
        // Plug-in objects are released before COM ends, so the plug-in can unload cleanly.
        window.ReleasePlugIns();
    }
    CoUninitialize();
    return exitCode;
}
