#include "acl/wizard/acl_step3.h"

#include "acl/wizard/acl_wizard.h"
#include "res/resource.h"

namespace acl::wizard {

CACLStep3::CACLStep3() : CACLPage(acl::pages::kPageAddAclProfile, IDD_ACL_STEP3, kBackNext) {}

}  // namespace acl::wizard
