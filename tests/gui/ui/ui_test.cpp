// The UI layer on its own: an exception thrown in a page's or a dialog's handler stays in our
// code (comctl32 and user32 are C and cannot unwind it), and text that is not ASCII crosses
// between the host's 16-bit strings and the plug-in's 8-bit ones.
#include <stdexcept>
#include <thread>

#include "tests/gui/support/gui_fixture.h"
#include "ui/dialog.h"
#include "ui/wizard.h"

using namespace gui;

namespace {

constexpr UINT kDialog = 900, kPage = 901;
constexpr int kThrow = 1000;

class ThrowingPage : public ui::WizardPage {
public:
    ThrowingPage() : WizardPage(kPage) {}
    int activations = 0;

protected:
    BOOL OnSetActive() override {
        Sheet()->SetWizardButtons(PSWIZB_BACK | PSWIZB_NEXT);
        if (++activations > 1) throw std::runtime_error("activation");
        return TRUE;
    }
    BOOL OnCommand(WPARAM wParam, LPARAM) override {
        if (LOWORD(wParam) == kThrow) throw std::runtime_error("command");
        return FALSE;
    }
    LRESULT OnWizardNext() override { throw std::bad_alloc(); }
};

class ThrowingDialog : public ui::Dialog {
public:
    ThrowingDialog() : Dialog(kDialog) {}

protected:
    BOOL OnCommand(WPARAM wParam, LPARAM) override {
        if (LOWORD(wParam) == kThrow) throw std::runtime_error("command");
        return FALSE;
    }
};

class UiLayerGui : public GuiTest {};

TEST_F(UiLayerGui, AnExceptionInAHandlerNeverLeavesTheWindowProcedure) {
    ThrowingPage first, second;
    ui::WizardSheet sheet("Sheet under test");
    sheet.AddPage(&first);
    sheet.AddPage(&second);
    WizardDriver::Run("", [&] { sheet.DoModal(nullptr); }, [&](WizardDriver& d) {
        d.ClickButton(kThrow);
        d.Next();  // the handler throws: the sheet stays where it is
        EXPECT_TRUE(d.IsOpen());
        EXPECT_EQ(0, d.ActiveIndex());
        sheet.SetActivePage(1);
        d.Settle();
        sheet.SetActivePage(0);  // the second activation throws
        d.Settle();
        EXPECT_TRUE(d.IsOpen());
        EXPECT_EQ(2, first.activations);
    });
    // A plain dialog: a second thread clicks as the user would.
    ThrowingDialog dialog;
    bool stillOpen = false;
    std::thread user([&] {
        HWND dlg = nullptr;
        for (int i = 0; i < 200 && !dlg; ++i, Sleep(50)) dlg = FindWindowA(nullptr, "Dialog under test");
        SendMessageA(dlg, WM_COMMAND, MAKEWPARAM(kThrow, BN_CLICKED), 0);  // the handler throws
        stillOpen = IsWindow(dlg) != FALSE;
        SendMessageA(dlg, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), 0);
    });
    const INT_PTR result = dialog.DoModal(nullptr);
    user.join();
    EXPECT_TRUE(stillOpen);
    EXPECT_EQ(IDOK, result) << "the dialog still ends as the user asks";
}

TEST_F(UiLayerGui, TextThatIsNotAsciiCrossesBetweenWideAndAnsi) {
    // The plug-in runs in the system's ANSI code page; these tests run in 1252.
    ASSERT_EQ(1252u, GetACP());
    const wchar_t* const wide = L"Ger\u00e4t \u00dcberm\u00e4\u00dfig \u00e9t\u00e9";
    const std::string ansi = ui::ToAnsi(wide);
    EXPECT_EQ("Ger\xe4t \xdc" "berm\xe4\xdf" "ig \xe9t\xe9", ansi);
    EXPECT_EQ(std::wstring(wide), ui::ToWide(ansi)) << "and back";
    EXPECT_EQ("Ger", ui::ToAnsi(wide, 3)) << "a counted string stops at its length";
    EXPECT_EQ("?", ui::ToAnsi(L"\u4e2d")) << "what the code page cannot hold";
    EXPECT_EQ("", ui::ToAnsi(nullptr));
    EXPECT_EQ(L"", ui::ToWide(""));
}

}  // namespace
