// "Apply to Switch" on the Confirmation Page against several simulated switches: the result
// word of each (a silent switch, one that drops the closing request), the progress bar moving
// while the button is disabled, the lists empty after the apply, a second apply that sends
// only the closing request, and "Configure Next Device".
#include <algorithm>
#include <mutex>

#include "tests/gui/wizard/profile_flow.h"

using namespace profile_flow;

namespace {

// What the user-interface thread does to the progress bar during an apply: every position it
// is set to, and whether "Apply to Switch" was enabled at that moment. A hook on that thread
// sees it even while the thread is busy sending; at the first position it queues a user's
// impatient click on the button.
struct ProgressWatch {
    static inline std::mutex mutex;
    static inline std::vector<int> positions;
    static inline bool buttonEnabled = false;
    static LRESULT CALLBACK Hook(int code, WPARAM wParam, LPARAM lParam) {
        const auto* msg = reinterpret_cast<const CWPSTRUCT*>(lParam);
        if (code == HC_ACTION && msg->message == PBM_SETPOS && GetDlgCtrlID(msg->hwnd) == IDC_APPLY_PROGRESS) {
            std::lock_guard<std::mutex> lock(mutex);
            HWND button = GetDlgItem(GetParent(msg->hwnd), IDC_APPLY_APPLY);
            if (positions.empty()) {
                PostMessageA(button, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5));
                PostMessageA(button, WM_LBUTTONUP, 0, MAKELPARAM(5, 5));
            }
            positions.push_back(static_cast<int>(msg->wParam));
            buttonEnabled = buttonEnabled || IsWindowEnabled(button);
        }
        return CallNextHookEx(nullptr, code, wParam, lParam);
    }
};

// One Ethernet profile through its page to the Confirmation Page.
void StageOneEthernetProfile(WizardDriver& d, const std::string& id) {
    d.ClickButton(IDC_STEP2_ETHERNET);
    ASSERT_TRUE(d.PickCombo(IDC_STEP2_PROFILE_ID, id));
    d.Next();
    ASSERT_EQ(acl::pages::kPageEthProfile, d.ActiveIndex());
    d.ClickButton(IDC_ETH_DST_MAC_CHECK);
    d.TypeText(IDC_ETH_DST_MAC, "FFFFFFFFFFFF");
    d.ClickButton(IDC_ETH_ADD);
    d.Next();
    ASSERT_EQ(acl::pages::kPageApply, d.ActiveIndex());
}

class ApplyGui : public ProfileFlowGui {};

TEST_F(ApplyGui, ResultWordsProgressAndASecondApplyThatSendsOnlyTheClosingRequest) {
    sim::Faults silent, dropFirstClosing;
    silent.silent = true;
    dropFirstClosing.dropSets = {2};  // the record is answered, the first closing request is not
    SimAgent a(1, "TVR4820", silent), b(2, "TVR4820"), c(3, "TVR4820", dropFirstClosing), e(4, "TVR4820");
    ASSERT_TRUE(a.ok() && b.ok() && c.ok() && e.ok()) << a.error() << b.error() << c.error() << e.error();
    const std::string closing = LookupModel("TVR4820")->closingRequest(AclOwner::kAcl, AclKind::kProfiles)->oid;
    HHOOK hook = SetWindowsHookExA(WH_CALLWNDPROC, &ProgressWatch::Hook, nullptr, GetCurrentThreadId());
    _putenv_s("LOCALAPPDATA", m_folder.Path().c_str());  // where the wizard keeps its audit log
    Wizard({{a.address(), "TVR4820"}, {b.address(), "TVR4820"}, {c.address(), "TVR4820"}, {e.address(), "TVR4820"}},
           1, [&](WizardDriver& d) {
               StageOneEthernetProfile(d, "6");
               HWND switches = d.Control(IDC_APPLY_SWITCH_LIST), profiles = d.Control(IDC_APPLY_PROFILE_LIST);
               EXPECT_EQ((Strings{a.address(), b.address(), c.address(), e.address()}), Column(d, switches, 0));
               EXPECT_EQ(Strings(4, "TVR4820"), Column(d, switches, 1));
               ASSERT_EQ((Strings{"6"}), Column(d, profiles, 0));
               EXPECT_FALSE(d.IsVisible(IDC_APPLY_PROGRESS)) << "hidden except during an apply";
               d.ClickCell(profiles, 0, 0);
               EXPECT_EQ("FFFFFFFFFFFF", d.CellText(d.Control(IDC_APPLY_DETAILS), 4, 1)) << "the clicked profile's fields";

               // A silent switch fails its record and gets no closing request ("Fail"); an
               // unanswered closing request reads "fail"; the others are still configured.
               EXPECT_EQ((Strings{"Fail", "Succeed", "fail", "Succeed"}), Apply(d));
               {
                   std::lock_guard<std::mutex> lock(ProgressWatch::mutex);
                   std::vector<int>& p = ProgressWatch::positions;
                   p.erase(std::unique(p.begin(), p.end()), p.end());
                   EXPECT_EQ((std::vector<int>{0, 25, 50, 75, 100}), p) << "one step per switch";
                   EXPECT_FALSE(ProgressWatch::buttonEnabled) << "no second click while the switches are written";
               }
               d.Settle();
               EXPECT_EQ(2u, b.sets().size()) << "the click queued during the apply started no second apply";
               EXPECT_TRUE(d.IsEnabled(IDC_APPLY_APPLY));
               EXPECT_FALSE(d.IsVisible(IDC_APPLY_PROGRESS));
               EXPECT_EQ(0, d.RowCount(profiles)) << "the switches hold the profile now";
               EXPECT_EQ(0u, ReadStagingFile(kStagingEthernet, 10, 80).size());
               d.Screenshot("page-10-confirmation-applied");

               // The second apply sends each switch its closing request and nothing else.
               b.clearSets();
               e.clearSets();
               EXPECT_EQ((Strings{"fail", "Succeed", "Succeed", "Succeed"}), Apply(d));
               for (SimAgent* agent : {&b, &e}) {
                   const auto sets = agent->sets();
                   ASSERT_EQ(1u, sets.size()) << agent->address();
                   ASSERT_EQ(1u, sets[0].varbinds.size());
                   EXPECT_EQ(closing, snmp::FormatOid(sets[0].varbinds[0].name));
               }
               // Back to the definition page and on again: nothing pending anywhere.
               d.Back();
               ASSERT_EQ(acl::pages::kPageEthProfile, d.ActiveIndex());
               EXPECT_EQ(0, d.RowCount(d.Control(IDC_ETH_LIST)));
               d.Next();
               EXPECT_EQ(0, d.RowCount(d.Control(IDC_APPLY_PROFILE_LIST)));
               d.ClickButton(IDC_APPLY_NEXT_DEVICE);
               EXPECT_EQ(acl::pages::kPageDeviceList, d.ActiveIndex());
           });
    UnhookWindowsHookEx(hook);
    EXPECT_EQ(1u, OnSwitch(b, "TVR4820", AclOwner::kAcl).records[0].size()) << "read back from a configured switch";

    // Both applies in the audit log: per switch one request for the record (the second apply
    // sends only closing requests) and every outcome in order; no community anywhere.
    const std::string audit = sentrel_test::ReadTextFile(m_folder.File("Sentrel\\audit.jsonl"));
    const std::string profileRow = "\"oid\":\"1.3.6.1.4.1.32473.12.9.2.1.1.";
    for (const auto& [agent, results] : {std::pair{&a, "no answer no answer"}, std::pair{&b, "ok ok ok"},
                                         std::pair{&c, "ok no answer ok"}, std::pair{&e, "ok ok ok"}}) {
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

}  // namespace
