// The fixture of the profile-flow GUI tests (Parts 5.2 and 5.4): the real wizard, opened on
// page 3 ("Add profile") with the targets that page 0 would have stored, against simulated
// switches served on 127.0.0.1 ports by threads of the test (SimAgent of tests/native/acl;
// each test program sets its own ACL_TEST_PORT_BASE). Helpers act on the pages like a person.
#pragma once
#include <windows.h>
#include <commctrl.h>
#include <prsht.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "acl/acl_device.h"
#include "acl/acl_mib.h"
#include "acl/acl_staging.h"
#include "acl/wizard/acl_wizard.h"
#include "res/resource.h"
#include "sim_agent.h"
#include "tests/gui/support/wizard_driver.h"
#include "tests/win/support/win_test_util.h"
#include "ui/text.h"

namespace profile_flow {

using sentrel_gui::WizardDriver;

inline std::vector<std::string> Texts(const std::vector<sentrel_gui::CaughtBox>& boxes) {
    std::vector<std::string> out;
    for (const auto& b : boxes) out.push_back(b.text);
    return out;
}

// Creates profiles on a simulated switch through the ACL core's writer, as an earlier apply
// would have.
inline void CreateProfiles(SimAgent& agent, const std::string& model, AclOwner owner,
                    const std::vector<std::pair<AclType, std::string>>& profiles) {
    const ModelEntry& m = *LookupModel(model);
    const AclTarget target{agent.address(), "public", "private", model};
    for (const auto& [type, id] : profiles) {
        ProfileFields f;
        f.profileId = id;
        f.profileName = "p" + id;
        f.vlan = true;
        f.protocolGroup = 5;
        auto table = TableLayout(m, owner, AclKind::kProfiles, type);
        ASSERT_TRUE(table.has_value());
        ASSERT_TRUE(SetRecord(target, *table, BuildProfile(type, owner, m, f))) << id;
    }
}

inline void PickComboOf(WizardDriver& d, int id, const std::string& text) {
    SendMessageA(d.Control(id), CB_SELECTSTRING, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(text.c_str()));
    d.Settle();
}

class ProfileFlowGui : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        INITCOMMONCONTROLSEX icc{sizeof icc, ICC_WIN95_CLASSES};
        InitCommonControlsEx(&icc);
        ui::SetResourceInstance(GetModuleHandleA(nullptr));  // the plug-in's resources are linked in
        sentrel_gui::SetScreenshotFolder(sentrel_test::WinPath(SCREENSHOT_DIR));
    }
    void SetUp() override {
        m_folder = sentrel_test::MakeTempFolder("sentrel_gui_profiles_");
        GetCurrentDirectoryA(MAX_PATH, m_oldDirectory);
        SetCurrentDirectoryA(m_folder.c_str());
    }
    void TearDown() override { SetCurrentDirectoryA(m_oldDirectory); }

    // The wizard on page 3 with `targets` (IP, model) and the ACL kind, as pages 0 to 2 leave it.
    void Wizard(const std::vector<std::pair<std::string, std::string>>& targets, long nACLKind,
                const std::function<void(WizardDriver&)>& script, int nStartPage = acl::pages::kPageAddProfile) {
        WizardDriver::Run(
            "",
            [&] {
                acl::wizard::CACLWizard wizard;
                for (size_t i = 0; i < targets.size(); ++i)
                    wizard.m_aTargets[i] = {targets[i].first, "public", "private", targets[i].second};
                wizard.m_nTargetCount = static_cast<long>(targets.size());
                wizard.m_nACLKind = nACLKind;
                wizard.SetStartPage(nStartPage);
                m_wizard = &wizard;
                wizard.DoModal(nullptr);
                m_wizard = nullptr;
            },
            script);
    }
    acl::wizard::CACLStep2& Page() { return m_wizard->AddProfilePage(); }

    static HWND ProfileList(WizardDriver& d) { return d.Control(IDC_STEP2_PROFILE_LIST); }
    static std::vector<std::string> IdItems(WizardDriver& d) {
        std::vector<std::string> out;
        HWND combo = d.Control(IDC_STEP2_PROFILE_ID);
        const int n = static_cast<int>(SendMessageA(combo, CB_GETCOUNT, 0, 0));
        for (int i = 0; i < n; ++i) {
            char text[32] = {};
            SendMessageA(combo, CB_GETLBTEXT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(text));
            out.emplace_back(text);
        }
        return out;
    }
    // Opens and closes the drop-down as a click on it does (CBN_DROPDOWN to the page).
    static void OpenIdDropDown(WizardDriver& d) {
        SendMessageA(d.Control(IDC_STEP2_PROFILE_ID), CB_SHOWDROPDOWN, TRUE, 0);
        d.Settle();
        SendMessageA(d.Control(IDC_STEP2_PROFILE_ID), CB_SHOWDROPDOWN, FALSE, 0);
        d.Settle();
    }
    static void PickCombo(WizardDriver& d, int id, const std::string& text) {
        SendMessageA(d.Control(id), CB_SELECTSTRING, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(text.c_str()));
        d.Settle();
    }
    static void PickDevice(WizardDriver& d, int index) {
        HWND combo = d.Control(IDC_STEP2_DEVICE);
        SendMessageA(combo, CB_SETCURSEL, static_cast<WPARAM>(index), 0);
        // The user's choice notifies the page (CB_SETCURSEL alone does not).
        SendMessageA(GetParent(combo), WM_COMMAND, MAKEWPARAM(IDC_STEP2_DEVICE, CBN_SELCHANGE),
                     reinterpret_cast<LPARAM>(combo));
        d.Settle();
    }

    std::string m_folder;
    char m_oldDirectory[MAX_PATH] = {};
    acl::wizard::CACLWizard* m_wizard = nullptr;
};

}  // namespace profile_flow
