#include "acl/wizard/device_list_page.h"

#include "res/resource.h"
#include "shell/host_inventory.h"
#include "ui/controls.h"
#include "ui/text.h"
#include "ui/win_handles.h"

namespace acl::wizard {

using namespace acl::pages;

CACLStep0::CACLStep0() : CACLPage(kPageDeviceList, IDD_ACL_STEP0, kNext) {}

BOOL CACLStep0::OnInitDialog() {
    FillSupportedTypes();
    m_list.Attach(GetDlgItem(IDC_STEP0_LIST));
    m_panel.Setup(GetSafeHwnd(), GetDlgItem(IDC_STEP0_TREE), m_list);
    // With a submap open, its devices at once, and the host's current device checked.
    if (shell::g_lOpenedSubmapID != -1) {
        m_panel.FillFromSelectedNode();
        shell::SelectHostCurrentDevice(m_panel);
    }
    return TRUE;
}

// The device types whose registry subkey carries a non-empty "ACLExe" value.
void CACLStep0::FillSupportedTypes() {
    ui::ComboBox types(GetDlgItem(IDC_STEP0_TYPES));
    types.ResetContent();
    ui::UniqueRegKey key;
    if (RegOpenKeyExA(HKEY_CURRENT_USER, shell::DeviceTypesKeyPath().c_str(), 0, KEY_READ, key.put()) != ERROR_SUCCESS)
        return;  // every selection is then refused with the first message
    for (DWORD index = 0;; ++index) {
        char name[100] = {};  // names of up to 99 characters
        DWORD length = sizeof name;
        const LONG status = RegEnumKeyExA(key.get(), index, name, &length, nullptr, nullptr, nullptr, nullptr);
        if (status == ERROR_NO_MORE_ITEMS) break;
        if (status != ERROR_SUCCESS) continue;
        ui::UniqueRegKey sub;
        if (RegOpenKeyExA(key.get(), name, 0, KEY_READ, sub.put()) != ERROR_SUCCESS) continue;
        char value[100] = {};  // "ACLExe" is read into 100 bytes
        DWORD size = sizeof value - 1;
        DWORD type = 0;
        if (RegQueryValueExA(sub.get(), shell::kACLExe, nullptr, &type, reinterpret_cast<BYTE*>(value), &size) ==
                ERROR_SUCCESS &&
            (type == REG_SZ || type == REG_EXPAND_SZ) && value[0] != '\0')
            types.AddString(name);
    }
}

LRESULT CACLStep0::OnWizardNext() {
    std::vector<CheckedDevice> checked;
    for (int row = 0, n = m_list.GetItemCount(); row < n; ++row) {
        if (m_list.GetCheckState(row, kColCheck) != 1) continue;
        checked.push_back({m_list.GetItemText(row, kColType), m_list.GetItemText(row, kColIP),
                           m_list.GetItemText(row, kColReadCommunity), m_list.GetItemText(row, kColWriteCommunity)});
    }
    ui::ComboBox typesCombo(GetDlgItem(IDC_STEP0_TYPES));
    std::vector<std::string> supported;
    for (int i = 0, n = typesCombo.GetCount(); i < n; ++i) supported.push_back(typesCombo.GetLBText(i));

    const TargetSelection selection = SelectTargets(checked, supported);
    // The targets accepted so far stay in the sheet, also when the selection is refused.
    WizardState& wizard = State();
    for (size_t i = 0; i < selection.targets.size(); ++i) {
        const CheckedDevice& d = selection.targets[i];
        wizard.m_aTargets[i] = {d.strIP, d.strReadCommunity, d.strWriteCommunity, d.strDeviceType};
    }
    wizard.m_nTargetCount = static_cast<long>(selection.targets.size());

    UINT message = 0;
    switch (selection.verdict) {
    case TargetVerdict::kAccepted: return CACLPage::OnWizardNext();
    case TargetVerdict::kNoDevice: message = IDS_MSG_SELECT_DEVICE; break;
    case TargetVerdict::kNotSupported: message = IDS_MSG_NO_ACL_FUNCTION; break;
    case TargetVerdict::kDifferentType: message = IDS_MSG_SAME_TYPE; break;
    // More than 10 switches are refused as a whole with a message,
    // so no part of a selection is ever dropped without the user knowing.
    case TargetVerdict::kTooManyDevices: message = IDS_MSG_TOO_MANY_DEVICES; break;
    }
    ui::MessageBoxOk(GetSafeHwnd(), ui::LoadResString(message));
    return kStay;
}

BOOL CACLStep0::OnNotify(const NMHDR* hdr, LRESULT* pResult) {
    if (hdr->hwndFrom == m_panel.Tree() && hdr->code == NM_CLICK) {
        *pResult = m_panel.OnTreeClick();
        return TRUE;
    }
    if (hdr->hwndFrom == m_list.GetSafeHwnd()) {
        if (hdr->code == LVN_COLUMNCLICK) {
            SortByColumn(reinterpret_cast<const NMLISTVIEW*>(hdr)->iSubItem);
            *pResult = 0;
            return TRUE;
        }
        if (hdr->code == NM_RCLICK) {
            // a right click on a row toggles the row's check box.
            const auto* item = reinterpret_cast<const NMITEMACTIVATE*>(hdr);
            LVHITTESTINFO hit{};
            hit.pt = item->ptAction;
            const int row = static_cast<int>(SendMessageA(m_list.GetSafeHwnd(), LVM_SUBITEMHITTEST, 0,
                                                          reinterpret_cast<LPARAM>(&hit)));
            if (row >= 0) ToggleRowCheck(row);
            *pResult = 0;
            return TRUE;
        }
    }
    return FALSE;
}

void CACLStep0::ToggleRowCheck(int row) {
    const int state = m_list.GetCheckState(row, kColCheck);
    if (state >= 0 && m_list.IsRowEnabled(row)) m_list.SetCheckState(row, kColCheck, state == 1 ? 0 : 1);
}

void CACLStep0::SortByColumn(int column) {
    const bool ascending = m_sort.Click(column);
    m_list.SortRows(
        column, [column](const std::string& a, const std::string& b) { return CompareDeviceColumn(column, a, b); },
        ascending);
}

}  // namespace acl::wizard
