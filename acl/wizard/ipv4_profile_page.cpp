#include "acl/wizard/ipv4_profile_page.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>

#include "res/resource.h"
#include "ui/controls.h"
#include "ui/text.h"

namespace acl::wizard {
namespace {

// One group per protocol, in the same place; m_nFrameOption picks the one shown.
struct ProtocolGroup {
    long frameOption;
    int box;
    UINT title;
    int controls[13];  // the box's own controls (0: none)
};

const ProtocolGroup kGroups[] = {
    {3, IDC_IPV4_ICMP_GROUP, IDS_IPV4_GROUP_ICMP, {IDC_IPV4_ICMP, IDC_IPV4_ICMP_TYPE, IDC_IPV4_ICMP_CODE}},
    {4, IDC_IPV4_IGMP_GROUP, IDS_IPV4_GROUP_IGMP, {IDC_IPV4_IGMP, IDC_IPV4_IGMP_TYPE}},
    {5, IDC_IPV4_TCP_GROUP, IDS_IPV4_GROUP_TCP,
     {IDC_IPV4_TCP, IDC_IPV4_TCP_SRC_PORT_CHECK, IDC_IPV4_TCP_SRC_PORT, IDC_IPV4_TCP_DST_PORT_CHECK,
      IDC_IPV4_TCP_DST_PORT, IDC_IPV4_TCP_FLAG_BITS, IDC_IPV4_TCP_CHECK_ALL, IDC_IPV4_TCP_URG, IDC_IPV4_TCP_ACK,
      IDC_IPV4_TCP_PSH, IDC_IPV4_TCP_RST, IDC_IPV4_TCP_SYN, IDC_IPV4_TCP_FIN}},
    {6, IDC_IPV4_UDP_GROUP, IDS_IPV4_GROUP_UDP,
     {IDC_IPV4_UDP, IDC_IPV4_UDP_SRC_PORT_CHECK, IDC_IPV4_UDP_SRC_PORT, IDC_IPV4_UDP_DST_PORT_CHECK,
      IDC_IPV4_UDP_DST_PORT}},
    {7, IDC_IPV4_PROTO_GROUP, IDS_IPV4_GROUP_PROTOCOL_ID,
     {IDC_IPV4_PROTO_ID_CHECK, IDC_IPV4_PROTO_ID, IDC_IPV4_USER_DEFINE, IDC_IPV4_USER_MASK1, IDC_IPV4_USER_MASK2,
      IDC_IPV4_USER_MASK3, IDC_IPV4_USER_MASK4, IDC_IPV4_USER_MASK5}},
};

// Port-mask edits hold 4 characters, the user-defined fields 8 each.
constexpr int kPortEdits[] = {IDC_IPV4_TCP_SRC_PORT, IDC_IPV4_TCP_DST_PORT, IDC_IPV4_UDP_SRC_PORT,
                              IDC_IPV4_UDP_DST_PORT};
constexpr int kUserEdits[] = {IDC_IPV4_USER_MASK1, IDC_IPV4_USER_MASK2, IDC_IPV4_USER_MASK3, IDC_IPV4_USER_MASK4,
                              IDC_IPV4_USER_MASK5};
constexpr int kFlags[] = {IDC_IPV4_TCP_URG, IDC_IPV4_TCP_ACK, IDC_IPV4_TCP_PSH,
                          IDC_IPV4_TCP_RST, IDC_IPV4_TCP_SYN, IDC_IPV4_TCP_FIN};
constexpr int kAllFlags = 63;

// URG 32, ACK 16, PSH 8, RST 4, SYN 2, FIN 1 (the IDs follow that order).
int FlagWeight(int id) { return 32 >> (id - IDC_IPV4_TCP_URG); }
bool IsFlag(int id) { return id >= IDC_IPV4_TCP_URG && id <= IDC_IPV4_TCP_FIN; }
bool IsHexEdit(int id) {
    for (int e : kPortEdits)
        if (e == id) return true;
    for (int e : kUserEdits)
        if (e == id) return true;
    return false;
}

}  // namespace

CACLStep5::CACLStep5()
    : CProfileDefinitionPage(acl::pages::kPageIPv4Profile, IDD_ACL_STEP5, AclType::kIPv4,
                             {IDC_IPV4_LIST, IDC_IPV4_ADD, IDC_IPV4_DELETE}) {
    // The template's IP-address controls need their class, whichever host opens the wizard.
    INITCOMMONCONTROLSEX icc{sizeof icc, ICC_INTERNET_CLASSES};
    InitCommonControlsEx(&icc);
}

BOOL CACLStep5::OnInitDialog() {
    for (int id : kPortEdits) SendMessageA(GetDlgItem(id), EM_LIMITTEXT, 4, 0);
    for (int id : kUserEdits) SendMessageA(GetDlgItem(id), EM_LIMITTEXT, 8, 0);
    SendMessageA(GetDlgItem(IDC_IPV4_PROTO_ID), EM_LIMITTEXT, 3, 0);  // 0-255
    return CProfileDefinitionPage::OnInitDialog();
}

bool CACLStep5::Checked(int id) const { return ui::Button(GetDlgItem(id)).IsChecked(); }

// Five user-defined fields on TVR4510 and TVR4820, one elsewhere.
int CACLStep5::UserFieldCount() const { return Model() == "TVR4510" || Model() == "TVR4820" ? 5 : 1; }

// On every activation the page shows only the protocol group of m_nFrameOption, titled
// with the protocol's name, which new rows keep in column 22. With 1 or
// 2 (IPv4 chosen while the protocol list showed nothing) no group is shown and the rows carry no
// protocol (UseProtoType "1"). What the user typed and has not added yet stays, as on Back and
// Next every page keeps its contents.
void CACLStep5::OnActivate() {
    ShowProtocolGroup();
    UpdateEnabling();
}

void CACLStep5::ShowProtocolGroup() {
    const long frameOption = State().m_nFrameOption;
    m_nGroup = 0;
    m_strGroupName.clear();
    for (const ProtocolGroup& g : kGroups) {
        const bool shown = g.frameOption == frameOption;
        if (shown) {
            m_nGroup = static_cast<int>(g.frameOption);
            m_strGroupName = ui::LoadResString(g.title);
            SetWindowTextA(GetDlgItem(g.box), m_strGroupName.c_str());
        }
        ShowWindow(GetDlgItem(g.box), shown ? SW_SHOW : SW_HIDE);
        for (int id : g.controls)
            if (id != 0) ShowWindow(GetDlgItem(id), shown ? SW_SHOW : SW_HIDE);
    }
    if (m_nGroup == 7)
        for (int i = UserFieldCount(); i < 5; ++i) ShowWindow(GetDlgItem(kUserEdits[i]), SW_HIDE);
}

// Each mask check box enables its field; "ICMP" enables "ICMP Type" and "ICMP Code";
// "IGMP" enables "IGMP Type"; "TCP Flag Bits" enables "Check All" and the six flags; "User
// Define(0-FFFFFFFF)" enables the user-defined fields.
void CACLStep5::UpdateEnabling() {
    auto enable = [this](int id, bool on) { EnableWindow(GetDlgItem(id), on ? TRUE : FALSE); };
    enable(IDC_IPV4_SRC_IP, Checked(IDC_IPV4_SRC_IP_CHECK));
    enable(IDC_IPV4_DST_IP, Checked(IDC_IPV4_DST_IP_CHECK));
    enable(IDC_IPV4_ICMP_TYPE, Checked(IDC_IPV4_ICMP));
    enable(IDC_IPV4_ICMP_CODE, Checked(IDC_IPV4_ICMP));
    enable(IDC_IPV4_IGMP_TYPE, Checked(IDC_IPV4_IGMP));
    enable(IDC_IPV4_TCP_SRC_PORT, Checked(IDC_IPV4_TCP_SRC_PORT_CHECK));
    enable(IDC_IPV4_TCP_DST_PORT, Checked(IDC_IPV4_TCP_DST_PORT_CHECK));
    const bool flags = Checked(IDC_IPV4_TCP_FLAG_BITS);
    enable(IDC_IPV4_TCP_CHECK_ALL, flags);
    for (int id : kFlags) enable(id, flags);
    enable(IDC_IPV4_UDP_SRC_PORT, Checked(IDC_IPV4_UDP_SRC_PORT_CHECK));
    enable(IDC_IPV4_UDP_DST_PORT, Checked(IDC_IPV4_UDP_DST_PORT_CHECK));
    enable(IDC_IPV4_PROTO_ID, Checked(IDC_IPV4_PROTO_ID_CHECK));
    for (int id : kUserEdits) enable(id, Checked(IDC_IPV4_USER_DEFINE));
}

// Checking a flag adds its weight, unchecking subtracts it. "Check All" shows whether
// all six are set, so that its next click unchecks them.
void CACLStep5::OnFlagClicked(int id) {
    m_nFlagValue += Checked(id) ? FlagWeight(id) : -FlagWeight(id);
    ui::Button(GetDlgItem(IDC_IPV4_TCP_CHECK_ALL)).SetCheck(m_nFlagValue == kAllFlags);
}

// "Check All" checks all six and sets 63, or unchecks all and sets 0.
void CACLStep5::OnCheckAll() {
    const bool all = Checked(IDC_IPV4_TCP_CHECK_ALL);
    for (int id : kFlags) ui::Button(GetDlgItem(id)).SetCheck(all);
    m_nFlagValue = all ? kAllFlags : 0;
}

// A non-hex digit would reach the switch as 0 without a word, so the mask edits keep only hexadecimal digits, upper-cased, and the protocol ID only
// digits up to 255; whatever else is typed or pasted is taken out again, with a beep.
void CACLStep5::FilterEdit(int id) {
    if (m_bFiltering) return;
    HWND edit = GetDlgItem(id);
    const std::string text = ui::GetWindowTextString(edit);
    std::string kept;
    for (char c : text) {
        const unsigned char u = static_cast<unsigned char>(c);
        if (id == IDC_IPV4_PROTO_ID ? std::isdigit(u) != 0 : std::isxdigit(u) != 0)
            kept += static_cast<char>(std::toupper(u));
    }
    if (id == IDC_IPV4_PROTO_ID)
        while (!kept.empty() && std::atoi(kept.c_str()) > 255) kept.pop_back();
    if (kept == text) return;
    if (kept.size() != text.size()) MessageBeep(MB_OK);
    m_bFiltering = true;
    SetWindowTextA(edit, kept.c_str());
    SendMessageA(edit, EM_SETSEL, kept.size(), kept.size());
    m_bFiltering = false;
}

BOOL CACLStep5::OnFieldCommand(int id, int code) {
    if (code == EN_CHANGE && (IsHexEdit(id) || id == IDC_IPV4_PROTO_ID)) {
        FilterEdit(id);
        return TRUE;
    }
    if (code != BN_CLICKED) return FALSE;
    if (IsFlag(id))
        OnFlagClicked(id);
    else if (id == IDC_IPV4_TCP_CHECK_ALL)
        OnCheckAll();
    UpdateEnabling();
    return TRUE;
}

namespace {

// An IPv4 address or mask as "%d.%d.%d.%d" from the four bytes of an IP-address field.
std::string AddressText(HWND ip) {
    DWORD address = 0;
    SendMessageA(ip, IPM_GETADDRESS, 0, reinterpret_cast<LPARAM>(&address));
    char text[16];
    std::snprintf(text, sizeof text, "%d.%d.%d.%d", static_cast<int>(FIRST_IPADDRESS(address)),
                  static_cast<int>(SECOND_IPADDRESS(address)), static_cast<int>(THIRD_IPADDRESS(address)),
                  static_cast<int>(FOURTH_IPADDRESS(address)));
    return text;
}

}  // namespace

// The fields as BuildProfile (acl/acl_record.h) takes them: the shown group's options, port
// masks empty unless checked, the user mask as one text (the five fields joined
// on TVR4510 and TVR4820).
ProfileFields CACLStep5::ReadFields() const {
    ProfileFields f;
    f.vlan = Checked(IDC_IPV4_VLAN);
    f.dscp = Checked(IDC_IPV4_DSCP);
    f.srcIpChecked = Checked(IDC_IPV4_SRC_IP_CHECK);
    f.dstIpChecked = Checked(IDC_IPV4_DST_IP_CHECK);
    f.srcIp = AddressText(GetDlgItem(IDC_IPV4_SRC_IP));
    f.dstIp = AddressText(GetDlgItem(IDC_IPV4_DST_IP));
    f.protocolGroup = m_nGroup;
    auto mask = [this](int check, int edit) {
        // A mask is a number, padded to its width (acl_record.h);
        // a checked empty mask counts as 0.
        return Checked(check) ? PadHex(ui::GetWindowTextString(GetDlgItem(edit)), 4) : std::string();
    };
    switch (m_nGroup) {
    case 3:
        f.protocolChecked = Checked(IDC_IPV4_ICMP);
        f.typeChecked = Checked(IDC_IPV4_ICMP_TYPE);
        f.codeChecked = Checked(IDC_IPV4_ICMP_CODE);
        break;
    case 4:
        f.protocolChecked = Checked(IDC_IPV4_IGMP);
        f.typeChecked = Checked(IDC_IPV4_IGMP_TYPE);
        break;
    case 5:  // the port masks and flag bits go to their cells whether "TCP" is checked
        f.protocolChecked = Checked(IDC_IPV4_TCP);
        f.srcPortMask = mask(IDC_IPV4_TCP_SRC_PORT_CHECK, IDC_IPV4_TCP_SRC_PORT);
        f.dstPortMask = mask(IDC_IPV4_TCP_DST_PORT_CHECK, IDC_IPV4_TCP_DST_PORT);
        f.flagBitsChecked = Checked(IDC_IPV4_TCP_FLAG_BITS);
        f.flagValue = m_nFlagValue;
        break;
    case 6:
        f.protocolChecked = Checked(IDC_IPV4_UDP);
        f.srcPortMask = mask(IDC_IPV4_UDP_SRC_PORT_CHECK, IDC_IPV4_UDP_SRC_PORT);
        f.dstPortMask = mask(IDC_IPV4_UDP_DST_PORT_CHECK, IDC_IPV4_UDP_DST_PORT);
        break;
    case 7: {
        f.protocolChecked = Checked(IDC_IPV4_PROTO_ID_CHECK);
        // An empty protocol ID counts as 0, like an empty mask.
        const std::string id = ui::GetWindowTextString(GetDlgItem(IDC_IPV4_PROTO_ID));
        f.protocolId = id.empty() ? std::string(1, '0') : id;
        // "User Define(0-FFFFFFFF)" checked gives "ProtolIDMask" on its own.
        f.userMaskChecked = Checked(IDC_IPV4_USER_DEFINE);
        if (f.userMaskChecked)
            for (int i = 0; i < UserFieldCount(); ++i)
                f.userMask += PadHex(ui::GetWindowTextString(GetDlgItem(kUserEdits[i])), 8);
        break;
    }
    default: break;
    }
    return f;
}

// Column 22 of a new row holds the protocol group name.
void CACLStep5::OnRowAdded(int row, const AclRecord& /*record*/) {
    PendingList().SetItemText(row, 22, m_strGroupName);
}

}  // namespace acl::wizard
