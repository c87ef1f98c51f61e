// Catches the message boxes a test's own thread shows, the way a person sees them: a CBT
// hook reads the caption and the text of each box as it activates and presses its OK button.
#pragma once
#include <windows.h>

#include <string>
#include <vector>

namespace sentrel_test {

struct CaughtMessageBox {
    std::string caption;
    std::string text;
};

class MessageBoxCatcher {
public:
    MessageBoxCatcher();   // starts catching on the calling thread
    ~MessageBoxCatcher();  // stops
    MessageBoxCatcher(const MessageBoxCatcher&) = delete;
    MessageBoxCatcher& operator=(const MessageBoxCatcher&) = delete;

    const std::vector<CaughtMessageBox>& Caught() const { return m_caught; }
    void Clear() { m_caught.clear(); }

private:
    static LRESULT CALLBACK HookProc(int code, WPARAM wParam, LPARAM lParam);
    HHOOK m_hook = nullptr;
    std::vector<CaughtMessageBox> m_caught;
};

}  // namespace sentrel_test
