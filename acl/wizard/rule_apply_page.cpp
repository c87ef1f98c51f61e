#include "acl/wizard/rule_apply_page.h"

#include "acl/acl_staging.h"
#include "acl/wizard/apply_run.h"
#include "acl/wizard/rule_columns.h"
#include "res/resource.h"
#include "ui/controls.h"
#include "ui/text.h"

namespace acl::wizard {
namespace {

constexpr AclType kTypes[] = {AclType::kEthernet, AclType::kIPv4, AclType::kIPv6, AclType::kPacketContent};

}  // namespace

CACLRuleApply::CACLRuleApply() : CACLPage(acl::pages::kPageRuleApply, IDD_ACL_RULE_APPLY, kBackFinish) {}

BOOL CACLRuleApply::OnInitDialog() {
    SetUpSwitchList(m_switchList, GetDlgItem(IDC_RAPPLY_SWITCH_LIST));
    m_ruleList.Attach(GetDlgItem(IDC_RAPPLY_RULE_LIST));
    m_ruleList.SetExtendedStyle(LVS_EX_FULLROWSELECT);
    m_ruleList.InsertColumn(0, ui::LoadResString(IDS_STEP2_COL_PROFILE_ID), 60);
    m_ruleList.InsertColumn(1, ui::LoadResString(IDS_RCOL_ACCESS_ID), 60);
    m_ruleList.InsertColumn(2, ui::LoadResString(IDS_RCOL_TYPE), 90);
    m_ruleList.InsertColumn(3, ui::LoadResString(IDS_RCOL_ACTION), 60);
    m_details.Attach(GetDlgItem(IDC_RAPPLY_DETAILS));
    m_details.InsertColumn(0, ui::LoadResString(IDS_RULE_DETAILS_HEADER), 100);
    m_details.InsertColumn(1, ui::LoadResString(IDS_COL_BLANK), 110);
    return TRUE;
}

void CACLRuleApply::OnDestroy() {
    m_switchList.Detach();
    m_ruleList.Detach();
    m_details.Detach();
}

BOOL CACLRuleApply::OnSetActive() {
    CACLPage::OnSetActive();  // Back and Finish
    WizardState& wizard = State();
    const AclOwner owner = wizard.m_nACLKind == 1 ? AclOwner::kAcl : AclOwner::kCpu;
    m_ruleList.DeleteAllItems();
    m_details.DeleteAllItems();
    ShowWindow(m_details.GetSafeHwnd(), SW_HIDE);
    FillSwitchList(m_switchList, wizard);
    ui::Button group(GetDlgItem(IDC_RAPPLY_GROUP_RULE));
    group.SetText(ui::LoadResString(owner == AclOwner::kCpu ? IDS_RULE_APPLY_CPU_GROUP : IDS_RULE_APPLY_GROUP));
    group.SetFont(GroupFont());
    // The rule files of the kind, for the types the model has rules of; a missing file gives
    // an empty list.
    const ModelEntry* model = wizard.m_nTargetCount > 0 ? LookupModel(wizard.m_aTargets[0].strDeviceType) : nullptr;
    for (AclType type : kTypes) {
        AclRecordList& list = m_lists[static_cast<size_t>(type)];
        list.clear();
        if (model == nullptr || !model->offersRuleType(owner, type)) continue;
        const auto file = StagingFileFor(*model, owner, AclKind::kRules, type);
        if (!file) continue;
        list = ReadStagingFile(file->name, file->cellCount, file->bufferSize);
        const auto columns = RuleColumnsFor(type, owner, model->packetShape(owner, AclKind::kRules));
        for (size_t i = 0; i < list.size(); ++i) {
            const AclRecord& r = list[i];
            const int row = m_ruleList.InsertItem(m_ruleList.GetItemCount(), r.empty() ? "" : r[0]);
            // Which record the row shows: type in the high bits.
            m_ruleList.SetRowData(row, (static_cast<DWORD_PTR>(type) << 16) | i);
            m_ruleList.SetItemText(row, 1, r.size() > 1 ? r[1] : "");
            m_ruleList.SetItemText(row, 2, TypeWord(type));
            for (size_t c = 0; c < r.size() && c < columns.size(); ++c)
                if (columns[c].idsHeader == IDS_RCOL_PERMIT) m_ruleList.SetItemText(row, 3, ActionStagingWord(r[c]));
        }
    }
    return TRUE;
}

// Clicking a pending rule shows its fields under the names of the rule pages' columns.
void CACLRuleApply::ShowDetails(int row) {
    if (row < 0 || row >= m_ruleList.GetItemCount()) return;
    const WizardState& wizard = State();
    const ModelEntry* model = wizard.m_nTargetCount > 0 ? LookupModel(wizard.m_aTargets[0].strDeviceType) : nullptr;
    if (model == nullptr) return;
    const AclOwner owner = wizard.m_nACLKind == 1 ? AclOwner::kAcl : AclOwner::kCpu;
    const DWORD_PTR data = m_ruleList.GetRowData(row);
    const auto type = static_cast<AclType>((data >> 16) & 0x3);
    const size_t index = data & 0xFFFF;
    const AclRecordList& list = m_lists[static_cast<size_t>(type)];
    if (index >= list.size()) return;
    const AclRecord& record = list[index];
    const auto columns = RuleColumnsFor(type, owner, model->packetShape(owner, AclKind::kRules));
    m_details.DeleteAllItems();
    for (size_t c = 0; c < columns.size() && c < record.size(); ++c) {
        if (columns[c].idsHeader == 0) continue;
        const int line = m_details.InsertItem(m_details.GetItemCount(), ui::LoadResString(columns[c].idsHeader));
        m_details.SetItemText(line, 1, record[c]);
    }
    ShowWindow(m_details.GetSafeHwnd(), SW_SHOW);
}

BOOL CACLRuleApply::OnCommand(WPARAM wParam, LPARAM) {
    if (HIWORD(wParam) != BN_CLICKED) return FALSE;
    switch (LOWORD(wParam)) {
    case IDC_RAPPLY_APPLY:
        ApplyToTargets(State(), AclKind::kRules, GetDlgItem(IDC_RAPPLY_PROGRESS), m_switchList, m_lists,
                       [] { ::DeleteRuleStagingFiles(); });
        m_ruleList.DeleteAllItems();
        ShowWindow(m_details.GetSafeHwnd(), SW_HIDE);
        return TRUE;
    case IDC_RAPPLY_NEXT_DEVICE:
        Sheet()->SetActivePage(acl::pages::kPageDeviceList);
        return TRUE;
    default:
        return FALSE;
    }
}

BOOL CACLRuleApply::OnNotify(const NMHDR* hdr, LRESULT* pResult) {
    if (hdr->hwndFrom == m_ruleList.GetSafeHwnd() && hdr->code == NM_CLICK) {
        ShowDetails(reinterpret_cast<const NMITEMACTIVATE*>(hdr)->iItem);
        *pResult = 0;
        return TRUE;
    }
    return FALSE;
}

BOOL CACLRuleApply::OnWizardFinish() {
    ::DeleteRuleStagingFiles();
    return TRUE;
}

// Runs whenever the wizard is cancelled after this page was created, whichever page shows.
void CACLRuleApply::OnCancel() { ::DeleteRuleStagingFiles(); }

}  // namespace acl::wizard
