// Page 14 `CACLAddIPv4Rule` ("Add Rule: Rule Detail", IPv4): VLAN name, the two addresses,
// DSCP and the protocol area that the chosen IPv4 profile's "UseProtoType" sets up (ICMP type
// and code, IGMP type, TCP or UDP ports with the TCP flags, protocol ID and user mask).
#pragma once
#include "acl/wizard/rule_definition_page.h"

namespace acl::wizard {

class CACLAddIPv4Rule : public CRuleDefinitionPage {
public:
    CACLAddIPv4Rule();

protected:
    std::span<const std::string> ChosenProfile() const override;
    void EnableTypeFields(const acl::RuleEnabling& enabling) override;
    void ReadTypeFields(RuleFields& fields) const override;
    void WriteTypeFields(const RuleFields& fields) override;
    void ClearTypeFields() override;
    int InitialAction() const override { return 2; }  // "Deny"

private:
    acl::ProtocolArea m_area = acl::ProtocolArea::kNone;
};

}  // namespace acl::wizard
