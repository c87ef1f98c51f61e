#include "acl/wizard/acl_modify_rule.h"

#include "acl/wizard/acl_wizard.h"
#include "res/resource.h"

namespace acl::wizard {

CACLModifyRule::CACLModifyRule() : CACLPage(acl::pages::kPageModifyRule, IDD_ACL_MODIFY_RULE, kBackFinish) {}

}  // namespace acl::wizard
