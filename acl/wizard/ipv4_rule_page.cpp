#include "acl/wizard/ipv4_rule_page.h"

#include <cstdio>

#include "res/resource.h"
#include "ui/text.h"

namespace acl::wizard {
namespace {

using acl::ProtocolArea;

// The protocol area's title and the labels and examples of its two fields (0: none).
struct AreaTexts {
    UINT title, firstLabel, firstExample, secondLabel, secondExample;
};
AreaTexts TextsOf(ProtocolArea area) {
    switch (area) {
    case ProtocolArea::kIcmp:
        return {IDS_RULE_AREA_FIRST, IDS_RULE_LABEL_TYPE, IDS_RULE_EX_255, IDS_RULE_LABEL_CODE, IDS_RULE_EX_255};
    case ProtocolArea::kIgmp: return {IDS_RULE_AREA_FIRST + 1, IDS_RULE_LABEL_TYPE, IDS_RULE_EX_255, 0, 0};
    case ProtocolArea::kTcp:
    case ProtocolArea::kUdp:
        return {area == ProtocolArea::kTcp ? IDS_RULE_AREA_FIRST + 2u : IDS_RULE_AREA_FIRST + 3u,
                IDS_RULE_LABEL_SRC_PORT, IDS_RULE_EX_65535, IDS_RULE_LABEL_DST_PORT, IDS_RULE_EX_65535};
    case ProtocolArea::kProtocolId:
        return {IDS_RULE_AREA_FIRST + 4, IDS_RULE_LABEL_PROTOCOL_ID, IDS_RULE_EX_255, IDS_RULE_LABEL_USER_MASK,
                IDS_RULE_EX_FFFFFFFF};
    case ProtocolArea::kNone: break;
    }
    return {};
}

std::string Res(UINT id) { return id ? ui::LoadResString(id) : std::string(); }

// An empty address field gives no address; otherwise its four bytes.
std::string AddressText(HWND ip) {
    if (SendMessageA(ip, IPM_ISBLANK, 0, 0)) return {};
    DWORD address = 0;
    SendMessageA(ip, IPM_GETADDRESS, 0, reinterpret_cast<LPARAM>(&address));
    char text[16];
    std::snprintf(text, sizeof text, "%d.%d.%d.%d", static_cast<int>(FIRST_IPADDRESS(address)),
                  static_cast<int>(SECOND_IPADDRESS(address)), static_cast<int>(THIRD_IPADDRESS(address)),
                  static_cast<int>(FOURTH_IPADDRESS(address)));
    return text;
}

void SetAddress(HWND ip, const std::string& text) {
    unsigned a = 0, b = 0, c = 0, d = 0;
    if (std::sscanf(text.c_str(), "%u.%u.%u.%u", &a, &b, &c, &d) == 4 && a < 256 && b < 256 && c < 256 && d < 256)
        SendMessageA(ip, IPM_SETADDRESS, 0, MAKEIPADDRESS(a, b, c, d));
    else
        SendMessageA(ip, IPM_CLEARADDRESS, 0, 0);
}

constexpr int kFlags = 6;  // "URG" 32 ... "FIN" 1

}  // namespace

CACLAddIPv4Rule::CACLAddIPv4Rule()
    : CRuleDefinitionPage(acl::pages::kPageIPv4Rule, IDD_ACL_ADD_IPV4_RULE, AclType::kIPv4) {}

std::span<const std::string> CACLAddIPv4Rule::ChosenProfile() const { return State().m_astrIPv4Profile; }

void CACLAddIPv4Rule::EnableTypeFields(const acl::RuleEnabling& e) {
    Enable(IDC_RULE_VLAN, e.vlan);
    Enable(IDC_RULE_SRC_IP, e.srcAddr);
    Enable(IDC_RULE_SRC_IP_EXAMPLE, e.srcAddr);
    Enable(IDC_RULE_DST_IP, e.dstAddr);
    Enable(IDC_RULE_DST_IP_EXAMPLE, e.dstAddr);
    Enable(IDC_RULE_DSCP, e.dscp);
    m_area = e.area;
    const AreaTexts t = TextsOf(e.area);
    Show(IDC_RULE_PROTO_GROUP, e.area != ProtocolArea::kNone);
    SetText(IDC_RULE_PROTO_GROUP, Res(t.title));
    SetText(IDC_RULE_FIRST_LABEL, Res(t.firstLabel));
    SetText(IDC_RULE_FIRST_EXAMPLE, Res(t.firstExample));
    SetText(IDC_RULE_SECOND_LABEL, Res(t.secondLabel));
    SetText(IDC_RULE_SECOND_EXAMPLE, Res(t.secondExample));
    for (int id : {IDC_RULE_FIRST_LABEL, IDC_RULE_FIRST, IDC_RULE_FIRST_EXAMPLE}) Show(id, e.first);
    for (int id : {IDC_RULE_SECOND_LABEL, IDC_RULE_SECOND, IDC_RULE_SECOND_EXAMPLE}) Show(id, e.second && t.secondLabel);
    Show(IDC_RULE_FLAG_LABEL, e.flags);
    for (int i = 0; i < kFlags; ++i) Show(IDC_RULE_FLAG_FIRST + i, e.flags);
}

void CACLAddIPv4Rule::ReadTypeFields(RuleFields& f) const {
    auto usable = [this](int id) { return IsWindowVisible(GetDlgItem(id)) && IsWindowEnabled(GetDlgItem(id)); };
    if (usable(IDC_RULE_VLAN)) f.vlan = Text(IDC_RULE_VLAN);
    if (usable(IDC_RULE_SRC_IP)) f.srcIp = AddressText(GetDlgItem(IDC_RULE_SRC_IP));
    if (usable(IDC_RULE_DST_IP)) f.dstIp = AddressText(GetDlgItem(IDC_RULE_DST_IP));
    if (usable(IDC_RULE_DSCP)) f.dscp = Text(IDC_RULE_DSCP);
    f.protocol = acl::ProtocolCode(m_area);
    if (usable(IDC_RULE_FIRST)) f.value1 = Text(IDC_RULE_FIRST);
    if (usable(IDC_RULE_SECOND)) f.value2 = Text(IDC_RULE_SECOND);
    if (m_area == ProtocolArea::kTcp && IsWindowVisible(GetDlgItem(IDC_RULE_FLAG_FIRST))) {
        int bits = 0;
        for (int i = 0; i < kFlags; ++i)
            if (Checked(IDC_RULE_FLAG_FIRST + i)) bits += 32 >> i;
        f.flagBits = std::to_string(bits);
    }
}

void CACLAddIPv4Rule::WriteTypeFields(const RuleFields& f) {
    SetText(IDC_RULE_VLAN, f.vlan);
    SetAddress(GetDlgItem(IDC_RULE_SRC_IP), f.srcIp);
    SetAddress(GetDlgItem(IDC_RULE_DST_IP), f.dstIp);
    SetText(IDC_RULE_DSCP, f.dscp);
    SetText(IDC_RULE_FIRST, f.value1);
    SetText(IDC_RULE_SECOND, f.value2);
    const int bits = f.flagBits.empty() ? 0 : std::atoi(f.flagBits.c_str());
    for (int i = 0; i < kFlags; ++i) Check(IDC_RULE_FLAG_FIRST + i, (bits & (32 >> i)) != 0);
}

void CACLAddIPv4Rule::ClearTypeFields() {
    WriteTypeFields(RuleFields{});
}

}  // namespace acl::wizard
