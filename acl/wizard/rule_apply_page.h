// Page 16 `CACLRuleApply` ("Add rule"): the selected switches, the pending rules read back from
// the rule staging files of the ACL kind (the types the model offers, packet content in its
// layout) with the details of a clicked rule, and "Apply to Switch"
// (acl/wizard/apply_page_base.h).
#pragma once
#include "acl/wizard/apply_page_base.h"

namespace acl::wizard {

class CACLRuleApply : public CApplyPage {
public:
    CACLRuleApply();

protected:
    BOOL OnSetActive() override;
    void SetUpLists() override;
    void ReadStaged(const WizardState& wizard, AclOwner owner) override;
    std::span<const PendingColumn> DetailColumns(AclType type, const AclRecord& record) const override;
    void DeleteStaged() const override;
};

}  // namespace acl::wizard
