// Part 5.2 "Add profile" (`CACLStep2`) tested like a person uses it: the real wizard, opened on
// page 3 with the targets that page 0 would have stored, against simulated switches served
// on 127.0.0.1 ports by threads of the test (the approach of tests/win/acl). The page reads
// the switch's profiles on its worker thread; the test checks the lists, the drop-down, the
// messages, m_nFrameOption, and that the reader stops when the page is left or the wizard
// closes.
#include <chrono>

#include "controls/xlist_ctrl.h"
#include "tests/gui/wizard/profile_flow.h"

using namespace profile_flow;

namespace {

constexpr char kSelectId[] = "Please select profile ID!!";
constexpr char kInputName[] = "Please input Profilename!";
constexpr char kInvalidMac[] = "Invalid MAC Address !";

class AddProfileGui : public ProfileFlowGui {};

TEST_F(AddProfileGui, ReadsTheSwitchAndOffersOnlyTheFreeProfileIds) {
    SimAgent a(1, "TVG5690"), b(2, "TVG5690");
    ASSERT_TRUE(a.ok() && b.ok()) << a.error() << b.error();
    CreateProfiles(a, "TVG5690", AclOwner::kAcl, {{AclType::kEthernet, "2"}, {AclType::kIPv4, "5"}, {AclType::kIPv6, "14"}});
    CreateProfiles(b, "TVG5690", AclOwner::kAcl, {{AclType::kEthernet, "1"}});
    const AclTarget ta{a.address(), "public", "private", "TVG5690"};
    const std::vector<int> expectedFree = FreeProfileIds(ReadProfiles(ta, AclOwner::kAcl), 14);
    Wizard({{a.address(), "TVG5690"}, {b.address(), "TVG5690"}}, 1, [&](WizardDriver& d) {
        ASSERT_EQ(3, d.ActiveIndex());
        EXPECT_EQ("Add profile", d.ActiveCaption());
        EXPECT_EQ("Add ACL profile", d.Text(IDC_STEP2_GROUP_ADD));
        EXPECT_EQ("Access profile list", d.Text(IDC_STEP2_GROUP_LIST));
        EXPECT_FALSE(IsWindowVisible(d.Control(IDC_STEP2_PROFILE_NAME))) << "hidden but on TVR4512";
        EXPECT_EQ(14u, IdItems(d).size()) << "TVG5690: 14 profile IDs";
        EXPECT_EQ(-1, SendMessageA(d.Control(IDC_STEP2_PROFILE_ID), CB_GETCURSEL, 0, 0)) << "nothing selected";
        EXPECT_EQ(a.address(), d.Text(IDC_STEP2_DEVICE));
        ASSERT_TRUE(d.WaitFor([&] { return d.RowCount(ProfileList(d)) == 3 && !Page().IsReaderRunning(1); }));
        EXPECT_EQ("2", d.CellText(ProfileList(d), 0, 0));
        EXPECT_EQ("Ethernet", d.CellText(ProfileList(d), 0, 1));
        EXPECT_EQ("IPv4", d.CellText(ProfileList(d), 1, 1));
        EXPECT_EQ("14", d.CellText(ProfileList(d), 2, 0));
        EXPECT_EQ(1u, Page().HiddenTables()[0].size());
        d.Screenshot("page-03-add-profile-read");
        // Part 5.2 edge case: opening the drop-down several times leaves exactly the free IDs.
        for (int i = 0; i < 3; ++i) OpenIdDropDown(d);
        std::vector<std::string> expected;
        for (int id : expectedFree) expected.push_back(std::to_string(id));
        EXPECT_EQ(expected, IdItems(d));
        EXPECT_EQ(11u, IdItems(d).size());
        // Column 0 sorts as numbers, toggling.
        d.ClickHeader(ProfileList(d), 0);
        d.ClickHeader(ProfileList(d), 0);
        EXPECT_EQ("14", d.CellText(ProfileList(d), 0, 0)) << "descending on the second click";
        // The second device: its own profiles.
        PickDevice(d, 1);
        ASSERT_TRUE(d.WaitFor([&] { return d.RowCount(ProfileList(d)) == 1 && !Page().IsReaderRunning(1); }));
        EXPECT_EQ("1", d.CellText(ProfileList(d), 0, 0));
    });
}

TEST_F(AddProfileGui, NextNeedsAProfileIdAndKeepsTheInput) {
    SimAgent a(3, "TVR4512");
    ASSERT_TRUE(a.ok()) << a.error();
    Wizard({{a.address(), "TVR4512"}}, 1, [&](WizardDriver& d) {
        ASSERT_EQ(3, d.ActiveIndex());
        EXPECT_TRUE(IsWindowVisible(d.Control(IDC_STEP2_PROFILE_NAME))) << "TVR4512 has profile names";
        EXPECT_EQ(6u, IdItems(d).size());
        d.Next();
        EXPECT_EQ(std::vector<std::string>{kInputName}, Texts(d.TakeMessages())) << "the name comes first";
        EXPECT_EQ(3, d.ActiveIndex());
        d.TypeText(IDC_STEP2_PROFILE_NAME, "web");
        d.Next();
        EXPECT_EQ(std::vector<std::string>{kSelectId}, Texts(d.TakeMessages()));
        EXPECT_EQ(3, d.ActiveIndex());
        EXPECT_EQ("web", d.Text(IDC_STEP2_PROFILE_NAME)) << "the page keeps its input";
        PickCombo(d, IDC_STEP2_PROFILE_ID, "4");
        d.Next();
        EXPECT_TRUE(d.TakeMessages().empty());
        ASSERT_EQ(7, d.ActiveIndex()) << "Ethernet is checked at start";
        EXPECT_EQ("4", m_wizard->m_strProfileID);
        EXPECT_EQ("web", m_wizard->m_strProfileName);
        EXPECT_EQ(2, m_wizard->m_nFrameOption) << "nothing shows at start: not \"UnTagged\"";
    });
}

TEST_F(AddProfileGui, CpuAclCaptionTitlesIdsAndRadios) {
    SimAgent a(4, "TVG5470");
    ASSERT_TRUE(a.ok()) << a.error();
    CreateProfiles(a, "TVG5470", AclOwner::kCpu, {{AclType::kEthernet, "3"}});
    Wizard({{a.address(), "TVG5470"}}, 2, [&](WizardDriver& d) {
        ASSERT_EQ(3, d.ActiveIndex());
        EXPECT_EQ("Add CPU profile", d.ActiveCaption());
        EXPECT_EQ("Add CPU ACL profile", d.Text(IDC_STEP2_GROUP_ADD));
        EXPECT_EQ("CPU Access profile list", d.Text(IDC_STEP2_GROUP_LIST));
        EXPECT_EQ(5u, IdItems(d).size());
        EXPECT_FALSE(IsWindowEnabled(d.Control(IDC_STEP2_IPV6))) << "TVG5470, CPU ACL: no IPv6";
        EXPECT_TRUE(IsWindowEnabled(d.Control(IDC_STEP2_PACKET)));
        ASSERT_TRUE(d.WaitFor([&] { return d.RowCount(ProfileList(d)) == 1 && !Page().IsReaderRunning(2); }));
        EXPECT_EQ("CPU ACL", d.CellText(ProfileList(d), 0, 2));
        OpenIdDropDown(d);
        EXPECT_EQ((std::vector<std::string>{"1", "2", "4", "5"}), IdItems(d));
        d.Screenshot("page-03-add-cpu-profile");
    });
}

TEST_F(AddProfileGui, FrameOptionFollowsTheListsAndTcpThenEthernetKeepsFive) {
    SimAgent a(5, "TVR4820");
    ASSERT_TRUE(a.ok()) << a.error();
    Wizard({{a.address(), "TVR4820"}}, 1, [&](WizardDriver& d) {
        ASSERT_EQ(3, d.ActiveIndex());
        EXPECT_TRUE(IsWindowVisible(d.Control(IDC_STEP2_FRAME)));
        EXPECT_FALSE(IsWindowVisible(d.Control(IDC_STEP2_PROTOCOL)));
        PickCombo(d, IDC_STEP2_FRAME, "UnTagged");
        PickCombo(d, IDC_STEP2_PROFILE_ID, "7");
        d.Next();
        ASSERT_EQ(7, d.ActiveIndex());
        EXPECT_EQ(1, m_wizard->m_nFrameOption);
        d.Back();
        ASSERT_EQ(3, d.ActiveIndex());
        d.ClickButton(IDC_STEP2_IPV4);
        EXPECT_TRUE(IsWindowVisible(d.Control(IDC_STEP2_PROTOCOL)));
        EXPECT_FALSE(IsWindowVisible(d.Control(IDC_STEP2_FRAME)));
        PickCombo(d, IDC_STEP2_PROTOCOL, "TCP");
        d.ClickButton(IDC_STEP2_ETHERNET);
        PickCombo(d, IDC_STEP2_PROFILE_ID, "7");
        d.Next();
        ASSERT_EQ(7, d.ActiveIndex());
        EXPECT_EQ(5, m_wizard->m_nFrameOption) << "Part 5.2 edge case: the protocol list still shows TCP";
        // ... so the Ethernet page leaves "VLAN" and "802.1P" as the untagged pass set them.
        EXPECT_FALSE(IsWindowEnabled(d.Control(IDC_ETH_VLAN)));
        EXPECT_FALSE(IsWindowEnabled(d.Control(IDC_ETH_8021P)));
        EXPECT_EQ("7", m_wizard->m_strProfileID);
    });
}

// The reader of a silent switch waits for its answer; leaving the page or closing the wizard
// must end it within 3000 ms (one request's time-out), never leaving a thread behind.
TEST_F(AddProfileGui, LeavingThePageOrClosingTheWizardStopsTheReader) {
    sim::Faults silent;
    silent.silent = true;
    SimAgent a(6, "TVR4820", silent);
    ASSERT_TRUE(a.ok()) << a.error();
    Wizard({{a.address(), "TVR4820"}}, 1, [&](WizardDriver& d) {
        ASSERT_EQ(3, d.ActiveIndex());
        ASSERT_TRUE(Page().IsReaderRunning(1));
        const auto start = std::chrono::steady_clock::now();
        d.Back();
        ASSERT_EQ(2, d.ActiveIndex());
        ASSERT_TRUE(d.WaitFor([&] { return !Page().IsReaderRunning(1); }, 5000));
        const auto ms =
            std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start).count();
        EXPECT_LE(ms, 3000 + 300) << "one request's time-out, plus scheduling";
        d.Next();
        ASSERT_EQ(3, d.ActiveIndex());
        ASSERT_TRUE(Page().IsReaderRunning(1)) << "a new reader on the next activation";
    });
    // The wizard was cancelled while the second reader waited: closing took at most 3000 ms.
    const auto start = std::chrono::steady_clock::now();
    Wizard({{a.address(), "TVR4820"}}, 1, [&](WizardDriver& d) {
        ASSERT_TRUE(Page().IsReaderRunning(1));
        d.PressButton(PSBTN_CANCEL);
        EXPECT_TRUE(d.WaitFor([&] { return !d.IsOpen(); }, 5000));
    });
    const auto ms =
        std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start).count();
    EXPECT_LE(ms, 3000 + 1500) << "open, cancel, and at most one time-out";
}

// Coming back to "Add profile" while the reader asked to stop on leaving is still busy: its rows
// are dropped and a fresh reader fills the lists once it ends, so the page shows every profile
// of the device (one reader per kind at a time).
TEST_F(AddProfileGui, ComingBackWhileTheOldReaderEndsStillListsEveryProfile) {
    sim::Faults slow;
    slow.delayMs = 150;
    SimAgent a(14, "TVR4820", slow);
    ASSERT_TRUE(a.ok()) << a.error();
    CreateProfiles(a, "TVR4820", AclOwner::kAcl, {{AclType::kEthernet, "1"}, {AclType::kIPv4, "2"}, {AclType::kIPv6, "3"}});
    Wizard({{a.address(), "TVR4820"}}, 1, [&](WizardDriver& d) {
        ASSERT_EQ(3, d.ActiveIndex());
        ASSERT_TRUE(Page().IsReaderRunning(1));
        d.Back();
        d.Next();
        ASSERT_EQ(3, d.ActiveIndex());
        ASSERT_TRUE(d.WaitFor([&] { return d.RowCount(ProfileList(d)) == 3 && !Page().IsReaderRunning(1); }, 30000))
            << d.RowCount(ProfileList(d)) << " rows";
        EXPECT_EQ("1", d.CellText(ProfileList(d), 0, 0));
        EXPECT_EQ("3", d.CellText(ProfileList(d), 2, 0));
    });
}

// A type chosen for an earlier ACL kind that this one does not offer gives way to Ethernet:
// TVR4820 has IPv6 profiles in its ordinary ACL only (Part 5.2's model table).
TEST_F(AddProfileGui, ATypeTheKindDoesNotOfferIsNotKeptChosen) {
    Wizard({{"127.0.0.1:46898", "TVR4820"}}, 1, [&](WizardDriver& d) {
        ASSERT_EQ(3, d.ActiveIndex());
        d.ClickButton(IDC_STEP2_IPV6);
        EXPECT_TRUE(d.IsChecked(IDC_STEP2_IPV6));
        d.Back();
        d.Back();
        ASSERT_EQ(acl::pages::kPageAclKind, d.ActiveIndex());
        d.ClickButton(IDC_STEP1_CPU_ACL);
        d.Next();
        d.ClickButton(IDC_SELECT_CHOICE1);  // "Create CPU Profile"
        d.Next();
        ASSERT_EQ(3, d.ActiveIndex());
        EXPECT_EQ(2, m_wizard->m_nACLKind);
        EXPECT_FALSE(IsWindowEnabled(d.Control(IDC_STEP2_IPV6)));
        EXPECT_FALSE(d.IsChecked(IDC_STEP2_IPV6));
        EXPECT_TRUE(d.IsChecked(IDC_STEP2_ETHERNET));
        EXPECT_TRUE(IsWindowVisible(d.Control(IDC_STEP2_FRAME))) << "the Ethernet frame list shows again";
        PickCombo(d, IDC_STEP2_PROFILE_ID, "2");
        d.Next();
        EXPECT_EQ(acl::pages::kPageEthProfile, d.ActiveIndex());
    });
}

// Part 5.2: clicking a profile shows its details from the hidden tables: red labels, black
// values on the window colour, "Enabled"/"Disabled", TCP flag names; TVR4512's name row.
TEST_F(AddProfileGui, ClickingAProfileShowsItsDetails) {
    SimAgent a(13, "TVR4512");
    ASSERT_TRUE(a.ok()) << a.error();
    CreateProfiles(a, "TVR4512", AclOwner::kAcl, {{AclType::kEthernet, "2"}, {AclType::kIPv4, "4"}});
    Wizard({{a.address(), "TVR4512"}}, 1, [&](WizardDriver& d) {
        ASSERT_EQ(3, d.ActiveIndex());
        HWND details = d.Control(IDC_STEP2_DETAILS);
        EXPECT_FALSE(IsWindowVisible(details)) << "hidden until a profile is clicked";
        ASSERT_TRUE(d.WaitFor([&] { return d.RowCount(ProfileList(d)) == 2 && !Page().IsReaderRunning(1); }));
        EXPECT_EQ("ACL Profile Details", d.HeaderText(details, 0));
        d.ClickCell(ProfileList(d), 0, 0);
        ASSERT_TRUE(IsWindowVisible(details));
        const std::vector<std::pair<std::string, std::string>> ethernet = {
            // Unset MAC masks were written as zero bytes and read back so.
            {"Profile ID", "2"}, {"Profile Type", "Ethernet"}, {"Owner Type", ""}, {"ProfileName", "p2"},
            {"VLAN", "Enabled"}, {"Source MAC", "000000000000"}, {"Destination MAC", "000000000000"}, {"802.1P", "Disabled"},
            {"Ethernet Type", "Disabled"}};
        ASSERT_EQ(static_cast<int>(ethernet.size()), d.RowCount(details));
        for (size_t i = 0; i < ethernet.size(); ++i) {
            EXPECT_EQ(ethernet[i].first, d.CellText(details, static_cast<int>(i), 0));
            EXPECT_EQ(ethernet[i].second, d.CellText(details, static_cast<int>(i), 1)) << ethernet[i].first;
        }
        COLORREF text = 0, back = 0;
        auto* list = controls::CXListCtrl::FromHandle(details);
        ASSERT_NE(nullptr, list);
        ASSERT_TRUE(list->GetCellColors(0, 0, &text, &back));
        EXPECT_EQ(RGB(255, 0, 0), text) << "labels in red";
        ASSERT_TRUE(list->GetCellColors(0, 1, &text, &back));
        EXPECT_EQ(RGB(0, 0, 0), text) << "values in black";
        EXPECT_EQ(GetSysColor(COLOR_WINDOW), back) << "on the window colour";
        d.Screenshot("page-03-add-profile-details");
        // The IPv4 profile: TCP (protocol group 5) rows.
        d.ClickCell(ProfileList(d), 1, 0);
        ASSERT_GE(d.RowCount(details), 5);
        EXPECT_EQ("IPv4", d.CellText(details, 1, 1));
        EXPECT_EQ("VLAN", d.CellText(details, 4, 0));
        EXPECT_EQ("Destination IP", d.CellText(details, 5, 0));
        EXPECT_EQ("TCP FLAGBITmask", d.CellText(details, 15, 0));
        EXPECT_EQ("ProtoIDOption", d.CellText(details, d.RowCount(details) - 1, 0));
    });
}

// Left to the implementer: a model without ACL function ("TVG-5140") offers nothing to create
// and starts no reader.
TEST_F(AddProfileGui, AModelWithoutAclFunctionOffersNothing) {
    Wizard({{"127.0.0.1:46899", "TVG-5140"}}, 1, [&](WizardDriver& d) {
        ASSERT_EQ(3, d.ActiveIndex());
        EXPECT_TRUE(IdItems(d).empty());
        EXPECT_FALSE(Page().IsReaderRunning(1));
        for (int id : {IDC_STEP2_ETHERNET, IDC_STEP2_IPV4, IDC_STEP2_IPV6, IDC_STEP2_PACKET})
            EXPECT_FALSE(IsWindowEnabled(d.Control(id))) << id;
        d.Next();
        EXPECT_EQ(std::vector<std::string>{kSelectId}, Texts(d.TakeMessages()));
        EXPECT_EQ(3, d.ActiveIndex());
    });
}

// --- the Ethernet definition page `CACLSTEP_ETH` (Part 5.2) -----------------------------------

TEST_F(AddProfileGui, EthernetPagePendingRowsMacRuleAndStagingFile) {
    SimAgent a(7, "TVR4820");
    ASSERT_TRUE(a.ok()) << a.error();
    Wizard({{a.address(), "TVR4820"}}, 1, [&](WizardDriver& d) {
        ASSERT_EQ(3, d.ActiveIndex());
        PickCombo(d, IDC_STEP2_FRAME, "UnTagged");
        PickCombo(d, IDC_STEP2_PROFILE_ID, "3");
        d.Next();
        ASSERT_EQ(7, d.ActiveIndex());
        HWND list = d.Control(IDC_ETH_LIST);
        EXPECT_EQ("ProfileID", d.HeaderText(list, 0));
        EXPECT_EQ("EthernetType", d.HeaderText(list, 6));
        EXPECT_FALSE(IsWindowEnabled(d.Control(IDC_ETH_VLAN))) << "untagged";
        EXPECT_FALSE(IsWindowEnabled(d.Control(IDC_ETH_8021P)));
        EXPECT_FALSE(IsWindowEnabled(d.Control(IDC_ETH_SRC_MAC))) << "enabled by its check box";
        d.ClickButton(IDC_ETH_SRC_MAC_CHECK);
        EXPECT_TRUE(IsWindowEnabled(d.Control(IDC_ETH_SRC_MAC)));
        d.TypeText(IDC_ETH_SRC_MAC, "00112233445566");
        EXPECT_EQ("001122334455", d.Text(IDC_ETH_SRC_MAC)) << "limited to 12 characters";
        // Part 5.2 edge case: dashes between the byte pairs are refused; the input stays.
        SetWindowTextA(d.Control(IDC_ETH_SRC_MAC), "00-11-22-33-44-55");
        d.ClickButton(IDC_ETH_ADD);
        EXPECT_EQ(std::vector<std::string>{kInvalidMac}, Texts(d.TakeMessages()));
        EXPECT_EQ(0, d.RowCount(list));
        EXPECT_EQ("00-11-22-33-44-55", d.Text(IDC_ETH_SRC_MAC));
        // Twelve lower-case digits with blanks around them are accepted, kept as typed (the
        // 12-character limit stops typing them, so they come in as a program sets them).
        SetWindowTextA(d.Control(IDC_ETH_SRC_MAC), " 0011aabbccdd ");
        d.ClickButton(IDC_ETH_ETHERNET_TYPE);
        d.ClickButton(IDC_ETH_ADD);
        EXPECT_TRUE(d.TakeMessages().empty());
        ASSERT_EQ(1, d.RowCount(list));
        EXPECT_EQ("3", d.CellText(list, 0, 0));
        EXPECT_EQ("2", d.CellText(list, 0, 1)) << "VLAN not checked";
        EXPECT_EQ("3", d.CellText(list, 0, 2)) << "source only";
        EXPECT_EQ(" 0011aabbccdd ", d.CellText(list, 0, 3));
        EXPECT_EQ("1", d.CellText(list, 0, 6));
        EXPECT_EQ("4", d.CellText(list, 0, 7));
        // Part 5.2 edge case: a second row with the same profile ID is ignored, silently.
        d.ClickButton(IDC_ETH_ADD);
        EXPECT_TRUE(d.TakeMessages().empty());
        EXPECT_EQ(1, d.RowCount(list));
        // Back to "Add profile", another ID, tagged: the list survives Back and Next.
        d.Back();
        ASSERT_EQ(3, d.ActiveIndex());
        PickCombo(d, IDC_STEP2_FRAME, "Tagged");
        PickCombo(d, IDC_STEP2_PROFILE_ID, "9");
        d.Next();
        ASSERT_EQ(7, d.ActiveIndex());
        ASSERT_EQ(1, d.RowCount(list)) << "pending rows survive Back and Next";
        EXPECT_TRUE(IsWindowEnabled(d.Control(IDC_ETH_VLAN))) << "tagged";
        EXPECT_FALSE(d.IsChecked(IDC_ETH_SRC_MAC_CHECK)) << "the masks are cleared on activation";
        d.ClickButton(IDC_ETH_VLAN);
        d.ClickButton(IDC_ETH_8021P);
        d.ClickButton(IDC_ETH_DST_MAC_CHECK);
        d.TypeText(IDC_ETH_DST_MAC, "FFFFFF000000");
        d.ClickButton(IDC_ETH_ADD);
        ASSERT_EQ(2, d.RowCount(list));
        EXPECT_EQ("9", d.CellText(list, 1, 0));
        EXPECT_EQ("2", d.CellText(list, 1, 2)) << "destination only";
        // Clicking the first row loads it back into the check boxes and the MAC edits.
        d.ClickCell(list, 0, 0);
        EXPECT_TRUE(d.IsChecked(IDC_ETH_SRC_MAC_CHECK));
        EXPECT_FALSE(d.IsChecked(IDC_ETH_DST_MAC_CHECK));
        EXPECT_FALSE(d.IsChecked(IDC_ETH_VLAN));
        EXPECT_EQ(" 0011aabbccdd ", d.Text(IDC_ETH_SRC_MAC));
        d.Screenshot("page-07-ethernet-pending");
        // Delete removes the selected row.
        d.ClickButton(IDC_ETH_DELETE);
        ASSERT_EQ(1, d.RowCount(list));
        EXPECT_EQ("9", d.CellText(list, 0, 0));
        // Next writes the staging file and goes on to the confirmation page.
        d.Next();
        ASSERT_EQ(10, d.ActiveIndex());
        EXPECT_EQ(1, m_wizard->m_nProfileType);
        const AclRecordList staged = ReadStagingFile(kStagingEthernet, 10, 80);
        ASSERT_EQ(1u, staged.size());
        EXPECT_EQ("9", staged[0][0]);
        EXPECT_EQ("FFFFFF000000", staged[0][4]);
    });
    EXPECT_EQ(0u, ReadStagingFile(kStagingEthernet, 10, 80).size()) << "Cancel on the confirmation page deleted it";
}

// --- the confirmation page `CACLApply` (Part 5.4) ---------------------------------------------

// From "Add profile" through the Ethernet page to the confirmation page with one pending row.
void AddOneEthernetProfile(WizardDriver& d, const std::string& id) {
    PickComboOf(d, IDC_STEP2_PROFILE_ID, id);
    d.Next();
    ASSERT_EQ(7, d.ActiveIndex());
    d.ClickButton(IDC_ETH_DST_MAC_CHECK);
    d.TypeText(IDC_ETH_DST_MAC, "FFFFFFFFFFFF");
    d.ClickButton(IDC_ETH_ADD);
    ASSERT_EQ(1, d.RowCount(d.Control(IDC_ETH_LIST)));
    d.Next();
    ASSERT_EQ(10, d.ActiveIndex());
}

bool HasProfile(SimAgent& agent, const std::string& model, AclOwner owner, const std::string& id) {
    const AclReadResult read = ReadProfiles(AclTarget{agent.address(), "public", "private", model}, owner);
    for (const AclRecord& r : read.records[static_cast<size_t>(AclType::kEthernet)])
        if (!r.empty() && r[0] == id) return true;
    return false;
}

TEST_F(AddProfileGui, ApplyFirstSwitchSilentSecondSucceedsThenListsAreEmpty) {
    sim::Faults silent;
    silent.silent = true;
    sim::Faults dropClosing;
    dropClosing.dropSets = {2};  // the record is answered, the closing request is not
    SimAgent a(8, "TVR4820", silent), b(9, "TVR4820"), c(12, "TVR4820", dropClosing);
    ASSERT_TRUE(a.ok() && b.ok() && c.ok()) << a.error() << b.error() << c.error();
    _putenv_s("LOCALAPPDATA", m_folder.c_str());  // where the wizard keeps its audit log
    Wizard({{a.address(), "TVR4820"}, {b.address(), "TVR4820"}, {c.address(), "TVR4820"}}, 1, [&](WizardDriver& d) {
        ASSERT_EQ(3, d.ActiveIndex());
        AddOneEthernetProfile(d, "6");
        EXPECT_EQ("Confirmation Page", d.ActiveCaption());
        HWND switches = d.Control(IDC_APPLY_SWITCH_LIST);
        HWND profiles = d.Control(IDC_APPLY_PROFILE_LIST);
        ASSERT_EQ(3, d.RowCount(switches));
        EXPECT_EQ(b.address(), d.CellText(switches, 1, 0));
        EXPECT_EQ("TVR4820", d.CellText(switches, 1, 1));
        EXPECT_EQ("Status ", d.HeaderText(switches, 2));
        ASSERT_EQ(1, d.RowCount(profiles));
        EXPECT_EQ("6", d.CellText(profiles, 0, 0));
        EXPECT_EQ("Ethernet", d.CellText(profiles, 0, 1));
        EXPECT_FALSE(IsWindowVisible(d.Control(IDC_APPLY_PROGRESS))) << "hidden except during an apply";
        EXPECT_FALSE(IsWindowVisible(d.Control(IDC_APPLY_ETH_RULE))) << "the rule radios stay hidden";
        // Clicking the pending profile shows its fields.
        HWND details = d.Control(IDC_APPLY_DETAILS);
        EXPECT_FALSE(IsWindowVisible(details));
        d.ClickCell(profiles, 0, 0);
        EXPECT_TRUE(IsWindowVisible(details));
        EXPECT_EQ("ACL Profile Details  ", d.HeaderText(details, 0));
        ASSERT_EQ(7, d.RowCount(details));
        EXPECT_EQ("DstMacAddrMask", d.CellText(details, 4, 0));
        EXPECT_EQ("FFFFFFFFFFFF", d.CellText(details, 4, 1));
        d.ClickButton(IDC_APPLY_APPLY);
        ASSERT_TRUE(d.WaitFor([&] { return !d.CellText(switches, 2, 2).empty(); }, 20000));
        // Part 5.4's table: the silent switch's record got no answer, so its sequence cleared
        // the flag and no closing request went out: "Fail"; "fail" is the closing request
        // that got no answer (third switch).
        EXPECT_EQ("Fail", d.CellText(switches, 0, 2)) << "silent: the record failed";
        EXPECT_EQ("Succeed", d.CellText(switches, 1, 2)) << "the second is still configured";
        EXPECT_EQ("fail", d.CellText(switches, 2, 2)) << "no answer to the closing request";
        EXPECT_FALSE(IsWindowVisible(d.Control(IDC_APPLY_PROGRESS)));
        EXPECT_EQ(100, SendMessageA(d.Control(IDC_APPLY_PROGRESS), PBM_GETPOS, 0, 0));
        d.Screenshot("page-10-confirmation-applied");
        EXPECT_EQ(0u, ReadStagingFile(kStagingEthernet, 10, 80).size()) << "deleted after the apply";
        EXPECT_EQ(1, m_wizard->m_bProfilesApplied);
        // Part 5.4 edge case: Back to the definition page shows an empty pending list, and the
        // confirmation page entered again lists nothing.
        d.Back();
        ASSERT_EQ(7, d.ActiveIndex());
        EXPECT_EQ(0, d.RowCount(d.Control(IDC_ETH_LIST)));
        d.Next();
        ASSERT_EQ(10, d.ActiveIndex());
        EXPECT_EQ(0, d.RowCount(d.Control(IDC_APPLY_PROFILE_LIST)));
        // "Create Rules" goes to "Add Rules:Select Profile".
        d.ClickButton(IDC_APPLY_CREATE_RULES);
        EXPECT_EQ(5, d.ActiveIndex());
    });
    EXPECT_TRUE(HasProfile(b, "TVR4820", AclOwner::kAcl, "6")) << "read back from the second switch";
    // The apply's audit lines: per switch its record's OIDs and each outcome; no community.
    const std::string audit = sentrel_test::ReadTextFile(m_folder + "\\Sentrel\\audit.jsonl");
    const std::string profileRow = "\"oid\":\"1.3.6.1.4.1.32473.12.9.2.1.1.";
    for (const auto& [agent, results] : {std::pair{&a, "no answer"}, std::pair{&b, "ok ok"}, std::pair{&c, "ok no answer"}}) {
        std::string seen;
        size_t requests = 0;
        for (size_t at = audit.find(agent->address() + "\""); at != std::string::npos;
             at = audit.find(agent->address() + "\"", at + 1)) {
            const std::string line = audit.substr(at, audit.find('\n', at) - at);
            requests += line.find(profileRow) != std::string::npos;
            if (size_t r = line.find("\"result\":\""); r != std::string::npos)
                seen += (seen.empty() ? "" : " ") + line.substr(r + 10, line.find('"', r + 10) - r - 10);
        }
        EXPECT_EQ(1u, requests) << agent->address() << "\n" << audit;
        EXPECT_EQ(results, seen) << agent->address() << "\n" << audit;
    }
    EXPECT_EQ(std::string::npos, audit.find("public"));
    EXPECT_EQ(std::string::npos, audit.find("private"));
}

// Part 5.4 edge case for the CPU ACL (first switch silent, the next still configured, reading
// "Success"), and a switch refusing the record: "Fail" and no closing request.
TEST_F(AddProfileGui, CpuApplyWordsSuccessAndFailWithoutClosingRequest) {
    sim::Faults refuse;
    refuse.refuseSets = {1};
    sim::Faults silent;
    silent.silent = true;
    SimAgent s(15, "TVG5690", silent), a(10, "TVG5690"), b(11, "TVG5690", refuse);
    ASSERT_TRUE(s.ok() && a.ok() && b.ok()) << s.error() << a.error() << b.error();
    Wizard({{s.address(), "TVG5690"}, {a.address(), "TVG5690"}, {b.address(), "TVG5690"}}, 2, [&](WizardDriver& d) {
        ASSERT_EQ(3, d.ActiveIndex());
        AddOneEthernetProfile(d, "2");
        HWND switches = d.Control(IDC_APPLY_SWITCH_LIST);
        EXPECT_EQ("CPU ACL", d.CellText(d.Control(IDC_APPLY_PROFILE_LIST), 0, 2));
        d.ClickButton(IDC_APPLY_APPLY);
        ASSERT_TRUE(d.WaitFor([&] { return !d.CellText(switches, 2, 2).empty(); }, 20000));
        EXPECT_EQ("Fail", d.CellText(switches, 0, 2)) << "silent: the record failed";
        EXPECT_EQ("Success", d.CellText(switches, 1, 2)) << "CPU-ACL profiles";
        EXPECT_EQ("Fail", d.CellText(switches, 2, 2)) << "the switch refused the record";
        // "Configure Next Device" returns to page 0.
        d.ClickButton(IDC_APPLY_NEXT_DEVICE);
        EXPECT_EQ(0, d.ActiveIndex());
    });
    EXPECT_TRUE(HasProfile(a, "TVG5690", AclOwner::kCpu, "2"));
    EXPECT_EQ(1u, b.sets().size()) << "the refusing switch gets no closing request";
}

}  // namespace
