#include "acl/wizard/profile_apply_page.h"

#include <span>
#include <vector>

#include "acl/acl_device.h"
#include "acl/acl_staging.h"
#include "acl/wizard/apply_run.h"
#include "acl/wizard/pending_columns.h"
#include "res/resource.h"
#include "ui/controls.h"
#include "ui/text.h"

namespace acl::wizard {
namespace {

constexpr AclType kTypes[] = {AclType::kEthernet, AclType::kIPv4, AclType::kIPv6, AclType::kPacketContent};

AclOwner OwnerOf(long nACLKind) { return nACLKind == 1 ? AclOwner::kAcl : AclOwner::kCpu; }

// The details show each
// cell under the header of its pending-list column; cells under empty headers (row
// status, profile name, spare) are left out. Packet content: 15 cells is the chunk form.
std::span<const PendingColumn> FieldColumns(AclType type, size_t cellCount) {
    return PendingColumnsFor(type, cellCount == RecordCellCount({AclOwner::kAcl, AclKind::kProfiles, type, PacketShape::kChunks4})
                                       ? PacketShape::kChunks4
                                       : PacketShape::kBlock16);
}

}  // namespace

CACLApply::CACLApply() : CACLPage(acl::pages::kPageApply, IDD_ACL_APPLY, kBackFinish) {}

BOOL CACLApply::OnInitDialog() {
    SetUpSwitchList(m_switchList, GetDlgItem(IDC_APPLY_SWITCH_LIST));
    m_profileList.Attach(GetDlgItem(IDC_APPLY_PROFILE_LIST));
    m_profileList.SetExtendedStyle(LVS_EX_FULLROWSELECT);
    m_profileList.InsertColumn(0, ui::LoadResString(IDS_STEP2_COL_PROFILE_ID), 80);
    m_profileList.InsertColumn(1, ui::LoadResString(IDS_STEP2_COL_PROFILE_TYPE), 110);
    m_profileList.InsertColumn(2, ui::LoadResString(IDS_STEP2_COL_OWNER), 110);
    ui::Button(GetDlgItem(IDC_APPLY_GROUP_PROFILE)).SetFont(GroupFont());
    m_details.Attach(GetDlgItem(IDC_APPLY_DETAILS));
    m_details.InsertColumn(0, ui::LoadResString(IDS_COL_PROFILE_DETAILS), 120);
    m_details.InsertColumn(1, ui::LoadResString(IDS_COL_BLANK), 110);
    return TRUE;
}

void CACLApply::OnDestroy() {
    m_switchList.Detach();
    m_profileList.Detach();
    m_details.Detach();
}

BOOL CACLApply::OnSetActive() {
    CACLPage::OnSetActive();  // Back and Finish
    WizardState& wizard = State();
    m_nACLKind = wizard.m_nACLKind;
    const AclOwner owner = OwnerOf(m_nACLKind);
    m_profileList.DeleteAllItems();
    m_details.DeleteAllItems();
    ShowWindow(m_details.GetSafeHwnd(), SW_HIDE);
    FillSwitchList(m_switchList, wizard);
    // Step 4: all four profile staging files, whatever the model offers: a type it
    // does not offer is listed but not sent. A missing file gives an empty
    // list.
    const ModelEntry* model = wizard.m_nTargetCount > 0 ? LookupModel(wizard.m_aTargets[0].strDeviceType) : nullptr;
    for (AclType type : kTypes) {
        AclRecordList& list = m_lists[static_cast<size_t>(type)];
        list.clear();
        if (model == nullptr) continue;
        const StagingFile file = ProfileStagingFile(*model, owner, type);
        list = ReadStagingFile(file.name, file.cellCount, file.bufferSize);
        for (size_t i = 0; i < list.size(); ++i) {
            const AclRecord& r = list[i];
            const int row = m_profileList.InsertItem(m_profileList.GetItemCount(), r.empty() ? "" : r[0]);
            // Which record the row shows, kept through sorting: type in the high bits.
            m_profileList.SetRowData(row, (static_cast<DWORD_PTR>(type) << 16) | i);
            m_profileList.SetItemText(row, 1, TypeWord(type));
            // Owner "CPU ACL" for the CPU ACL; the ordinary ACL's rows leave it empty.
            m_profileList.SetItemText(row, 2, owner == AclOwner::kCpu ? OwnerWord(owner) : "");
        }
    }
    return TRUE;
}

BOOL CACLApply::OnCommand(WPARAM wParam, LPARAM) {
    if (HIWORD(wParam) != BN_CLICKED) return FALSE;
    switch (LOWORD(wParam)) {
    case IDC_APPLY_APPLY:
        // What was sent leaves the lists: a second Apply sends only the closing request.
        // A second click while the switches are written would send every record again.
        EnableWindow(GetDlgItem(IDC_APPLY_APPLY), FALSE);
        ApplyToTargets(State(), AclKind::kProfiles, GetDlgItem(IDC_APPLY_PROGRESS), m_switchList, m_lists,
                       [] { ::DeleteProfileStagingFiles(); });
        EnableWindow(GetDlgItem(IDC_APPLY_APPLY), TRUE);
        m_profileList.DeleteAllItems();
        ShowWindow(m_details.GetSafeHwnd(), SW_HIDE);
        return TRUE;
    case IDC_APPLY_NEXT_DEVICE:
        Sheet()->SetActivePage(acl::pages::kPageDeviceList);
        return TRUE;
    case IDC_APPLY_CREATE_RULES:
        Sheet()->SetActivePage(acl::pages::kPageSelectProfile);
        return TRUE;
    default:
        return FALSE;
    }
}

// Clicking a pending profile shows its fields in the details list.
void CACLApply::ShowDetails(int row) {
    if (row < 0 || row >= m_profileList.GetItemCount()) return;
    const DWORD_PTR data = m_profileList.GetRowData(row);
    const auto type = static_cast<AclType>((data >> 16) & 0x3);
    const size_t index = data & 0xFFFF;
    const AclRecordList& list = m_lists[static_cast<size_t>(type)];
    if (index >= list.size()) return;
    const AclRecord& record = list[index];
    const auto columns = FieldColumns(type, record.size());
    m_details.DeleteAllItems();
    for (size_t c = 0; c < columns.size() && c < record.size(); ++c) {
        if (columns[c].idsHeader == 0) continue;
        const int line = m_details.InsertItem(m_details.GetItemCount(), ui::LoadResString(columns[c].idsHeader));
        m_details.SetItemText(line, 1, record[c]);
    }
    ShowWindow(m_details.GetSafeHwnd(), SW_SHOW);
}

BOOL CACLApply::OnNotify(const NMHDR* hdr, LRESULT* pResult) {
    if (hdr->hwndFrom == m_profileList.GetSafeHwnd() && hdr->code == NM_CLICK) {
        ShowDetails(reinterpret_cast<const NMITEMACTIVATE*>(hdr)->iItem);
        *pResult = 0;
        return TRUE;
    }
    if (hdr->hwndFrom == m_profileList.GetSafeHwnd() && hdr->code == LVN_COLUMNCLICK) {
        SortProfileList(m_profileList, m_sort, reinterpret_cast<const NMLISTVIEW*>(hdr)->iSubItem);
        *pResult = 0;
        return TRUE;
    }
    return FALSE;
}

BOOL CACLApply::OnWizardFinish() {
    ::DeleteProfileStagingFiles();
    return TRUE;
}

// Runs whenever the wizard is cancelled after this page was created, whichever page shows.
void CACLApply::OnCancel() { ::DeleteProfileStagingFiles(); }

}  // namespace acl::wizard
