#include "acl/wizard/ethernet_profile_page.h"

#include "res/resource.h"
#include "ui/controls.h"
#include "ui/text.h"

namespace acl::wizard {
namespace {

constexpr int kCheckIds[] = {IDC_ETH_SRC_MAC_CHECK, IDC_ETH_DST_MAC_CHECK, IDC_ETH_VLAN, IDC_ETH_8021P,
                             IDC_ETH_ETHERNET_TYPE};

}  // namespace

CACLSTEP_ETH::CACLSTEP_ETH()
    : CProfileDefinitionPage(acl::pages::kPageEthProfile, IDD_ACL_STEP_ETH, AclType::kEthernet,
                             {IDC_ETH_LIST, IDC_ETH_ADD, IDC_ETH_DELETE}) {}

BOOL CACLSTEP_ETH::OnInitDialog() {
    SendMessageA(GetDlgItem(IDC_ETH_SRC_MAC), EM_LIMITTEXT, 12, 0);
    SendMessageA(GetDlgItem(IDC_ETH_DST_MAC), EM_LIMITTEXT, 12, 0);
    return CProfileDefinitionPage::OnInitDialog();
}

void CACLSTEP_ETH::OnActivate() {
    // 1 (untagged) disables "VLAN" and "802.1P", 2 (tagged) enables them; the
    // protocol options (3 to 7) leave them as they are.
    const long frameOption = State().m_nFrameOption;
    if (frameOption == 1 || frameOption == 2) {
        const BOOL enable = frameOption == 2;
        EnableWindow(GetDlgItem(IDC_ETH_VLAN), enable);
        EnableWindow(GetDlgItem(IDC_ETH_8021P), enable);
    }
    if (Model() == "TVG5580" && ACLKind() != 1) EnableWindow(GetDlgItem(IDC_ETH_8021P), FALSE);
    ClearMasks();
}

void CACLSTEP_ETH::ClearMasks() {
    for (int id : kCheckIds) ui::Button(GetDlgItem(id)).SetCheck(false);
    SetWindowTextA(GetDlgItem(IDC_ETH_SRC_MAC), "");
    SetWindowTextA(GetDlgItem(IDC_ETH_DST_MAC), "");
    EnableMacEdits();
}

// Each MAC check box enables its edit.
void CACLSTEP_ETH::EnableMacEdits() {
    EnableWindow(GetDlgItem(IDC_ETH_SRC_MAC), ui::Button(GetDlgItem(IDC_ETH_SRC_MAC_CHECK)).IsChecked());
    EnableWindow(GetDlgItem(IDC_ETH_DST_MAC), ui::Button(GetDlgItem(IDC_ETH_DST_MAC_CHECK)).IsChecked());
}

ProfileFields CACLSTEP_ETH::ReadFields() const {
    ProfileFields f;
    f.vlan = ui::Button(GetDlgItem(IDC_ETH_VLAN)).IsChecked();
    f.p8021 = ui::Button(GetDlgItem(IDC_ETH_8021P)).IsChecked();
    f.ethernetType = ui::Button(GetDlgItem(IDC_ETH_ETHERNET_TYPE)).IsChecked();
    f.srcMacChecked = ui::Button(GetDlgItem(IDC_ETH_SRC_MAC_CHECK)).IsChecked();
    f.dstMacChecked = ui::Button(GetDlgItem(IDC_ETH_DST_MAC_CHECK)).IsChecked();
    f.srcMac = ui::GetWindowTextString(GetDlgItem(IDC_ETH_SRC_MAC));
    f.dstMac = ui::GetWindowTextString(GetDlgItem(IDC_ETH_DST_MAC));
    return f;
}

// Clicking a pending row loads it back: mask state 4 both, 2 destination, 3 source, else none.
void CACLSTEP_ETH::OnPendingRowClicked(int row) {
    const AclRecord& r = Pending()[static_cast<size_t>(row)];
    const std::string& state = r[2];
    const bool src = state == "4" || state == "3";
    const bool dst = state == "4" || state == "2";
    ui::Button(GetDlgItem(IDC_ETH_VLAN)).SetCheck(r[1] == "1");
    ui::Button(GetDlgItem(IDC_ETH_SRC_MAC_CHECK)).SetCheck(src);
    ui::Button(GetDlgItem(IDC_ETH_DST_MAC_CHECK)).SetCheck(dst);
    SetWindowTextA(GetDlgItem(IDC_ETH_SRC_MAC), src ? r[3].c_str() : "");
    SetWindowTextA(GetDlgItem(IDC_ETH_DST_MAC), dst ? r[4].c_str() : "");
    ui::Button(GetDlgItem(IDC_ETH_8021P)).SetCheck(r[5] == "1");
    ui::Button(GetDlgItem(IDC_ETH_ETHERNET_TYPE)).SetCheck(r[6] == "1");
    EnableMacEdits();
}

BOOL CACLSTEP_ETH::OnFieldCommand(int id, int code) {
    if (code == BN_CLICKED && (id == IDC_ETH_SRC_MAC_CHECK || id == IDC_ETH_DST_MAC_CHECK)) {
        EnableMacEdits();
        return TRUE;
    }
    return FALSE;
}

}  // namespace acl::wizard
