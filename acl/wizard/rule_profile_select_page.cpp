#include "acl/wizard/rule_profile_select_page.h"

#include "acl/rule_form.h"
#include "acl/wizard/details_list.h"
#include "res/resource.h"
#include "ui/controls.h"
#include "ui/text.h"

namespace acl::wizard {

CACLStep4::CACLStep4() : CACLPage(acl::pages::kPageSelectProfile, IDD_ACL_STEP4, kBackNext) {
    m_reader.OnRow([this](AclType type, const AclRecord& record, const AclSummaryLine& line) {
        m_aTables[static_cast<size_t>(type)].push_back(record);
        const int row = m_profileList.InsertItem(m_profileList.GetItemCount(), line.profileId);
        m_profileList.SetItemText(row, 1, line.typeWord);
        m_profileList.SetItemText(row, 2, line.ownerWord);
    });
    m_reader.OnDone([this] { m_bReading = false; });
}

BOOL CACLStep4::OnInitDialog() {
    m_profileList.Attach(GetDlgItem(IDC_STEP4_PROFILE_LIST));
    m_profileList.SetExtendedStyle(LVS_EX_FULLROWSELECT);
    m_profileList.InsertColumn(0, ui::LoadResString(IDS_STEP2_COL_PROFILE_ID), 80);
    m_profileList.InsertColumn(1, ui::LoadResString(IDS_STEP2_COL_PROFILE_TYPE), 110);
    m_profileList.InsertColumn(2, ui::LoadResString(IDS_STEP2_COL_OWNER), 110);
    SetUpDetailsList(m_details, GetDlgItem(IDC_STEP4_DETAILS), 130, 150);
    ui::Button(GetDlgItem(IDC_STEP4_GROUP)).SetFont(GroupFont());
    return TRUE;
}

void CACLStep4::OnDestroy() {
    SwitchReader::Close({&m_reader}, GetSafeHwnd(), 3000);
    m_profileList.Detach();
    m_details.Detach();
}

BOOL CACLStep4::OnSetActive() {
    CACLPage::OnSetActive();  // Back and Next
    const WizardState& wizard = State();
    m_nACLKind = wizard.m_nACLKind;
    ui::ComboBox devices(GetDlgItem(IDC_STEP4_DEVICE));
    devices.ResetContent();
    for (long i = 0; i < wizard.m_nTargetCount; ++i) devices.AddString(wizard.m_aTargets[static_cast<size_t>(i)].strIP);
    SendMessageA(devices.Hwnd(), CB_SETCURSEL, 0, 0);
    ReadDevice(0);
    return TRUE;
}

BOOL CACLStep4::OnKillActive() {
    m_reader.Stop();  // the page is left: the reader stops at its next answer
    return TRUE;
}

// Target `index` becomes the current device and its profiles of the ACL kind are read afresh.
void CACLStep4::ReadDevice(int index) {
    const WizardState& wizard = State();
    m_strProfileID.clear();
    m_strProfileTypeName.clear();
    for (AclRecordList& table : m_aTables) table.clear();
    m_profileList.DeleteAllItems();
    m_details.DeleteAllItems();
    ShowWindow(m_details.GetSafeHwnd(), SW_HIDE);
    if (index < 0 || index >= wizard.m_nTargetCount) {
        m_device = AclTarget{};
        m_bReading = false;
        return;
    }
    const ACLTarget& t = wizard.m_aTargets[static_cast<size_t>(index)];
    m_device = AclTarget{t.strIP, t.strReadCommunity, t.strWriteCommunity, t.strDeviceType};
    if (LookupSupportedModel(m_device.typeText) == nullptr) {
        m_bReading = false;  // a model without ACL tables has nothing to read
        return;
    }
    m_bReading = true;
    m_reader.Start(GetSafeHwnd(), [target = m_device, owner = Owner()](const AclReadOptions& options) {
        ReadProfiles(target, owner, options);
    });
}

BOOL CACLStep4::OnMessage(UINT msg, WPARAM wParam, LPARAM lParam, LRESULT* pResult) {
    if (!SwitchReader::Deliver(msg, wParam, lParam)) return CACLPage::OnMessage(msg, wParam, lParam, pResult);
    *pResult = 0;
    return TRUE;
}

BOOL CACLStep4::OnCommand(WPARAM wParam, LPARAM) {
    if (LOWORD(wParam) != IDC_STEP4_DEVICE || HIWORD(wParam) != CBN_SELCHANGE) return FALSE;
    ReadDevice(static_cast<int>(SendMessageA(GetDlgItem(IDC_STEP4_DEVICE), CB_GETCURSEL, 0, 0)));
    return TRUE;
}

BOOL CACLStep4::OnNotify(const NMHDR* hdr, LRESULT* pResult) {
    if (hdr->hwndFrom != m_profileList.GetSafeHwnd()) return FALSE;
    if (hdr->code == LVN_COLUMNCLICK) {
        SortProfileList(m_profileList, m_sort, reinterpret_cast<const NMLISTVIEW*>(hdr)->iSubItem);
    } else if (hdr->code == NM_CLICK) {
        ChooseRow(reinterpret_cast<const NMITEMACTIVATE*>(hdr)->iItem);
    } else if (hdr->code == LVN_ITEMCHANGED) {
        // The chosen profile follows the selection however it moves (arrow keys too), so Next
        // attaches the rules to the highlighted row. A row losing the selection changes
        // nothing: the row that takes it comes next.
        const auto* change = reinterpret_cast<const NMLISTVIEW*>(hdr);
        if ((change->uChanged & LVIF_STATE) && (change->uNewState & ~change->uOldState & LVIS_SELECTED))
            ChooseRow(change->iItem);
    } else {
        return FALSE;
    }
    *pResult = 0;
    return TRUE;
}

// The profile of `row` becomes the chosen one and its details are shown.
void CACLStep4::ChooseRow(int row) {
    if (row < 0) return;
    m_strProfileID = m_profileList.GetItemText(row, 0);
    m_strProfileTypeName = m_profileList.GetItemText(row, 1);
    ShowProfileDetails(m_details, m_aTables, m_strProfileID, m_strProfileTypeName, Owner(), m_device.typeText);
}

acl::pages::NavInput CACLStep4::MakeNavInput() const {
    acl::pages::NavInput in = CACLPage::MakeNavInput();
    in.strProfileTypeName = m_strProfileTypeName;
    return in;
}

// Next: the chosen profile's fields into the sheet, then the rule page of its type.
LRESULT CACLStep4::OnWizardNext() {
    if (m_bReading) {
        ui::MessageBoxOk(GetSafeHwnd(), ui::LoadResString(IDS_MSG_PROFILES_READING));
        return kStay;
    }
    const AclRecord* profile = FindRecord(m_aTables, m_strProfileTypeName, m_strProfileID);
    const acl::pages::Jump jump = acl::pages::NextJump(Index(), MakeNavInput());
    if (profile == nullptr || jump.kind == acl::pages::Jump::kStay) {
        ui::MessageBoxOk(GetSafeHwnd(), ui::LoadResString(IDS_MSG_NO_PROFILE));
        return kStay;
    }
    WizardState& wizard = State();
    for (AclType type : {AclType::kEthernet, AclType::kIPv4, AclType::kIPv6, AclType::kPacketContent}) {
        if (m_strProfileTypeName != TypeWord(type)) continue;
        const std::vector<std::string> fields = acl::ChosenProfileFields(type, *profile);
        auto copy = [&fields](auto& target) {
            for (size_t i = 0; i < target.size(); ++i) target[i] = i < fields.size() ? fields[i] : std::string();
        };
        if (type == AclType::kEthernet) copy(wizard.m_astrEthProfile);
        if (type == AclType::kIPv4) copy(wizard.m_astrIPv4Profile);
        if (type == AclType::kIPv6) copy(wizard.m_astrIPv6Profile);
        if (type == AclType::kPacketContent) wizard.m_strPacketProfileID = fields.empty() ? "" : fields[0];
    }
    return Go(jump);
}

}  // namespace acl::wizard
