// Catches the message boxes of one thread the way a person sees them: a CBT hook reads the
// caption and the text of each box as it activates and presses its OK button. The wizard
// driver, the demo walk and the Windows tests all use this one hook.
#pragma once
#include <windows.h>

#include <mutex>
#include <string>
#include <vector>

namespace sentrel_gui {

struct CaughtBox {
    std::string caption;
    std::string text;
};

class MessageBoxHook {
public:
    // Catches on `thread` (0: the calling thread) until destroyed; one hook per thread.
    explicit MessageBoxHook(DWORD thread = 0);
    ~MessageBoxHook();
    MessageBoxHook(const MessageBoxHook&) = delete;
    MessageBoxHook& operator=(const MessageBoxHook&) = delete;

    // The boxes seen so far; Take also forgets them.
    std::vector<CaughtBox> Caught() const;
    std::vector<CaughtBox> Take();
    std::vector<std::string> TakeTexts();
    void Clear() { Take(); }

private:
    static LRESULT CALLBACK HookProc(int code, WPARAM wParam, LPARAM lParam);
    HHOOK m_hook = nullptr;
    DWORD m_thread = 0;
    mutable std::mutex m_mutex;
    std::vector<CaughtBox> m_caught;
};

}  // namespace sentrel_gui
