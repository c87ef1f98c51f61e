// Part 5.1, page 16 `CACLRuleApply` ("Add rule", Part 5.4): Back and Finish on activation.
// Its list and the apply come with Part 5.4; the frame deletes the seven rule staging files on
// Finish (before the wizard closes) and on Cancel (Part 5.1).
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
