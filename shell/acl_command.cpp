#include "shell/acl_command.h"

#include <windows.h>

#include "acl/wizard/acl_wizard.h"

namespace shell {

void RunAclManagerCommand() {
    // Modal on the host's thread, owned by the host's active window when it has one.
    acl::wizard::RunAclWizard(GetActiveWindow());
}

}  // namespace shell
