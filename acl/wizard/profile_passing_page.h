// Page 4 `CACLStep3` ("ADD ACL profile"): Back and Next on activation.
// Its activation runs in passing on Back from pages 6 to 9; it is
// never left on screen.
#pragma once
#include "acl/wizard/page_base.h"

namespace acl::wizard {

class CACLStep3 : public CACLPage {
public:
    CACLStep3();
};

}  // namespace acl::wizard
