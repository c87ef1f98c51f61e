#include "acl/wizard/modify_rule_page.h"

#include "res/resource.h"

namespace acl::wizard {

CACLModifyRule::CACLModifyRule() : CACLPage(acl::pages::kPageModifyRule, IDD_ACL_MODIFY_RULE, kBackFinish) {}

}  // namespace acl::wizard
