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
    SetUpDetailsList(m_ruleDetails, GetDlgItem(IDC_MODIFY_RULE_DETAILS), 120, 150, IDS_RULE_DETAILS_HEADER);
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
    SetCaption(caption);
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
    if (row < 0) {
        m_strSelAccessID.clear();
        m_ruleDetails.DeleteAllItems();
        ShowWindow(m_ruleDetails.GetSafeHwnd(), SW_HIDE);
        return;
    }
    m_strSelAccessID = m_ruleList.GetItemText(row, 1);
    const AclRecord* record = FindRecord(m_aRules, m_strRuleTypeName, m_strRuleProfileID, m_strSelAccessID);
    if (model == nullptr || record == nullptr) return;
    for (AclType type : {AclType::kEthernet, AclType::kIPv4, AclType::kIPv6, AclType::kPacketContent})
        if (m_strRuleTypeName == TypeWord(type))
            FillDetailsList(m_ruleDetails, acl::RuleDetails(RecordKindFor(*model, Owner(), AclKind::kRules, type), *record));
}

// The rule details follow the selection however it moves; a click shows the clicked rule
// (again, after a deletion emptied the details).
BOOL CACLModifyRule::OnListNotify(const NMHDR* hdr, LRESULT* pResult) {
    if (hdr->hwndFrom != m_ruleList.GetSafeHwnd()) return FALSE;
    if (SelectionChange(hdr) == SelectionMove::kSelected) ShowRuleDetails(m_ruleList.GetFirstSelectedRow());
    if (hdr->code == NM_CLICK) {
        const int row = reinterpret_cast<const NMITEMACTIVATE*>(hdr)->iItem;
        if (row >= 0) ShowRuleDetails(row);
    }
    if (hdr->code != NM_CLICK && hdr->code != LVN_ITEMCHANGED) return FALSE;
    *pResult = 0;
    return TRUE;
}

void CACLModifyRule::OnSelectionCleared(HWND list) {
    if (list == m_ruleList.GetSafeHwnd()) {
        ShowRuleDetails(-1);
    } else {
        CACLModifyPage::OnSelectionCleared(list);
    }
}

void CACLModifyRule::DeleteRules(bool bAll) {
    DeleteRows(
        m_ruleList, m_ruleDetails, bAll, FindRow(m_ruleList, 1, m_strSelAccessID),
        [this](int row) {
            return DeleteOnSwitch(AclKind::kRules, m_strRuleTypeName, m_strRuleProfileID, m_ruleList.GetItemText(row, 1));
        },
        [this](int row) { RemoveRecord(m_aRules, m_strRuleTypeName, m_strRuleProfileID, m_ruleList.GetItemText(row, 1)); });
    m_strSelAccessID.clear();  // the details are emptied
}

void CACLModifyRule::OnDelete() { DeleteRules(false); }
void CACLModifyRule::OnDeleteAll() { DeleteRules(true); }

}  // namespace acl::wizard
