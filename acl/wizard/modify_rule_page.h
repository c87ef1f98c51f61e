// Page 13 `CACLModifyRule` ("Modify Rule"): Back and Finish on activation.
// Its lists and readers are still to come; the frame gives it its buttons and navigation.
#pragma once
#include "acl/wizard/page_base.h"

namespace acl::wizard {

class CACLModifyRule : public CACLPage {
public:
    CACLModifyRule();
};

}  // namespace acl::wizard
