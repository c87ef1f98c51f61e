// Page 15 `CACLAddIPv6Rule` ("Add Rule: Rule Detail", IPv6): class, flow label and the two
// addresses, enabled by the chosen IPv6 profile's masks; "No Limit" beside the Rx Rate.
#pragma once
#include "acl/wizard/rule_definition_page.h"

namespace acl::wizard {

class CACLAddIPv6Rule : public CRuleDefinitionPage {
public:
    CACLAddIPv6Rule();

protected:
    std::span<const std::string> ChosenProfile() const override;
    void EnableTypeFields(const acl::RuleEnabling& enabling) override;
    void ReadTypeFields(RuleFields& fields) const override;
    void WriteTypeFields(const RuleFields& fields) override;
    void ClearTypeFields() override;
};

}  // namespace acl::wizard
