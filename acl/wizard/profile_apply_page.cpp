#include "acl/wizard/profile_apply_page.h"

#include "acl/acl_device.h"
#include "acl/acl_staging.h"
#include "res/resource.h"
#include "ui/controls.h"
#include "ui/text.h"

namespace acl::wizard {

CACLApply::CACLApply()
    : CApplyPage(acl::pages::kPageApply, IDD_ACL_APPLY, AclKind::kProfiles,
                 {IDC_APPLY_SWITCH_LIST, IDC_APPLY_PROFILE_LIST, IDC_APPLY_DETAILS, IDC_APPLY_PROGRESS,
                  IDC_APPLY_APPLY, IDC_APPLY_NEXT_DEVICE}) {}

void CACLApply::SetUpLists() {
    m_pendingList.InsertColumn(0, ui::LoadResString(IDS_STEP2_COL_PROFILE_ID), 80);
    m_pendingList.InsertColumn(1, ui::LoadResString(IDS_STEP2_COL_PROFILE_TYPE), 110);
    m_pendingList.InsertColumn(2, ui::LoadResString(IDS_STEP2_COL_OWNER), 110);
    ui::Button(GetDlgItem(IDC_APPLY_GROUP_PROFILE)).SetFont(GroupFont());
    m_details.InsertColumn(0, ui::LoadResString(IDS_COL_PROFILE_DETAILS), 120);
    m_details.InsertColumn(1, ui::LoadResString(IDS_COL_BLANK), 110);
}

// All four profile staging files, whatever the model offers: a type it does not offer is
// listed but not sent. A missing file gives an empty list.
void CACLApply::ReadStaged(const WizardState& wizard, AclOwner owner) {
    const ModelEntry* model = wizard.m_nTargetCount > 0 ? LookupModel(wizard.m_aTargets[0].strDeviceType) : nullptr;
    if (model == nullptr) return;
    for (AclType type : {AclType::kEthernet, AclType::kIPv4, AclType::kIPv6, AclType::kPacketContent}) {
        const StagingFile file = ProfileStagingFile(*model, owner, type);
        AclRecordList& list = m_lists[static_cast<size_t>(type)];
        list = ReadStagingFile(file.name, file.cellCount, file.bufferSize);
        for (size_t i = 0; i < list.size(); ++i) {
            const int row = AddRow(type, i, list[i].empty() ? "" : list[i][0]);
            m_pendingList.SetItemText(row, 1, TypeWord(type));
            // Owner "CPU ACL" for the CPU ACL; the ordinary ACL's rows leave it empty.
            m_pendingList.SetItemText(row, 2, owner == AclOwner::kCpu ? OwnerWord(owner) : "");
        }
    }
}

// Each cell under the header of its pending-list column; cells under empty headers (row
// status, profile name, spare) are left out. Packet content: 15 cells is the chunk form.
std::span<const PendingColumn> CACLApply::DetailColumns(AclType type, const AclRecord& record) const {
    const size_t chunkCells = RecordCellCount({AclOwner::kAcl, AclKind::kProfiles, type, PacketShape::kChunks4});
    return PendingColumnsFor(type, record.size() == chunkCells ? PacketShape::kChunks4 : PacketShape::kBlock16);
}

void CACLApply::DeleteStaged() const { ::DeleteProfileStagingFiles(); }

BOOL CACLApply::OnPageCommand(int id) {
    if (id != IDC_APPLY_CREATE_RULES) return FALSE;
    Sheet()->SetActivePage(acl::pages::kPageSelectProfile);
    return TRUE;
}

BOOL CACLApply::OnPendingListNotify(const NMHDR* hdr, LRESULT* pResult) {
    if (hdr->code != LVN_COLUMNCLICK) return FALSE;
    SortProfileList(m_pendingList, m_sort, reinterpret_cast<const NMLISTVIEW*>(hdr)->iSubItem);
    *pResult = 0;
    return TRUE;
}

}  // namespace acl::wizard
