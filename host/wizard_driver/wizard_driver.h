// The wizard driver (DESIGN.md section 5): the real wizard runs modally on the calling
// thread, as in the host; a driver thread acts on it like a person, by control IDs (clicks,
// right clicks, header clicks, typing, drop-down picks, Next/Back/Finish/Cancel through
// PSM_PRESSBUTTON), and the message-box hook reads every box and presses OK. Screenshots of
// the pages go under the build tree. One driver for orblane.exe's demo walk and the GUI tests
// (library sentrel_wizard_driver, no gtest; the tests' failure handler comes from
// sentrel_gui_support).
#pragma once
#include <windows.h>
#include <commctrl.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/wizard_driver/message_box_hook.h"

namespace sentrel_gui {

class WizardDriver {
public:
    // Runs `showWizard` on the calling thread (it returns when the wizard closes) and
    // `script` on a driver thread once a property sheet is up (with the title `sheetCaption`
    // unless that is empty; a wizard's title is its active page's caption). Whatever the
    // script does, the wizard is cancelled at its end if still open.
    static void Run(const std::string& sheetCaption, const std::function<void()>& showWizard,
                    const std::function<void(WizardDriver&)>& script);

    // --- the sheet ---
    HWND Sheet() const { return m_hwndSheet; }
    bool IsOpen() const { return IsWindow(m_hwndSheet) != FALSE; }
    int ActiveIndex() const;
    HWND ActivePage() const;
    HWND PageHwnd(int index) const;  // null while the page was never created
    std::string ActiveCaption() const;
    std::string Title() const;  // the sheet's title bar
    bool IsWizardButtonEnabled(int id) const;  // 0x3023 Back, 0x3024 Next, 0x3025 Finish
    void PressButton(int psbtn);            // PSBTN_NEXT, PSBTN_BACK, PSBTN_FINISH, PSBTN_CANCEL
    void Next() { PressButton(PSBTN_NEXT); }
    void Back() { PressButton(PSBTN_BACK); }

    // --- controls of the active page ---
    HWND Control(int id) const;
    std::string Text(int id) const;
    void ClickButton(int id);  // a click on a button or a radio
    bool IsChecked(int id) const;
    bool IsVisible(int id) const { return IsWindowVisible(Control(id)) != FALSE; }
    bool IsEnabled(int id) const { return IsWindowEnabled(Control(id)) != FALSE; }
    void TypeText(int id, const std::string& text);
    // Picks a drop-down item as a user does: the selection, then the page hears of it.
    bool PickCombo(int id, const std::string& text);
    std::vector<std::string> ComboItems(int id) const;
    // Opens and closes the drop-down as a click on it does (the page hears CBN_DROPDOWN).
    void OpenDropDown(int id);

    // --- mouse on any window, in its client coordinates ---
    void LeftClick(HWND hwnd, POINT pt);
    void RightClick(HWND hwnd, POINT pt);

    // --- list views ---
    int RowCount(HWND list) const;
    std::string CellText(HWND list, int row, int column) const;
    RECT CellRect(HWND list, int row, int column) const;
    void ClickCell(HWND list, int row, int column);
    void RightClickRow(HWND list, int row);
    void ClickHeader(HWND list, int column);
    std::string HeaderText(HWND list, int column) const;
    int HeaderImage(HWND list, int column) const;
    int SelectedRow(HWND list) const;
    // The column's texts, once every row has one (result words after an apply); empty when
    // some row still has none after `timeoutMs`.
    std::vector<std::string> WaitForColumn(HWND list, int column, DWORD timeoutMs);

    // --- tree views ---
    HTREEITEM FindTreeItem(HWND tree, const std::string& text) const;
    HTREEITEM SelectedTreeItem(HWND tree) const;
    RECT TreeItemRect(HWND tree, HTREEITEM item) const;
    void ClickTreeItem(HWND tree, HTREEITEM item, bool right = false);
    POINT EmptyTreePoint(HWND tree) const;  // below the last visible item

    // --- message boxes seen so far (taken: the list is emptied) ---
    std::vector<CaughtBox> TakeMessages() { return m_boxes->Take(); }
    std::vector<std::string> TakeTexts() { return m_boxes->TakeTexts(); }

    // Waits until the user-interface thread has handled everything sent so far.
    void Settle();
    bool WaitFor(const std::function<bool()>& condition, DWORD timeoutMs = 10000);
    // Saves the whole sheet as <dir>/<name>.png; returns the path, "" on failure.
    std::string Screenshot(const std::string& name);

private:
    WizardDriver() = default;
    static LRESULT CALLBACK GetMessageHook(int code, WPARAM wParam, LPARAM lParam);
    void Ping();
    void Click(HWND hwnd, POINT pt, UINT down, UINT up, WPARAM button);

    HWND m_hwndSheet = nullptr;
    DWORD m_uiThread = 0;
    HANDLE m_pingEvent = nullptr;
    std::unique_ptr<MessageBoxHook> m_boxes;
};

// Where the screenshots go (a Windows path of the build tree); set by the test's main.
void SetScreenshotFolder(const std::string& folder);
std::string ScreenshotFolder();

// What the driver does with a failure of its own (no wizard appeared): the GUI tests fail the
// running test (tests/gui/support/gtest_failures.cpp), the demo walk records it; without a
// handler it goes to stderr.
using FailureHandler = void (*)(const std::string& what);
void SetFailureHandler(FailureHandler handler);

}  // namespace sentrel_gui
