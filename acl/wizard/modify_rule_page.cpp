#include "acl/wizard/modify_rule_page.h"

#include "acl/rule_details.h"
#include "acl/wizard/details_list.h"
#include "res/resource.h"
#include "ui/controls.h"
#include "ui/text.h"

namespace acl::wizard {

CACLModifyRule::CACLModifyRule() : CACLModifyPage(acl::pages::kPageModifyRule, IDD_ACL_MODIFY_RULE) {}

BOOL CACLModifyRule::OnInitDialog() {
    CACLModifyPage::OnInitDialog();
    m_ruleList.Attach(GetDlgItem(IDC_MODIFY_RULE_LIST));
    m_ruleList.SetExtendedStyle(LVS_EX_FULLROWSELECT);
    m_ruleList.InsertColumn(0, ui::LoadResString(IDS_STEP2_COL_PROFILE_ID), 80);
    m_ruleList.InsertColumn(1, ui::LoadResString(IDS_MODIFY_COL_ACCESS_ID), 80);
    m_ruleList.InsertColumn(2, ui::LoadResString(IDS_STEP2_COL_OWNER), 110);
    SetUpDetailsList(m_ruleDetails, GetDlgItem(IDC_MODIFY_RULE_DETAILS), 120, 150);
    // Only the clicked profile's rules: the rule table holds those of every profile of its type.
    m_ruleReader.OnRow([this](AclType type, const AclRecord& record, const AclSummaryLine& line) {
        if (line.profileId != m_strRuleProfileID) return;
        m_aRules[static_cast<size_t>(type)].push_back(record);
        const int index = m_ruleList.InsertItem(m_ruleList.GetItemCount(), line.profileId);
        m_ruleList.SetItemText(index, 1, line.accessId);
        m_ruleList.SetItemText(index, 2, line.ownerWord);
    });
    ui::Button group(GetDlgItem(IDC_MODIFY_RULE_GROUP));
    group.SetText(ui::LoadResString(IDS_MODIFY_GROUP_RULE));
    group.SetFont(GroupFont());
    return TRUE;
}

BOOL CACLModifyRule::OnSetActive() {
    CACLModifyPage::OnSetActive();
    const std::string caption =
        ui::LoadResString(m_nACLKind == 1 ? IDS_MODIFY_RULE_CAPTION : IDS_MODIFY_CPU_RULE_CAPTION);
    SetWindowTextA(GetSafeHwnd(), caption.c_str());
    PropSheet_SetTitle(Sheet()->GetSafeHwnd(), 0, caption.c_str());
    return TRUE;
}

void CACLModifyRule::OnDestroy() {
    CACLModifyPage::OnDestroy();
    m_ruleList.Detach();
    m_ruleDetails.Detach();
}

void CACLModifyRule::ClearRules() {
    for (AclRecordList& table : m_aRules) table.clear();
    m_ruleList.DeleteAllItems();
    m_ruleDetails.DeleteAllItems();
    ShowWindow(m_ruleDetails.GetSafeHwnd(), SW_HIDE);
    m_strSelAccessID.clear();
}

// The profiles are read again (or one was deleted): its rules no longer belong to a shown profile.
void CACLModifyRule::OnProfilesEmptied() {
    m_ruleReader.Stop();
    m_strRuleProfileID.clear();
    m_strRuleTypeName.clear();
    ClearRules();
}

// The clicked profile's rules: the reader of its type's rule table for the model and owner.
void CACLModifyRule::OnProfileClicked() {
    ClearRules();
    m_strRuleProfileID = m_strSelProfileID;
    m_strRuleTypeName = m_strSelTypeName;
    for (AclType type : {AclType::kEthernet, AclType::kIPv4, AclType::kIPv6, AclType::kPacketContent}) {
        if (m_strSelTypeName != TypeWord(type)) continue;
        m_ruleReader.Start(GetSafeHwnd(), [target = m_device, owner = Owner(), type](const AclReadOptions& o) {
            ReadRules(target, owner, type, o);
        });
    }
}

void CACLModifyRule::ShowRuleDetails(int row) {
    const ModelEntry* model = LookupModel(m_device.typeText);
    m_strSelAccessID = m_ruleList.GetItemText(row, 1);
    const AclRecord* record = FindRecord(m_aRules, m_strRuleTypeName, m_strRuleProfileID, m_strSelAccessID);
    if (model == nullptr || record == nullptr) return;
    for (AclType type : {AclType::kEthernet, AclType::kIPv4, AclType::kIPv6, AclType::kPacketContent})
        if (m_strRuleTypeName == TypeWord(type))
            FillDetailsList(m_ruleDetails, acl::RuleDetails(RecordKindFor(*model, Owner(), AclKind::kRules, type), *record));
}

BOOL CACLModifyRule::OnListNotify(const NMHDR* hdr, LRESULT* pResult) {
    if (hdr->hwndFrom != m_ruleList.GetSafeHwnd() || hdr->code != NM_CLICK) return FALSE;
    const int row = reinterpret_cast<const NMITEMACTIVATE*>(hdr)->iItem;
    if (row >= 0) ShowRuleDetails(row);
    *pResult = 0;
    return TRUE;
}

// Delete: the selected rule on the switch; its row goes when the switch confirmed.
void CACLModifyRule::OnDelete() {
    const int row = m_ruleList.GetFirstSelectedRow();
    if (row < 0) return;
    const HCURSOR previous = SetCursor(LoadCursorA(nullptr, MAKEINTRESOURCEA(32514)));  // IDC_WAIT
    const std::string accessId = m_ruleList.GetItemText(row, 1);
    const bool ok = DeleteOnSwitch(AclKind::kRules, m_strRuleTypeName, m_strRuleProfileID, accessId);
    if (ok) {
        m_ruleList.DeleteItem(row);
        RemoveRecord(m_aRules, m_strRuleTypeName, m_strRuleProfileID, accessId);
        m_ruleDetails.DeleteAllItems();
        ShowWindow(m_ruleDetails.GetSafeHwnd(), SW_HIDE);
    }
    ReportKept(ok ? 0 : 1);
    SetCursor(previous);
}

// Delete All: every rule of the list, in list order; the rows the switch confirmed go.
void CACLModifyRule::OnDeleteAll() {
    const int n = m_ruleList.GetItemCount();
    if (n == 0) return;
    const HCURSOR previous = SetCursor(LoadCursorA(nullptr, MAKEINTRESOURCEA(32514)));  // IDC_WAIT
    std::vector<bool> deleted(static_cast<size_t>(n));
    for (int row = 0; row < n; ++row)
        deleted[static_cast<size_t>(row)] =
            DeleteOnSwitch(AclKind::kRules, m_strRuleTypeName, m_strRuleProfileID, m_ruleList.GetItemText(row, 1));
    int kept = 0;
    for (int row = n - 1; row >= 0; --row) {
        if (!deleted[static_cast<size_t>(row)]) {
            ++kept;
            continue;
        }
        RemoveRecord(m_aRules, m_strRuleTypeName, m_strRuleProfileID, m_ruleList.GetItemText(row, 1));
        m_ruleList.DeleteItem(row);
    }
    m_ruleDetails.DeleteAllItems();
    ShowWindow(m_ruleDetails.GetSafeHwnd(), SW_HIDE);
    ReportKept(kept);
    SetCursor(previous);
}

}  // namespace acl::wizard
