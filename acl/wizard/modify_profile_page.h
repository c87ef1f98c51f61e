// Page 12 `CACLModifyProfile` ("Modify Profile"): Back and Finish on activation.
// Its lists and readers are still to come; the frame gives it its buttons and navigation.
#pragma once
#include "acl/wizard/page_base.h"

namespace acl::wizard {

class CACLModifyProfile : public CACLPage {
public:
    CACLModifyProfile();
};

}  // namespace acl::wizard
