#include "acl/wizard/modify_page_base.h"

#include <algorithm>

#include "acl/wizard/details_list.h"
#include "res/resource.h"
#include "ui/controls.h"
#include "ui/text.h"

namespace acl::wizard {
namespace {

constexpr DWORD kReaderWaitMs = 3000;
constexpr DWORD kPauseAfterDeleteMs = 100;  // the switch settles its tables between deletions

// Posted to the page when a list's row lost its selection, or a key press on the profile list
// has been handled: by then a selection that follows has arrived.
constexpr UINT kSelectionSettledMessage = WM_APP + 0x29;
constexpr UINT kKeyHandledMessage = WM_APP + 0x2A;

constexpr AclType kTypes[] = {AclType::kEthernet, AclType::kIPv4, AclType::kIPv6, AclType::kPacketContent};

}  // namespace

BOOL CACLModifyPage::OnInitDialog() {
    m_profileList.Attach(GetDlgItem(IDC_MODIFY_PROFILE_LIST));
    m_profileList.SetExtendedStyle(LVS_EX_FULLROWSELECT);
    m_profileList.InsertColumn(0, ui::LoadResString(IDS_STEP2_COL_PROFILE_ID), 80);
    m_profileList.InsertColumn(1, ui::LoadResString(IDS_STEP2_COL_PROFILE_TYPE), 110);
    m_profileList.InsertColumn(2, ui::LoadResString(IDS_STEP2_COL_OWNER), 110);
    SetUpDetailsList(m_details, GetDlgItem(IDC_MODIFY_DETAILS), 120, 150);
    m_profileReader.OnRow([this](AclType type, const AclRecord& record, const AclSummaryLine& line) {
        m_aProfiles[static_cast<size_t>(type)].push_back(record);
        const int index = m_profileList.InsertItem(m_profileList.GetItemCount(), line.profileId);
        m_profileList.SetItemText(index, 1, line.typeWord);
        m_profileList.SetItemText(index, 2, line.ownerWord);
    });
    ui::Button(GetDlgItem(IDC_MODIFY_GROUP)).SetFont(GroupFont());
    return TRUE;
}

BOOL CACLModifyPage::OnSetActive() {
    CACLPage::OnSetActive();  // Back and Finish
    WizardState& wizard = State();
    m_nACLKind = wizard.m_nACLKind;
    ui::ComboBox devices(GetDlgItem(IDC_MODIFY_DEVICE));
    devices.ResetContent();
    for (long i = 0; i < wizard.m_nTargetCount; ++i) devices.AddString(wizard.m_aTargets[static_cast<size_t>(i)].strIP);
    SendMessageA(devices.Hwnd(), CB_SETCURSEL, 0, 0);
    m_device = AclTarget{};
    if (wizard.m_nTargetCount > 0) {
        const ACLTarget& t = wizard.m_aTargets[0];
        m_device = AclTarget{t.strIP, t.strReadCommunity, t.strWriteCommunity, t.strDeviceType};
    }
    ReportKept(0);
    StartProfileReader();
    return TRUE;
}

// The lists are emptied; the model's profile reader of the ACL kind starts (or, while this
// slot's thread still runs, when it has ended). A model without ACL tables reads nothing.
void CACLModifyPage::StartProfileReader() {
    for (AclRecordList& table : m_aProfiles) table.clear();
    m_profileList.DeleteAllItems();
    m_details.DeleteAllItems();
    ShowWindow(m_details.GetSafeHwnd(), SW_HIDE);
    m_strSelProfileID.clear();
    m_strSelTypeName.clear();
    OnProfilesEmptied();
    if (LookupSupportedModel(m_device.typeText) == nullptr) return;
    m_profileReader.Start(GetSafeHwnd(), [target = m_device, owner = Owner()](const AclReadOptions& o) {
        ReadProfiles(target, owner, o);
    });
}

// Another device: it becomes current (IP and both communities; its model is the first
// target's, as all targets share it) and its profiles are read.
void CACLModifyPage::SelectDevice(int index) {
    WizardState& wizard = State();
    if (index < 0 || index >= wizard.m_nTargetCount) return;
    const ACLTarget& t = wizard.m_aTargets[static_cast<size_t>(index)];
    m_device.ip = t.strIP;
    m_device.readCommunity = t.strReadCommunity;
    m_device.writeCommunity = t.strWriteCommunity;
    ReportKept(0);
    StartProfileReader();
}

BOOL CACLModifyPage::OnKillActive() {
    SwitchReader::StopAll(Readers());
    return TRUE;
}

void CACLModifyPage::OnDestroy() {
    SwitchReader::Close(Readers(), GetSafeHwnd(), kReaderWaitMs);
    m_profileList.Detach();
    m_details.Detach();
}

BOOL CACLModifyPage::OnMessage(UINT msg, WPARAM wParam, LPARAM lParam, LRESULT* pResult) {
    if (msg == kSelectionSettledMessage) {
        HWND list = reinterpret_cast<HWND>(lParam);
        if (IsWindow(list) && ListView_GetNextItem(list, -1, LVNI_SELECTED) < 0) OnSelectionCleared(list);
    } else if (msg == kKeyHandledMessage) {
        m_bInKeyPress = false;
    } else if (!SwitchReader::Deliver(msg, wParam, lParam)) {
        return CACLPage::OnMessage(msg, wParam, lParam, pResult);
    }
    *pResult = 0;
    return TRUE;
}

void CACLModifyPage::OnSelectionCleared(HWND list) {
    if (list == m_profileList.GetSafeHwnd()) ShowProfile(-1);
}

BOOL CACLModifyPage::OnCommand(WPARAM wParam, LPARAM) {
    const int id = LOWORD(wParam);
    const int code = HIWORD(wParam);
    if (id == IDC_MODIFY_DEVICE && code == CBN_SELCHANGE) {
        SelectDevice(static_cast<int>(SendMessageA(GetDlgItem(IDC_MODIFY_DEVICE), CB_GETCURSEL, 0, 0)));
        return TRUE;
    }
    if (code != BN_CLICKED) return FALSE;
    if (id == IDC_MODIFY_DELETE) {
        OnDelete();
        return TRUE;
    }
    if (id == IDC_MODIFY_DELETE_ALL) {
        OnDeleteAll();
        return TRUE;
    }
    return FALSE;
}

BOOL CACLModifyPage::OnNotify(const NMHDR* hdr, LRESULT* pResult) {
    if (hdr->hwndFrom == m_profileList.GetSafeHwnd() && hdr->code == LVN_COLUMNCLICK) {
        SortProfileList(m_profileList, m_sort, reinterpret_cast<const NMLISTVIEW*>(hdr)->iSubItem);
        *pResult = 0;
        return TRUE;
    }
    if (hdr->hwndFrom == m_profileList.GetSafeHwnd()) {
        // The details follow the selection however it moves (mouse, arrow keys). A click on
        // the row already shown reads its rules again (after a partial deletion that is the
        // way to see what the switch kept); the click that has just selected a row does not
        // read it twice.
        const SelectionMove move = SelectionChange(hdr);
        if (move == SelectionMove::kSelected) {
            m_bClickSelected = !m_bInKeyPress;
            ShowProfile(m_profileList.GetFirstSelectedRow());
        }
        if (hdr->code == LVN_KEYDOWN) {
            m_bInKeyPress = true;
            PostMessageA(GetSafeHwnd(), kKeyHandledMessage, 0, 0);
        }
        if (hdr->code == NM_CLICK) {
            const int row = reinterpret_cast<const NMITEMACTIVATE*>(hdr)->iItem;
            if (row >= 0) ShowProfile(row, !m_bClickSelected);
            m_bClickSelected = false;
        }
        if (hdr->code == NM_CLICK || hdr->code == LVN_ITEMCHANGED) {
            *pResult = 0;
            return TRUE;
        }
    }
    return OnListNotify(hdr, pResult);
}

// A row that lost its selection empties the details only if no other row takes it: every move
// first deselects the old row, and emptying then would stop the rule reading of a profile
// about to be shown again.
CACLModifyPage::SelectionMove CACLModifyPage::SelectionChange(const NMHDR* hdr) {
    if (hdr->code != LVN_ITEMCHANGED) return SelectionMove::kNone;
    const auto* change = reinterpret_cast<const NMLISTVIEW*>(hdr);
    if ((change->uChanged & LVIF_STATE) == 0 || ((change->uOldState ^ change->uNewState) & LVIS_SELECTED) == 0)
        return SelectionMove::kNone;
    if (change->uNewState & LVIS_SELECTED) return SelectionMove::kSelected;
    PostMessageA(GetParent(hdr->hwndFrom), kSelectionSettledMessage, 0, reinterpret_cast<LPARAM>(hdr->hwndFrom));
    return SelectionMove::kDeselected;
}

int CACLModifyPage::FindRow(controls::CXListCtrl& list, int column, const std::string& text,
                            const std::string& typeName) {
    if (text.empty()) return -1;
    for (int row = 0; row < list.GetItemCount(); ++row)
        if (list.GetItemText(row, column) == text && (typeName.empty() || list.GetItemText(row, 1) == typeName))
            return row;
    return -1;
}

// The details of the profile in `row` (none for -1), the rule page's rules with them; the row
// already shown only when `bAgain`.
void CACLModifyPage::ShowProfile(int row, bool bAgain) {
    if (row < 0) {
        if (m_strSelProfileID.empty()) return;
        m_strSelProfileID.clear();
        m_strSelTypeName.clear();
        m_details.DeleteAllItems();
        ShowWindow(m_details.GetSafeHwnd(), SW_HIDE);
        OnProfilesEmptied();
        return;
    }
    const std::string id = m_profileList.GetItemText(row, 0), typeName = m_profileList.GetItemText(row, 1);
    if (!bAgain && id == m_strSelProfileID && typeName == m_strSelTypeName) return;
    m_strSelProfileID = id;
    m_strSelTypeName = typeName;
    ShowProfileDetails(m_details, m_aProfiles, m_strSelProfileID, m_strSelTypeName, Owner(), m_device.typeText);
    ReportKept(0);  // that line spoke of the rows of another profile
    OnProfileClicked();
}

bool CACLModifyPage::DeleteOnSwitch(AclKind kind, const std::string& typeWord, const std::string& profileId,
                                    const std::string& accessId) {
    const ModelEntry* model = LookupSupportedModel(m_device.typeText);
    if (model == nullptr) return false;
    for (AclType type : kTypes) {
        if (typeWord != TypeWord(type)) continue;
        const bool ok = DeleteRow(m_device, RowStatusColumnOid(*model, Owner(), kind, type), profileId, accessId);
        Sleep(kPauseAfterDeleteMs);
        return ok;
    }
    return false;
}

void CACLModifyPage::RemoveRecord(std::array<AclRecordList, 4>& tables, const std::string& typeWord,
                                  const std::string& profileId, const std::string& accessId) {
    for (AclType type : kTypes) {
        if (typeWord != TypeWord(type)) continue;
        AclRecordList& list = tables[static_cast<size_t>(type)];
        std::erase_if(list, [&](const AclRecord& r) {
            return !r.empty() && r[0] == profileId && (accessId.empty() || (r.size() > 1 && r[1] == accessId));
        });
    }
}

void CACLModifyPage::ReportKept(int nKept) {
    std::string line;
    if (nKept == 1) line = ui::LoadResString(IDS_MODIFY_NOT_DELETED_ONE);
    if (nKept > 1) {
        const std::string format = ui::LoadResString(IDS_MODIFY_NOT_DELETED);
        char text[256] = {};
        snprintf(text, sizeof text, format.c_str(), nKept);
        line = text;
    }
    SetWindowTextA(GetDlgItem(IDC_MODIFY_STATUS), line.c_str());
}

void CACLModifyPage::DeleteRows(controls::CXListCtrl& list, controls::CXListCtrl& details, bool bAll, int shown,
                                const std::function<bool(int row)>& send, const std::function<void(int row)>& forget) {
    const int selected = shown;
    const int n = list.GetItemCount();
    if (bAll ? n == 0 : selected < 0) return;  // "Delete" with no details shown sends nothing
    const HCURSOR previous = SetCursor(LoadCursorA(nullptr, MAKEINTRESOURCEA(32514)));  // IDC_WAIT
    const int first = bAll ? 0 : selected, last = bAll ? n - 1 : selected;
    std::vector<bool> confirmed(static_cast<size_t>(n));
    for (int row = first; row <= last; ++row) confirmed[static_cast<size_t>(row)] = send(row);
    int kept = 0;
    for (int row = last; row >= first; --row) {
        if (!confirmed[static_cast<size_t>(row)]) {
            ++kept;
            continue;
        }
        forget(row);
        list.DeleteItem(row);
    }
    details.DeleteAllItems();
    ShowWindow(details.GetSafeHwnd(), SW_HIDE);
    // No row stays highlighted without its details: "Delete" would then act on nothing while
    // the user sees a row chosen. Clicking the kept row shows it again for another try.
    ListView_SetItemState(list.GetSafeHwnd(), -1, 0, LVIS_SELECTED);
    ReportKept(kept);
    SetCursor(previous);
}

void CACLModifyPage::DeleteProfiles(bool bAll) {
    DeleteRows(
        m_profileList, m_details, bAll, FindRow(m_profileList, 0, m_strSelProfileID, m_strSelTypeName),
        [this](int row) {
            return DeleteOnSwitch(AclKind::kProfiles, m_profileList.GetItemText(row, 1), m_profileList.GetItemText(row, 0));
        },
        [this](int row) {
            RemoveRecord(m_aProfiles, m_profileList.GetItemText(row, 1), m_profileList.GetItemText(row, 0));
        });
    m_strSelProfileID.clear();  // the details are emptied
    m_strSelTypeName.clear();
    OnProfilesEmptied();
}

void CACLModifyPage::OnDelete() { DeleteProfiles(false); }
void CACLModifyPage::OnDeleteAll() { DeleteProfiles(true); }

}  // namespace acl::wizard
