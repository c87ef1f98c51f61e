#include "acl/wizard/rule_definition_page.h"

#include "acl/acl_fields.h"
#include "acl/acl_staging.h"
#include "acl/wizard/rule_columns.h"
#include "res/resource.h"
#include "ui/controls.h"
#include "ui/text.h"

namespace acl::wizard {
namespace {

constexpr int kActions = 3;  // "Permit", "Mirror", "Deny"

// The rows a model may lack: a check box or label and its edit.
constexpr int kPriorityRow[] = {IDC_RULE_PRIORITY_CHECK, IDC_RULE_PRIORITY};
constexpr int kDscpRow[] = {IDC_RULE_DSCP_CHECK, IDC_RULE_REPLACE_DSCP};
constexpr int kTosRow[] = {IDC_RULE_TOS_CHECK, IDC_RULE_REPLACE_TOS};
constexpr int kRxRow[] = {IDC_RULE_RX_LABEL, IDC_RULE_RX, IDC_RULE_NO_LIMIT};
constexpr int kCommonEdits[] = {IDC_RULE_ACCESS_ID, IDC_RULE_PORTS, IDC_RULE_RX, IDC_RULE_PRIORITY,
                                IDC_RULE_REPLACE_DSCP, IDC_RULE_REPLACE_TOS};

}  // namespace

CRuleDefinitionPage::CRuleDefinitionPage(int nIndex, UINT nIDTemplate, AclType type)
    : CACLPage(nIndex, nIDTemplate, kBackNext), m_type(type) {}

std::string CRuleDefinitionPage::Text(int id) const { return ui::GetWindowTextString(GetDlgItem(id)); }
bool CRuleDefinitionPage::Checked(int id) const { return ui::Button(GetDlgItem(id)).IsChecked(); }
void CRuleDefinitionPage::Check(int id, bool checked) const { ui::Button(GetDlgItem(id)).SetCheck(checked); }

BOOL CRuleDefinitionPage::OnInitDialog() {
    m_list.Attach(GetDlgItem(IDC_RULE_LIST));
    m_list.SetExtendedStyle(LVS_EX_FULLROWSELECT);
    m_profileList.Attach(GetDlgItem(IDC_RULE_PROFILE_LIST));
    ui::ComboBox actions(GetDlgItem(IDC_RULE_ACTION));
    for (int i = 0; i < kActions; ++i) {
        // Packet content: permit or deny only.
        if (m_type == AclType::kPacketContent && i == 1) continue;
        actions.AddString(ui::LoadResString(IDS_RULE_ACTION_FIRST + i));
    }
    for (int id : kCommonEdits) SendMessageA(GetDlgItem(id), EM_LIMITTEXT, 10, 0);
    SendMessageA(GetDlgItem(IDC_RULE_PORTS), EM_LIMITTEXT, kMaxFieldText, 0);
    return TRUE;
}

void CRuleDefinitionPage::OnDestroy() {
    m_list.Detach();
    m_profileList.Detach();
}

// The list shows the pending rules of the current ACL kind, in that kind's columns.
void CRuleDefinitionPage::ShowPendingList() {
    if (m_nShownKind == m_nACLKind) return;
    m_nShownKind = m_nACLKind;
    const ModelEntry* model = LookupModel(m_strModel);
    const PacketShape shape = model ? model->packetShape(Owner(), AclKind::kRules) : PacketShape::kBlock16;
    m_list.DeleteAllItems();
    m_list.DeleteAllColumns();
    int column = 0;
    for (const PendingColumn& c : RuleColumnsFor(m_type, Owner(), shape))
        m_list.InsertColumn(column++, c.idsHeader ? ui::LoadResString(c.idsHeader) : std::string(), c.width);
    m_profileList.DeleteAllItems();
    m_profileList.DeleteAllColumns();
    const std::span<const std::string> profile = ChosenProfile();
    for (size_t c = 0; c < profile.size(); ++c) m_profileList.InsertColumn(static_cast<int>(c), "", 10);
    for (const AclRecord& r : m_pending[OwnerIndex()]) {
        const int row = m_list.InsertItem(m_list.GetItemCount(), r.empty() ? "" : r[0]);
        for (size_t c = 1; c < r.size(); ++c) m_list.SetItemText(row, static_cast<int>(c), r[c]);
    }
    for (const AclRecord& r : m_profiles[OwnerIndex()]) {
        const int row = m_profileList.InsertItem(m_profileList.GetItemCount(), r.empty() ? "" : r[0]);
        for (size_t c = 1; c < r.size(); ++c) m_profileList.SetItemText(row, static_cast<int>(c), r[c]);
    }
}

BOOL CRuleDefinitionPage::OnSetActive() {
    CACLPage::OnSetActive();  // Back and Next
    WizardState& wizard = State();
    m_strModel = wizard.m_nTargetCount > 0 ? wizard.m_aTargets[0].strDeviceType : std::string();
    m_nACLKind = wizard.m_nACLKind;
    if (wizard.m_bRulesApplied) {
        for (AclRecordList& l : m_pending) l.clear();
        for (AclRecordList& l : m_profiles) l.clear();
        m_nShownKind = 0;
    }
    ShowPendingList();
    ClearFields();
    EnableTypeFields(acl::EnablingFor(m_type, ChosenProfile()));
    ui::Button(GetDlgItem(IDC_RULE_GROUP)).SetFont(GroupFont());
    ApplyModel();
    return TRUE;
}

void CRuleDefinitionPage::ClearFields() {
    m_bInPortCheck = true;  // an empty field is no typing
    for (int id : kCommonEdits) SetText(id, "");
    m_bInPortCheck = false;
    SendMessageA(GetDlgItem(IDC_RULE_ACTION), CB_SETCURSEL, static_cast<WPARAM>(InitialAction()), 0);
    for (int id : {IDC_RULE_PRIORITY_CHECK, IDC_RULE_DSCP_CHECK, IDC_RULE_TOS_CHECK, IDC_RULE_ALL_PORTS,
                   IDC_RULE_NO_LIMIT})
        Check(id, false);
    for (int id : {IDC_RULE_PRIORITY, IDC_RULE_REPLACE_DSCP, IDC_RULE_REPLACE_TOS}) Enable(id, false);
    Enable(IDC_RULE_PORTS, true);
    Enable(IDC_RULE_RX, true);
    ClearTypeFields();
}

// The model's labels, and the rows its rule record has no cells for are hidden. The CPU ACL
// of TVR4510 and TVR4820 takes port "0" only, so the field holds it and cannot be changed.
void CRuleDefinitionPage::ApplyModel() {
    const ModelEntry* model = LookupSupportedModel(m_strModel);
    if (model == nullptr) return;  // the labels stay as the dialog has them
    const acl::RuleRows rows = acl::RuleRowsFor(*model, Owner(), m_type);
    SetText(IDC_RULE_ACCESS_LABEL, acl::AccessIdLabel(*model, Owner(), m_type));
    if (rows.rxRate) SetText(IDC_RULE_RX_LABEL, acl::RxRateLabel(*model, m_type));
    for (int id : kPriorityRow) Show(id, rows.priority);
    for (int id : kDscpRow) Show(id, rows.replaceDscp);
    for (int id : kTosRow) Show(id, rows.replaceTos);
    for (int id : kRxRow) Show(id, rows.rxRate && (id != IDC_RULE_NO_LIMIT || m_type == AclType::kIPv6));
    Show(IDC_RULE_ALL_PORTS, rows.allPorts);
    if (rows.portsFixedZero) {
        SetText(IDC_RULE_PORTS, "0");
        Enable(IDC_RULE_PORTS, false);
    }
}

// While typing: a text that fails the port check is refused; after OK the last character goes.
void CRuleDefinitionPage::OnPortsChanged() {
    if (m_bInPortCheck) return;
    const ModelEntry* model = LookupSupportedModel(m_strModel);
    const std::string text = Text(IDC_RULE_PORTS);
    if (model == nullptr || ValidatePortList(text, model->portCount)) return;
    m_bInPortCheck = true;
    ui::MessageBoxOk(GetSafeHwnd(), ui::LoadResString(IDS_MSG_INPUT_PORT_ERROR));
    SetText(IDC_RULE_PORTS, acl::DropLastCharacter(text));
    const int end = GetWindowTextLengthA(GetDlgItem(IDC_RULE_PORTS));
    SendMessageA(GetDlgItem(IDC_RULE_PORTS), EM_SETSEL, static_cast<WPARAM>(end), end);
    m_bInPortCheck = false;
}

RuleFields CRuleDefinitionPage::ReadFields() const {
    RuleFields f;
    f.accessId = Text(IDC_RULE_ACCESS_ID);
    HWND action = GetDlgItem(IDC_RULE_ACTION);
    const int sel = static_cast<int>(SendMessageA(action, CB_GETCURSEL, 0, 0));
    f.action = sel < 0 ? std::string() : ActionCode(ui::ComboBox(action).GetLBText(sel), Owner());
    f.ports = Text(IDC_RULE_PORTS);
    // A field the model hides or a box leaves unchecked gives nothing.
    auto shown = [this](int id) { return IsWindowVisible(GetDlgItem(id)) && IsWindowEnabled(GetDlgItem(id)); };
    if (shown(IDC_RULE_RX)) f.rxRate = Text(IDC_RULE_RX);
    f.priorityChecked = Checked(IDC_RULE_PRIORITY_CHECK) && shown(IDC_RULE_PRIORITY);
    if (f.priorityChecked) f.priority = Text(IDC_RULE_PRIORITY);
    f.replaceDscpChecked = Checked(IDC_RULE_DSCP_CHECK) && shown(IDC_RULE_REPLACE_DSCP);
    if (f.replaceDscpChecked) f.replaceDscp = Text(IDC_RULE_REPLACE_DSCP);
    f.replaceTosChecked = Checked(IDC_RULE_TOS_CHECK) && shown(IDC_RULE_REPLACE_TOS);
    if (f.replaceTosChecked) f.replaceTos = Text(IDC_RULE_REPLACE_TOS);
    ReadTypeFields(f);
    return f;
}

void CRuleDefinitionPage::OnAdd() {
    const ModelEntry* model = LookupSupportedModel(m_strModel);
    if (model == nullptr) return;  // no target of a catalogued model: nothing could be sent
    if (acl::RuleRowsFor(*model, Owner(), m_type).portsFixedZero) SetText(IDC_RULE_PORTS, "0");
    RuleFields fields = ReadFields();
    const std::span<const std::string> profile = ChosenProfile();
    fields.profileId = profile.empty() ? std::string() : profile[0];
    auto refused = [this](const AclCheck& check) {
        if (check.code == AclMessage::kNone) return false;
        ui::MessageBoxOk(GetSafeHwnd(), ui::LoadResString(static_cast<UINT>(check.code)));
        return true;
    };
    if (refused(ValidateRuleValues(m_type, Owner(), *model, fields))) return;
    AclRecordList& pending = m_pending[OwnerIndex()];
    AclRecord record = BuildRule(m_type, Owner(), *model, fields);
    if (RulePending(pending, record)) return;  // same profile and Access ID: nothing added, nothing said
    if (refused(CheckRuleComplete(m_type, fields))) return;
    // The staging file would refuse the whole list at Next and the apply would send an older
    // one: say so now, while the input is still on the page.
    if (!StagingRepresentable({record})) {
        ui::MessageBoxOk(GetSafeHwnd(), ui::LoadResString(IDS_MSG_CANNOT_STAGE));
        return;
    }
    pending.push_back(record);
    m_profiles[OwnerIndex()].emplace_back(profile.begin(), profile.end());
    const int row = m_list.InsertItem(m_list.GetItemCount(), record[0]);
    for (size_t c = 1; c < record.size(); ++c) m_list.SetItemText(row, static_cast<int>(c), record[c]);
    const int prow = m_profileList.InsertItem(m_profileList.GetItemCount(), profile.empty() ? "" : profile[0]);
    for (size_t c = 1; c < profile.size(); ++c) m_profileList.SetItemText(prow, static_cast<int>(c), profile[c]);
}

void CRuleDefinitionPage::OnDelete() {
    const int row = m_list.GetFirstSelectedRow();
    AclRecordList& pending = m_pending[OwnerIndex()];
    if (row < 0 || static_cast<size_t>(row) >= pending.size()) return;
    pending.erase(pending.begin() + row);
    AclRecordList& profiles = m_profiles[OwnerIndex()];
    if (static_cast<size_t>(row) < profiles.size()) profiles.erase(profiles.begin() + row);
    m_list.DeleteItem(row);
    m_profileList.DeleteItem(row);
}

// A click on a pending rule loads its values back into the fields.
void CRuleDefinitionPage::LoadRow(int row) {
    const ModelEntry* model = LookupSupportedModel(m_strModel);
    const AclRecordList& pending = m_pending[OwnerIndex()];
    if (model == nullptr || row < 0 || static_cast<size_t>(row) >= pending.size()) return;
    const AclRecord& rule = pending[static_cast<size_t>(row)];
    // An IPv4 rule carries its profile's protocol code in cell 6.
    const std::string protocol = m_type == AclType::kIPv4 && rule.size() > 6 ? rule[6] : std::string();
    const RuleFields f = RuleFieldsFromRecord(m_type, Owner(), *model, rule, protocol);
    m_bInPortCheck = true;  // the rule passed the check when it was added
    SetText(IDC_RULE_ACCESS_ID, f.accessId);
    SetText(IDC_RULE_PORTS, f.ports);
    m_bInPortCheck = false;
    // The boxes that disable a field follow the rule, so its values are the ones the next
    // Add reads (a field the model fixes stays as the model has it).
    const acl::RuleRows rows = acl::RuleRowsFor(*model, Owner(), m_type);
    if (!rows.portsFixedZero) {
        const bool all = rows.allPorts && f.ports == acl::AllPortsText(*model);
        Check(IDC_RULE_ALL_PORTS, all);
        Enable(IDC_RULE_PORTS, !all);
    }
    const bool noLimit = IsWindowVisible(GetDlgItem(IDC_RULE_NO_LIMIT)) && f.rxRate.empty();
    Check(IDC_RULE_NO_LIMIT, noLimit);
    Enable(IDC_RULE_RX, !noLimit);
    ui::ComboBox actions(GetDlgItem(IDC_RULE_ACTION));
    SendMessageA(actions.Hwnd(), CB_SETCURSEL, static_cast<WPARAM>(actions.FindExact(ActionWord(f.action))), 0);
    SetText(IDC_RULE_RX, f.rxRate);
    const struct { int check, edit; bool on; const std::string& value; } boxes[] = {
        {IDC_RULE_PRIORITY_CHECK, IDC_RULE_PRIORITY, f.priorityChecked, f.priority},
        {IDC_RULE_DSCP_CHECK, IDC_RULE_REPLACE_DSCP, f.replaceDscpChecked, f.replaceDscp},
        {IDC_RULE_TOS_CHECK, IDC_RULE_REPLACE_TOS, f.replaceTosChecked, f.replaceTos}};
    for (const auto& b : boxes) {
        Check(b.check, b.on);
        Enable(b.edit, b.on);
        SetText(b.edit, b.on ? b.value : std::string());
    }
    WriteTypeFields(f);
}

BOOL CRuleDefinitionPage::OnCommand(WPARAM wParam, LPARAM) {
    const int id = LOWORD(wParam);
    const int code = HIWORD(wParam);
    if (id == IDC_RULE_PORTS && code == EN_CHANGE) {
        OnPortsChanged();
        return TRUE;
    }
    if (code != BN_CLICKED) return OnTypeCommand(id, code);
    switch (id) {
    case IDC_RULE_ADD:
        OnAdd();
        return TRUE;
    case IDC_RULE_DELETE:
        OnDelete();
        return TRUE;
    case IDC_RULE_PRIORITY_CHECK:
        Enable(IDC_RULE_PRIORITY, Checked(id));
        return TRUE;
    // The two replacements exclude each other.
    case IDC_RULE_DSCP_CHECK:
    case IDC_RULE_TOS_CHECK: {
        const int other = id == IDC_RULE_DSCP_CHECK ? IDC_RULE_TOS_CHECK : IDC_RULE_DSCP_CHECK;
        const bool on = Checked(id);
        Enable(id == IDC_RULE_DSCP_CHECK ? IDC_RULE_REPLACE_DSCP : IDC_RULE_REPLACE_TOS, on);
        if (on) {
            Check(other, false);
            Enable(other == IDC_RULE_DSCP_CHECK ? IDC_RULE_REPLACE_DSCP : IDC_RULE_REPLACE_TOS, false);
        }
        return TRUE;
    }
    // "ALL Ports" puts every port of the model into the field, on every rule page, so that Add
    // never meets an empty field the user cannot type into.
    case IDC_RULE_ALL_PORTS: {
        const bool all = Checked(id);
        const ModelEntry* model = LookupSupportedModel(m_strModel);
        if (all && model) SetText(IDC_RULE_PORTS, acl::AllPortsText(*model));
        Enable(IDC_RULE_PORTS, !all);
        return TRUE;
    }
    case IDC_RULE_NO_LIMIT:
        Enable(IDC_RULE_RX, !Checked(id));
        return TRUE;
    default:
        return OnTypeCommand(id, code);
    }
}

BOOL CRuleDefinitionPage::OnNotify(const NMHDR* hdr, LRESULT* pResult) {
    if (hdr->hwndFrom == m_list.GetSafeHwnd() && hdr->code == NM_CLICK) {
        LoadRow(reinterpret_cast<const NMITEMACTIVATE*>(hdr)->iItem);
        *pResult = 0;
        return TRUE;
    }
    return FALSE;
}

// The pending rules of the current kind to the rule staging file (ordinary and CPU files apart;
// packet content in the model's layout). "Add rule" reads every rule file, so the file must
// match the list whichever way the page is left: false (after telling the user) when the file
// refused the list, and the page stays.
bool CRuleDefinitionPage::StagePending() {
    const ModelEntry* model = LookupModel(m_strModel);
    if (model == nullptr) return true;
    auto file = StagingFileFor(*model, Owner(), AclKind::kRules, m_type);
    if (!file || WriteStagingFile(file->name, m_pending[OwnerIndex()], file->cellCount)) return true;
    ui::MessageBoxOk(GetSafeHwnd(), ui::LoadResString(IDS_MSG_CANNOT_STAGE));
    return false;
}

// Next: the staged rules, `m_nRuleType`, then "Add rule".
LRESULT CRuleDefinitionPage::OnWizardNext() {
    if (!StagePending()) return kStay;
    State().m_nRuleType = acl::pages::RuleTypeOfPage(Index());
    return CACLPage::OnWizardNext();
}

// Back: a rule deleted here must not stay in the file that a later "Add rule" reads.
LRESULT CRuleDefinitionPage::OnWizardBack() {
    if (!StagePending()) return kStay;
    return CACLPage::OnWizardBack();
}

}  // namespace acl::wizard
