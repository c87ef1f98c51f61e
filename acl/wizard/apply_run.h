// What both confirmation pages ("Confirmation Page" and "Add rule") share: the switch list and
// "Apply to Switch". The apply runs the ACL core's apply on the user-interface thread with the
// wait cursor and the progress bar, writes each switch's result word, deletes the page's
// staging files and sets its applied flag. What was sent leaves the page's lists, so a second
// Apply sends only the closing request.
#pragma once
#include <windows.h>

#include <array>
#include <functional>

#include "acl/acl_record.h"
#include "acl/wizard/wizard_state.h"
#include "controls/xlist_ctrl.h"

namespace acl::wizard {

// The columns "Device IP", " Device Name", "Status ".
void SetUpSwitchList(controls::CXListCtrl& list, HWND hwndList);
// One row per target: its IP and device type; the result column empty until an apply.
void FillSwitchList(controls::CXListCtrl& list, const WizardState& wizard);

// Sends `lists` (by AclType) to every target in order: profiles or rules of the sheet's ACL
// kind; `deleteStaged` deletes the page's group of staging files; `lists` is emptied.
void ApplyToTargets(WizardState& wizard, AclKind kind, HWND hwndProgress, controls::CXListCtrl& switchList,
                    std::array<AclRecordList, 4>& lists, const std::function<void()>& deleteStaged);

}  // namespace acl::wizard
