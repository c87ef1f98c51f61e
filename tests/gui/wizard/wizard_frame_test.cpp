// The ACL wizard as the ACL Manager command opens it, against the stand-in host's objects:
// the device panel and page 0's target rules, the ACL kind and action pages, the jumps of the
// profile flow, the staging files on Finish and Cancel, and the lists' colours.
#include "acl/wizard/acl_wizard.h"
#include "controls/xlist_ctrl.h"
#include "shell/host_inventory.h"
#include "tests/gui/support/gui_fixture.h"

using namespace gui;
using namespace sentrel_test;

namespace {

constexpr char kDeviceTypesKey[] = "Software\\Kestrix\\Function\\DeviceType";
const char* const kProfileFiles[] = {"ACLEthernet.ini", "ACLIpv4.ini", "ACLIpv6.ini", "ACPacket.ini"};
const char* const kRuleFiles[] = {"ACLEthrule.ini", "ACLIpv4rule.ini", "ACLIpv6rule.ini", "ACLCpuEthrule.ini",
                                  "ACLCPUIpv4rule.ini", "ACLCPUIpv6rule.ini", "ACLPacketrule.ini"};

class WizardFrameGui : public GuiTest {
protected:
    static void SetUpTestSuite() {
        GuiTest::SetUpTestSuite();
        CoInitialize(nullptr);
        ASSERT_EQ(S_OK, CallDllExport(WinPath(ORBLANE_HOST_DLL_PATH), "DllRegisterServer"));
        SetEnvironmentVariableA("ORBLANE_SITE", WinPath(GUI_SITE).c_str());
        // The types with a non-empty "ACLExe"; TVG-5240 is known without it.
        DeleteRegTree(HKEY_CURRENT_USER, kDeviceTypesKey);
        for (const char* type : {"TVR4820", "TVG5690", "TVG5240-10"})
            SetRegString(HKEY_CURRENT_USER, std::string(kDeviceTypesKey) + "\\" + type, "ACLExe", "Sentrel.dll");
        SetRegString(HKEY_CURRENT_USER, std::string(kDeviceTypesKey) + "\\TVG-5240", "Other", "x");
    }
    static void TearDownTestSuite() { CoUninitialize(); }
    void SetUp() override { shell::g_lOpenedSubmapID = 11; }  // "Core" is open in the host

    void Wizard(const std::function<void(WizardDriver&)>& script) {
        WizardDriver::Run("", [] { acl::wizard::RunAclWizard(nullptr); }, script);
    }
    static HWND List(WizardDriver& d) { return GetDlgItem(d.PageHwnd(0), IDC_STEP0_LIST); }
    static HWND Tree(WizardDriver& d) { return GetDlgItem(d.PageHwnd(0), IDC_STEP0_TREE); }
    static controls::CXListCtrl& ListCtrl(WizardDriver& d) { return *controls::CXListCtrl::FromHandle(List(d)); }
    static std::vector<int> Checks(WizardDriver& d) {
        std::vector<int> out;
        for (int row = 0; row < d.RowCount(List(d)); ++row) out.push_back(ListCtrl(d).GetCheckState(row, 0));
        return out;
    }
    static int RowOfIP(WizardDriver& d, const std::string& ip) {
        const Strings ips = Column(d, List(d), 3);
        for (size_t row = 0; row < ips.size(); ++row)
            if (ips[row] == ip) return static_cast<int>(row);
        return -1;
    }
    static void CheckIP(WizardDriver& d, const std::string& ip) { d.ClickCell(List(d), RowOfIP(d, ip), 0); }
    static void ShowNode(WizardDriver& d, const char* name) { d.ClickTreeItem(Tree(d), d.FindTreeItem(Tree(d), name)); }
    // From page 0 (the host's device checked) to the action choice.
    static void ToActionChoice(WizardDriver& d) {
        d.Next();
        d.Next();
        ASSERT_EQ(acl::pages::kPageSelect, d.ActiveIndex());
    }
};

TEST_F(WizardFrameGui, DevicePanelShowsTheOpenSubmapAndActsOnClicks) {
    Wizard([&](WizardDriver& d) {
        HWND list = List(d), tree = Tree(d);
        EXPECT_EQ("ACL: Device List", d.ActiveCaption());
        EXPECT_TRUE(d.IsWizardButtonEnabled(kNextButton));
        EXPECT_FALSE(d.IsWizardButtonEnabled(kBackButton));
        EXPECT_FALSE(IsWindowVisible(GetDlgItem(d.Sheet(), IDHELP)));
        EXPECT_FALSE(d.IsVisible(IDC_STEP0_TYPES));
        EXPECT_EQ(d.FindTreeItem(tree, "Core"), d.SelectedTreeItem(tree)) << "the opened submap";
        const Strings headers = {"", "Device Name                ", "Device Type      ", "Device IP                 ",
                                 "Read Community ", "Write Community ", "Device ID"};
        for (int c = 0; c < 7; ++c) EXPECT_EQ(headers[c], d.HeaderText(list, c));
        EXPECT_EQ((Strings{"core-b", "core-a", "agg-1"}), Column(d, list, 1)) << "the host's order";
        EXPECT_EQ((Strings{"10", "009", "100"}), Column(d, list, 6)) << "IDs as the host wrote them";
        EXPECT_EQ((std::vector<int>{0, 1, 0}), Checks(d)) << "the host's current device is checked";
        EXPECT_EQ(1, d.SelectedRow(list));
        d.Screenshot("page-00-device-list");
        // Column 0's header has no check box: a click there checks nothing.
        EXPECT_NE(controls::CXListCtrl::kHeaderUnchecked, d.HeaderImage(list, 0));
        d.ClickHeader(list, 0);
        EXPECT_EQ((std::vector<int>{0, 1, 0}), Checks(d));
        // Sorting: addresses part by part, IDs as numbers, names as text; each click toggles.
        const struct {
            int column;
            Strings order;
        } sorts[] = {{3, {"127.0.0.3", "127.0.0.9", "127.0.0.10"}}, {3, {"127.0.0.10", "127.0.0.9", "127.0.0.3"}},
                     {6, {"009", "10", "100"}}, {1, {"agg-1", "core-a", "core-b"}}, {1, {"core-b", "core-a", "agg-1"}}};
        for (const auto& s : sorts) {
            d.ClickHeader(list, s.column);
            EXPECT_EQ(s.order, Column(d, list, s.column)) << s.column;
        }
        EXPECT_EQ(1, ListCtrl(d).GetCheckState(RowOfIP(d, "127.0.0.3"), 0)) << "the check moves with its row";
        // A right click on a row toggles its box; a left click outside the box only selects.
        d.RightClickRow(list, 0);
        EXPECT_EQ(1, ListCtrl(d).GetCheckState(0, 0));
        d.RightClickRow(list, 0);
        EXPECT_EQ(0, ListCtrl(d).GetCheckState(0, 0));
        d.ClickCell(list, 2, 3);
        EXPECT_EQ(2, d.SelectedRow(list));
        // A right click on a tree item selects it without refilling; empty space then refills
        // for it, every box cleared.
        HTREEITEM mixed = d.FindTreeItem(tree, "Mixed");
        d.ClickTreeItem(tree, mixed, /*right=*/true);
        EXPECT_EQ(mixed, d.SelectedTreeItem(tree));
        EXPECT_EQ(3, d.RowCount(list));
        d.LeftClick(tree, d.EmptyTreePoint(tree));
        EXPECT_EQ((Strings{"old-1", "new-1"}), Column(d, list, 1));
        EXPECT_EQ((std::vector<int>{0, 0}), Checks(d));
        EXPECT_TRUE(d.TakeMessages().empty());
    });
}

TEST_F(WizardFrameGui, PageZeroTakesOnlySwitchesOfOneSupportedTypeAndAtMostTen) {
    const char* const sameType = "Please select the same device type!";
    const char* const noAcl = "Havent't developed the ACL function for the device!";
    const char* const none = "Please select the device !";
    const char* const tooMany = "At most 10 devices can be configured at a time. Please uncheck some devices!";
    Wizard([&](WizardDriver& d) {
        const struct {
            const char* node;
            Strings toggle;  // addresses whose box is clicked, in order
            Strings messages;
        } cases[] = {
            {"Core", {"127.0.0.9"}, {sameType}},  // TVG5690 after the checked TVR4820
            {"Mixed", {"127.0.0.40", "127.0.0.41"}, {noAcl}},  // only the first message
            {"Core", {"127.0.0.3"}, {none}},
        };
        for (const auto& c : cases) {
            ShowNode(d, c.node);
            if (std::string(c.node) == "Core") CheckIP(d, "127.0.0.3");
            for (const std::string& ip : c.toggle) CheckIP(d, ip);
            d.Next();
            const auto boxes = d.TakeMessages();
            ASSERT_EQ(c.messages.size(), boxes.size()) << c.node;
            EXPECT_EQ(c.messages[0], boxes[0].text);
            EXPECT_EQ("Sentrel", boxes[0].caption);
            EXPECT_EQ(0, d.ActiveIndex()) << "the wizard stays on page 0";
        }
        ShowNode(d, "Twelve");
        for (int row = 0; row < 12; ++row) d.ClickCell(List(d), row, 0);
        d.Next();
        EXPECT_EQ((Strings{tooMany}), d.TakeTexts());
        EXPECT_EQ(std::vector<int>(12, 1), Checks(d)) << "nothing is unchecked behind the user's back";
        d.ClickCell(List(d), 10, 0);
        d.ClickCell(List(d), 11, 0);
        d.Next();
        EXPECT_TRUE(d.TakeMessages().empty());
        EXPECT_EQ(acl::pages::kPageAclKind, d.ActiveIndex()) << "ten switches are taken";
    });
}

// With no submap open the list starts empty (the COM test's Execute), and the host's device
// is not checked when the user opens a node later.
TEST_F(WizardFrameGui, WithNoSubmapOpenTheHostsDeviceIsNotChecked) {
    shell::g_lOpenedSubmapID = -1;
    Wizard([&](WizardDriver& d) {
        ShowNode(d, "Core");
        EXPECT_EQ((std::vector<int>{0, 0, 0}), Checks(d)) << "no device is the host's current one yet";
    });
}

TEST_F(WizardFrameGui, AclKindRenamesTheActionsAndEveryJumpLandsWhereItShould) {
    Wizard([&](WizardDriver& d) {
        d.Next();
        EXPECT_EQ("Access Control List", d.ActiveCaption());
        EXPECT_TRUE(d.IsChecked(IDC_STEP1_ACL));
        d.ClickButton(IDC_STEP1_CPU_ACL);
        d.Next();
        EXPECT_EQ((Strings{"Create CPU Profile", "Create CPU Rule", "Modify CPU Profile", "Modify CPU Rule"}),
                  (Strings{d.Text(IDC_SELECT_CHOICE1), d.Text(IDC_SELECT_CHOICE2), d.Text(IDC_SELECT_CHOICE3),
                           d.Text(IDC_SELECT_CHOICE4)}));
        EXPECT_TRUE(d.IsWizardButtonEnabled(kBackButton) && d.IsWizardButtonEnabled(kNextButton))
            << "the action page keeps the buttons of the page before";
        d.Screenshot("page-02-action-cpu");
        d.Back();
        d.ClickButton(IDC_STEP1_ACL);
        d.Next();
        EXPECT_EQ("Create Profile", d.Text(IDC_SELECT_CHOICE1));
        EXPECT_EQ("Modify Rule", d.Text(IDC_SELECT_CHOICE4));
        // Back from the rule, modify-profile and modify-rule pages lands on the action choice,
        // "Add profile" running in passing.
        const struct {
            int choice, page;
            const char* caption;
        } flows[] = {{IDC_SELECT_CHOICE2, 5, "Add Rules:Select Profile"},
                     {IDC_SELECT_CHOICE3, 12, "Modify Profile"},
                     {IDC_SELECT_CHOICE4, 13, "Modify rule"}};
        for (const auto& f : flows) {
            d.ClickButton(f.choice);
            d.Next();
            ASSERT_EQ(f.page, d.ActiveIndex());
            EXPECT_EQ(f.caption, d.ActiveCaption());
            if (f.page == 5) {
                // Next waits for the device's profiles to be read, then asks for a selection.
                const Strings noProfile{"Have not profile,can not add rule!Please select profile first!"};
                EXPECT_TRUE(d.WaitFor([&] { d.Next(); return d.TakeTexts() == noProfile; }, 15000));
            } else {
                EXPECT_TRUE(d.IsWizardButtonEnabled(kFinishButton));
            }
            d.Back();
            EXPECT_EQ(acl::pages::kPageSelect, d.ActiveIndex()) << f.caption;
            EXPECT_NE(nullptr, d.PageHwnd(acl::pages::kPageAddProfile));
        }
    });
}

// Cancel or Finish removes the staging files of the page that owns them, and only once that
// page was shown; Finish on "Modify Profile" touches none.
TEST_F(WizardFrameGui, StagingFilesGoOnlyWithTheirConfirmationPage) {
    const struct {
        int choice;  // the action
        int steps;   // Next presses after the action choice
        int button;
        bool profilesGone;
    } cases[] = {{IDC_SELECT_CHOICE1, 2, PSBTN_CANCEL, true},
                 {IDC_SELECT_CHOICE1, 0, PSBTN_CANCEL, false},
                 {IDC_SELECT_CHOICE3, 0, PSBTN_FINISH, false},
                 {IDC_SELECT_CHOICE1, 2, PSBTN_FINISH, true}};
    for (const auto& c : cases) {
        for (const char* f : kProfileFiles) WriteTextFile(m_folder.File(f), "[Section1]\nItem1=0\n");
        for (const char* f : kRuleFiles) WriteTextFile(m_folder.File(f), "[Section1]\nItem1=0\n");
        Wizard([&](WizardDriver& d) {
            ToActionChoice(d);
            d.ClickButton(c.choice);
            d.Next();
            ASSERT_TRUE(d.PickCombo(IDC_STEP2_PROFILE_ID, "1") || c.choice != IDC_SELECT_CHOICE1);
            for (int i = 0; i < c.steps; ++i) d.Next();
            d.PressButton(c.button);
            EXPECT_TRUE(d.WaitFor([&] { return !d.IsOpen(); }));
        });
        for (const char* f : kProfileFiles) EXPECT_EQ(!c.profilesGone, m_folder.Exists(f)) << f << " case " << &c - cases;
        for (const char* f : kRuleFiles) EXPECT_TRUE(m_folder.Exists(f)) << f;
    }
}

// Windows tells only top-level windows of a colour change; the lists inside the sheet must
// still take the new colours for the rows they show next.
TEST_F(WizardFrameGui, ListsTakeTheNewWindowColour) {
    const int element = COLOR_WINDOW;
    const COLORREF before = GetSysColor(element), changed = RGB(250, 240, 200);
    Wizard([&](WizardDriver& d) {
        SetSysColors(1, &element, &changed);
        d.Settle();
        ShowNode(d, "Core");
        COLORREF text = 0, back = 0;
        ASSERT_TRUE(ListCtrl(d).GetCellColors(0, 1, &text, &back));
        EXPECT_EQ(changed, back);
        d.Screenshot("page-00-new-window-colour");
    });
    SetSysColors(1, &element, &before);
}

}  // namespace
