#include "acl/wizard/modify_profile_page.h"

#include "res/resource.h"

namespace acl::wizard {

CACLModifyProfile::CACLModifyProfile() : CACLModifyPage(acl::pages::kPageModifyProfile, IDD_ACL_MODIFY_PROFILE) {}

}  // namespace acl::wizard
