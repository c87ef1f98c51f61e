#include "acl/wizard/profile_passing_page.h"

#include "res/resource.h"

namespace acl::wizard {

CACLStep3::CACLStep3() : CACLPage(acl::pages::kPageAddAclProfile, IDD_ACL_STEP3, kBackNext) {}

}  // namespace acl::wizard
