// Part 5.1, page 13 `CACLModifyRule` ("Modify Rule", Part 5.5): Back and Finish on activation.
// Its lists and readers come with Part 5.5; the frame gives it its buttons and navigation.
#pragma once
#include "acl/wizard/page_base.h"

namespace acl::wizard {

class CACLModifyRule : public CACLPage {
public:
    CACLModifyRule();
};

}  // namespace acl::wizard
