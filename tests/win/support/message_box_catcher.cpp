#include "tests/win/support/message_box_catcher.h"

namespace sentrel_test {
namespace {
thread_local MessageBoxCatcher* t_catcher = nullptr;
thread_local std::vector<CaughtMessageBox>* t_sink = nullptr;

std::string WindowText(HWND hwnd) {
    char buffer[2048] = {};
    GetWindowTextA(hwnd, buffer, sizeof buffer);
    return buffer;
}

// The message text of a standard message box is its static control 0xFFFF.
std::string MessageBoxText(HWND box) {
    HWND text = GetDlgItem(box, 0xFFFF);
    return text ? WindowText(text) : std::string();
}
}  // namespace

MessageBoxCatcher::MessageBoxCatcher() {
    t_catcher = this;
    t_sink = &m_caught;
    m_hook = SetWindowsHookExA(WH_CBT, &HookProc, nullptr, GetCurrentThreadId());
}

MessageBoxCatcher::~MessageBoxCatcher() {
    if (m_hook) UnhookWindowsHookEx(m_hook);
    t_catcher = nullptr;
    t_sink = nullptr;
}

LRESULT CALLBACK MessageBoxCatcher::HookProc(int code, WPARAM wParam, LPARAM lParam) {
    if (code == HCBT_ACTIVATE && t_sink) {
        HWND hwnd = reinterpret_cast<HWND>(wParam);
        char cls[64] = {};
        GetClassNameA(hwnd, cls, sizeof cls);
        if (lstrcmpA(cls, "#32770") == 0 && GetDlgItem(hwnd, 0xFFFF)) {
            t_sink->push_back({WindowText(hwnd), MessageBoxText(hwnd)});
            // Press OK once the box runs its own loop.
            PostMessageA(hwnd, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), 0);
        }
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

}  // namespace sentrel_test
