#include "acl/wizard/apply_page_base.h"

#include <functional>
#include <vector>

#include "acl/acl_device.h"
#include "res/resource.h"
#include "ui/text.h"

namespace acl::wizard {
namespace {

// Sends `lists` (by AclType) to every target in order: profiles or rules of the sheet's ACL
// kind; `deleteStaged` deletes the page's staging files; `lists` is emptied.
void ApplyToTargets(WizardState& wizard, AclKind kind, HWND progress, controls::CXListCtrl& switchList,
                    std::array<AclRecordList, 4>& lists, const std::function<void()>& deleteStaged) {
    const HCURSOR previous = SetCursor(LoadCursorA(nullptr, MAKEINTRESOURCEA(32514)));  // IDC_WAIT
    ShowWindow(progress, SW_SHOW);
    SendMessageA(progress, PBM_SETRANGE, 0, MAKELPARAM(0, 100));
    SendMessageA(progress, PBM_SETPOS, 0, 0);
    SendMessageA(progress, PBM_SETSTEP, 1, 0);

    // The words of an earlier apply go, so every word on screen is this apply's.
    for (int row = 0; row < switchList.GetItemCount(); ++row) switchList.SetItemText(row, 2, "");
    // Every target is of the first one's model (the device list allows one type).
    std::vector<AclTarget> targets;
    for (long i = 0; i < wizard.m_nTargetCount; ++i) {
        const ACLTarget& t = wizard.m_aTargets[static_cast<size_t>(i)];
        targets.push_back(AclTarget{t.strIP, t.strReadCommunity, t.strWriteCommunity, wizard.m_aTargets[0].strDeviceType});
    }
    AclApplyCallbacks callbacks;
    callbacks.progress = [progress](int position) {
        SendMessageA(progress, PBM_SETPOS, static_cast<WPARAM>(position), 0);
        UpdateWindow(progress);
    };
    callbacks.result = [&switchList](size_t target, const char* word) {
        switchList.SetItemText(static_cast<int>(target), 2, word);
        UpdateWindow(switchList.GetSafeHwnd());
    };
    callbacks.deleteStaged = deleteStaged;
    const AclOwner owner = wizard.m_nACLKind == 1 ? AclOwner::kAcl : AclOwner::kCpu;
    if (kind == AclKind::kProfiles)
        ApplyProfiles(targets, owner, lists, callbacks);
    else
        ApplyRules(targets, owner, lists, callbacks);
    for (AclRecordList& list : lists) list.clear();

    (kind == AclKind::kProfiles ? wizard.m_bProfilesApplied : wizard.m_bRulesApplied) = 1;
    SetCursor(previous ? previous : LoadCursorA(nullptr, MAKEINTRESOURCEA(32512)));  // IDC_ARROW
    ShowWindow(progress, SW_HIDE);
}

}  // namespace

CApplyPage::CApplyPage(int nIndex, UINT nIDTemplate, AclKind kind, const Controls& controls)
    : CACLPage(nIndex, nIDTemplate, kBackFinish), m_kind(kind), m_controls(controls) {}

BOOL CApplyPage::OnInitDialog() {
    m_switchList.Attach(GetDlgItem(m_controls.switchList));
    m_switchList.SetExtendedStyle(LVS_EX_FULLROWSELECT);
    m_switchList.InsertColumn(0, ui::LoadResString(IDS_APPLY_COL_DEVICE_IP), 130);
    m_switchList.InsertColumn(1, ui::LoadResString(IDS_APPLY_COL_DEVICE_NAME), 130);
    m_switchList.InsertColumn(2, ui::LoadResString(IDS_APPLY_COL_STATUS), 270);
    m_pendingList.Attach(GetDlgItem(m_controls.pendingList));
    m_pendingList.SetExtendedStyle(LVS_EX_FULLROWSELECT);
    m_details.Attach(GetDlgItem(m_controls.details));
    SetUpLists();
    return TRUE;
}

void CApplyPage::OnDestroy() {
    m_switchList.Detach();
    m_pendingList.Detach();
    m_details.Detach();
}

// The lists are read again on every activation, so after an apply (which deleted the
// staging files) the page lists nothing.
BOOL CApplyPage::OnSetActive() {
    CACLPage::OnSetActive();  // Back and Finish
    const WizardState& wizard = State();
    m_pendingList.DeleteAllItems();
    m_details.DeleteAllItems();
    ShowWindow(m_details.GetSafeHwnd(), SW_HIDE);
    m_switchList.DeleteAllItems();
    for (long i = 0; i < wizard.m_nTargetCount; ++i) {
        const ACLTarget& t = wizard.m_aTargets[static_cast<size_t>(i)];
        const int row = m_switchList.InsertItem(static_cast<int>(i), t.strIP);
        m_switchList.SetItemText(row, 1, t.strDeviceType);
    }
    for (AclRecordList& list : m_lists) list.clear();
    ReadStaged(wizard, OwnerOf(wizard));
    return TRUE;
}

int CApplyPage::AddRow(AclType type, size_t index, const std::string& firstColumn) {
    const int row = m_pendingList.InsertItem(m_pendingList.GetItemCount(), firstColumn);
    m_pendingList.SetRowData(row, (static_cast<DWORD_PTR>(type) << 16) | index);  // type in the high bits
    return row;
}

void CApplyPage::Apply() {
    // The apply holds the user-interface thread: clicks and keys given meanwhile wait in the
    // queue. They were meant for a busy page, so they go rather than start a second apply whose
    // closing requests would turn a switch's "Fail" into "Succeed".
    EnableWindow(GetDlgItem(m_controls.apply), FALSE);
    ApplyToTargets(State(), m_kind, GetDlgItem(m_controls.progress), m_switchList, m_lists, [this] { DeleteStaged(); });
    MSG queued;
    while (PeekMessageA(&queued, nullptr, WM_MOUSEFIRST, WM_MOUSELAST, PM_REMOVE) ||
           PeekMessageA(&queued, nullptr, WM_KEYFIRST, WM_KEYLAST, PM_REMOVE)) {
    }
    EnableWindow(GetDlgItem(m_controls.apply), TRUE);
    m_pendingList.DeleteAllItems();
    ShowWindow(m_details.GetSafeHwnd(), SW_HIDE);
}

// Clicking a pending row shows the record's fields in the details list.
void CApplyPage::ShowDetails(int row) {
    if (row < 0 || row >= m_pendingList.GetItemCount()) return;
    const DWORD_PTR data = m_pendingList.GetRowData(row);
    const auto type = static_cast<AclType>((data >> 16) & 0x3);
    const size_t index = data & 0xFFFF;
    const AclRecordList& list = m_lists[static_cast<size_t>(type)];
    if (index >= list.size()) return;
    const AclRecord& record = list[index];
    const auto columns = DetailColumns(type, record);
    m_details.DeleteAllItems();
    for (size_t c = 0; c < columns.size() && c < record.size(); ++c) {
        if (columns[c].idsHeader == 0) continue;
        const int line = m_details.InsertItem(m_details.GetItemCount(), ui::LoadResString(columns[c].idsHeader));
        m_details.SetItemText(line, 1, record[c]);
    }
    ShowWindow(m_details.GetSafeHwnd(), SW_SHOW);
}

BOOL CApplyPage::OnCommand(WPARAM wParam, LPARAM) {
    if (HIWORD(wParam) != BN_CLICKED) return FALSE;
    const int id = LOWORD(wParam);
    if (id == m_controls.apply) {
        Apply();
        return TRUE;
    }
    if (id == m_controls.nextDevice) {
        Sheet()->SetActivePage(acl::pages::kPageDeviceList);
        return TRUE;
    }
    return OnPageCommand(id);
}

BOOL CApplyPage::OnNotify(const NMHDR* hdr, LRESULT* pResult) {
    if (hdr->hwndFrom != m_pendingList.GetSafeHwnd()) return FALSE;
    if (hdr->code == NM_CLICK) {
        ShowDetails(reinterpret_cast<const NMITEMACTIVATE*>(hdr)->iItem);
        *pResult = 0;
        return TRUE;
    }
    return OnPendingListNotify(hdr, pResult);
}

BOOL CApplyPage::OnWizardFinish() {
    DeleteStaged();
    return TRUE;
}

void CApplyPage::OnCancel() { DeleteStaged(); }

}  // namespace acl::wizard
