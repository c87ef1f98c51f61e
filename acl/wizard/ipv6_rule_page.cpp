#include "acl/wizard/ipv6_rule_page.h"

#include "res/resource.h"

namespace acl::wizard {
namespace {

constexpr int kEdits[] = {IDC_RULE_CLASS, IDC_RULE_FLOW_LABEL, IDC_RULE_SRC_IPV6, IDC_RULE_DST_IPV6};

}  // namespace

CACLAddIPv6Rule::CACLAddIPv6Rule()
    : CRuleDefinitionPage(acl::pages::kPageIPv6Rule, IDD_ACL_ADD_IPV6_RULE, AclType::kIPv6) {}

std::span<const std::string> CACLAddIPv6Rule::ChosenProfile() const { return State().m_astrIPv6Profile; }

void CACLAddIPv6Rule::EnableTypeFields(const acl::RuleEnabling& e) {
    Enable(IDC_RULE_CLASS, e.ipv6Class);
    Enable(IDC_RULE_FLOW_LABEL, e.flowLabel);
    Enable(IDC_RULE_SRC_IPV6, e.srcAddr);
    Enable(IDC_RULE_DST_IPV6, e.dstAddr);
}

void CACLAddIPv6Rule::ReadTypeFields(RuleFields& f) const {
    auto text = [this](int id) { return IsWindowEnabled(GetDlgItem(id)) ? Text(id) : std::string(); };
    f.ipv6Class = text(IDC_RULE_CLASS);
    f.flowLabel = text(IDC_RULE_FLOW_LABEL);
    f.srcIpv6 = text(IDC_RULE_SRC_IPV6);
    f.dstIpv6 = text(IDC_RULE_DST_IPV6);
}

void CACLAddIPv6Rule::WriteTypeFields(const RuleFields& f) {
    SetText(IDC_RULE_CLASS, f.ipv6Class);
    SetText(IDC_RULE_FLOW_LABEL, f.flowLabel);
    SetText(IDC_RULE_SRC_IPV6, f.srcIpv6);
    SetText(IDC_RULE_DST_IPV6, f.dstIpv6);
}

void CACLAddIPv6Rule::ClearTypeFields() {
    for (int id : kEdits) SetText(id, "");
}

}  // namespace acl::wizard
