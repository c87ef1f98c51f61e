#include "host/orblane/demo_walk.h"

// The plug-in's dialogs are ANSI; the driver talks to them with the A functions.
#include <windows.h>
#include <commctrl.h>
#include <prsht.h>
#include <tlhelp32.h>

#include <cstdio>
#include <set>

#include "acl/page_logic.h"
#include "res/resource.h"
#include "host/wizard_driver/wizard_driver.h"

namespace orblane {
namespace {

using sentrel_gui::WizardDriver;
namespace pages = acl::pages;

constexpr char kCreateProfiles[] = "create-profiles";
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

std::string Join(const std::vector<std::string>& items) {
    std::string out;
    for (const std::string& item : items) out += (out.empty() ? "" : " ") + item;
    return out;
}

// "create-profiles": two switches of one model, ordinary ACL, "Create Profile", an Ethernet
// profile with the first free profile ID, Apply to Switch; Back to "Add profile" for an IPv4
// (TCP) profile with the next free ID, Apply to Switch; back to the action choice, "Modify Rule"
// deleting a rule of the first switch and "Modify Profile" deleting the IPv4 profile there;
// Finish. One function per page.
class CreateProfilesWalk {
public:
    CreateProfilesWalk(WizardDriver& d, const WalkSettings& settings, WalkOutcome& out)
        : d(d), m_settings(settings), m_out(out) {}

    void Run() {
        m_out.ok = DeviceList() && AclKind() && CreateProfileChoice() &&
                   AddProfile(IDC_STEP2_ETHERNET, pages::kPageEthProfile) && EthernetProfile() && Confirmation() &&
                   ApplyToSwitch() && BackToAddProfile() && AddProfile(IDC_STEP2_IPV4, pages::kPageIPv4Profile) &&
                   Ipv4Profile() && Confirmation() && ApplyToSwitch() && BackToChoice() &&
                   ModifyRule() && BackToChoice() && ModifyProfile() && Finish();
        if (m_out.ok) Log("result ok");
    }

private:
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
        for (int row : picked) {
            if (row != hostRow) d.ClickCell(list, row, pages::kColCheck);
            m_switches.push_back(ip(row));
        }
        m_model = type(picked[0]);
        Log("page 0: checked " + Join(m_switches) + " (" + m_model + ")" +
            (hostRow >= 0 ? "; " + m_settings.hostDevice + " was checked as the host's device" : ""));
        for (const std::string& s : m_switches) Log("switch " + s + " " + m_model);
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

    // Page 3: wait until the reader has listed the first switch's profiles, then the type (IPv4
    // with "TCP") and the first free profile ID (the drop-down leaves out the IDs in use when
    // it opens).
    bool AddProfile(int typeRadio, int definitionPage) {
        if (!OnPage(pages::kPageAddProfile)) return false;
        const std::vector<std::string> devices = d.ComboItems(IDC_STEP2_DEVICE);
        if (devices != m_switches) return Fail("the Device list shows " + Join(devices) + ", not the checked switches");
        const DWORD start = GetTickCount();
        const bool readerDone = d.WaitFor(
            [&] {
                for (DWORD id : ProcessThreads())
                    if (!m_threadsBefore.count(id)) return false;
                return true;
            },
            kReaderWaitMs);
        if (!readerDone) return Fail("the profiles of " + m_switches[0] + " were still being read after 15 s");
        HWND profiles = d.Control(IDC_STEP2_PROFILE_LIST);
        std::string existing;
        for (int row = 0; row < d.RowCount(profiles); ++row)
            existing += " " + d.CellText(profiles, row, 0) + "/" + d.CellText(profiles, row, 1);
        Log("page 3: " + m_switches[0] + " has " + std::to_string(d.RowCount(profiles)) + " profile(s)" + existing +
            " (read in " + std::to_string(GetTickCount() - start) + " ms)");
        d.ClickButton(typeRadio);
        if (typeRadio == IDC_STEP2_IPV4 && !d.PickCombo(IDC_STEP2_PROTOCOL, "TCP"))
            return Fail("the protocol list offers no TCP");
        m_pass = typeRadio == IDC_STEP2_ETHERNET ? "" : "-ipv4";
        d.OpenDropDown(IDC_STEP2_PROFILE_ID);
        const std::vector<std::string> free = d.ComboItems(IDC_STEP2_PROFILE_ID);
        if (free.empty() || !d.PickCombo(IDC_STEP2_PROFILE_ID, free[0])) return Fail("no free profile ID");
        m_profileId = free[0];
        if (IsWindowVisible(d.Control(IDC_STEP2_PROFILE_NAME)))  // TVR4512 names its profiles
            d.TypeText(IDC_STEP2_PROFILE_NAME, "demo" + m_profileId);
        Log("page 3: " + d.Text(typeRadio) + ", profile ID " + m_profileId + ", the first of " +
            std::to_string(free.size()) + " free (" + free.front() + " to " + free.back() + ")");
        Shot("add-profile" + m_pass);
        return NextTo(definitionPage);
    }

    // Page 7: a destination MAC mask and the Ethernet type, Add, one pending row.
    bool EthernetProfile() {
        if (!OnPage(pages::kPageEthProfile)) return false;
        d.ClickButton(IDC_ETH_DST_MAC_CHECK);
        d.TypeText(IDC_ETH_DST_MAC, "FFFFFFFFFFFF");
        d.ClickButton(IDC_ETH_ETHERNET_TYPE);
        d.ClickButton(IDC_ETH_ADD);
        if (!NoMessages()) return false;
        HWND pending = d.Control(IDC_ETH_LIST);
        if (d.RowCount(pending) != 1 || d.CellText(pending, 0, 0) != m_profileId)
            return Fail("Add did not list profile " + m_profileId);
        Log("page 7: pending profile " + m_profileId + ", destination MAC mask " + d.Text(IDC_ETH_DST_MAC));
        Log("profile Ethernet " + m_profileId + " ACL");
        Shot("ethernet-profile");
        return NextTo(pages::kPageApply);
    }

    // Page 6 with the TCP group: "TCP" and a destination port mask, Add, one pending row.
    bool Ipv4Profile() {
        if (!OnPage(pages::kPageIPv4Profile)) return false;
        d.ClickButton(IDC_IPV4_TCP);
        d.ClickButton(IDC_IPV4_TCP_DST_PORT_CHECK);
        d.TypeText(IDC_IPV4_TCP_DST_PORT, "FFFF");
        d.ClickButton(IDC_IPV4_ADD);
        if (!NoMessages()) return false;
        HWND pending = d.Control(IDC_IPV4_LIST);
        if (d.RowCount(pending) != 1 || d.CellText(pending, 0, 0) != m_profileId)
            return Fail("Add did not list profile " + m_profileId);
        Log("page 6: pending profile " + m_profileId + ", " + d.Text(IDC_IPV4_TCP) + " destination port mask " +
            d.Text(IDC_IPV4_TCP_DST_PORT));
        Log("profile IPv4 " + m_profileId + " ACL");
        Shot("ipv4-profile");
        return NextTo(pages::kPageApply);
    }

    // After an apply, Back twice: the definition page (its pending list emptied),
    // then "Add profile", whose reader reads the switch again.
    bool BackToAddProfile() {
        d.Back();
        if (!OnPage(pages::kPageEthProfile)) return false;
        m_threadsBefore = ProcessThreads();
        d.Back();
        return NoMessages();
    }

    // Page 10 before the apply: both switches and the pending profile, its details shown.
    bool Confirmation() {
        if (!OnPage(pages::kPageApply)) return false;
        HWND switches = d.Control(IDC_APPLY_SWITCH_LIST), profiles = d.Control(IDC_APPLY_PROFILE_LIST);
        std::vector<std::string> listed;
        for (int row = 0; row < d.RowCount(switches); ++row) listed.push_back(d.CellText(switches, row, 0));
        if (listed != m_switches) return Fail("the switch list shows " + Join(listed));
        if (d.RowCount(profiles) != 1 || d.CellText(profiles, 0, 0) != m_profileId)
            return Fail("the profile list does not show profile " + m_profileId);
        d.ClickCell(profiles, 0, 0);
        Log("page 10: " + Join(listed) + ", profile " + m_profileId + " " + d.CellText(profiles, 0, 1));
        Shot("confirmation" + m_pass);
        return true;
    }

    // Apply to Switch: wait for every switch's result word.
    bool ApplyToSwitch() {
        HWND switches = d.Control(IDC_APPLY_SWITCH_LIST);
        d.ClickButton(IDC_APPLY_APPLY);
        const int rows = d.RowCount(switches);
        if (d.WaitForColumn(switches, 2, kApplyWaitMs).empty()) return Fail("no result word after 60 s");
        d.Settle();
        bool all = true;
        for (int row = 0; row < rows; ++row) {
            const std::string word = d.CellText(switches, row, 2);
            Log("applied " + d.CellText(switches, row, 0) + " " + word);
            // "Succeed" for ordinary-ACL profiles ("Success" for CPU-ACL ones).
            all = all && (word == "Succeed" || word == "Success");
        }
        Shot("confirmation" + m_pass + "-applied");
        if (!NoMessages()) return false;
        return all || Fail("a switch did not take the profile");
    }

    // Back from the confirmation page (through the definition page and "Add profile") or from
    // a modify page (through "Add profile") to the action choice.
    bool BackToChoice() {
        for (int i = 0; i < 3 && d.ActiveIndex() != pages::kPageSelect; ++i) d.Back();
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
            Shot("modify-rule-deleted");
            return true;
        }
        return Fail("no profile on " + m_switches[0] + " has a rule");
    }

    // Page 12: the profile the walk created last, clicked and deleted.
    bool ModifyProfile() {
        if (!OpenModifyPage(IDC_SELECT_CHOICE3, pages::kPageModifyProfile)) return false;
        HWND profiles = d.Control(IDC_MODIFY_PROFILE_LIST);
        for (int row = 0; row < d.RowCount(profiles); ++row) {
            if (d.CellText(profiles, row, 0) != m_profileId) continue;
            const std::string type = d.CellText(profiles, row, 1);
            d.ClickCell(profiles, row, 0);
            Log("page 12: deleting " + type + " profile " + m_profileId);
            Shot("modify-profile");
            const int before = d.RowCount(profiles);
            d.ClickButton(IDC_MODIFY_DELETE);
            if (!NoMessages()) return false;
            if (d.RowCount(profiles) != before - 1)
                return Fail("the switch kept profile " + m_profileId + ": " + d.Text(IDC_MODIFY_STATUS));
            Log("deleted profile " + Word(type) + " " + m_profileId + " on " + m_switches[0]);
            Shot("modify-profile-deleted");
            return true;
        }
        return Fail("the profile list does not show profile " + m_profileId);
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
    std::string m_model, m_profileId;
    std::string m_pass;  // "" for the Ethernet pass, "-ipv4" for the IPv4 one (screenshot names)
    std::set<DWORD> m_threadsBefore;
    int m_shots = 0;
};

}  // namespace

std::vector<std::string> WalkNames() { return {kCreateProfiles}; }

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
        if (settings.name == kCreateProfiles) CreateProfilesWalk(d, settings, out).Run();
    });
    sentrel_gui::SetFailureHandler(nullptr);
    if (!ran) {
        out.ok = false;
        out.lines.push_back("result FAILED: " + (g_driverFailure.empty() ? std::string("no wizard") : g_driverFailure));
    }
    return out;
}

}  // namespace orblane
