// Page 11 `CACLAddrule` ("Add Rule: Rule Detail", Ethernet): VLAN name, 802.1P, the two MAC
// addresses and the Ethernet type, enabled by the chosen Ethernet profile's masks.
#pragma once
#include "acl/wizard/rule_definition_page.h"

namespace acl::wizard {

class CACLAddrule : public CRuleDefinitionPage {
public:
    CACLAddrule();

protected:
    std::span<const std::string> ChosenProfile() const override;
    void EnableTypeFields(const acl::RuleEnabling& enabling) override;
    void ReadTypeFields(RuleFields& fields) const override;
    void WriteTypeFields(const RuleFields& fields) override;
    void ClearTypeFields() override;
};

}  // namespace acl::wizard
