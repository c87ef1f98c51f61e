// Part 5.1, page 6 `CACLStep5` ("IPV4 ACL Settings", Part 5.2): Back and Next on activation.
// Its filtering masks and pending list come with Part 5.2, and with them the writing of the
// staging file on Next; the frame sets `m_nProfileType` and passes through page 9.
#pragma once
#include "acl/wizard/acl_page.h"

namespace acl::wizard {

class CACLStep5 : public CACLPage {
public:
    CACLStep5();

protected:
    LRESULT OnWizardNext() override;
};

}  // namespace acl::wizard
