#include "acl/wizard/modify_profile_page.h"

#include "res/resource.h"

namespace acl::wizard {

CACLModifyProfile::CACLModifyProfile() : CACLPage(acl::pages::kPageModifyProfile, IDD_ACL_MODIFY_PROFILE, kBackFinish) {}

}  // namespace acl::wizard
