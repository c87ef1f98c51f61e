#include "acl/wizard/rule_columns.h"

#include "res/resource.h"

namespace acl::wizard {
namespace {

constexpr UINT kId = IDS_STEP2_COL_PROFILE_ID;

// The ordinary Ethernet list keeps the widths users know: the action, ports, row status, ToS
// and rate columns are 2 wide.
const PendingColumn kEthernet[] = {
    {kId, 80}, {IDS_RCOL_ACCESS_ID, 110}, {IDS_RCOL_VLAN, 110}, {IDS_RCOL_SRC_MAC, 100},
    {IDS_RCOL_DST_MAC, 150}, {IDS_RCOL_8021P, 50}, {IDS_RCOL_ETHERTYPE, 50},
    {IDS_RCOL_PRIORITY_ENABLED, 50}, {IDS_RCOL_PRIORITY, 50}, {IDS_RCOL_REPLACE_DSCP, 10},
    {IDS_RCOL_PERMIT, 2}, {IDS_RCOL_PORTS, 2}, {0, 2}, {IDS_RCOL_TOS, 2}, {IDS_RCOL_RX_RATE, 2}};
const PendingColumn kCpuEthernet[] = {
    {kId, 80}, {IDS_RCOL_ACCESS_ID, 110}, {IDS_RCOL_VLAN, 110}, {IDS_RCOL_SRC_MAC, 100},
    {IDS_RCOL_DST_MAC, 150}, {IDS_RCOL_8021P, 50}, {IDS_RCOL_ETHERTYPE, 50}, {IDS_RCOL_PERMIT, 50},
    {0, 2}, {IDS_RCOL_PORTS, 60}};

#define IPV4_MATCH                                                                              \
    {kId, 60}, {IDS_RCOL_ACCESS_ID, 60}, {IDS_RCOL_VLAN, 60}, {IDS_RCOL_SRC_IP, 90},            \
        {IDS_RCOL_DST_IP, 90}, {IDS_RCOL_DSCP, 40}, {IDS_RCOL_PROTOCOL, 50},                    \
        {IDS_RCOL_ICMP_TYPE, 40}, {IDS_RCOL_ICMP_CODE, 40}, {IDS_RCOL_SRC_PORT, 50},            \
        {IDS_RCOL_DST_PORT, 50}, {IDS_RCOL_FLAG_BITS, 50}, {IDS_RCOL_PROTOCOL_ID, 60},          \
        {IDS_RCOL_USER_MASK, 70}
const PendingColumn kIpv4[] = {
    IPV4_MATCH, {IDS_RCOL_PRIORITY_ENABLED, 50}, {IDS_RCOL_PRIORITY, 50}, {0, 2},
    {IDS_RCOL_REPLACE_DSCP_ON, 50}, {IDS_RCOL_REPLACE_DSCP, 50}, {IDS_RCOL_PERMIT, 50},
    {IDS_RCOL_PORTS, 60}, {0, 2}, {0, 2}, {IDS_RCOL_RX_RATE, 50}, {IDS_RCOL_TOS, 50}};
const PendingColumn kCpuIpv4[] = {IPV4_MATCH, {IDS_RCOL_PERMIT, 50}, {0, 2}, {IDS_RCOL_PORTS, 60}};
#undef IPV4_MATCH

const PendingColumn kIpv6[] = {
    {kId, 60}, {IDS_RCOL_ACCESS_ID, 60}, {IDS_RCOL_CLASS, 40}, {IDS_RCOL_FLOW_LABEL, 60},
    {IDS_RCOL_SRC_IPV6, 150}, {IDS_RCOL_DST_IPV6, 150}, {IDS_RCOL_PRIORITY_ENABLED, 50},
    {IDS_RCOL_PRIORITY, 50}, {IDS_RCOL_REPLACE_DSCP, 50}, {IDS_RCOL_PERMIT, 50},
    {IDS_RCOL_PORTS, 60}, {0, 2}, {0, 2}, {IDS_RCOL_RX_RATE, 50}};
const PendingColumn kCpuIpv6[] = {
    {kId, 60}, {IDS_RCOL_ACCESS_ID, 60}, {IDS_RCOL_CLASS, 40}, {IDS_RCOL_FLOW_LABEL, 60},
    {IDS_RCOL_SRC_IPV6, 150}, {IDS_RCOL_DST_IPV6, 150}, {IDS_RCOL_PERMIT, 50}, {0, 2},
    {IDS_RCOL_PORTS, 60}};

constexpr UINT kOff = IDS_RCOL_OFFSET_FIRST, kData = IDS_RCOL_DATA_FIRST;
const PendingColumn kOffsetItems[] = {
    {kId, 60}, {IDS_RCOL_ACCESS_ID, 60}, {kOff, 50}, {kData, 80}, {kOff + 1, 50}, {kData + 1, 80},
    {kOff + 2, 50}, {kData + 2, 80}, {kOff + 3, 50}, {kData + 3, 80}, {kOff + 4, 50},
    {kData + 4, 80}, {IDS_RCOL_PRIORITY_ENABLED, 50}, {IDS_RCOL_PRIORITY, 50},
    {IDS_RCOL_RX_RATE, 50}, {IDS_RCOL_PERMIT, 50}, {0, 2}, {IDS_RCOL_PORTS, 60}};
const PendingColumn kChunks[] = {
    {kId, 60}, {IDS_RCOL_ACCESS_ID, 60}, {kOff, 50}, {kData, 80}, {kOff + 1, 50}, {kData + 1, 80},
    {kOff + 2, 50}, {kData + 2, 80}, {kOff + 3, 50}, {kData + 3, 80}, {IDS_RCOL_REPLACE_DSCP, 50},
    {IDS_RCOL_TOS, 50}, {IDS_RCOL_PRIORITY_ENABLED, 50}, {IDS_RCOL_PRIORITY, 50},
    {IDS_RCOL_RX_RATE, 50}, {IDS_RCOL_PERMIT, 50}, {0, 2}, {IDS_RCOL_PORTS, 60}};
const PendingColumn kBlocks[] = {
    {kId, 60}, {IDS_RCOL_ACCESS_ID, 60}, {kData, 120}, {kData + 1, 120}, {kData + 2, 120},
    {kData + 3, 120}, {kData + 4, 120}, {IDS_RCOL_PRIORITY_ENABLED, 50}, {IDS_RCOL_PRIORITY, 50},
    {IDS_RCOL_REPLACE_DSCP_ON, 50}, {IDS_RCOL_REPLACE_DSCP, 50}, {IDS_RCOL_PERMIT, 50}, {0, 2},
    {IDS_RCOL_PORTS, 60}};
const PendingColumn kCpuBlocks[] = {
    {kId, 60}, {IDS_RCOL_ACCESS_ID, 60}, {kData, 120}, {kData + 1, 120}, {kData + 2, 120},
    {kData + 3, 120}, {kData + 4, 120}, {IDS_RCOL_PERMIT, 50}, {0, 2}, {IDS_RCOL_PORTS, 60}};

}  // namespace

std::span<const PendingColumn> RuleColumnsFor(AclType type, AclOwner owner, PacketShape shape) {
    const bool cpu = owner == AclOwner::kCpu;
    switch (type) {
    case AclType::kEthernet: return cpu ? std::span<const PendingColumn>(kCpuEthernet) : kEthernet;
    case AclType::kIPv4: return cpu ? std::span<const PendingColumn>(kCpuIpv4) : kIpv4;
    case AclType::kIPv6: return cpu ? std::span<const PendingColumn>(kCpuIpv6) : kIpv6;
    case AclType::kPacketContent:
        if (shape == PacketShape::kOffsetItems) return kOffsetItems;
        if (shape == PacketShape::kChunks4) return kChunks;
        return cpu ? std::span<const PendingColumn>(kCpuBlocks) : kBlocks;
    }
    return {};
}

}  // namespace acl::wizard
