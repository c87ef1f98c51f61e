// The ACL Manager command of CSentrelCfg.
#pragma once

namespace shell {

// Creates CACLWizard (caption "ACL", wizard mode), shows it modally with its first page
// active, and destroys the sheet and its pages when it closes.
void RunAclManagerCommand();

}  // namespace shell
