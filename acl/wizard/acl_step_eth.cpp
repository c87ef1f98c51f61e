#include "acl/wizard/acl_step_eth.h"

#include "acl/acl_staging.h"
#include "acl/wizard/acl_wizard.h"
#include "res/resource.h"
#include "ui/controls.h"
#include "ui/text.h"

namespace acl::wizard {
namespace {

// Part 5.2: pending-list columns (header, width); the last three hold row status, profile
// name and a spare cell.
struct Column {
    const char* header;
    int width;
};
const Column kColumns[] = {{"ProfileID", 80},      {"UseVLAN", 80},   {"MacAddrMaskState", 80},
                           {"SrcMacAddrMask", 120}, {"DstMacAddrMask", 120}, {"Use802.1P", 80},
                           {"EthernetType", 80},   {"", 5},          {"", 5},
                           {"", 5}};
constexpr int kCheckIds[] = {IDC_ETH_SRC_MAC_CHECK, IDC_ETH_DST_MAC_CHECK, IDC_ETH_VLAN, IDC_ETH_8021P,
                             IDC_ETH_ETHERNET_TYPE};

AclOwner OwnerOf(long nACLKind) { return nACLKind == 1 ? AclOwner::kAcl : AclOwner::kCpu; }

}  // namespace

CACLSTEP_ETH::CACLSTEP_ETH() : CACLPage(acl::pages::kPageEthProfile, IDD_ACL_STEP_ETH, kBackNext) {}

BOOL CACLSTEP_ETH::OnInitDialog() {
    SendMessageA(GetDlgItem(IDC_ETH_SRC_MAC), EM_LIMITTEXT, 12, 0);
    SendMessageA(GetDlgItem(IDC_ETH_DST_MAC), EM_LIMITTEXT, 12, 0);
    m_list.Attach(GetDlgItem(IDC_ETH_LIST));
    m_list.SetExtendedStyle(LVS_EX_FULLROWSELECT);
    int column = 0;
    for (const Column& c : kColumns) m_list.InsertColumn(column++, c.header, c.width);
    return TRUE;
}

void CACLSTEP_ETH::OnDestroy() { m_list.Detach(); }

BOOL CACLSTEP_ETH::OnSetActive() {
    CACLPage::OnSetActive();  // Back and Next
    CACLWizard& wizard = Wizard();
    m_strModel = wizard.m_nTargetCount > 0 ? wizard.m_aTargets[0].strDeviceType : std::string();
    m_nACLKind = wizard.m_nACLKind;
    if (wizard.m_bProfilesApplied) {
        m_pending.clear();
        m_list.DeleteAllItems();
    }
    // Part 5.2: 1 (untagged) disables "VLAN" and "802.1P", 2 (tagged) enables them; the
    // protocol options (3 to 7) leave them as they are.
    if (wizard.m_nFrameOption == 1 || wizard.m_nFrameOption == 2) {
        const BOOL enable = wizard.m_nFrameOption == 2;
        EnableWindow(GetDlgItem(IDC_ETH_VLAN), enable);
        EnableWindow(GetDlgItem(IDC_ETH_8021P), enable);
    }
    if (m_strModel == "TVG5580" && m_nACLKind != 1) EnableWindow(GetDlgItem(IDC_ETH_8021P), FALSE);
    ClearMasks();
    return TRUE;
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

// Add: a profile ID already pending is skipped without a word; a checked MAC mask that is not
// 12 hexadecimal digits gives "Invalid MAC Address !" and no row (the input stays).
void CACLSTEP_ETH::OnAdd() {
    CACLWizard& wizard = Wizard();
    ProfileFields f;
    f.profileId = wizard.m_strProfileID;
    f.profileName = wizard.m_strProfileName;
    f.vlan = ui::Button(GetDlgItem(IDC_ETH_VLAN)).IsChecked();
    f.p8021 = ui::Button(GetDlgItem(IDC_ETH_8021P)).IsChecked();
    f.ethernetType = ui::Button(GetDlgItem(IDC_ETH_ETHERNET_TYPE)).IsChecked();
    f.srcMacChecked = ui::Button(GetDlgItem(IDC_ETH_SRC_MAC_CHECK)).IsChecked();
    f.dstMacChecked = ui::Button(GetDlgItem(IDC_ETH_DST_MAC_CHECK)).IsChecked();
    f.srcMac = ui::GetWindowTextString(GetDlgItem(IDC_ETH_SRC_MAC));
    f.dstMac = ui::GetWindowTextString(GetDlgItem(IDC_ETH_DST_MAC));
    for (const AclRecord& r : m_pending)
        if (!r.empty() && r[0] == f.profileId) return;
    if (ValidateProfile(AclType::kEthernet, f) != nullptr) {
        ui::MessageBoxOk(GetSafeHwnd(), ui::LoadResString(IDS_MSG_INVALID_MAC));
        return;
    }
    const ModelEntry* model = LookupModel(m_strModel);
    if (model == nullptr) return;
    AclRecord record = BuildProfile(AclType::kEthernet, OwnerOf(m_nACLKind), *model, f);
    if (!AddProfile(m_pending, record)) return;
    const int row = m_list.InsertItem(m_list.GetItemCount(), record[0]);
    for (size_t c = 1; c < record.size() && c < std::size(kColumns); ++c)
        m_list.SetItemText(row, static_cast<int>(c), record[c]);
}

void CACLSTEP_ETH::OnDelete() {
    const int row = m_list.GetFirstSelectedRow();
    if (row < 0 || static_cast<size_t>(row) >= m_pending.size()) return;
    m_pending.erase(m_pending.begin() + row);
    m_list.DeleteItem(row);
}

// Clicking a pending row loads it back: mask state 4 both, 2 destination, 3 source, else none.
void CACLSTEP_ETH::LoadRow(int row) {
    if (row < 0 || static_cast<size_t>(row) >= m_pending.size()) return;
    const AclRecord& r = m_pending[static_cast<size_t>(row)];
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

BOOL CACLSTEP_ETH::OnCommand(WPARAM wParam, LPARAM) {
    if (HIWORD(wParam) != BN_CLICKED) return FALSE;
    switch (LOWORD(wParam)) {
    case IDC_ETH_SRC_MAC_CHECK:
    case IDC_ETH_DST_MAC_CHECK:
        EnableMacEdits();
        return TRUE;
    case IDC_ETH_ADD:
        OnAdd();
        return TRUE;
    case IDC_ETH_DELETE:
        OnDelete();
        return TRUE;
    default:
        return FALSE;
    }
}

BOOL CACLSTEP_ETH::OnNotify(const NMHDR* hdr, LRESULT* pResult) {
    if (hdr->hwndFrom == m_list.GetSafeHwnd() && hdr->code == NM_CLICK) {
        LoadRow(reinterpret_cast<const NMITEMACTIVATE*>(hdr)->iItem);
        *pResult = 0;
        return TRUE;
    }
    return FALSE;
}

// Next: the pending list to "\ACLEthernet.ini" (Part 4.5), m_nProfileType 1, then page 10.
LRESULT CACLSTEP_ETH::OnWizardNext() {
    WriteStagingFile(kStagingEthernet, m_pending, RecordCellCount({OwnerOf(m_nACLKind), AclKind::kProfiles,
                                                                   AclType::kEthernet, PacketShape::kNone}));
    Wizard().m_nProfileType = acl::pages::ProfileTypeOfPage(Index());
    return CACLPage::OnWizardNext();
}

}  // namespace acl::wizard
