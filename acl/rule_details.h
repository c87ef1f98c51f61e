// The details of a rule read from a switch, as "Modify Rule" shows them when a rule is
// clicked: one row per field the rule's table carries, a label and the value (the action as
// its word, the ports as a list, a flag as "Enabled"/"Disabled"). Portable, so the command
// line can show a rule the same way.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "acl/acl_record.h"

namespace acl {

// Rows of (label, value) for `record` of `kind` (cells in the reader's order); the row status
// is not shown, and cells the record lacks read as empty.
std::vector<std::pair<std::string, std::string>> RuleDetails(const AclRecordKind& kind, const AclRecord& record);

}  // namespace acl
