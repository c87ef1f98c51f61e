#include "acl/wizard/add_profile_page.h"

#include "acl/profile_details.h"
#include "res/resource.h"
#include "ui/controls.h"
#include "ui/text.h"

namespace acl::wizard {
namespace {

static_assert(IDS_DETAIL_FIRST + static_cast<int>(acl::DetailLabel::kCount) == IDS_DETAIL_HEADER,
              "one string per details label, in acl::DetailLabel's order");

// The details list's colours.
constexpr COLORREF kDetailLabelRed = RGB(255, 0, 0);
constexpr COLORREF kDetailTitleCyan = RGB(0, 255, 255);
constexpr COLORREF kDetailValueBlack = RGB(0, 0, 0);

// The dialog's initial combo data, in the string table in this order.
constexpr int kFrameItems = 2;
constexpr int kProtocolItems = 5;

// Posted by a reader: one row (lParam owns a ReaderRow) and the end of a reading.
constexpr UINT WM_ACL_READER_ROW = WM_APP + 0x31;
constexpr UINT WM_ACL_READER_DONE = WM_APP + 0x32;

struct ReaderRow {
    unsigned nSerial;
    AclType type;
    AclRecord record;
    AclSummaryLine line;
};

using Job = CACLStep2::ReaderJob;

// On a worker thread: the ACL core's reader, every row posted to the page.
DWORD WINAPI ReaderThread(LPVOID param) {
    std::shared_ptr<Job> job = *static_cast<std::shared_ptr<Job>*>(param);
    delete static_cast<std::shared_ptr<Job>*>(param);
    AclReadOptions options;
    options.stop = &job->stop;
    options.sink = [&job](AclType type, const AclRecord& record, const AclSummaryLine& line) {
        auto* row = new ReaderRow{job->nSerial, type, record, line};
        if (!PostMessageA(job->hwndPage, WM_ACL_READER_ROW, 0, reinterpret_cast<LPARAM>(row))) delete row;
    };
    ReadProfiles(job->target, job->owner, options);
    PostMessageA(job->hwndPage, WM_ACL_READER_DONE, job->nSerial, 0);
    return 0;
}

std::string ComboText(HWND combo) {
    const int sel = static_cast<int>(SendMessageA(combo, CB_GETCURSEL, 0, 0));
    return sel < 0 ? std::string() : ui::ComboBox(combo).GetLBText(sel);
}

}  // namespace

CACLStep2::CACLStep2() : CACLPage(acl::pages::kPageAddProfile, IDD_ACL_STEP2, kBackNext) {}

CACLStep2::~CACLStep2() { StopReaders(3000); }

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
    // Grid lines frame the values ("inside a frame").
    m_details.Attach(GetDlgItem(IDC_STEP2_DETAILS));
    m_details.SetExtendedStyle(LVS_EX_FULLROWSELECT | LVS_EX_GRIDLINES);
    m_details.InsertColumn(0, ui::LoadResString(IDS_DETAIL_HEADER), 130);
    m_details.InsertColumn(1, ui::LoadResString(IDS_COL_BLANK), 155);
    ShowTypeLists();
    return TRUE;
}

BOOL CACLStep2::OnSetActive() {
    CACLPage::OnSetActive();  // Back and Next
    m_bActive = true;
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
    SetWindowTextA(GetSafeHwnd(), caption.c_str());
    PropSheet_SetTitle(Sheet()->GetSafeHwnd(), 0, caption.c_str());
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

// Step 6: empty the lists; start the model's reader unless the previous one of the kind runs.
void CACLStep2::StartReader() {
    for (AclRecordList& table : m_aTables) table.clear();
    m_profileList.DeleteAllItems();
    if (LookupSupportedModel(m_device.typeText) == nullptr) return;  // a model without ACL tables has nothing to read
    const size_t k = m_nACLKind == 1 ? 0 : 1;
    if (IsReaderRunning(static_cast<int>(k + 1))) {
        // Never two readers of a kind at once. The running one
        // was asked to stop (the page was left) or reads another device, so rather than let it
        // half fill the emptied lists, its rows are dropped and a fresh reader of the current
        // device starts when it ends (still one reader per kind at a time).
        m_readerJob[k]->stop = true;
        m_nShownSerial[k] = 0;
        m_bRestartReader[k] = true;
        return;
    }
    if (m_hReader[k]) {
        CloseHandle(m_hReader[k]);
        m_hReader[k] = nullptr;
    }
    auto job = std::make_shared<Job>();
    job->target = m_device;
    job->owner = k == 0 ? AclOwner::kAcl : AclOwner::kCpu;
    job->hwndPage = GetSafeHwnd();
    job->nSerial = ++m_nSerial;
    auto* param = new std::shared_ptr<Job>(job);
    DWORD id = 0;
    m_hReader[k] = CreateThread(nullptr, 0, ReaderThread, param, 0, &id);
    if (!m_hReader[k]) {
        delete param;
        return;
    }
    m_nShownSerial[k] = job->nSerial;
    m_readerJob[k] = std::move(job);
}

// A reader ended: the fresh reader that StartReader put off starts now, if the page still
// shows that kind.
void CACLStep2::OnReaderDone(unsigned nSerial) {
    for (size_t k = 0; k < 2; ++k) {
        if (!m_readerJob[k] || m_readerJob[k]->nSerial != nSerial || !m_bRestartReader[k]) continue;
        m_bRestartReader[k] = false;
        WaitForSingleObject(m_hReader[k], 1000);  // its last act was to post this message
        if (m_bActive && m_nACLKind == static_cast<long>(k + 1)) StartReader();
    }
}

bool CACLStep2::IsReaderRunning(int nACLKind) const {
    const HANDLE h = m_hReader[nACLKind == 1 ? 0 : 1];
    DWORD code = 0;
    return h && GetExitCodeThread(h, &code) && code == STILL_ACTIVE;
}

// Asks both readers to stop; with a wait, waits at most `waitMs` for each and closes them.
// A reader that outlives the wait shares nothing with the page but its job and ends at its
// next answer or time-out (at most 3000 ms).
void CACLStep2::StopReaders(DWORD waitMs) {
    for (size_t k = 0; k < 2; ++k) {
        if (m_readerJob[k]) m_readerJob[k]->stop = true;
        if (!waitMs || !m_hReader[k]) continue;
        WaitForSingleObject(m_hReader[k], waitMs);
        CloseHandle(m_hReader[k]);
        m_hReader[k] = nullptr;
        m_readerJob[k].reset();
    }
}

BOOL CACLStep2::OnKillActive() {
    m_bActive = false;
    StopReaders(0);  // the page is left: the reader stops at its next answer
    return TRUE;
}

void CACLStep2::OnDestroy() {
    StopReaders(3000);
    // Rows posted but not yet delivered belong to us now.
    MSG msg;
    while (PeekMessageA(&msg, GetSafeHwnd(), WM_ACL_READER_ROW, WM_ACL_READER_ROW, PM_REMOVE))
        delete reinterpret_cast<ReaderRow*>(msg.lParam);
    m_profileList.Detach();
    m_details.Detach();
}

BOOL CACLStep2::OnMessage(UINT msg, WPARAM wParam, LPARAM lParam, LRESULT* pResult) {
    if (msg == WM_ACL_READER_ROW) {
        OnReaderRow(wParam, lParam);
        *pResult = 0;
        return TRUE;
    }
    if (msg == WM_ACL_READER_DONE) {
        OnReaderDone(static_cast<unsigned>(wParam));
        *pResult = 0;
        return TRUE;
    }
    return FALSE;
}

// On the user-interface thread: a row of the reader goes to the hidden table of its type and,
// as a summary line, to the profile list. Rows of a reader whose lists were emptied for a
// newer one are dropped.
void CACLStep2::OnReaderRow(WPARAM, LPARAM lParam) {
    std::unique_ptr<ReaderRow> row(reinterpret_cast<ReaderRow*>(lParam));
    const size_t k = m_nACLKind == 1 ? 0 : 1;
    if (!row || row->nSerial != m_nShownSerial[k]) return;
    m_aTables[static_cast<size_t>(row->type)].push_back(row->record);
    const int index = m_profileList.InsertItem(m_profileList.GetItemCount(), row->line.profileId);
    m_profileList.SetItemText(index, 1, row->line.typeWord);
    m_profileList.SetItemText(index, 2, row->line.ownerWord);
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

// Clicking a profile: its ID and type name, and its details from the hidden table of that type:
// labels in red (cyan in a row reading "ACL Profile Details  "), values in black on the window
// colour.
void CACLStep2::ShowDetails(int row) {
    m_strSelProfileID = m_profileList.GetItemText(row, 0);
    m_strSelTypeName = m_profileList.GetItemText(row, 1);
    const ModelEntry* model = LookupModel(m_device.typeText);
    if (model == nullptr) return;
    for (AclType type : {AclType::kEthernet, AclType::kIPv4, AclType::kIPv6, AclType::kPacketContent}) {
        if (m_strSelTypeName != TypeWord(type)) continue;
        for (const AclRecord& record : m_aTables[static_cast<size_t>(type)]) {
            if (record.empty() || record[0] != m_strSelProfileID) continue;
            const AclOwner owner = m_nACLKind == 1 ? AclOwner::kAcl : AclOwner::kCpu;
            const std::string title = ui::LoadResString(IDS_COL_PROFILE_DETAILS);
            m_details.DeleteAllItems();
            for (const acl::DetailRow& d : acl::ProfileDetails(type, record, owner, *model)) {
                const std::string label = ui::LoadResString(IDS_DETAIL_FIRST + static_cast<UINT>(d.label));
                const int line = m_details.InsertItem(m_details.GetItemCount(), label,
                                                      label == title ? kDetailTitleCyan : kDetailLabelRed,
                                                      GetSysColor(COLOR_WINDOW));
                m_details.SetItemText(line, 1, d.value);
                m_details.SetCellColors(line, 1, kDetailValueBlack, GetSysColor(COLOR_WINDOW));
            }
            ShowWindow(m_details.GetSafeHwnd(), SW_SHOW);
            return;
        }
    }
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
