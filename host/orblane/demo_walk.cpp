#include "host/orblane/demo_walk.h"

// The plug-in's dialogs are ANSI; the driver talks to them with the A functions.
#include <windows.h>
#include <commctrl.h>
#include <prsht.h>
#include <tlhelp32.h>

#include <cctype>
#include <cstdio>
#include <utility>
#include <set>

#include "acl/acl_record.h"
#include "acl/page_logic.h"
#include "host/wizard_driver/acl_forms.h"
#include "res/resource.h"
#include "host/wizard_driver/wizard_driver.h"

namespace orblane {
namespace {

using sentrel_gui::WizardDriver;
namespace pages = acl::pages;

constexpr char kProfilesAndRules[] = "profiles-and-rules";
constexpr int kWizardFinishButton = 0x3025;
constexpr DWORD kReaderWaitMs = 15000;   // a reader asks a few dozen questions; 3 s per silence
constexpr DWORD kApplyWaitMs = 60000;    // two switches, each its records and closing request

// The driver's own failure (no wizard appeared), for the walk's report.
std::string g_driverFailure;
void RecordDriverFailure(const std::string& what) { g_driverFailure = what; }

// The threads of this process: the Add profile page reads the switch on a worker thread and
// shows nothing when it has finished, so the walk waits until the threads it started are gone.
std::set<DWORD> ProcessThreads() {
    std::set<DWORD> ids;
    HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    if (snapshot == INVALID_HANDLE_VALUE) return ids;
    THREADENTRY32 entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = Thread32First(snapshot, &entry); more; more = Thread32Next(snapshot, &entry))
        if (entry.th32OwnerProcessID == GetCurrentProcessId()) ids.insert(entry.th32ThreadID);
    CloseHandle(snapshot);
    return ids;
}

// A type word as one word of the report ("Packet Content" as "Packet_Content").
std::string Word(std::string text) {
    for (char& c : text)
        if (c == ' ') c = '_';
    return text;
}

// "Ethernet", "IPv4", "IPv6" or "Packet Content", as the profile lists show a type.
std::string TypeText(AclType type) { return ::TypeWord(type); }

std::string Join(const std::vector<std::string>& items) {
    std::string out;
    for (const std::string& item : items) out += (out.empty() ? "" : " ") + item;
    return out;
}

// "profiles-and-rules": two switches of one model, ordinary ACL, "Create Profile"; one
// profile of every type the model offers, each with the first free profile ID, on its
// definition page; Apply to Switch on the Confirmation Page; "Create Rules" and one rule under
// each of those profiles on the rule page of its type; Apply to Switch on "Add rule"; back to
// the action choice, "Modify Rule" deleting the first rule of the first switch and "Modify
// Profile" deleting that rule's profile; Finish. One function per page.
class ProfilesAndRulesWalk {
public:
    ProfilesAndRulesWalk(WizardDriver& d, const WalkSettings& settings, WalkOutcome& out)
        : d(d), m_settings(settings), m_out(out) {}

    void Run() {
        m_out.ok = DeviceList() && AclKind() && CreateProfileChoice() && Profiles() &&
                   Apply(IDC_APPLY_APPLY, IDC_APPLY_SWITCH_LIST, "profiles") && Rules() &&
                   Apply(IDC_RAPPLY_APPLY, IDC_RAPPLY_SWITCH_LIST, "rules") && BackToChoice() && ModifyRule() &&
                   BackToChoice() && ModifyProfile() && Finish();
        if (m_out.ok) Log("result ok");
    }

private:
    struct Made {
        AclType type;
        std::string id;
    };

    // Page 0: the host's device is checked already; the walk checks a second
    // switch of its model (or, with no host device, the first two of one model).
    bool DeviceList() {
        if (!OnPage(pages::kPageDeviceList)) return false;
        HWND list = d.Control(IDC_STEP0_LIST);
        if (!d.WaitFor([&] { return d.RowCount(list) > 0; }, 5000)) return Fail("the device list stays empty");
        const int rows = d.RowCount(list);
        auto type = [&](int row) { return d.CellText(list, row, pages::kColType); };
        auto ip = [&](int row) { return d.CellText(list, row, pages::kColIP); };
        int hostRow = -1;
        for (int row = 0; row < rows; ++row)
            if (!m_settings.hostDevice.empty() && ip(row) == m_settings.hostDevice) hostRow = row;
        std::vector<int> picked;
        for (int first = hostRow >= 0 ? hostRow : 0; first < rows && picked.size() < 2; ++first) {
            picked = {first};
            for (int row = 0; row < rows && picked.size() < 2; ++row)
                if (row != first && type(row) == type(first)) picked.push_back(row);
            if (hostRow >= 0) break;  // the host's device stays checked: its model it is
        }
        if (picked.size() < 2) return Fail("no two switches of one model in the list");
        m_model = LookupModel(type(picked[0]));
        if (m_model == nullptr || !m_model->supported) return Fail(type(picked[0]) + " is no model the wizard serves");
        for (int row : picked) {
            if (row != hostRow) d.ClickCell(list, row, pages::kColCheck);
            m_switches.push_back(ip(row));
        }
        Log("page 0: checked " + Join(m_switches) + " (" + std::string(m_model->typeText) + ")" +
            (hostRow >= 0 ? "; " + m_settings.hostDevice + " was checked as the host's device" : ""));
        for (const std::string& s : m_switches) Log("switch " + s + " " + std::string(m_model->typeText));
        Shot("device-list");
        return NextTo(pages::kPageAclKind);
    }

    // Page 1: ordinary ACL ("Access Profile List").
    bool AclKind() {
        if (!OnPage(pages::kPageAclKind)) return false;
        d.ClickButton(IDC_STEP1_ACL);
        if (!d.IsChecked(IDC_STEP1_ACL)) return Fail("the ACL radio does not take the click");
        Log("page 1: " + d.Text(IDC_STEP1_ACL));
        Shot("acl-kind");
        return NextTo(pages::kPageSelect);
    }

    // Page 2: "Create Profile". Next starts the Add profile page's reader.
    bool CreateProfileChoice() {
        if (!OnPage(pages::kPageSelect)) return false;
        d.ClickButton(IDC_SELECT_CHOICE1);
        if (!d.IsChecked(IDC_SELECT_CHOICE1)) return Fail("the Create Profile radio does not take the click");
        Log("page 2: " + d.Text(IDC_SELECT_CHOICE1));
        Shot("create-profile");
        m_threadsBefore = ProcessThreads();
        return NextTo(pages::kPageAddProfile);
    }

    // A profile of every type the model offers, each through "Add profile" and its definition
    // page; back to "Add profile" for the next one, so the Confirmation Page lists them all.
    bool Profiles() {
        for (AclType type : {AclType::kEthernet, AclType::kIPv4, AclType::kIPv6, AclType::kPacketContent}) {
            if (!m_model->offersProfileType(AclOwner::kAcl, type)) continue;
            if (!m_made.empty()) {
                d.Back();  // to the definition page, then to "Add profile", which reads again
                if (!OnPage(sentrel_gui::PagesOf(m_made.back().type).profilePage)) return false;
                m_threadsBefore = ProcessThreads();
                d.Back();
                if (!NoMessages()) return false;
            }
            if (!AddProfile(type) || !DefinitionPage(type) || !Confirmation()) return false;
        }
        return !m_made.empty() || Fail(std::string(m_model->typeText) + " offers no profile type");
    }

    // Page 3: wait until the reader has listed the first switch's profiles, then the type (IPv4
    // with "TCP") and the first free profile ID that no profile of this walk has taken (the
    // drop-down leaves out the IDs in use on the switch when it opens).
    bool AddProfile(AclType type) {
        if (!OnPage(pages::kPageAddProfile)) return false;
        const std::vector<std::string> devices = d.ComboItems(IDC_STEP2_DEVICE);
        if (devices != m_switches) return Fail("the Device list shows " + Join(devices) + ", not the checked switches");
        const DWORD start = GetTickCount();
        if (!ReadersDone()) return Fail("the profiles of " + m_switches[0] + " were still being read after 15 s");
        HWND profiles = d.Control(IDC_STEP2_PROFILE_LIST);
        std::string existing;
        for (int row = 0; row < d.RowCount(profiles); ++row)
            existing += " " + d.CellText(profiles, row, 0) + "/" + d.CellText(profiles, row, 1);
        Log("page 3: " + m_switches[0] + " has " + std::to_string(d.RowCount(profiles)) + " profile(s)" + existing +
            " (read in " + std::to_string(GetTickCount() - start) + " ms)");
        const int radio = sentrel_gui::PagesOf(type).radio;
        d.ClickButton(radio);
        if (type == AclType::kIPv4 && !d.PickCombo(IDC_STEP2_PROTOCOL, "TCP"))
            return Fail("the protocol list offers no TCP");
        d.OpenDropDown(IDC_STEP2_PROFILE_ID);
        const std::vector<std::string> free = d.ComboItems(IDC_STEP2_PROFILE_ID);
        std::string id;
        for (const std::string& candidate : free)
            if (id.empty() && !MadeId(candidate)) id = candidate;
        if (id.empty() || !d.PickCombo(IDC_STEP2_PROFILE_ID, id)) return Fail("no free profile ID");
        if (d.IsVisible(IDC_STEP2_PROFILE_NAME))  // TVR4512 names its profiles
            d.TypeText(IDC_STEP2_PROFILE_NAME, "demo" + id);
        m_made.push_back({type, id});
        Log("page 3: " + d.Text(radio) + ", profile ID " + id + " of " + std::to_string(free.size()) + " free (" +
            free.front() + " to " + free.back() + ")");
        Shot("add-profile-" + Lower(type));
        return NextTo(sentrel_gui::PagesOf(type).profilePage);
    }

    // Pages 6 to 9: the masks of the type, Add, one pending row.
    bool DefinitionPage(AclType type) {
        const sentrel_gui::TypePages p = sentrel_gui::PagesOf(type);
        if (!OnPage(p.profilePage)) return false;
        const std::string& id = m_made.back().id;
        sentrel_gui::FillProfileAndAdd(d, type, *m_model, AclOwner::kAcl);
        if (!NoMessages()) return false;
        HWND pending = d.Control(p.profileList);
        if (d.RowCount(pending) != 1 || d.CellText(pending, 0, 0) != id) return Fail("Add did not list profile " + id);
        Log("page " + std::to_string(p.profilePage) + ": pending " + TypeText(type) + " profile " + id);
        Log("profile " + Word(TypeText(type)) + " " + id + " ACL");
        Shot(Lower(type) + "-profile");
        return NextTo(pages::kPageApply);
    }

    // Page 10 before the apply: both switches and every pending profile, the last one's
    // details shown.
    bool Confirmation() {
        if (!OnPage(pages::kPageApply)) return false;
        HWND switches = d.Control(IDC_APPLY_SWITCH_LIST), profiles = d.Control(IDC_APPLY_PROFILE_LIST);
        std::vector<std::string> listed;
        for (int row = 0; row < d.RowCount(switches); ++row) listed.push_back(d.CellText(switches, row, 0));
        if (listed != m_switches) return Fail("the switch list shows " + Join(listed));
        const int rows = d.RowCount(profiles);
        if (rows != static_cast<int>(m_made.size()) || d.CellText(profiles, rows - 1, 0) != m_made.back().id)
            return Fail("the profile list does not show the " + std::to_string(m_made.size()) + " pending profiles");
        d.ClickCell(profiles, rows - 1, 0);
        Log("page 10: " + Join(listed) + ", " + std::to_string(rows) + " pending profile(s)");
        Shot("confirmation-" + std::to_string(rows));
        return true;
    }

    // "Create Rules", then for every profile made whose type has rules on the model: the
    // profile chosen on "Add Rules:Select Profile", one rule on the rule page of its type, and
    // "Add rule" listing it; back to "Add Rules:Select Profile" for the next one.
    bool Rules() {
        d.ClickButton(IDC_APPLY_CREATE_RULES);
        int rules = 0;
        for (const Made& profile : m_made) {
            if (!m_model->offersRuleType(AclOwner::kAcl, profile.type)) continue;
            if (rules > 0) {
                d.Back();  // to the rule page, then to "Add Rules:Select Profile", which reads again
                d.Back();
                if (!NoMessages()) return false;
            }
            if (!SelectProfile(profile) || !RulePage(profile) || !RuleConfirmation(++rules)) return false;
        }
        return rules > 0 || Fail(std::string(m_model->typeText) + " offers no rule type");
    }

    // Page 5: the profile's row once the first switch is read, Next when the read has ended.
    bool SelectProfile(const Made& profile) {
        if (!OnPage(pages::kPageSelectProfile)) return false;
        HWND list = d.Control(IDC_STEP4_PROFILE_LIST);
        int row = -1;
        d.WaitFor(
            [&] {
                for (int r = 0; r < d.RowCount(list); ++r)
                    if (d.CellText(list, r, 0) == profile.id && d.CellText(list, r, 1) == TypeText(profile.type)) row = r;
                return row >= 0;
            },
            kReaderWaitMs);
        if (row < 0) return Fail("the profiles of " + m_switches[0] + " do not list " + TypeText(profile.type) + " profile " + profile.id);
        d.ClickCell(list, row, 0);
        Log("page 5: " + TypeText(profile.type) + " profile " + profile.id + " of " + std::to_string(d.RowCount(list)));
        Shot("select-profile-" + Lower(profile.type));
        sentrel_gui::NextWhenRead(d);
        return NoMessages();
    }

    // Pages 11, 14, 15 and 17: Access ID 1 and the fields the profile's masks enable, Add.
    bool RulePage(const Made& profile) {
        if (!OnPage(sentrel_gui::PagesOf(profile.type).rulePage)) return false;
        sentrel_gui::FillRuleAndAdd(d, profile.type, *m_model, AclOwner::kAcl);
        if (!NoMessages()) return false;
        HWND pending = d.Control(IDC_RULE_LIST);
        if (d.RowCount(pending) != 1 || d.CellText(pending, 0, 0) != profile.id)
            return Fail("Add did not list the rule of profile " + profile.id);
        const std::string access = d.CellText(pending, 0, 1);
        Log("page " + std::to_string(d.ActiveIndex()) + ": pending rule " + access + " of " + TypeText(profile.type) +
            " profile " + profile.id);
        Log("rule " + Word(TypeText(profile.type)) + " " + profile.id + " " + access);
        Shot(Lower(profile.type) + "-rule");
        return NextTo(pages::kPageRuleApply);
    }

    // Page 16 before the apply: both switches and every pending rule.
    bool RuleConfirmation(int rules) {
        if (!OnPage(pages::kPageRuleApply)) return false;
        HWND pending = d.Control(IDC_RAPPLY_RULE_LIST);
        if (d.RowCount(pending) != rules)
            return Fail("the rule list shows " + std::to_string(d.RowCount(pending)) + " rules, not " + std::to_string(rules));
        d.ClickCell(pending, rules - 1, 0);
        Log("page 16: " + std::to_string(rules) + " pending rule(s)");
        Shot("add-rule-" + std::to_string(rules));
        return true;
    }

    // Apply to Switch on the Confirmation Page or "Add rule": every switch's result word.
    bool Apply(int button, int switchList, const std::string& what) {
        HWND switches = d.Control(switchList);
        d.ClickButton(button);
        const int rows = d.RowCount(switches);
        if (d.WaitForColumn(switches, 2, kApplyWaitMs).empty()) return Fail("no result word after 60 s");
        d.Settle();
        bool all = true;
        for (int row = 0; row < rows; ++row) {
            const std::string word = d.CellText(switches, row, 2);
            Log("applied " + what + " " + d.CellText(switches, row, 0) + " " + word);
            all = all && word == "Succeed";  // ordinary-ACL profiles and rules alike
        }
        Shot("applied-" + what);
        if (!NoMessages()) return false;
        return all || Fail("a switch did not take the " + what);
    }

    // Back from "Add rule" (through the rule page, "Add Rules:Select Profile" and "Add
    // profile") or from a modify page (through "Add profile") to the action choice.
    bool BackToChoice() {
        for (int i = 0; i < 4 && d.ActiveIndex() != pages::kPageSelect; ++i) d.Back();
        return OnPage(pages::kPageSelect) && NoMessages();
    }

    // Page 2's choice 3 or 4, then the modify page, its profiles read (threads gone).
    bool OpenModifyPage(int choice, int page) {
        d.ClickButton(choice);
        m_threadsBefore = ProcessThreads();
        if (!NextTo(page)) return false;
        if (!ReadersDone()) return Fail("the switch was still being read after 15 s");
        HWND profiles = d.Control(IDC_MODIFY_PROFILE_LIST);
        for (int row = 0; row < d.RowCount(profiles); ++row)
            Log("listed profile " + Word(d.CellText(profiles, row, 1)) + " " + d.CellText(profiles, row, 0) + " on " +
                m_switches[0]);
        return true;
    }

    // Page 13: the first profile with rules, its first rule clicked and deleted.
    bool ModifyRule() {
        if (!OpenModifyPage(IDC_SELECT_CHOICE4, pages::kPageModifyRule)) return false;
        HWND profiles = d.Control(IDC_MODIFY_PROFILE_LIST), rules = d.Control(IDC_MODIFY_RULE_LIST);
        for (int row = 0; row < d.RowCount(profiles); ++row) {
            m_threadsBefore = ProcessThreads();
            d.ClickCell(profiles, row, 0);
            if (!ReadersDone()) return Fail("the rules were still being read after 15 s");
            if (d.RowCount(rules) == 0) continue;
            const std::string type = d.CellText(profiles, row, 1), id = d.CellText(rules, 0, 0),
                              access = d.CellText(rules, 0, 1);
            d.ClickCell(rules, 0, 0);
            Log("page 13: " + type + " profile " + id + " has " + std::to_string(d.RowCount(rules)) +
                " rule(s); deleting rule " + access);
            Shot("modify-rule");
            const int before = d.RowCount(rules);
            d.ClickButton(IDC_MODIFY_DELETE);
            if (!NoMessages()) return false;
            if (d.RowCount(rules) != before - 1) return Fail("the switch kept rule " + access + ": " + d.Text(IDC_MODIFY_STATUS));
            Log("deleted rule " + Word(type) + " " + id + " " + access + " on " + m_switches[0]);
            m_ruleProfile = {type, id};
            Shot("modify-rule-deleted");
            return true;
        }
        return Fail("no profile on " + m_switches[0] + " has a rule");
    }

    // Page 12: the profile whose rule "Modify Rule" deleted, clicked and deleted.
    bool ModifyProfile() {
        if (!OpenModifyPage(IDC_SELECT_CHOICE3, pages::kPageModifyProfile)) return false;
        HWND profiles = d.Control(IDC_MODIFY_PROFILE_LIST);
        const auto& [type, id] = m_ruleProfile;
        for (int row = 0; row < d.RowCount(profiles); ++row) {
            if (d.CellText(profiles, row, 0) != id || d.CellText(profiles, row, 1) != type) continue;
            d.ClickCell(profiles, row, 0);
            Log("page 12: deleting " + type + " profile " + id);
            Shot("modify-profile");
            const int before = d.RowCount(profiles);
            d.ClickButton(IDC_MODIFY_DELETE);
            if (!NoMessages()) return false;
            if (d.RowCount(profiles) != before - 1)
                return Fail("the switch kept profile " + id + ": " + d.Text(IDC_MODIFY_STATUS));
            Log("deleted profile " + Word(type) + " " + id + " on " + m_switches[0]);
            Shot("modify-profile-deleted");
            return true;
        }
        return Fail("the profile list does not show " + type + " profile " + id);
    }

    // Whether a profile of this walk took the ID.
    bool MadeId(const std::string& id) const {
        for (const Made& m : m_made)
            if (m.id == id) return true;
        return false;
    }
    // A type as a screenshot's name: "ethernet", "ipv4", "ipv6", "packet-content".
    static std::string Lower(AclType type) {
        std::string text = TypeText(type);
        for (char& c : text) c = c == ' ' ? '-' : static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        return text;
    }
    // The readers a page started have ended (their threads are gone).
    bool ReadersDone() {
        return d.WaitFor(
            [&] {
                for (DWORD id : ProcessThreads())
                    if (!m_threadsBefore.count(id)) return false;
                return true;
            },
            kReaderWaitMs);
    }

    bool Finish() {
        if (!d.IsWizardButtonEnabled(kWizardFinishButton)) return Fail("Finish is not enabled");
        d.PressButton(PSBTN_FINISH);
        if (!d.WaitFor([&] { return !d.IsOpen(); }, 10000)) return Fail("the wizard stays open after Finish");
        Log("Finish: the wizard closed");
        return true;
    }

    // --- helpers ---
    bool OnPage(int index) {
        if (!d.WaitFor([&] { return d.ActiveIndex() == index; }, 5000))
            return Fail("expected page " + std::to_string(index) + ", the wizard shows page " +
                        std::to_string(d.ActiveIndex()) + " \"" + d.ActiveCaption() + "\"");
        m_caption = d.ActiveCaption();
        Log("page " + std::to_string(index) + " \"" + m_caption + "\"");
        return true;
    }
    bool NextTo(int index) {
        d.Next();
        if (!NoMessages()) return false;
        return d.ActiveIndex() == index ||
               Fail("Next went to page " + std::to_string(d.ActiveIndex()) + ", not " + std::to_string(index));
    }
    bool NoMessages() {
        const std::vector<sentrel_gui::CaughtBox> boxes = d.TakeMessages();
        if (boxes.empty()) return true;
        std::string texts;
        for (const auto& b : boxes) texts += " \"" + b.text + "\"";
        return Fail("message box" + texts);
    }
    void Shot(const std::string& what) {
        char name[64];
        std::snprintf(name, sizeof name, "%02d-%s", ++m_shots, what.c_str());
        const std::string path = d.Screenshot(name);
        Log(path.empty() ? std::string("screenshot ") + name + ".png FAILED" : "screenshot " + std::string(name) + ".png");
    }
    void Log(const std::string& line) { m_out.lines.push_back(line); }
    bool Fail(const std::string& why) {
        Log("result FAILED on \"" + m_caption + "\": " + why);
        Shot("failed");
        return false;
    }

    WizardDriver& d;
    const WalkSettings& m_settings;
    WalkOutcome& m_out;
    std::string m_caption;
    std::vector<std::string> m_switches;
    const ModelEntry* m_model = nullptr;
    std::vector<Made> m_made;                             // the profiles of this walk, in order
    std::pair<std::string, std::string> m_ruleProfile;   // type word and ID of the rule deleted
    std::set<DWORD> m_threadsBefore;
    int m_shots = 0;
};

}  // namespace

std::vector<std::string> WalkNames() { return {kProfilesAndRules}; }

bool IsWalkName(const std::string& name) {
    for (const std::string& n : WalkNames())
        if (n == name) return true;
    return false;
}

WalkOutcome RunWalk(const WalkSettings& settings, const std::function<void()>& runCommand) {
    WalkOutcome out;
    out.lines.push_back("walk " + settings.name);
    sentrel_gui::SetScreenshotFolder(settings.shotsFolder);
    g_driverFailure.clear();
    sentrel_gui::SetFailureHandler(&RecordDriverFailure);
    bool ran = false;
    WizardDriver::Run("", runCommand, [&](WizardDriver& d) {
        ran = true;
        if (settings.name == kProfilesAndRules) ProfilesAndRulesWalk(d, settings, out).Run();
    });
    sentrel_gui::SetFailureHandler(nullptr);
    if (!ran) {
        out.ok = false;
        out.lines.push_back("result FAILED: " + (g_driverFailure.empty() ? std::string("no wizard") : g_driverFailure));
    }
    return out;
}

}  // namespace orblane
