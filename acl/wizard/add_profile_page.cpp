#include "acl/wizard/add_profile_page.h"

#include "acl/wizard/details_list.h"
#include "res/resource.h"
#include "ui/controls.h"
#include "ui/text.h"

namespace acl::wizard {
namespace {

// The dialog's initial combo data, in the string table in this order.
constexpr int kFrameItems = 2;
constexpr int kProtocolItems = 5;

std::string ComboText(HWND combo) {
    const int sel = static_cast<int>(SendMessageA(combo, CB_GETCURSEL, 0, 0));
    return sel < 0 ? std::string() : ui::ComboBox(combo).GetLBText(sel);
}

}  // namespace

CACLStep2::CACLStep2() : CACLPage(acl::pages::kPageAddProfile, IDD_ACL_STEP2, kBackNext) {
    for (SwitchReader& reader : m_readers)
        reader.OnRow([this](AclType type, const AclRecord& record, const AclSummaryLine& line) {
            OnReaderRow(record, type, line);
        });
}

CACLStep2::~CACLStep2() = default;

BOOL CACLStep2::OnInitDialog() {
    m_nProfileChoice = 1;
    CheckRadioButton(GetSafeHwnd(), IDC_STEP2_ETHERNET, IDC_STEP2_PACKET, IDC_STEP2_ETHERNET);
    ui::ComboBox frame(GetDlgItem(IDC_STEP2_FRAME));
    for (int i = 0; i < kFrameItems; ++i) frame.AddString(ui::LoadResString(IDS_STEP2_FRAME_FIRST + i));
    ui::ComboBox protocol(GetDlgItem(IDC_STEP2_PROTOCOL));
    for (int i = 0; i < kProtocolItems; ++i) protocol.AddString(ui::LoadResString(IDS_STEP2_PROTOCOL_FIRST + i));
    // Item order as given (CBS_SORT is not set). Like the framework's initial combo data,
    // nothing is selected at start: Next then gives m_nFrameOption 2 (not "UnTagged").
    SendMessageA(GetDlgItem(IDC_STEP2_PROFILE_NAME), EM_LIMITTEXT, 32, 0);

    m_profileList.Attach(GetDlgItem(IDC_STEP2_PROFILE_LIST));
    m_profileList.SetExtendedStyle(LVS_EX_FULLROWSELECT);
    m_profileList.InsertColumn(0, ui::LoadResString(IDS_STEP2_COL_PROFILE_ID), 80);
    m_profileList.InsertColumn(1, ui::LoadResString(IDS_STEP2_COL_PROFILE_TYPE), 110);
    m_profileList.InsertColumn(2, ui::LoadResString(IDS_STEP2_COL_OWNER), 90);
    SetUpDetailsList(m_details, GetDlgItem(IDC_STEP2_DETAILS), 130, 155);
    ShowTypeLists();
    return TRUE;
}

BOOL CACLStep2::OnSetActive() {
    CACLPage::OnSetActive();  // Back and Next
    WizardState& wizard = State();
    m_nACLKind = wizard.m_nACLKind;
    const bool cpu = m_nACLKind != 1;

    // Step 2: the "Device" list, target 0 current.
    ui::ComboBox devices(GetDlgItem(IDC_STEP2_DEVICE));
    devices.ResetContent();
    for (long i = 0; i < wizard.m_nTargetCount; ++i) devices.AddString(wizard.m_aTargets[static_cast<size_t>(i)].strIP);
    SendMessageA(devices.Hwnd(), CB_SETCURSEL, 0, 0);
    if (wizard.m_nTargetCount > 0) {
        const ACLTarget& t = wizard.m_aTargets[0];
        m_device = AclTarget{t.strIP, t.strReadCommunity, t.strWriteCommunity, t.strDeviceType};
    } else {
        m_device = AclTarget{};
    }

    // Step 3: group titles and fonts by ACL kind.
    ui::Button add(GetDlgItem(IDC_STEP2_GROUP_ADD));
    add.SetText(ui::LoadResString(cpu ? IDS_STEP2_ADD_CPU_PROFILE_GROUP : IDS_STEP2_ADD_ACL_PROFILE));
    add.SetFont(GroupFont());
    ui::Button list(GetDlgItem(IDC_STEP2_GROUP_LIST));
    list.SetText(ui::LoadResString(cpu ? IDS_STEP2_CPU_PROFILE_LIST : IDS_STEP2_PROFILE_LIST));
    list.SetFont(GroupFont());
    m_details.DeleteAllItems();
    ShowWindow(m_details.GetSafeHwnd(), SW_HIDE);

    // Steps 4 and 5: caption, model table, used IDs zeroed, "1" to "N", the reader.
    const std::string caption = ui::LoadResString(cpu ? IDS_STEP2_CPU_CAPTION : IDS_STEP2_CAPTION);
    SetCaption(caption);
    ApplyModelTable();
    for (int i = 0; i < m_nProfileIds && i < static_cast<int>(wizard.m_anUsedProfileIDs.size()); ++i)
        wizard.m_anUsedProfileIDs[static_cast<size_t>(i)] = 0;
    ui::ComboBox ids(GetDlgItem(IDC_STEP2_PROFILE_ID));
    ids.ResetContent();
    for (int i = 1; i <= m_nProfileIds; ++i) ids.AddString(std::to_string(i));
    SendMessageA(ids.Hwnd(), CB_SETCURSEL, static_cast<WPARAM>(-1), 0);  // nothing selected
    StartReader();
    return TRUE;
}

// The model's row of the "Add profile" table. A model string not in the table (such as
// "TVG-5140", or "TVG-5240" with the CPU ACL) has no ACL function, so instead of
// keeping the controls of an earlier device the page offers nothing: no profile ID, every type
// disabled (Next then says "Please select profile ID!!"), and no reader starts.
void CACLStep2::ApplyModelTable() {
    acl::pages::AddProfileModelRow row;
    const bool known = acl::pages::AddProfileModelTable(m_device.typeText, m_nACLKind, row);
    if (!known) row = {0, false, false, false};
    EnableWindow(GetDlgItem(IDC_STEP2_ETHERNET), known);
    EnableWindow(GetDlgItem(IDC_STEP2_IPV4), known);
    m_nProfileIds = row.nProfileIds;
    EnableWindow(GetDlgItem(IDC_STEP2_PACKET), row.bPacketEnabled);
    EnableWindow(GetDlgItem(IDC_STEP2_IPV6), row.bIPv6Enabled);
    // A type chosen for an earlier device or kind that this one does not offer gives way to
    // Ethernet, so Next never opens the page of a disabled type.
    if (known && !IsWindowEnabled(GetDlgItem(IDC_STEP2_ETHERNET + m_nProfileChoice - 1))) {
        m_nProfileChoice = 1;
        CheckRadioButton(GetSafeHwnd(), IDC_STEP2_ETHERNET, IDC_STEP2_PACKET, IDC_STEP2_ETHERNET);
        ShowTypeLists();
    }
    const int show = row.bProfileNameShown ? SW_SHOW : SW_HIDE;
    ShowWindow(GetDlgItem(IDC_STEP2_NAME_LABEL), show);
    ShowWindow(GetDlgItem(IDC_STEP2_PROFILE_NAME), show);
}

// The frame list while Ethernet is chosen, the protocol list while IPv4 is; else neither.
void CACLStep2::ShowTypeLists() {
    ShowWindow(GetDlgItem(IDC_STEP2_FRAME), m_nProfileChoice == 1 ? SW_SHOW : SW_HIDE);
    ShowWindow(GetDlgItem(IDC_STEP2_PROTOCOL), m_nProfileChoice == 2 ? SW_SHOW : SW_HIDE);
}

// Step 6: empty the lists; start the model's reader unless the previous one of the kind runs
// (then it starts when that one has ended, so the lists show the current device).
void CACLStep2::StartReader() {
    for (AclRecordList& table : m_aTables) table.clear();
    m_profileList.DeleteAllItems();
    if (LookupSupportedModel(m_device.typeText) == nullptr) return;  // a model without ACL tables has nothing to read
    const AclOwner owner = m_nACLKind == 1 ? AclOwner::kAcl : AclOwner::kCpu;
    m_readers[m_nACLKind == 1 ? 0 : 1].Start(GetSafeHwnd(), [target = m_device, owner](const AclReadOptions& o) {
        ReadProfiles(target, owner, o);
    });
}

bool CACLStep2::IsReaderRunning(int nACLKind) const { return m_readers[nACLKind == 1 ? 0 : 1].IsRunning(); }

BOOL CACLStep2::OnKillActive() {
    SwitchReader::StopAll({&m_readers[0], &m_readers[1]});
    return TRUE;
}

void CACLStep2::OnDestroy() {
    SwitchReader::Close({&m_readers[0], &m_readers[1]}, GetSafeHwnd(), 3000);
    m_profileList.Detach();
    m_details.Detach();
}

BOOL CACLStep2::OnMessage(UINT msg, WPARAM wParam, LPARAM lParam, LRESULT* pResult) {
    if (!SwitchReader::Deliver(msg, wParam, lParam)) return CACLPage::OnMessage(msg, wParam, lParam, pResult);
    *pResult = 0;
    return TRUE;
}

// On the user-interface thread: a row of the reader goes to the hidden table of its type and,
// as a summary line, to the profile list.
void CACLStep2::OnReaderRow(const AclRecord& record, AclType type, const AclSummaryLine& line) {
    m_aTables[static_cast<size_t>(type)].push_back(record);
    const int index = m_profileList.InsertItem(m_profileList.GetItemCount(), line.profileId);
    m_profileList.SetItemText(index, 1, line.typeWord);
    m_profileList.SetItemText(index, 2, line.ownerWord);
}

// Opening "Select Profile ID": the IDs in use (column 0 of the profile list) leave the list.
void CACLStep2::RemoveUsedProfileIds() {
    WizardState& wizard = State();
    std::vector<long> used;
    for (int row = 0, n = m_profileList.GetItemCount(); row < n; ++row) {
        const long id = acl::pages::CellToInteger(m_profileList.GetItemText(row, 0));
        if (static_cast<size_t>(row) < wizard.m_anUsedProfileIDs.size())
            wizard.m_anUsedProfileIDs[static_cast<size_t>(row)] = id;
    }
    used.assign(wizard.m_anUsedProfileIDs.begin(), wizard.m_anUsedProfileIDs.end());
    ui::ComboBox ids(GetDlgItem(IDC_STEP2_PROFILE_ID));
    std::vector<std::string> items;
    for (int i = 0, n = ids.GetCount(); i < n; ++i) items.push_back(ids.GetLBText(i));
    for (int index : acl::pages::UsedProfileIdItems(items, used, m_nProfileIds))
        SendMessageA(ids.Hwnd(), CB_DELETESTRING, static_cast<WPARAM>(index), 0);
}

// Changing the device: target i current (its IP and read community; write community and
// type stay those of target 0), and the reader of the current kind again.
void CACLStep2::SelectDevice(int index) {
    WizardState& wizard = State();
    if (index < 0 || index >= wizard.m_nTargetCount) return;
    const ACLTarget& t = wizard.m_aTargets[static_cast<size_t>(index)];
    m_device.ip = t.strIP;
    m_device.readCommunity = t.strReadCommunity;
    StartReader();
}

// Clicking a profile: its ID and type name, and its details from the hidden table of that type.
void CACLStep2::ShowDetails(int row) {
    m_strSelProfileID = m_profileList.GetItemText(row, 0);
    m_strSelTypeName = m_profileList.GetItemText(row, 1);
    ShowProfileDetails(m_details, m_aTables, m_strSelProfileID, m_strSelTypeName,
                       m_nACLKind == 1 ? AclOwner::kAcl : AclOwner::kCpu, m_device.typeText);
}

BOOL CACLStep2::OnCommand(WPARAM wParam, LPARAM) {
    const int id = LOWORD(wParam);
    const int code = HIWORD(wParam);
    if (id == IDC_STEP2_PROFILE_ID && code == CBN_DROPDOWN) {
        RemoveUsedProfileIds();
        return TRUE;
    }
    if (id == IDC_STEP2_DEVICE && code == CBN_SELCHANGE) {
        SelectDevice(static_cast<int>(SendMessageA(GetDlgItem(IDC_STEP2_DEVICE), CB_GETCURSEL, 0, 0)));
        return TRUE;
    }
    if (code != BN_CLICKED || id < IDC_STEP2_ETHERNET || id > IDC_STEP2_PACKET) return FALSE;
    m_nProfileChoice = id - IDC_STEP2_ETHERNET + 1;
    ShowTypeLists();
    return TRUE;
}

BOOL CACLStep2::OnNotify(const NMHDR* hdr, LRESULT* pResult) {
    if (hdr->hwndFrom == m_profileList.GetSafeHwnd() && hdr->code == LVN_COLUMNCLICK) {
        SortProfileList(m_profileList, m_sort, reinterpret_cast<const NMLISTVIEW*>(hdr)->iSubItem);
        *pResult = 0;
        return TRUE;
    }
    if (hdr->hwndFrom == m_profileList.GetSafeHwnd() && hdr->code == NM_CLICK) {
        const int row = reinterpret_cast<const NMITEMACTIVATE*>(hdr)->iItem;
        if (row >= 0) ShowDetails(row);
        *pResult = 0;
        return TRUE;
    }
    return FALSE;
}

LRESULT CACLStep2::OnWizardNext() {
    WizardState& wizard = State();
    // Step 1: the sub-option from the texts the two drop-down lists show.
    wizard.m_nFrameOption =
        acl::pages::FrameOption(ComboText(GetDlgItem(IDC_STEP2_FRAME)), ComboText(GetDlgItem(IDC_STEP2_PROTOCOL)));
    const std::string name = ui::GetWindowTextString(GetDlgItem(IDC_STEP2_PROFILE_NAME));
    const std::string id = ComboText(GetDlgItem(IDC_STEP2_PROFILE_ID));
    switch (acl::pages::CheckAddProfile(m_device.typeText, m_nACLKind, name, id)) {
    case acl::pages::AddProfileVerdict::kNoProfileName:
        ui::MessageBoxOk(GetSafeHwnd(), ui::LoadResString(IDS_MSG_INPUT_PROFILENAME));
        return kStay;
    case acl::pages::AddProfileVerdict::kNoProfileId:
        ui::MessageBoxOk(GetSafeHwnd(), ui::LoadResString(IDS_MSG_SELECT_PROFILE_ID));
        return kStay;
    case acl::pages::AddProfileVerdict::kOk:
        break;
    }
    if (m_device.typeText == "TVR4512" && m_nACLKind == 1) wizard.m_strProfileName = name;
    wizard.m_strProfileID = id;
    return CACLPage::OnWizardNext();  // by the chosen type
}

acl::pages::NavInput CACLStep2::MakeNavInput() const {
    acl::pages::NavInput in = CACLPage::MakeNavInput();
    in.nProfileChoice = m_nProfileChoice;
    return in;
}

}  // namespace acl::wizard
