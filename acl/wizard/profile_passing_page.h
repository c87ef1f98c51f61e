// Part 5.1, page 4 `CACLStep3` ("ADD ACL profile", Part 5.2): Back and Next on activation.
// Part 5.2 gives it its activation (run in passing on Back from pages 6 to 9); it is
// never left on screen.
#pragma once
#include "acl/wizard/page_base.h"

namespace acl::wizard {

class CACLStep3 : public CACLPage {
public:
    CACLStep3();
};

}  // namespace acl::wizard
