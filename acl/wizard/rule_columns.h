// The pending-list columns of the rule pages, one per cell of the rule's record (header from
// the string table, 0 for an empty header, and width); "Add rule" names a rule's fields in its
// details by them.
#pragma once
#include <span>

#include "acl/wizard/pending_columns.h"

namespace acl::wizard {

// The columns of a rule record of a type, owner and packet-content layout.
std::span<const PendingColumn> RuleColumnsFor(AclType type, AclOwner owner, PacketShape shape);

}  // namespace acl::wizard
