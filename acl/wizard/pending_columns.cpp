#include "acl/wizard/pending_columns.h"

#include "res/resource.h"

namespace acl::wizard {
namespace {

const PendingColumn kEthernet[] = {
    {IDS_STEP2_COL_PROFILE_ID, 80}, {IDS_PCOL_USE_VLAN, 80},        {IDS_PCOL_MAC_MASK_STATE, 80},
    {IDS_PCOL_SRC_MAC_MASK, 120},   {IDS_PCOL_DST_MAC_MASK, 120},   {IDS_PCOL_USE_8021P, 80},
    {IDS_PCOL_ETHERNET_TYPE, 80},   {0, 5}, {0, 5}, {0, 5}};  // row status, profile name, spare

// Columns 18 (row status), 19 (profile name) and 22 (protocol group name) have empty headers.
const PendingColumn kIpv4[] = {
    {IDS_STEP2_COL_PROFILE_ID, 20}, {IDS_PCOL_USE_VLAN, 50},       {IDS_PCOL_ADDR_MASK_STATE, 50},
    {IDS_PCOL_SRC_IP_MASK, 100},    {IDS_PCOL_DST_IP_MASK, 100},   {IDS_PCOL_USE_DSCP, 40},
    {IDS_PCOL_USE_PROTO_TYPE, 40},  {IDS_PCOL_ICMP_OPTION, 40},    {IDS_PCOL_IGMP_OPTION, 40},
    {IDS_PCOL_TCP_OPTION, 40},      {IDS_PCOL_UDP_OPTION, 40},     {IDS_PCOL_SRC_PORT_MASK, 40},
    {IDS_PCOL_DST_PORT_MASK, 40},   {IDS_PCOL_TCP_FLAG_BIT, 40},   {IDS_PCOL_TCP_FLAG_MASK, 40},
    {IDS_PCOL_PROTO_ID_OPTION, 40}, {IDS_PCOL_PROTO_ID, 40},       {IDS_PCOL_PROTO_ID_MASK, 40},
    {0, 10}, {0, 5}, {0, 5}, {0, 5}, {0, 5}};

const PendingColumn kIpv6[] = {
    {IDS_STEP2_COL_PROFILE_ID, 80}, {IDS_PCOL_MASK_CLASS, 80},     {IDS_PCOL_MASK_FLOW_LABEL, 80},
    {IDS_PCOL_ADDR_MASK_STATE, 80}, {IDS_PCOL_SRC_IPV6_MASK, 120}, {IDS_PCOL_DST_IPV6_MASK, 120},
    {0, 5}, {0, 5}, {0, 5}};

// The chunk layout's widths fit its texts.
const PendingColumn kChunks[] = {
    {IDS_PCOL_ID, 30},     {IDS_PCOL_CHUNK1, 50}, {IDS_PCOL_VALUE, 40},       {IDS_PCOL_MASK, 70},
    {IDS_PCOL_CHUNK2, 50}, {IDS_PCOL_VALUE, 40},  {IDS_PCOL_MASK, 70},        {IDS_PCOL_CHUNK3, 50},
    {IDS_PCOL_VALUE, 40},  {IDS_PCOL_MASK, 70},   {IDS_PCOL_CHUNK4, 50},      {IDS_PCOL_VALUE, 40},
    {IDS_PCOL_MASK, 70},   {IDS_PCOL_ROWSTATUS, 60}, {IDS_PCOL_PROFILENAME, 70}};

const PendingColumn kOffsets[] = {
    {IDS_PCOL_PROFILE_ID_BLANK, 20}, {IDS_PCOL_OFFSET0, 160},  {IDS_PCOL_OFFSET16, 160},
    {IDS_PCOL_OFFSET32, 160},        {IDS_PCOL_OFFSET48, 160}, {IDS_PCOL_OFFSET64, 160}, {0, 5}};

}  // namespace

std::span<const PendingColumn> EthernetPendingColumns() { return kEthernet; }
std::span<const PendingColumn> Ipv4PendingColumns() { return kIpv4; }
std::span<const PendingColumn> Ipv6PendingColumns() { return kIpv6; }
std::span<const PendingColumn> ChunkPendingColumns() { return kChunks; }
std::span<const PendingColumn> OffsetPendingColumns() { return kOffsets; }

std::span<const PendingColumn> PendingColumnsFor(AclType type, PacketShape shape) {
    switch (type) {
    case AclType::kEthernet: return kEthernet;
    case AclType::kIPv4: return kIpv4;
    case AclType::kIPv6: return kIpv6;
    case AclType::kPacketContent: return shape == PacketShape::kChunks4 ? ChunkPendingColumns() : OffsetPendingColumns();
    }
    return {};
}

}  // namespace acl::wizard
