// "Modify Profile" and "Modify Rule" used like a person: the real wizard opened on the page,
// against simulated switches seeded with profiles and rules; the lists are checked against
// what was put on the switch, deletions against the switch's store and its SET log.
#include <atomic>
#include <chrono>
#include <cstdio>
#include <mutex>
#include <set>
#include <tuple>

#include "acl/wizard/switch_reader.h"
#include "shell/com_module.h"
#include "tests/gui/wizard/profile_flow.h"

using namespace profile_flow;
using acl::wizard::SwitchReader;
using Clock = std::chrono::steady_clock;

namespace {

constexpr AclType kTypes[] = {AclType::kEthernet, AclType::kIPv4, AclType::kIPv6, AclType::kPacketContent};

// One rule per Access ID in `accessIds` for the profile, through the ACL core's writer.
void CreateRules(SimAgent& agent, const std::string& model, AclOwner owner, AclType type,
                 const std::string& profileId, const std::vector<std::string>& accessIds) {
    const ModelEntry& m = *LookupModel(model);
    const AclTarget target{agent.address(), "public", "private", model};
    auto table = TableLayout(m, owner, AclKind::kRules, type);
    ASSERT_TRUE(table.has_value());
    for (const std::string& accessId : accessIds) {
        RuleFields f;
        f.profileId = profileId;
        f.accessId = accessId;
        f.ports = "1-2";
        ASSERT_TRUE(SetRecord(target, *table, BuildRule(type, owner, m, f))) << profileId << "." << accessId;
    }
}

// Whether any instance of the table's row `profileId[.accessId]` is still on the switch.
bool RowOnSwitch(SimAgent& agent, const std::string& model, AclOwner owner, AclKind kind, AclType type,
                 const std::string& index) {
    const std::string oid = RowStatusColumnOid(*LookupModel(model), owner, kind, type) + "." + index;
    for (const auto& [instance, value] : agent.store())
        if (snmp::FormatOid(instance) == oid) return true;
    return false;
}

std::set<std::string> Rows(WizardDriver& d, HWND list) {
    std::set<std::string> out;
    for (int r = 0; r < d.RowCount(list); ++r)
        out.insert(d.CellText(list, r, 0) + "/" + d.CellText(list, r, 1) + "/" + d.CellText(list, r, 2));
    return out;
}

// The SETs of the log, each at least 100 ms after the one before.
void ExpectPausedSets(const std::vector<sim::SetEvent>& sets, size_t count) {
    ASSERT_EQ(count, sets.size());
    for (size_t i = 1; i < sets.size(); ++i)
        EXPECT_GE(std::chrono::duration_cast<std::chrono::milliseconds>(sets[i].time - sets[i - 1].time).count(), 100)
            << "SET " << i + 1;
}

class ModifyGui : public ProfileFlowGui {
protected:
    static HWND Profiles(WizardDriver& d) { return d.Control(IDC_MODIFY_PROFILE_LIST); }
    static HWND RuleList(WizardDriver& d) { return d.Control(IDC_MODIFY_RULE_LIST); }
    static bool Shown(WizardDriver& d, int id) { return IsWindowVisible(d.Control(id)) != FALSE; }
    acl::wizard::CACLModifyPage& Modify(int page) {
        if (page == acl::pages::kPageModifyRule) return m_wizard->ModifyRulePage();
        return m_wizard->ModifyProfilePage();
    }
    // Waits until the page's readers are done and the list holds `rows` rows.
    bool Loaded(WizardDriver& d, int page, HWND list, int rows) {
        return d.WaitFor([&] {
            return !Modify(page).IsProfileReaderRunning() && !Modify(page).IsRuleReaderRunning() &&
                   d.RowCount(list) == rows;
        });
    }
};

// Every type the model offers for the kind, one profile each with rules, on each packet
// layout: the profile list, a clicked profile's details and its rules are what the switch holds.
TEST_F(ModifyGui, ListsShowTheProfilesAndRulesOnTheSwitch) {
    const std::tuple<const char*, long, int> cases[] = {
        {"TVG5690", 1, 1},  // chunk layout
        {"TVR4820", 1, 2},  // 16-byte blocks
        {"TVR4060", 1, 3},  // offset items
        {"TVG5470", 2, 4},  // the CPU ACL
    };
    for (const auto& [model, kind, host] : cases) {
        SCOPED_TRACE(model);
        SimAgent a(host, model);
        ASSERT_TRUE(a.ok()) << a.error();
        const AclOwner owner = kind == 1 ? AclOwner::kAcl : AclOwner::kCpu;
        const ModelEntry& m = *LookupModel(model);
        std::set<std::string> expected;
        std::vector<std::pair<AclType, std::string>> profiles;
        for (AclType type : kTypes) {
            if (!TableLayout(m, owner, AclKind::kProfiles, type) || !TableLayout(m, owner, AclKind::kRules, type)) continue;
            const std::string id = std::to_string(profiles.size() + 1);
            profiles.emplace_back(type, id);
            expected.insert(id + "/" + TypeWord(type) + "/" + OwnerWord(owner));
        }
        ASSERT_GE(profiles.size(), 3u);
        CreateProfiles(a, model, owner, profiles);
        for (const auto& [type, id] : profiles) CreateRules(a, model, owner, type, id, {"3", "7"});
        Wizard({{a.address(), model}}, kind, [&](WizardDriver& d) {
            ASSERT_EQ(acl::pages::kPageModifyRule, d.ActiveIndex());
            const std::string caption = kind == 1 ? "Modify rule" : "Modify CPU rule";
            EXPECT_EQ(caption, d.ActiveCaption());
            EXPECT_TRUE(d.WaitFor([&] { return d.Title() == caption; }, 3000)) << d.Title();
            EXPECT_EQ("Access Profile List", d.Text(IDC_MODIFY_GROUP));
            EXPECT_EQ("Rule", d.Text(IDC_MODIFY_RULE_GROUP));
            EXPECT_EQ("ACL Rule Details", d.HeaderText(d.Control(IDC_MODIFY_RULE_DETAILS), 0));
            EXPECT_EQ(a.address(), d.Text(IDC_MODIFY_DEVICE));
            ASSERT_TRUE(Loaded(d, acl::pages::kPageModifyRule, Profiles(d), static_cast<int>(profiles.size())));
            EXPECT_EQ(expected, Rows(d, Profiles(d)));
            EXPECT_FALSE(Shown(d, IDC_MODIFY_DETAILS)) << "hidden until a profile is clicked";
            for (int r = 0; r < d.RowCount(Profiles(d)); ++r) {
                const std::string id = d.CellText(Profiles(d), r, 0);
                d.ClickCell(Profiles(d), r, 0);
                ASSERT_TRUE(Loaded(d, acl::pages::kPageModifyRule, RuleList(d), 2)) << "profile " << id;
                EXPECT_EQ((std::set<std::string>{id + "/3/" + OwnerWord(owner), id + "/7/" + OwnerWord(owner)}),
                          Rows(d, RuleList(d)));
                EXPECT_TRUE(Shown(d, IDC_MODIFY_DETAILS));
                EXPECT_EQ(id, d.CellText(d.Control(IDC_MODIFY_DETAILS), 0, 1)) << "Profile ID";
                EXPECT_EQ(d.CellText(Profiles(d), r, 1), d.CellText(d.Control(IDC_MODIFY_DETAILS), 1, 1));
                d.ClickCell(RuleList(d), 1, 0);
                HWND details = d.Control(IDC_MODIFY_RULE_DETAILS);
                ASSERT_TRUE(Shown(d, IDC_MODIFY_RULE_DETAILS));
                EXPECT_EQ("Access ID", d.CellText(details, 1, 0));
                EXPECT_EQ(d.CellText(RuleList(d), 1, 1), d.CellText(details, 1, 1));
                bool sawPorts = false;
                for (int i = 0; i < d.RowCount(details); ++i)
                    if (d.CellText(details, i, 0) == "Ports") sawPorts = d.CellText(details, i, 1) == "1,2,";
                EXPECT_TRUE(sawPorts) << "ports read back as a list";
            }
            d.Screenshot(std::string("modify_rule_") + model);
        }, acl::pages::kPageModifyRule);
    }
}

// "Delete" without a selection sends nothing; "Delete" of a row and "Delete All" of three send
// one SET of row status 6 each, at least 100 ms apart, and the rows leave the lists and the
// switch. A switch that refuses keeps its rows, and the page says so in one line.
TEST_F(ModifyGui, DeleteProfilesAndRulesOnTheSwitch) {
    sim::Faults refuse;
    refuse.refuseSets = {9, 10, 11, 12, 13, 14};  // every deletion after the eight seeding SETs
    const std::tuple<int, bool> cases[] = {
        {acl::pages::kPageModifyProfile, false}, {acl::pages::kPageModifyRule, false},
        {acl::pages::kPageModifyProfile, true},  {acl::pages::kPageModifyRule, true}};
    int host = 10;
    for (const auto& [page, refusing] : cases) {
        SCOPED_TRACE(std::to_string(page) + (refusing ? " refusing" : ""));
        const bool rules = page == acl::pages::kPageModifyRule;
        SimAgent a(++host, "TVR4820", refusing ? refuse : sim::Faults{});
        ASSERT_TRUE(a.ok()) << a.error();
        SimAgent* agent = &a;
        CreateProfiles(a, "TVR4820", AclOwner::kAcl,
                       {{AclType::kEthernet, "1"}, {AclType::kIPv4, "2"}, {AclType::kIPv6, "3"}, {AclType::kIPv4, "4"}});
        CreateRules(a, "TVR4820", AclOwner::kAcl, AclType::kIPv4, "2", {"1", "2", "3", "4"});
        Wizard({{agent->address(), "TVR4820"}}, 1, [&](WizardDriver& d) {
            HWND list = rules ? RuleList(d) : Profiles(d);
            ASSERT_TRUE(Loaded(d, page, Profiles(d), 4));
            if (rules) {
                for (int r = 0; r < 4; ++r)
                    if (d.CellText(Profiles(d), r, 0) == "2") d.ClickCell(Profiles(d), r, 0);
                ASSERT_TRUE(Loaded(d, page, list, 4));
            }
            const AclType type = rules ? AclType::kIPv4 : AclType::kEthernet;
            const AclKind kind = rules ? AclKind::kRules : AclKind::kProfiles;
            const std::string first = rules ? "2.1" : "1";
            agent->clearSets();
            d.ClickButton(IDC_MODIFY_DELETE);
            EXPECT_TRUE(agent->sets().empty()) << "no row selected: nothing sent";
            EXPECT_EQ(4, d.RowCount(list));

            d.ClickCell(list, 0, 0);
            d.ClickButton(IDC_MODIFY_DELETE);
            ASSERT_EQ(1u, agent->sets().size());
            ASSERT_EQ(1u, agent->sets()[0].varbinds.size());
            EXPECT_EQ(RowStatusColumnOid(*LookupModel("TVR4820"), AclOwner::kAcl, kind, type) + "." + first,
                      snmp::FormatOid(agent->sets()[0].varbinds[0].name));
            EXPECT_EQ(6, agent->sets()[0].varbinds[0].value.integer);
            EXPECT_EQ(refusing, RowOnSwitch(*agent, "TVR4820", AclOwner::kAcl, kind, type, first));
            EXPECT_EQ(refusing ? 4 : 3, d.RowCount(list));
            if (refusing) {
                EXPECT_EQ("The switch refused or did not answer the deletion; the row stays in the list.",
                          d.Text(IDC_MODIFY_STATUS));
            } else {
                EXPECT_EQ("", d.Text(IDC_MODIFY_STATUS));
            }
            d.Screenshot(std::string(rules ? "modify_rule" : "modify_profile") + (refusing ? "_refused" : "_deleted"));

            agent->clearSets();
            d.ClickButton(IDC_MODIFY_DELETE_ALL);
            ExpectPausedSets(agent->sets(), refusing ? 4u : 3u);
            if (refusing) {
                EXPECT_EQ(4, d.RowCount(list));
                EXPECT_EQ("The switch refused or did not answer 4 deletions; their rows stay in the list.",
                          d.Text(IDC_MODIFY_STATUS));
            } else {
                EXPECT_EQ(0, d.RowCount(list));
                EXPECT_EQ(0, d.RowCount(d.Control(rules ? IDC_MODIFY_RULE_DETAILS : IDC_MODIFY_DETAILS)));
                for (const sim::SetEvent& e : agent->sets()) EXPECT_EQ(0, e.errorStatus);
                EXPECT_EQ(rules ? 4 : 0, d.RowCount(Profiles(d)));
            }
            d.Screenshot(std::string(rules ? "modify_rule" : "modify_profile") + (refusing ? "_all_refused" : "_all_deleted"));
        }, page);
    }
}

// A slow switch: another "Device" during a read starts no second reader of the slot (the
// second device's profiles come when the first reading has ended); closing the wizard during
// a read returns within 3000 ms, and no reader posts to the closed page.
TEST_F(ModifyGui, SlowSwitchOneReaderPerSlotAndClosingWithinThreeSeconds) {
    sim::Faults slow;
    slow.delayMs = 400;
    SimAgent a(30, "TVR4820", slow), b(31, "TVR4820", slow);
    ASSERT_TRUE(a.ok() && b.ok());
    CreateProfiles(a, "TVR4820", AclOwner::kAcl, {{AclType::kEthernet, "1"}, {AclType::kIPv4, "2"}, {AclType::kIPv6, "3"}});
    CreateProfiles(b, "TVR4820", AclOwner::kAcl, {{AclType::kEthernet, "9"}});
    const int page = acl::pages::kPageModifyProfile;
    Wizard({{a.address(), "TVR4820"}, {b.address(), "TVR4820"}}, 1, [&](WizardDriver& d) {
        ASSERT_TRUE(Modify(page).IsProfileReaderRunning());
        HWND combo = d.Control(IDC_MODIFY_DEVICE);
        SendMessageA(combo, CB_SETCURSEL, 1, 0);
        SendMessageA(GetParent(combo), WM_COMMAND, MAKEWPARAM(IDC_MODIFY_DEVICE, CBN_SELCHANGE),
                     reinterpret_cast<LPARAM>(combo));
        d.Settle();
        EXPECT_EQ(0, d.RowCount(Profiles(d))) << "emptied for the new device";
        long most = 0;
        d.WaitFor([&] {
            most = std::max(most, SwitchReader::LiveWorkers());
            return !Modify(page).IsProfileReaderRunning() && d.RowCount(Profiles(d)) == 1;
        }, 30000);
        EXPECT_EQ(1, most) << "never two readers at once";
        ASSERT_EQ(1, d.RowCount(Profiles(d)));
        EXPECT_EQ("9", d.CellText(Profiles(d), 0, 0)) << "the second device's profile, none of the first";
    }, page);

    Clock::time_point cancelled;
    Wizard({{a.address(), "TVR4820"}}, 1, [&](WizardDriver& d) {
        ASSERT_TRUE(d.WaitFor([&] { return d.RowCount(Profiles(d)) >= 1; }));
        ASSERT_TRUE(Modify(page).IsProfileReaderRunning());
        d.Screenshot("modify_profile_reading");
        cancelled = Clock::now();
        d.PressButton(PSBTN_CANCEL);
    }, page);
    EXPECT_LE(std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - cancelled).count(), 3000 + 500);
    const auto deadline = Clock::now() + std::chrono::seconds(10);
    while (SwitchReader::LiveWorkers() > 0 && Clock::now() < deadline) Sleep(50);
    EXPECT_EQ(0, SwitchReader::LiveWorkers());
    EXPECT_EQ(0, SwitchReader::PostsToClosedWindows());
}

// A key press on a list, as the user's arrow keys give it.
void PressKey(WizardDriver& d, HWND list, WPARAM key) {
    PostMessageA(list, WM_KEYDOWN, key, 0);
    PostMessageA(list, WM_KEYUP, key, 0);
    d.Settle();
}

// Counts how often a window is hidden: a details list that blinks on a selection move.
std::atomic<int> g_hides{0};
WNDPROC g_shownProc = nullptr;
LRESULT CALLBACK CountHides(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam) {
    if (msg == WM_SHOWWINDOW && !wParam) ++g_hides;
    return CallWindowProcA(g_shownProc, hwnd, msg, wParam, lParam);
}

// The details follow the selection however it moves (arrow keys too) without blinking on the
// way, "Delete" deletes the row whose details are shown, a refused one leaves no row
// highlighted without details, and the line about kept rows goes when another profile is
// shown; on "Modify Rule" the rule list follows a profile chosen by key, and a click on the
// profile shown reads its rules again.
TEST_F(ModifyGui, DetailsFollowTheSelectionAndDeleteActsOnTheRowShown) {
    sim::Faults refuse;
    refuse.refuseSets = {8};  // the first deletion after the seven seeding SETs
    SimAgent a(40, "TVR4820", refuse);
    ASSERT_TRUE(a.ok()) << a.error();
    CreateProfiles(a, "TVR4820", AclOwner::kAcl, {{AclType::kEthernet, "1"}, {AclType::kIPv4, "2"}, {AclType::kIPv6, "3"}});
    CreateRules(a, "TVR4820", AclOwner::kAcl, AclType::kEthernet, "1", {"5"});
    CreateRules(a, "TVR4820", AclOwner::kAcl, AclType::kIPv4, "2", {"1", "2", "3"});
    const ModelEntry& m = *LookupModel("TVR4820");
    auto lastSet = [&] { return a.sets().empty() ? std::string() : snmp::FormatOid(a.sets().back().varbinds.at(0).name); };
    const AclOwner O = AclOwner::kAcl;
    const int modifyProfile = acl::pages::kPageModifyProfile, modifyRule = acl::pages::kPageModifyRule;
    Wizard({{a.address(), "TVR4820"}}, 1, [&](WizardDriver& d) {
        HWND details = d.Control(IDC_MODIFY_DETAILS);
        ASSERT_TRUE(Loaded(d, modifyProfile, Profiles(d), 3));
        d.ClickCell(Profiles(d), 0, 0);
        PressKey(d, Profiles(d), VK_DOWN);
        ASSERT_EQ(1, d.SelectedRow(Profiles(d)));
        EXPECT_EQ("2", d.CellText(details, 0, 1)) << "the details of the row the key selected";
        d.ClickButton(IDC_MODIFY_DELETE);
        EXPECT_EQ(RowStatusColumnOid(m, O, AclKind::kProfiles, AclType::kIPv4) + ".2", lastSet());
        EXPECT_NE("", d.Text(IDC_MODIFY_STATUS)) << "refused: the row stays and the line says so";
        EXPECT_EQ(-1, d.SelectedRow(Profiles(d))) << "no row highlighted while no details are shown";
        PressKey(d, Profiles(d), VK_DOWN);
        EXPECT_EQ("3", d.CellText(details, 0, 1));
        EXPECT_EQ("", d.Text(IDC_MODIFY_STATUS)) << "the line spoke of another profile";
        d.ClickButton(IDC_MODIFY_DELETE);
        EXPECT_EQ(RowStatusColumnOid(m, O, AclKind::kProfiles, AclType::kIPv6) + ".3", lastSet());
        EXPECT_FALSE(RowOnSwitch(a, "TVR4820", O, AclKind::kProfiles, AclType::kIPv6, "3"));
        EXPECT_EQ(2, d.RowCount(Profiles(d)));
    }, modifyProfile);
    Wizard({{a.address(), "TVR4820"}}, 1, [&](WizardDriver& d) {
        HWND ruleDetails = d.Control(IDC_MODIFY_RULE_DETAILS);
        ASSERT_TRUE(Loaded(d, modifyRule, Profiles(d), 2));
        d.ClickCell(Profiles(d), 1, 0);
        ASSERT_TRUE(Loaded(d, modifyRule, RuleList(d), 3));
        d.ClickCell(RuleList(d), 0, 0);
        PressKey(d, RuleList(d), VK_DOWN);
        const std::string shown = d.CellText(RuleList(d), 1, 1);
        EXPECT_EQ(shown, d.CellText(ruleDetails, 1, 1)) << "the rule details follow the key";
        d.ClickButton(IDC_MODIFY_DELETE);
        EXPECT_EQ(RowStatusColumnOid(m, O, AclKind::kRules, AclType::kIPv4) + ".2." + shown, lastSet());
        EXPECT_EQ(2, d.RowCount(RuleList(d)));
        ASSERT_TRUE(DeleteRow({a.address(), "public", "private", "TVR4820"},
                              RowStatusColumnOid(m, O, AclKind::kRules, AclType::kIPv4), "2",
                              d.CellText(RuleList(d), 0, 1)));
        d.ClickCell(Profiles(d), 1, 0);
        EXPECT_TRUE(Loaded(d, modifyRule, RuleList(d), 1)) << "the profile shown, clicked again, is read again";
        HWND details = d.Control(IDC_MODIFY_DETAILS);
        g_hides = 0;
        g_shownProc = reinterpret_cast<WNDPROC>(
            SetWindowLongPtrA(details, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&CountHides)));
        PressKey(d, Profiles(d), VK_UP);
        SetWindowLongPtrA(details, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(g_shownProc));
        EXPECT_EQ(0, g_hides.load()) << "the details move to the new profile without being hidden";
        ASSERT_TRUE(Loaded(d, modifyRule, RuleList(d), 1)) << "the rule list follows the profile chosen by key";
        EXPECT_EQ("1/5/ACL", *Rows(d, RuleList(d)).begin());
        d.Screenshot("modify_rule_selection_by_key");
    }, modifyRule);
}

// Leaving a page only asks its readers to stop: with a silent switch, Back from "Modify
// Profile" (through "Add profile", whose reading starts and stops in passing) reaches the
// action page at once.
TEST_F(ModifyGui, BackFromASilentSwitchReturnsAtOnce) {
    sim::Faults silent;
    silent.silent = true;
    SimAgent a(41, "TVR4820", silent);
    ASSERT_TRUE(a.ok()) << a.error();
    Wizard({{a.address(), "TVR4820"}}, 1, [&](WizardDriver& d) {
        ASSERT_TRUE(Modify(acl::pages::kPageModifyProfile).IsProfileReaderRunning());
        const auto start = Clock::now();
        d.Back();
        ASSERT_TRUE(d.WaitFor([&] { return d.ActiveIndex() == acl::pages::kPageSelect; }, 10000));
        const long long ms = MsSince(start);
        std::printf("Back from \"Modify Profile\" to the action page: %lld ms\n", ms);
        EXPECT_LT(ms, 500);
    }, acl::pages::kPageModifyProfile);
}

LRESULT CALLBACK ReaderPageProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam) {
    if (SwitchReader::Deliver(msg, wParam, lParam)) return 0;
    return DefWindowProcA(hwnd, msg, wParam, lParam);
}

// A reading put off behind a slow one never runs once another device was asked for: device A
// is read slowly, B is asked for (put off), A's thread ends, and C is asked for before A's end
// reaches the page. Only C's rows are shown and B is never read. While a reader runs the
// module may not be unloaded.
TEST(ReaderSlot, OnlyTheDeviceAskedForLastIsRead) {
    WNDCLASSA wc{};
    wc.lpfnWndProc = ReaderPageProc;
    wc.hInstance = GetModuleHandleA(nullptr);
    wc.lpszClassName = "SentrelReaderSlotTest";
    RegisterClassA(&wc);
    HWND page = CreateWindowA(wc.lpszClassName, "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, wc.hInstance, nullptr);
    ASSERT_NE(nullptr, page);
    HANDLE releaseA = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    std::vector<std::string> shown, read;
    std::mutex readMutex;
    int done = 0;
    {
        SwitchReader slot;
        slot.OnRow([&](AclType, const AclRecord& r, const AclSummaryLine&) { shown.push_back(r.at(0)); });
        slot.OnDone([&] { ++done; });
        auto device = [&](const std::string& ip, HANDLE wait) {
            return [&, ip, wait](const AclReadOptions& o) {
                if (wait) WaitForSingleObject(wait, 10000);
                {
                    std::lock_guard<std::mutex> lock(readMutex);
                    read.push_back(ip);
                }
                o.sink(AclType::kEthernet, AclRecord{ip}, AclSummaryLine{});
            };
        };
        ASSERT_TRUE(slot.Start(page, device("A", releaseA)));
        EXPECT_FALSE(shell::CanUnloadNow()) << "a reader runs";
        EXPECT_FALSE(slot.Start(page, device("B", nullptr))) << "put off while A runs";
        SetEvent(releaseA);
        const auto deadline = Clock::now() + std::chrono::seconds(10);
        while (slot.IsRunning() && Clock::now() < deadline) Sleep(10);  // A's end stays in the queue
        ASSERT_FALSE(slot.IsRunning());
        EXPECT_TRUE(shell::CanUnloadNow());
        EXPECT_TRUE(slot.Start(page, device("C", nullptr)));
        for (const auto quiet = Clock::now() + std::chrono::milliseconds(500); Clock::now() < quiet;) {
            MSG msg;
            while (PeekMessageA(&msg, page, 0, 0, PM_REMOVE)) DispatchMessageA(&msg);
            Sleep(10);
        }
        EXPECT_EQ(std::vector<std::string>{"C"}, shown);
        EXPECT_EQ(1, done);
        std::lock_guard<std::mutex> lock(readMutex);
        EXPECT_EQ((std::vector<std::string>{"A", "C"}), read) << "B is never read";
    }
    CloseHandle(releaseA);
    DestroyWindow(page);
}

}  // namespace
