#include "acl/wizard/rule_apply_page.h"

#include "acl/acl_staging.h"
#include "acl/wizard/rule_columns.h"
#include "res/resource.h"
#include "ui/controls.h"
#include "ui/text.h"

namespace acl::wizard {

CACLRuleApply::CACLRuleApply()
    : CApplyPage(acl::pages::kPageRuleApply, IDD_ACL_RULE_APPLY, AclKind::kRules,
                 {IDC_RAPPLY_SWITCH_LIST, IDC_RAPPLY_RULE_LIST, IDC_RAPPLY_DETAILS, IDC_RAPPLY_PROGRESS,
                  IDC_RAPPLY_APPLY, IDC_RAPPLY_NEXT_DEVICE}) {}

// The four columns fit the list without scrolling; the details show a field's name whole and
// the start of its value.
void CACLRuleApply::SetUpLists() {
    m_pendingList.InsertColumn(0, ui::LoadResString(IDS_STEP2_COL_PROFILE_ID), 56);
    m_pendingList.InsertColumn(1, ui::LoadResString(IDS_RCOL_ACCESS_ID), 60);
    m_pendingList.InsertColumn(2, ui::LoadResString(IDS_RCOL_TYPE), 88);
    m_pendingList.InsertColumn(3, ui::LoadResString(IDS_RCOL_ACTION), 46);
    m_details.InsertColumn(0, ui::LoadResString(IDS_RULE_DETAILS_HEADER), 96);
    m_details.InsertColumn(1, ui::LoadResString(IDS_COL_BLANK), 110);
}

// The group is titled by the ACL kind: "Rule" or "CPU Rule".
BOOL CACLRuleApply::OnSetActive() {
    ui::Button group(GetDlgItem(IDC_RAPPLY_GROUP_RULE));
    group.SetText(ui::LoadResString(OwnerOf(State()) == AclOwner::kCpu ? IDS_RULE_APPLY_CPU_GROUP : IDS_RULE_APPLY_GROUP));
    group.SetFont(GroupFont());
    return CApplyPage::OnSetActive();
}

// The rule files of the kind, for the types the model has rules of; a missing file gives an
// empty list.
void CACLRuleApply::ReadStaged(const WizardState& wizard, AclOwner owner) {
    const ModelEntry* model = wizard.m_nTargetCount > 0 ? LookupModel(wizard.m_aTargets[0].strDeviceType) : nullptr;
    if (model == nullptr) return;
    for (AclType type : {AclType::kEthernet, AclType::kIPv4, AclType::kIPv6, AclType::kPacketContent}) {
        if (!model->offersRuleType(owner, type)) continue;
        const auto file = StagingFileFor(*model, owner, AclKind::kRules, type);
        if (!file) continue;
        AclRecordList& list = m_lists[static_cast<size_t>(type)];
        list = ReadStagingFile(file->name, file->cellCount, file->bufferSize);
        const auto columns = RuleColumnsFor(type, owner, model->packetShape(owner, AclKind::kRules));
        for (size_t i = 0; i < list.size(); ++i) {
            const AclRecord& r = list[i];
            const int row = AddRow(type, i, r.empty() ? "" : r[0]);
            m_pendingList.SetItemText(row, 1, r.size() > 1 ? r[1] : "");
            m_pendingList.SetItemText(row, 2, StagedRuleTypeWord(type));
            for (size_t c = 0; c < r.size() && c < columns.size(); ++c)
                if (columns[c].idsHeader == IDS_RCOL_PERMIT) m_pendingList.SetItemText(row, 3, ActionStagingWord(r[c]));
        }
    }
}

// A rule's fields under the names of the rule pages' columns.
std::span<const PendingColumn> CACLRuleApply::DetailColumns(AclType type, const AclRecord&) const {
    const WizardState& wizard = State();
    const ModelEntry* model = wizard.m_nTargetCount > 0 ? LookupModel(wizard.m_aTargets[0].strDeviceType) : nullptr;
    if (model == nullptr) return {};
    const AclOwner owner = OwnerOf(wizard);
    return RuleColumnsFor(type, owner, model->packetShape(owner, AclKind::kRules));
}

void CACLRuleApply::DeleteStaged() const { ::DeleteRuleStagingFiles(); }

}  // namespace acl::wizard
