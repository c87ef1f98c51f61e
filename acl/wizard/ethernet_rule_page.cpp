#include "acl/wizard/ethernet_rule_page.h"

#include "res/resource.h"

namespace acl::wizard {
namespace {

constexpr int kEdits[] = {IDC_RULE_VLAN, IDC_RULE_8021P, IDC_RULE_SRC_MAC, IDC_RULE_DST_MAC, IDC_RULE_ETHERTYPE};

}  // namespace

CACLAddrule::CACLAddrule() : CRuleDefinitionPage(acl::pages::kPageEthRule, IDD_ACL_ADDRULE, AclType::kEthernet) {}

std::span<const std::string> CACLAddrule::ChosenProfile() const { return State().m_astrEthProfile; }

void CACLAddrule::EnableTypeFields(const acl::RuleEnabling& e) {
    Enable(IDC_RULE_VLAN, e.vlan);
    Enable(IDC_RULE_SRC_MAC, e.srcAddr);
    Enable(IDC_RULE_SRC_MAC_EXAMPLE, e.srcAddr);
    Enable(IDC_RULE_DST_MAC, e.dstAddr);
    Enable(IDC_RULE_DST_MAC_EXAMPLE, e.dstAddr);
    Enable(IDC_RULE_8021P, e.p8021);
    Enable(IDC_RULE_ETHERTYPE, e.ethertype);
}

// The MACs may be typed as the example shows them, with "-" or ":" between the byte pairs.
void CACLAddrule::ReadTypeFields(RuleFields& f) const {
    auto enabled = [this](int id) { return IsWindowEnabled(GetDlgItem(id)) != FALSE; };
    if (enabled(IDC_RULE_VLAN)) f.vlan = Text(IDC_RULE_VLAN);
    if (enabled(IDC_RULE_8021P)) f.p8021 = Text(IDC_RULE_8021P);
    if (enabled(IDC_RULE_SRC_MAC)) f.srcMac = acl::MacWithoutSeparators(Text(IDC_RULE_SRC_MAC));
    if (enabled(IDC_RULE_DST_MAC)) f.dstMac = acl::MacWithoutSeparators(Text(IDC_RULE_DST_MAC));
    if (enabled(IDC_RULE_ETHERTYPE)) f.ethertype = Text(IDC_RULE_ETHERTYPE);
}

void CACLAddrule::WriteTypeFields(const RuleFields& f) {
    SetText(IDC_RULE_VLAN, f.vlan);
    SetText(IDC_RULE_8021P, f.p8021);
    SetText(IDC_RULE_SRC_MAC, f.srcMac);
    SetText(IDC_RULE_DST_MAC, f.dstMac);
    SetText(IDC_RULE_ETHERTYPE, f.ethertype);
}

void CACLAddrule::ClearTypeFields() {
    for (int id : kEdits) SetText(id, "");
}

}  // namespace acl::wizard
