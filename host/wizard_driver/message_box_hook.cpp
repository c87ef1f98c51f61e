#include "host/wizard_driver/message_box_hook.h"

#include <map>

namespace sentrel_gui {
namespace {
// A hook procedure gets no user data: the hooks by thread, read from the hooked thread.
std::mutex g_hooksMutex;
std::map<DWORD, MessageBoxHook*> g_hooks;

std::string WindowText(HWND hwnd) {
    char text[2048] = {};
    GetWindowTextA(hwnd, text, sizeof text);
    return text;
}
}  // namespace

MessageBoxHook::MessageBoxHook(DWORD thread) : m_thread(thread ? thread : GetCurrentThreadId()) {
    {
        std::lock_guard<std::mutex> lock(g_hooksMutex);
        g_hooks[m_thread] = this;
    }
    m_hook = SetWindowsHookExA(WH_CBT, &HookProc, nullptr, m_thread);
}

MessageBoxHook::~MessageBoxHook() {
    if (m_hook) UnhookWindowsHookEx(m_hook);
    std::lock_guard<std::mutex> lock(g_hooksMutex);
    g_hooks.erase(m_thread);
}

std::vector<CaughtBox> MessageBoxHook::Caught() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_caught;
}

std::vector<CaughtBox> MessageBoxHook::Take() {
    std::lock_guard<std::mutex> lock(m_mutex);
    std::vector<CaughtBox> out;
    out.swap(m_caught);
    return out;
}

std::vector<std::string> MessageBoxHook::TakeTexts() {
    std::vector<std::string> out;
    for (const CaughtBox& box : Take()) out.push_back(box.text);
    return out;
}

LRESULT CALLBACK MessageBoxHook::HookProc(int code, WPARAM wParam, LPARAM lParam) {
    if (code == HCBT_ACTIVATE) {
        HWND hwnd = reinterpret_cast<HWND>(wParam);
        char cls[64] = {};
        GetClassNameA(hwnd, cls, sizeof cls);
        HWND text = GetDlgItem(hwnd, 0xFFFF);  // a standard message box's text
        MessageBoxHook* self = nullptr;
        {
            std::lock_guard<std::mutex> lock(g_hooksMutex);
            auto it = g_hooks.find(GetCurrentThreadId());
            if (it != g_hooks.end()) self = it->second;
        }
        if (self && lstrcmpA(cls, "#32770") == 0 && text) {
            {
                std::lock_guard<std::mutex> lock(self->m_mutex);
                self->m_caught.push_back({WindowText(hwnd), WindowText(text)});
            }
            PostMessageA(hwnd, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), 0);  // the user presses OK
        }
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

}  // namespace sentrel_gui
