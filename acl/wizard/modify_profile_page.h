// Page 12 `CACLModifyProfile` ("Modify Profile"): the profiles of a target switch, their
// details, and their deletion one by one or all (the shared CACLModifyPage).
#pragma once
#include "acl/wizard/modify_page_base.h"

namespace acl::wizard {

class CACLModifyProfile : public CACLModifyPage {
public:
    CACLModifyProfile();
};

}  // namespace acl::wizard
