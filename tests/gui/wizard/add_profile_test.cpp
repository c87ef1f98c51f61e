// "Add profile" against simulated switches: the profiles the reader lists, the free profile
// IDs, the details of a clicked profile, what Next asks for, the page by model and ACL kind,
// and the reader ending when the page is left or the wizard closes.
#include <chrono>

#include "controls/xlist_ctrl.h"
#include "tests/gui/wizard/profile_flow.h"

using namespace profile_flow;

namespace {

class AddProfileGui : public ProfileFlowGui {};

TEST_F(AddProfileGui, ListsTheSwitchsProfilesOffersTheFreeIdsAndAsksForWhatIsMissing) {
    SimAgent a(1, "TVR4512"), b(2, "TVR4512");
    ASSERT_TRUE(a.ok() && b.ok()) << a.error() << b.error();
    CreateProfiles(a, "TVR4512", AclOwner::kAcl, {{AclType::kEthernet, "2"}, {AclType::kIPv4, "4"}});
    CreateProfiles(b, "TVR4512", AclOwner::kAcl, {{AclType::kEthernet, "1"}});
    Wizard({{a.address(), "TVR4512"}, {b.address(), "TVR4512"}}, 1, [&](WizardDriver& d) {
        HWND profiles = d.Control(IDC_STEP2_PROFILE_LIST), details = d.Control(IDC_STEP2_DETAILS);
        EXPECT_EQ("Add profile", d.ActiveCaption());
        EXPECT_EQ((Strings{a.address(), b.address()}), d.ComboItems(IDC_STEP2_DEVICE));
        EXPECT_EQ(6u, d.ComboItems(IDC_STEP2_PROFILE_ID).size()) << "TVR4512: 6 profile IDs";
        ASSERT_TRUE(ListedAfterReading(d, 2));
        EXPECT_EQ((Strings{"Ethernet", "IPv4"}), Column(d, profiles, 1));
        // Opening the drop-down, also several times, leaves exactly the IDs not in use.
        for (int i = 0; i < 3; ++i) d.OpenDropDown(IDC_STEP2_PROFILE_ID);
        EXPECT_EQ((Strings{"1", "3", "5", "6"}), d.ComboItems(IDC_STEP2_PROFILE_ID));
        d.ClickHeader(profiles, 0);
        d.ClickHeader(profiles, 0);
        EXPECT_EQ((Strings{"4", "2"}), Column(d, profiles, 0)) << "numbers, descending on the second click";
        // A clicked profile's details: red labels, black values on the window colour.
        EXPECT_FALSE(d.IsVisible(IDC_STEP2_DETAILS));
        d.ClickCell(profiles, 1, 0);
        ASSERT_TRUE(IsWindowVisible(details));
        Strings labels = Column(d, details, 0), values = Column(d, details, 1);
        labels.resize(5);
        values.resize(5);
        EXPECT_EQ((Strings{"Profile ID", "Profile Type", "Owner Type", "ProfileName", "VLAN"}), labels);
        EXPECT_EQ((Strings{"2", "Ethernet", "", "p2", "Enabled"}), values);
        COLORREF text = 0, back = 0;
        auto* list = controls::CXListCtrl::FromHandle(details);
        ASSERT_TRUE(list && list->GetCellColors(0, 0, &text, &back));
        EXPECT_EQ(RGB(255, 0, 0), text);
        ASSERT_TRUE(list->GetCellColors(0, 1, &text, &back));
        EXPECT_EQ(RGB(0, 0, 0), text);
        EXPECT_EQ(GetSysColor(COLOR_WINDOW), back);
        d.Screenshot("page-03-add-profile-details");
        // The second device shows its own profiles.
        ASSERT_TRUE(d.PickCombo(IDC_STEP2_DEVICE, b.address()));
        ASSERT_TRUE(ListedAfterReading(d, 1));
        // Next wants the profile name first (this model names its profiles), then an ID, and
        // keeps what was typed.
        d.Next();
        EXPECT_EQ((Strings{"Please input Profilename!"}), d.TakeTexts());
        d.TypeText(IDC_STEP2_PROFILE_NAME, "web");
        d.Next();
        EXPECT_EQ((Strings{"Please select profile ID!!"}), d.TakeTexts());
        EXPECT_EQ("web", d.Text(IDC_STEP2_PROFILE_NAME));
        ASSERT_TRUE(d.PickCombo(IDC_STEP2_PROFILE_ID, "3"));
        d.Next();
        ASSERT_EQ(acl::pages::kPageEthProfile, d.ActiveIndex()) << "Ethernet is chosen at start";
        EXPECT_EQ("3", m_wizard->m_strProfileID);
        EXPECT_EQ("web", m_wizard->m_strProfileName);
        EXPECT_EQ(2, m_wizard->m_nFrameOption) << "the frame list shows nothing at start: not \"UnTagged\"";
    });
}

// The page by model and ACL kind: its caption, titles and profile IDs (the types it offers:
// the profile matrix, for every model and kind).
TEST_F(AddProfileGui, CaptionAndIdsFollowTheModelAndTheAclKind) {
    const struct {
        const char* model;
        long kind;
        const char* caption;
        const char* group;
        size_t ids;
    } cases[] = {{"TVG5470", 2, "Add CPU profile", "Add CPU ACL profile", 5},
                 {"TVG5470", 1, "Add profile", "Add ACL profile", 6},
                 {"TVG-5140", 1, "Add profile", "Add ACL profile", 0}};  // no ACL function
    for (const auto& c : cases) {
        Wizard({{"127.0.0.1:46899", c.model}}, c.kind, [&](WizardDriver& d) {
            EXPECT_EQ(c.caption, d.ActiveCaption()) << c.model;
            EXPECT_TRUE(d.WaitFor([&] { return d.Title() == c.caption; }, 3000)) << d.Title();
            EXPECT_EQ(c.group, d.Text(IDC_STEP2_GROUP_ADD));
            EXPECT_EQ(c.ids, d.ComboItems(IDC_STEP2_PROFILE_ID).size());
            if (c.ids == 0) {
                EXPECT_FALSE(ReaderRunning()) << "a model without ACL tables starts no reader";
            }
            EXPECT_FALSE(d.IsVisible(IDC_STEP2_PROFILE_NAME));
        });
    }
}

// With "TCP" picked for IPv4 and then Ethernet chosen, the protocol list still decides the
// frame option (5), so the Ethernet page leaves VLAN and 802.1P as the untagged pass set them;
// a type the next ACL kind does not offer gives way to Ethernet.
TEST_F(AddProfileGui, FrameOptionAndATypeTheKindDoesNotOffer) {
    Wizard({{"127.0.0.1:46899", "TVR4820"}}, 1, [&](WizardDriver& d) {
        ASSERT_TRUE(d.PickCombo(IDC_STEP2_FRAME, "UnTagged"));
        ASSERT_TRUE(d.PickCombo(IDC_STEP2_PROFILE_ID, "7"));
        d.Next();
        EXPECT_EQ(1, m_wizard->m_nFrameOption);
        EXPECT_FALSE(d.IsEnabled(IDC_ETH_VLAN));
        d.Back();
        d.ClickButton(IDC_STEP2_IPV4);
        EXPECT_FALSE(d.IsVisible(IDC_STEP2_FRAME));
        ASSERT_TRUE(d.PickCombo(IDC_STEP2_PROTOCOL, "TCP"));
        d.ClickButton(IDC_STEP2_ETHERNET);
        d.Next();
        EXPECT_EQ(5, m_wizard->m_nFrameOption);
        EXPECT_FALSE(d.IsEnabled(IDC_ETH_VLAN));
        EXPECT_FALSE(d.IsEnabled(IDC_ETH_8021P));
        d.Back();
        d.ClickButton(IDC_STEP2_IPV6);
        PostMessageA(d.Sheet(), PSM_SETCURSEL, acl::pages::kPageAclKind, 0);  // as "Configure Next Device" does
        d.Settle();
        ASSERT_EQ(acl::pages::kPageAclKind, d.ActiveIndex());
        d.ClickButton(IDC_STEP1_CPU_ACL);
        d.Next();
        d.ClickButton(IDC_SELECT_CHOICE1);
        d.Next();
        ASSERT_EQ(acl::pages::kPageAddProfile, d.ActiveIndex());
        EXPECT_FALSE(d.IsEnabled(IDC_STEP2_IPV6)) << "TVR4820's CPU ACL has no IPv6 profiles";
        EXPECT_FALSE(d.IsChecked(IDC_STEP2_IPV6));
        EXPECT_TRUE(d.IsChecked(IDC_STEP2_ETHERNET));
        EXPECT_TRUE(d.IsVisible(IDC_STEP2_FRAME));
    });
}

// Leaving the page stops its reader at the switch's next answer (a slow switch with many rows
// to read) or its time-out (a silent one): within 3 s either way, and a new reader starts when
// the page shows again. Closing the wizard does the same.
TEST_F(AddProfileGui, LeavingThePageOrClosingTheWizardStopsTheReader) {
    sim::Faults silent, slow;
    silent.silent = true;
    slow.delayMs = 100;
    SimAgent quiet(3, "TVR4820", silent), busy(4, "TVR4820", slow);
    ASSERT_TRUE(quiet.ok() && busy.ok()) << quiet.error() << busy.error();
    std::vector<std::pair<AclType, std::string>> many;
    for (int id = 1; id <= 10; ++id) many.push_back({AclType::kEthernet, std::to_string(id)});
    CreateProfiles(busy, "TVR4820", AclOwner::kAcl, many);
    for (SimAgent* agent : {&quiet, &busy}) {
        Wizard({{agent->address(), "TVR4820"}}, 1, [&](WizardDriver& d) {
            Sleep(300);
            ASSERT_TRUE(ReaderRunning()) << agent->address();
            auto start = std::chrono::steady_clock::now();
            d.Back();
            ASSERT_TRUE(d.WaitFor([&] { return !ReaderRunning(); }, 5000));
            EXPECT_LE(MsSince(start), 3000 + 300) << agent->address() << ": left";
            d.Next();
            ASSERT_TRUE(ReaderRunning()) << "a new reader on the next activation";
            Sleep(300);
            start = std::chrono::steady_clock::now();
            d.PressButton(PSBTN_CANCEL);
            EXPECT_TRUE(d.WaitFor([&] { return !d.IsOpen(); }, 5000));
            EXPECT_LE(MsSince(start), 3000 + 500) << agent->address() << ": closed";
        });
    }
}

// Back and Next again while the stopped reader still waits for its answer: its rows are dropped
// and a fresh reader lists every profile once it has ended.
TEST_F(AddProfileGui, ComingBackWhileTheOldReaderEndsStillListsEveryProfile) {
    sim::Faults slow;
    slow.delayMs = 150;
    SimAgent a(5, "TVR4820", slow);
    ASSERT_TRUE(a.ok()) << a.error();
    CreateProfiles(a, "TVR4820", AclOwner::kAcl, {{AclType::kEthernet, "1"}, {AclType::kIPv4, "2"}, {AclType::kIPv6, "3"}});
    Wizard({{a.address(), "TVR4820"}}, 1, [&](WizardDriver& d) {
        ASSERT_TRUE(ReaderRunning());
        d.Back();
        d.Next();
        ASSERT_TRUE(ListedAfterReading(d, 3, 30000)) << d.RowCount(d.Control(IDC_STEP2_PROFILE_LIST)) << " rows";
        EXPECT_EQ((Strings{"1", "2", "3"}), Column(d, d.Control(IDC_STEP2_PROFILE_LIST), 0));
    });
}

}  // namespace
