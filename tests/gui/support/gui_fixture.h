// What every GUI test program shares: the set-up of a program that shows the plug-in's
// windows, a fresh current folder per test (the wizard writes its files there), and small
// readers of what is on screen.
#pragma once
#include <windows.h>
#include <commctrl.h>
#include <prsht.h>

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "host/wizard_driver/wizard_driver.h"
#include "res/resource.h"
#include "tests/win/support/win_test_util.h"
#include "ui/text.h"

namespace gui {

using sentrel_gui::WizardDriver;
using Strings = std::vector<std::string>;
constexpr int kBackButton = 0x3023, kNextButton = 0x3024, kFinishButton = 0x3025;

class GuiTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        INITCOMMONCONTROLSEX icc{sizeof icc, ICC_WIN95_CLASSES | ICC_INTERNET_CLASSES};
        InitCommonControlsEx(&icc);
        ui::SetResourceInstance(GetModuleHandleA(nullptr));  // the plug-in's resources are linked in
        sentrel_gui::SetScreenshotFolder(sentrel_test::WinPath(SCREENSHOT_DIR));
    }
    sentrel_test::ScopedCurrentFolder m_folder{"sentrel_gui_"};
};

inline Strings Column(WizardDriver& d, HWND list, int column) {
    Strings out;
    for (int row = 0; row < d.RowCount(list); ++row) out.push_back(d.CellText(list, row, column));
    return out;
}

inline long long MsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace gui
