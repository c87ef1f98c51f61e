// Part 5.1, page 10 `CACLApply` ("Confirmation Page", Part 5.4): Back and Finish on activation.
// Its list and the apply come with Part 5.4; the frame deletes the four profile staging files on
// Finish (before the wizard closes) and on Cancel (Part 5.1).
#pragma once
#include "acl/wizard/acl_page.h"

namespace acl::wizard {

class CACLApply : public CACLPage {
public:
    CACLApply();

protected:
    BOOL OnWizardFinish() override;
    void OnCancel() override;
};

}  // namespace acl::wizard
