// The profile flows under test: the real wizard opened on "Add profile" with the targets that
// page 0 would have stored, against simulated switches served on 127.0.0.1 ports by threads
// of the test (each program has its own ACL_TEST_PORT_BASE), and the steps a person takes.
#pragma once
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "acl/acl_device.h"
#include "acl/acl_mib.h"
#include "acl/acl_staging.h"
#include "acl/wizard/acl_wizard.h"
#include "host/wizard_driver/acl_forms.h"
#include "sim_agent.h"
#include "tests/gui/support/gui_fixture.h"

namespace profile_flow {

using namespace gui;

using sentrel_gui::PagesOf;

// What a switch holds, read by the ACL core's reader.
inline AclReadResult OnSwitch(SimAgent& agent, const std::string& model, AclOwner owner) {
    return ReadProfiles(AclTarget{agent.address(), "public", "private", model}, owner);
}

// Profiles on a simulated switch, as an earlier apply would have left them.
inline void CreateProfiles(SimAgent& agent, const std::string& model, AclOwner owner,
                           const std::vector<std::pair<AclType, std::string>>& profiles) {
    const ModelEntry& m = *LookupModel(model);
    for (const auto& [type, id] : profiles) {
        ProfileFields f;
        f.profileId = id;
        f.profileName = "p" + id;
        f.vlan = true;
        f.protocolGroup = 5;
        auto table = TableLayout(m, owner, AclKind::kProfiles, type);
        ASSERT_TRUE(table.has_value());
        ASSERT_TRUE(SetRecord({agent.address(), "public", "private", model}, *table, BuildProfile(type, owner, m, f)));
    }
}

class ProfileFlowGui : public GuiTest {
protected:
    // The wizard on "Add profile" (or `nStartPage`) with `targets` (address, model) and the ACL
    // kind, and what `prepare` sets in the sheet's state, as earlier pages would have.
    void Wizard(const std::vector<std::pair<std::string, std::string>>& targets, long nACLKind,
                const std::function<void(WizardDriver&)>& script, int nStartPage = acl::pages::kPageAddProfile,
                const std::function<void(acl::wizard::CACLWizard&)>& prepare = {}) {
        WizardDriver::Run(
            "",
            [&] {
                acl::wizard::CACLWizard wizard;
                for (size_t i = 0; i < targets.size(); ++i)
                    wizard.m_aTargets[i] = {targets[i].first, "public", "private", targets[i].second};
                wizard.m_nTargetCount = static_cast<long>(targets.size());
                wizard.m_nACLKind = nACLKind;
                if (prepare) prepare(wizard);
                wizard.SetStartPage(nStartPage);
                m_wizard = &wizard;
                wizard.DoModal(nullptr);
                m_wizard = nullptr;
            },
            script);
    }
    acl::wizard::CACLStep2& Page() { return m_wizard->AddProfilePage(); }
    bool ReaderRunning() { return Page().IsReaderRunning(static_cast<int>(m_wizard->m_nACLKind)); }
    // Waits until the reader has listed `rows` profiles and ended.
    bool ListedAfterReading(WizardDriver& d, int rows, DWORD timeoutMs = 10000) {
        return d.WaitFor([&] { return d.RowCount(d.Control(IDC_STEP2_PROFILE_LIST)) == rows && !ReaderRunning(); },
                         timeoutMs);
    }
    // From "Add profile" to the type's definition page (protocol "" leaves the list as it is).
    static void ToDefinitionPage(WizardDriver& d, AclType type, const std::string& id, const std::string& protocol = "") {
        ASSERT_EQ(acl::pages::kPageAddProfile, d.ActiveIndex());
        d.ClickButton(PagesOf(type).radio);
        if (!protocol.empty()) {
            ASSERT_TRUE(d.PickCombo(IDC_STEP2_PROTOCOL, protocol));
        }
        ASSERT_TRUE(d.PickCombo(IDC_STEP2_PROFILE_ID, id));
        d.Next();
        ASSERT_EQ(PagesOf(type).profilePage, d.ActiveIndex()) << d.ActiveCaption();
    }
    // "Apply to Switch" on the Confirmation Page: every switch's result word.
    static Strings Apply(WizardDriver& d) {
        EXPECT_EQ(acl::pages::kPageApply, d.ActiveIndex());
        d.ClickButton(IDC_APPLY_APPLY);
        return d.WaitForColumn(d.Control(IDC_APPLY_SWITCH_LIST), 2, 30000);
    }

    acl::wizard::CACLWizard* m_wizard = nullptr;
};

}  // namespace profile_flow
