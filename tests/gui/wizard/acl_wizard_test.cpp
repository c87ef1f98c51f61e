// Parts 1.3 and 5.1 tested like a person uses them: the real ACL wizard, opened as the ACL
// Manager command opens it, against the stand-in host's objects; the driver clicks, right
// clicks, clicks headers, presses Next/Back/Finish/Cancel and reads the message boxes.
#include <windows.h>
#include <commctrl.h>
#include <prsht.h>

#include <gtest/gtest.h>

#include "acl/wizard/acl_wizard.h"
#include "controls/xlist_ctrl.h"
#include "res/resource.h"
#include "shell/host_inventory.h"
#include "tests/gui/support/wizard_driver.h"
#include "tests/win/support/win_test_util.h"
#include "ui/text.h"

using sentrel_gui::WizardDriver;
using namespace sentrel_test;

namespace {

constexpr int kBack = 0x3023, kNext = 0x3024, kFinish = 0x3025;  // the sheet's wizard buttons
constexpr char kDeviceTypesKey[] = "Software\\Kestrix\\Function\\DeviceType";
constexpr char kSelectDevice[] = "Please select the device !";
constexpr char kNoAclFunction[] = "Havent't developed the ACL function for the device!";
constexpr char kSameType[] = "Please select the same device type!";
constexpr char kTooMany[] = "At most 10 devices can be configured at a time. Please uncheck some devices!";
constexpr char kNoProfile[] = "Have not profile,can not add rule!Please select profile first!";
const char* const kProfileFiles[] = {"ACLEthernet.ini", "ACLIpv4.ini", "ACLIpv6.ini", "ACPacket.ini"};
const char* const kRuleFiles[] = {"ACLEthrule.ini", "ACLIpv4rule.ini", "ACLIpv6rule.ini", "ACLCpuEthrule.ini",
                                  "ACLCPUIpv4rule.ini", "ACLCPUIpv6rule.ini", "ACLPacketrule.ini"};

std::vector<std::string> Texts(const std::vector<sentrel_gui::CaughtBox>& boxes) {
    std::vector<std::string> out;
    for (const auto& b : boxes) out.push_back(b.text);
    return out;
}

class AclWizardGui : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        CoInitialize(nullptr);
        INITCOMMONCONTROLSEX icc{sizeof icc, ICC_WIN95_CLASSES};
        InitCommonControlsEx(&icc);
        ui::SetResourceInstance(GetModuleHandleA(nullptr));  // the plug-in's resources are linked in
        ASSERT_EQ(S_OK, CallDllExport(WinPath(ORBLANE_HOST_DLL_PATH), "DllRegisterServer"));
        SetEnvironmentVariableA("ORBLANE_SITE", WinPath(GUI_SITE).c_str());
        // Part 5.1: the types with a non-empty "ACLExe"; TVG-5240 is known without it.
        DeleteRegTree(HKEY_CURRENT_USER, kDeviceTypesKey);
        for (const char* type : {"TVR4820", "TVG5690", "TVG5240-10"})
            SetRegString(HKEY_CURRENT_USER, std::string(kDeviceTypesKey) + "\\" + type, "ACLExe", "Sentrel.dll");
        SetRegString(HKEY_CURRENT_USER, std::string(kDeviceTypesKey) + "\\TVG-5240", "Other", "x");
        sentrel_gui::SetScreenshotFolder(WinPath(SCREENSHOT_DIR));
    }
    static void TearDownTestSuite() { CoUninitialize(); }

    void SetUp() override {
        m_folder = MakeTempFolder("sentrel_gui_wizard_");
        GetCurrentDirectoryA(MAX_PATH, m_oldDirectory);
        SetCurrentDirectoryA(m_folder.c_str());
        shell::g_lOpenedSubmapID = 11;  // "Core" is open in the host
    }
    void TearDown() override { SetCurrentDirectoryA(m_oldDirectory); }

    void Wizard(const std::function<void(WizardDriver&)>& script) {
        WizardDriver::Run("", [] { acl::wizard::RunAclWizard(nullptr); }, script);
    }

    static HWND List(WizardDriver& d) { return GetDlgItem(d.PageHwnd(0), IDC_STEP0_LIST); }
    static HWND Tree(WizardDriver& d) { return GetDlgItem(d.PageHwnd(0), IDC_STEP0_TREE); }
    static int Check(WizardDriver& d, int row) {
        controls::CXListCtrl* list = controls::CXListCtrl::FromHandle(List(d));
        return list ? list->GetCheckState(row, 0) : -2;
    }
    static int RowOfIP(WizardDriver& d, const std::string& ip) {
        for (int row = 0; row < d.RowCount(List(d)); ++row)
            if (d.CellText(List(d), row, 3) == ip) return row;
        return -1;
    }
    void CheckIP(WizardDriver& d, const std::string& ip) { d.ClickCell(List(d), RowOfIP(d, ip), 0); }
    void ShowNode(WizardDriver& d, const std::string& name) { d.ClickTreeItem(Tree(d), d.FindTreeItem(Tree(d), name)); }
    // Page 0 with one Core switch checked, then Next to page 1 and Next to page 2.
    void ToActionChoice(WizardDriver& d) {
        ASSERT_EQ(1, Check(d, RowOfIP(d, "127.0.0.3"))) << "the host's device is checked";
        d.Next();
        ASSERT_EQ(1, d.ActiveIndex());
        d.Next();
        ASSERT_EQ(2, d.ActiveIndex());
    }
    // Part 5.2: "Add profile" goes on only with a profile ID chosen.
    static void PickProfileId(WizardDriver& d, const std::string& id) {
        SendMessageA(d.Control(IDC_STEP2_PROFILE_ID), CB_SELECTSTRING, static_cast<WPARAM>(-1),
                     reinterpret_cast<LPARAM>(id.c_str()));
        d.Settle();
    }
    std::string File(const char* name) const { return m_folder + "\\" + name; }
    bool Exists(const char* name) const { return GetFileAttributesA(File(name).c_str()) != INVALID_FILE_ATTRIBUTES; }
    void MakeStagingFiles() {
        for (const char* f : kProfileFiles) WriteTextFile(File(f), "[Section1]\nItem1=0\n");
        for (const char* f : kRuleFiles) WriteTextFile(File(f), "[Section1]\nItem1=0\n");
    }

    std::string m_folder;
    char m_oldDirectory[MAX_PATH] = {};
};

// --- page 0 and the device panel (Parts 1.3, 5.1) -------------------------------------------

TEST_F(AclWizardGui, PageZeroShowsTheOpenSubmapWithTheHostsDeviceCheckedAndSelected) {
    Wizard([&](WizardDriver& d) {
        EXPECT_EQ(0, d.ActiveIndex());
        EXPECT_EQ("ACL: Device List", d.ActiveCaption());
        EXPECT_TRUE(d.IsWizardButtonEnabled(kNext));
        EXPECT_FALSE(d.IsWizardButtonEnabled(kBack)) << "Next only on page 0";
        EXPECT_FALSE(IsWindowVisible(GetDlgItem(d.Sheet(), IDHELP)));
        EXPECT_FALSE(IsWindowVisible(d.Control(IDC_STEP0_TYPES))) << "the supported types are hidden";
        HWND list = List(d);
        ASSERT_EQ(3, d.RowCount(list));
        EXPECT_EQ("core-b", d.CellText(list, 0, 1));
        EXPECT_EQ("127.0.0.3", d.CellText(list, 1, 3));
        EXPECT_EQ(1, Check(d, 1)) << "the host's current device (127.0.0.3)";
        EXPECT_EQ(1, d.SelectedRow(list));
        EXPECT_EQ(0, Check(d, 0));
        EXPECT_EQ(0, Check(d, 2));
        HTREEITEM core = d.FindTreeItem(Tree(d), "Core");
        EXPECT_EQ(core, d.SelectedTreeItem(Tree(d))) << "the opened submap's node is selected";
        EXPECT_NE(nullptr, d.FindTreeItem(Tree(d), "1")) << "no RootName: the root shows its ID";
        d.Screenshot("page-00-device-list");
    });
}

TEST_F(AclWizardGui, HeaderTextsKeepTheirTrailingBlanksAndRowTextsGetNone) {
    Wizard([&](WizardDriver& d) {
        HWND list = List(d);
        EXPECT_EQ("", d.HeaderText(list, 0));
        EXPECT_EQ("Device Name                ", d.HeaderText(list, 1));
        EXPECT_EQ("Device Type      ", d.HeaderText(list, 2));
        EXPECT_EQ("Device IP                 ", d.HeaderText(list, 3));
        EXPECT_EQ("Read Community ", d.HeaderText(list, 4));
        EXPECT_EQ("Write Community ", d.HeaderText(list, 5));
        EXPECT_EQ("Device ID", d.HeaderText(list, 6));
        const int widths[] = {20, 140, 100, 120, 120, 120, 80};
        for (int c = 0; c < 7; ++c)
            EXPECT_EQ(widths[c], static_cast<int>(SendMessageA(list, LVM_GETCOLUMNWIDTH, c, 0))) << c;
        EXPECT_EQ("core-a", d.CellText(list, 1, 1));
        EXPECT_EQ("TVR4820", d.CellText(list, 1, 2));
        EXPECT_EQ("public", d.CellText(list, 1, 4));
        EXPECT_EQ("private", d.CellText(list, 1, 5));
        EXPECT_EQ("9", d.CellText(list, 1, 6));
        EXPECT_EQ(LVS_EX_FULLROWSELECT | LVS_EX_FLATSB,
                  SendMessageA(list, LVM_GETEXTENDEDLISTVIEWSTYLE, 0, 0) & (LVS_EX_FULLROWSELECT | LVS_EX_FLATSB));
    });
}

TEST_F(AclWizardGui, RightClickOnATreeItemSelectsItWithoutRefillingThenEmptySpaceRefills) {
    Wizard([&](WizardDriver& d) {
        HWND tree = Tree(d), list = List(d);
        HTREEITEM mixed = d.FindTreeItem(tree, "Mixed");
        d.ClickTreeItem(tree, mixed, /*right=*/true);
        EXPECT_EQ(mixed, d.SelectedTreeItem(tree)) << "the right click selects the item";
        EXPECT_EQ("core-b", d.CellText(list, 0, 1)) << "but the list is not refilled";
        EXPECT_EQ(3, d.RowCount(list));
        d.LeftClick(tree, d.EmptyTreePoint(tree));
        EXPECT_EQ(mixed, d.SelectedTreeItem(tree));
        ASSERT_EQ(2, d.RowCount(list)) << "a click on empty space refills for the selected item";
        EXPECT_EQ("old-1", d.CellText(list, 0, 1));
        EXPECT_TRUE(d.TakeMessages().empty());
    });
}

TEST_F(AclWizardGui, EveryRefillClearsTheCheckBoxes) {
    Wizard([&](WizardDriver& d) {
        HWND tree = Tree(d), list = List(d);
        CheckIP(d, "127.0.0.10");
        ASSERT_EQ(1, Check(d, 0));
        ASSERT_EQ(1, Check(d, 1));
        d.LeftClick(tree, d.EmptyTreePoint(tree));  // refills "Core", the item selected before
        ASSERT_EQ(3, d.RowCount(list));
        for (int row = 0; row < 3; ++row) EXPECT_EQ(0, Check(d, row)) << row;
        EXPECT_EQ("core-b", d.CellText(list, 0, 1));
    });
}

TEST_F(AclWizardGui, ANodeWithOnlyNonSnmpDevicesGivesAnEmptyListWithoutMessage) {
    Wizard([&](WizardDriver& d) {
        ShowNode(d, "Printers");
        EXPECT_EQ(0, d.RowCount(List(d)));
        EXPECT_TRUE(d.TakeMessages().empty());
        ShowNode(d, "Core");
        EXPECT_EQ(3, d.RowCount(List(d)));
    });
}

TEST_F(AclWizardGui, ARightClickOnARowTogglesItsCheckBox) {
    Wizard([&](WizardDriver& d) {
        d.RightClickRow(List(d), 0);
        EXPECT_EQ(1, Check(d, 0));
        d.RightClickRow(List(d), 0);
        EXPECT_EQ(0, Check(d, 0));
        d.ClickCell(List(d), 2, 3);  // a left click outside the box cell only selects
        EXPECT_EQ(0, Check(d, 2));
        EXPECT_EQ(2, d.SelectedRow(List(d)));
    });
}

TEST_F(AclWizardGui, HeaderClicksSortAscendingThenToggle) {
    Wizard([&](WizardDriver& d) {
        HWND list = List(d);
        auto column = [&](int c) {
            std::vector<std::string> out;
            for (int row = 0; row < d.RowCount(list); ++row) out.push_back(d.CellText(list, row, c));
            return out;
        };
        using V = std::vector<std::string>;
        d.ClickHeader(list, 3);
        EXPECT_EQ((V{"127.0.0.3", "127.0.0.9", "127.0.0.10"}), column(3)) << "address parts as numbers";
        d.ClickHeader(list, 3);
        EXPECT_EQ((V{"127.0.0.10", "127.0.0.9", "127.0.0.3"}), column(3)) << "second click toggles";
        d.ClickHeader(list, 6);
        EXPECT_EQ((V{"9", "10", "100"}), column(6)) << "IDs as numbers";
        d.ClickHeader(list, 1);
        EXPECT_EQ((V{"agg-1", "core-a", "core-b"}), column(1));
        d.ClickHeader(list, 1);
        EXPECT_EQ((V{"core-b", "core-a", "agg-1"}), column(1));
        // The check box moves with its row.
        EXPECT_EQ(1, Check(d, RowOfIP(d, "127.0.0.3")));
        EXPECT_EQ(0, Check(d, RowOfIP(d, "127.0.0.9")));
        d.Screenshot("page-00-sorted");
    });
}

TEST_F(AclWizardGui, HeaderCheckBoxChecksAndClearsEveryRow) {
    Wizard([&](WizardDriver& d) {
        HWND list = List(d);
        EXPECT_EQ(controls::CXListCtrl::kHeaderUnchecked, d.HeaderImage(list, 0));
        d.ClickHeader(list, 0);
        for (int row = 0; row < 3; ++row) EXPECT_EQ(1, Check(d, row));
        EXPECT_EQ(controls::CXListCtrl::kHeaderChecked, d.HeaderImage(list, 0));
        d.Screenshot("page-00-all-checked");
        d.ClickCell(list, 2, 0);
        EXPECT_EQ(controls::CXListCtrl::kHeaderUnchecked, d.HeaderImage(list, 0));
    });
}

// --- target validation (Part 5.1) ----------------------------------------------------------

TEST_F(AclWizardGui, ASupportedDeviceFollowedByAnotherTypeIsRefused) {
    Wizard([&](WizardDriver& d) {
        CheckIP(d, "127.0.0.9");  // TVG5690 after the checked TVR4820 127.0.0.3, in list order
        d.Next();
        EXPECT_EQ((std::vector<std::string>{kSameType}), Texts(d.TakeMessages()));
        EXPECT_EQ(0, d.ActiveIndex()) << "the wizard stays on page 0";
        EXPECT_EQ(1, Check(d, RowOfIP(d, "127.0.0.9"))) << "and keeps the input";
    });
}

TEST_F(AclWizardGui, AnUnsupportedFirstDeviceGivesOnlyTheFirstMessage) {
    Wizard([&](WizardDriver& d) {
        ShowNode(d, "Mixed");
        CheckIP(d, "127.0.0.40");  // TVG-5240: no "ACLExe"
        CheckIP(d, "127.0.0.41");
        d.Next();
        auto boxes = d.TakeMessages();
        ASSERT_EQ(1u, boxes.size());
        EXPECT_EQ(kNoAclFunction, boxes[0].text);
        EXPECT_EQ("Sentrel", boxes[0].caption);
        EXPECT_EQ(0, d.ActiveIndex());
    });
}

TEST_F(AclWizardGui, NothingCheckedAsksForADevice) {
    Wizard([&](WizardDriver& d) {
        CheckIP(d, "127.0.0.3");  // clears the host's device
        d.Next();
        EXPECT_EQ((std::vector<std::string>{kSelectDevice}), Texts(d.TakeMessages()));
        EXPECT_EQ(0, d.ActiveIndex());
    });
}

TEST_F(AclWizardGui, MoreThanTenDevicesAreRefusedWholeAndTenGoOn) {
    Wizard([&](WizardDriver& d) {
        ShowNode(d, "Twelve");
        HWND list = List(d);
        ASSERT_EQ(12, d.RowCount(list));
        d.ClickHeader(list, 0);  // all twelve
        d.Next();
        EXPECT_EQ((std::vector<std::string>{kTooMany}), Texts(d.TakeMessages()));
        EXPECT_EQ(0, d.ActiveIndex());
        for (int row = 0; row < 12; ++row) EXPECT_EQ(1, Check(d, row)) << "nothing is unchecked behind the user's back";
        d.ClickCell(list, 10, 0);
        d.ClickCell(list, 11, 0);
        d.Next();
        EXPECT_TRUE(d.TakeMessages().empty());
        EXPECT_EQ(1, d.ActiveIndex()) << "ten switches are accepted";
    });
}

// --- pages 1 and 2 (Part 5.1) --------------------------------------------------------------

TEST_F(AclWizardGui, TheCpuAclRenamesTheFourActionsAndTheOrdinaryAclRestoresThem) {
    Wizard([&](WizardDriver& d) {
        d.Next();
        ASSERT_EQ(1, d.ActiveIndex());
        EXPECT_EQ("Access Control List", d.ActiveCaption());
        EXPECT_EQ("ACL", d.Text(IDC_STEP1_GROUP));
        EXPECT_EQ("Access Profile List", d.Text(IDC_STEP1_ACL));
        EXPECT_EQ("CPU Access Profile List", d.Text(IDC_STEP1_CPU_ACL));
        EXPECT_TRUE(d.IsChecked(IDC_STEP1_ACL));
        EXPECT_TRUE(d.IsWizardButtonEnabled(kBack));
        EXPECT_TRUE(d.IsWizardButtonEnabled(kNext));
        d.Screenshot("page-01-acl-kind");
        d.ClickButton(IDC_STEP1_CPU_ACL);
        d.Next();
        ASSERT_EQ(2, d.ActiveIndex());
        EXPECT_EQ("Please change the title", d.ActiveCaption());
        EXPECT_EQ("Create", d.Text(IDC_SELECT_GROUP_CREATE));
        EXPECT_EQ("Modify", d.Text(IDC_SELECT_GROUP_MODIFY));
        EXPECT_EQ("Create CPU Profile", d.Text(IDC_SELECT_CHOICE1));
        EXPECT_EQ("Create CPU Rule", d.Text(IDC_SELECT_CHOICE2));
        EXPECT_EQ("Modify CPU Profile", d.Text(IDC_SELECT_CHOICE3));
        EXPECT_EQ("Modify CPU Rule", d.Text(IDC_SELECT_CHOICE4));
        EXPECT_TRUE(d.IsChecked(IDC_SELECT_CHOICE1));
        EXPECT_TRUE(d.IsWizardButtonEnabled(kBack)) << "page 2 keeps page 1's buttons";
        EXPECT_TRUE(d.IsWizardButtonEnabled(kNext));
        d.Screenshot("page-02-action-cpu");
        d.Back();
        ASSERT_EQ(1, d.ActiveIndex());
        d.ClickButton(IDC_STEP1_ACL);
        d.Next();
        ASSERT_EQ(2, d.ActiveIndex());
        EXPECT_EQ("Create Profile", d.Text(IDC_SELECT_CHOICE1));
        EXPECT_EQ("Create Rule", d.Text(IDC_SELECT_CHOICE2));
        EXPECT_EQ("Modify Profile", d.Text(IDC_SELECT_CHOICE3));
        EXPECT_EQ("Modify Rule", d.Text(IDC_SELECT_CHOICE4));
        d.Screenshot("page-02-action");
        d.Back();
        d.Back();
        EXPECT_EQ(0, d.ActiveIndex());
    });
}

TEST_F(AclWizardGui, BackFromSelectProfileModifyProfileAndModifyRuleLandsOnTheActionChoice) {
    Wizard([&](WizardDriver& d) {
        ToActionChoice(d);
        const std::pair<int, int> flows[] = {{IDC_SELECT_CHOICE2, 5}, {IDC_SELECT_CHOICE3, 12}, {IDC_SELECT_CHOICE4, 13}};
        const char* captions[] = {"Add Rules:Select Profile", "Modify Profile", "Modify Rule"};
        for (int i = 0; i < 3; ++i) {
            d.ClickButton(flows[i].first);
            d.Next();
            ASSERT_EQ(flows[i].second, d.ActiveIndex());
            EXPECT_EQ(captions[i], d.ActiveCaption());
            if (i == 0) {
                EXPECT_EQ(nullptr, d.PageHwnd(3)) << "\"Add profile\" was never shown";
                d.Screenshot("page-05-select-profile");
                d.Next();  // no profile chosen
                EXPECT_EQ((std::vector<std::string>{kNoProfile}), Texts(d.TakeMessages()));
                EXPECT_EQ(5, d.ActiveIndex());
            } else {
                EXPECT_TRUE(d.IsWizardButtonEnabled(kFinish)) << "Back and Finish";
                d.Screenshot(i == 1 ? "page-12-modify-profile" : "page-13-modify-rule");
            }
            d.Back();
            EXPECT_EQ(2, d.ActiveIndex()) << captions[i] << ": the action choice, not \"Add profile\"";
            EXPECT_NE(nullptr, d.PageHwnd(3)) << "page 3's activation ran in passing";
        }
    });
}

// --- the profile flow's frame: pages 3, 4, 6-9, 10 (Part 5.1) --------------------------------

TEST_F(AclWizardGui, ProfilePagesGoByTypeAndConfirmationBackReturnsToTheDefinitionPage) {
    Wizard([&](WizardDriver& d) {
        ToActionChoice(d);
        d.Next();  // "Create Profile"
        ASSERT_EQ(3, d.ActiveIndex());
        EXPECT_EQ("Add profile", d.ActiveCaption());
        d.Screenshot("page-03-add-profile");
        const struct {
            int radio, page;
            const char* caption;
            const char* shot;
        } types[] = {{IDC_STEP2_IPV6, 8, "IPv6 ACL Settings", "page-08-ipv6"},
                     {IDC_STEP2_ETHERNET, 7, "Ethernet ACL Settings", "page-07-ethernet"},
                     {IDC_STEP2_IPV4, 6, "IPV4 ACL Settings", "page-06-ipv4"},
                     {IDC_STEP2_PACKET, 9, "Packet content ACL", "page-09-packet"}};
        for (const auto& t : types) {
            d.ClickButton(t.radio);
            PickProfileId(d, "1");
            d.Next();
            ASSERT_EQ(t.page, d.ActiveIndex());
            EXPECT_EQ(t.caption, d.ActiveCaption());
            d.Screenshot(t.shot);
            d.Next();
            ASSERT_EQ(10, d.ActiveIndex()) << "on to the confirmation page";
            EXPECT_EQ("Confirmation Page", d.ActiveCaption());
            EXPECT_NE(nullptr, d.PageHwnd(9)) << "page 9's activation ran in passing";
            EXPECT_TRUE(d.IsWizardButtonEnabled(kFinish));
            d.Back();
            EXPECT_EQ(t.page, d.ActiveIndex()) << "Back from the confirmation page returns to " << t.caption;
            d.Back();
            EXPECT_EQ(3, d.ActiveIndex());
            EXPECT_NE(nullptr, d.PageHwnd(4)) << "page 4's activation ran in passing";
        }
        PickProfileId(d, "1");
        d.Next();
        d.Next();
        d.Screenshot("page-10-confirmation");
    });
}

TEST_F(AclWizardGui, CancelOnTheConfirmationPageRemovesTheProfileStagingFiles) {
    MakeStagingFiles();
    Wizard([&](WizardDriver& d) {
        ToActionChoice(d);
        d.Next();
        PickProfileId(d, "1");
        d.Next();
        ASSERT_EQ(7, d.ActiveIndex());
        d.Next();
        ASSERT_EQ(10, d.ActiveIndex());
        d.PressButton(PSBTN_CANCEL);
        EXPECT_TRUE(d.WaitFor([&] { return !d.IsOpen(); }));
    });
    for (const char* f : kProfileFiles) EXPECT_FALSE(Exists(f)) << f;
    for (const char* f : kRuleFiles) EXPECT_TRUE(Exists(f)) << f << ": the rule files are not this page's";
}

TEST_F(AclWizardGui, CancelOnAddProfileBeforeTheConfirmationPageLeavesTheFiles) {
    MakeStagingFiles();
    Wizard([&](WizardDriver& d) {
        ToActionChoice(d);
        d.Next();
        ASSERT_EQ(3, d.ActiveIndex());
        d.PressButton(PSBTN_CANCEL);
        EXPECT_TRUE(d.WaitFor([&] { return !d.IsOpen(); }));
    });
    for (const char* f : kProfileFiles) EXPECT_TRUE(Exists(f)) << f;
    for (const char* f : kRuleFiles) EXPECT_TRUE(Exists(f)) << f;
}

TEST_F(AclWizardGui, FinishOnTheConfirmationPageRemovesTheProfileFilesAndOnModifyProfileNothing) {
    MakeStagingFiles();
    Wizard([&](WizardDriver& d) {
        ToActionChoice(d);
        d.ClickButton(IDC_SELECT_CHOICE3);
        d.Next();
        ASSERT_EQ(12, d.ActiveIndex());
        d.PressButton(PSBTN_FINISH);
        EXPECT_TRUE(d.WaitFor([&] { return !d.IsOpen(); }));
    });
    for (const char* f : kProfileFiles) EXPECT_TRUE(Exists(f)) << f << ": Finish on Modify Profile";
    Wizard([&](WizardDriver& d) {
        ToActionChoice(d);
        d.Next();
        PickProfileId(d, "1");
        d.Next();
        d.Next();
        ASSERT_EQ(10, d.ActiveIndex());
        d.PressButton(PSBTN_FINISH);
        EXPECT_TRUE(d.WaitFor([&] { return !d.IsOpen(); }));
    });
    for (const char* f : kProfileFiles) EXPECT_FALSE(Exists(f)) << f;
    for (const char* f : kRuleFiles) EXPECT_TRUE(Exists(f)) << f;
}

}  // namespace
