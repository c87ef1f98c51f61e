// The pending-list columns of the four profile definition pages (header from the
// string table, 0 for an empty header, and width). One table per list, read by the definition
// pages and by the Confirmation Page, which names a profile's fields by them.
#pragma once
#include <windows.h>

#include <span>

#include "snmp/model_catalogue.h"

namespace acl::wizard {

struct PendingColumn {
    UINT idsHeader;  // 0: empty header (row status, profile name, spare cells)
    int width;
};

std::span<const PendingColumn> EthernetPendingColumns();
std::span<const PendingColumn> Ipv4PendingColumns();
std::span<const PendingColumn> Ipv6PendingColumns();
std::span<const PendingColumn> ChunkPendingColumns();   // packet content, Chunks4 layout
std::span<const PendingColumn> OffsetPendingColumns();  // packet content, Block16 layout

// The columns of a type's list; packet content by its record layout.
std::span<const PendingColumn> PendingColumnsFor(AclType type, PacketShape shape);

}  // namespace acl::wizard
