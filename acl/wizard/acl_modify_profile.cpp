#include "acl/wizard/acl_modify_profile.h"

#include "acl/wizard/acl_wizard.h"
#include "res/resource.h"

namespace acl::wizard {

CACLModifyProfile::CACLModifyProfile() : CACLPage(acl::pages::kPageModifyProfile, IDD_ACL_MODIFY_PROFILE, kBackFinish) {}

}  // namespace acl::wizard
