// Page 16 `CACLRuleApply` ("Add rule"): Back and Finish on activation.
// Its list and the apply come with the rule pages; the frame deletes the seven rule staging files on
// Finish (before the wizard closes) and on Cancel.
#pragma once
#include "acl/wizard/page_base.h"

namespace acl::wizard {

class CACLRuleApply : public CACLPage {
public:
    CACLRuleApply();

protected:
    BOOL OnWizardFinish() override;
    void OnCancel() override;
};

}  // namespace acl::wizard
