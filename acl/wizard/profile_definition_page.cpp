#include "acl/wizard/profile_definition_page.h"

#include "acl/acl_staging.h"
#include "res/resource.h"
#include "ui/text.h"

namespace acl::wizard {

CProfileDefinitionPage::CProfileDefinitionPage(int nIndex, UINT nIDTemplate, AclType type, Ids ids)
    : CACLPage(nIndex, nIDTemplate, kBackNext), m_type(type), m_ids(ids) {}

BOOL CProfileDefinitionPage::OnInitDialog() {
    m_list.Attach(GetDlgItem(m_ids.list));
    m_list.SetExtendedStyle(LVS_EX_FULLROWSELECT);
    ResetPendingList();
    return TRUE;
}

void CProfileDefinitionPage::OnDestroy() { m_list.Detach(); }

void CProfileDefinitionPage::ResetPendingList() {
    m_pending.clear();
    m_list.DeleteAllColumns();
    int column = 0;
    for (const PendingColumn& c : Columns())
        m_list.InsertColumn(column++, c.idsHeader ? ui::LoadResString(c.idsHeader) : std::string(), c.width);
}

BOOL CProfileDefinitionPage::OnSetActive() {
    CACLPage::OnSetActive();  // Back and Next
    WizardState& wizard = State();
    m_strModel = wizard.m_nTargetCount > 0 ? wizard.m_aTargets[0].strDeviceType : std::string();
    m_nACLKind = wizard.m_nACLKind;
    if (wizard.m_bProfilesApplied) {
        m_pending.clear();
        m_list.DeleteAllItems();
    }
    OnActivate();
    return TRUE;
}

int CProfileDefinitionPage::ShowRow(const AclRecord& record) {
    const int columns = m_list.GetColumnCount();
    const int row = m_list.InsertItem(m_list.GetItemCount(), record.empty() ? std::string() : record[0]);
    for (int c = 1; c < columns && static_cast<size_t>(c) < record.size(); ++c)
        m_list.SetItemText(row, c, record[static_cast<size_t>(c)]);
    return row;
}

// Add: a profile ID already pending is skipped without a word; a checked MAC mask that is not
// 12 hexadecimal digits gives "Invalid MAC Address !" and no row (the input stays).
void CProfileDefinitionPage::OnAdd() {
    WizardState& wizard = State();
    ProfileFields fields = ReadFields();
    fields.profileId = wizard.m_strProfileID;
    fields.profileName = wizard.m_strProfileName;
    for (const AclRecord& r : m_pending)
        if (!r.empty() && r[0] == fields.profileId) return;
    if (ValidateProfile(m_type, fields) != nullptr) {
        ui::MessageBoxOk(GetSafeHwnd(), ui::LoadResString(IDS_MSG_INVALID_MAC));
        return;
    }
    if (const UINT message = CheckFields(fields)) {
        ui::MessageBoxOk(GetSafeHwnd(), ui::LoadResString(message));
        return;
    }
    const ModelEntry* model = LookupModel(m_strModel);
    if (model == nullptr) return;  // no target of a catalogued model: nothing could be sent
    AclRecord record = BuildProfile(m_type, Owner(), *model, fields);
    // The staging file would refuse the whole list at Next and the apply would send an older
    // one: say so now, while the input is still on the page.
    if (!StagingRepresentable({record})) {
        ui::MessageBoxOk(GetSafeHwnd(), ui::LoadResString(IDS_MSG_CANNOT_STAGE));
        return;
    }
    if (!AddProfile(m_pending, record)) return;
    OnRowAdded(ShowRow(record), record);
}

void CProfileDefinitionPage::OnDelete() {
    const int row = m_list.GetFirstSelectedRow();
    if (row < 0 || static_cast<size_t>(row) >= m_pending.size()) return;
    m_pending.erase(m_pending.begin() + row);
    m_list.DeleteItem(row);
}

BOOL CProfileDefinitionPage::OnCommand(WPARAM wParam, LPARAM) {
    const int id = LOWORD(wParam);
    const int code = HIWORD(wParam);
    if (code == BN_CLICKED && id == m_ids.add) {
        OnAdd();
        return TRUE;
    }
    if (code == BN_CLICKED && id == m_ids.remove) {
        OnDelete();
        return TRUE;
    }
    return OnFieldCommand(id, code);
}

BOOL CProfileDefinitionPage::OnNotify(const NMHDR* hdr, LRESULT* pResult) {
    if (hdr->hwndFrom == m_list.GetSafeHwnd() && hdr->code == NM_CLICK) {
        const int row = reinterpret_cast<const NMITEMACTIVATE*>(hdr)->iItem;
        if (row >= 0 && static_cast<size_t>(row) < m_pending.size()) OnPendingRowClicked(row);
        *pResult = 0;
        return TRUE;
    }
    return FALSE;
}

// The pending list to the type's staging file (the packet-content form follows the model's
// layout and the ACL kind). The confirmation page reads all four profile files, so the file
// must match the list whichever way the page is left: false (after telling the user) when the
// file refused the list, and the page stays.
bool CProfileDefinitionPage::StagePending() {
    const ModelEntry* model = LookupModel(m_strModel);
    if (model == nullptr) return true;
    auto file = StagingFileFor(*model, Owner(), AclKind::kProfiles, m_type);
    if (!file || WriteStagingFile(file->name, m_pending, file->cellCount)) return true;
    ui::MessageBoxOk(GetSafeHwnd(), ui::LoadResString(IDS_MSG_CANNOT_STAGE));
    return false;
}

// Next: the staged profiles, `m_nProfileType` (Ethernet 1, IPv4 2, IPv6 3, Packet Content 5),
// then the confirmation page.
LRESULT CProfileDefinitionPage::OnWizardNext() {
    if (!StagePending()) return kStay;
    State().m_nProfileType = acl::pages::ProfileTypeOfPage(Index());
    return CACLPage::OnWizardNext();
}

// Back: a profile deleted here must not stay in the file that the confirmation page reads.
LRESULT CProfileDefinitionPage::OnWizardBack() {
    if (!StagePending()) return kStay;
    return CACLPage::OnWizardBack();
}

}  // namespace acl::wizard
