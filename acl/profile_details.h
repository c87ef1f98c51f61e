// The details of a profile read from a switch, as "Add profile" shows them when a
// row of its profile list is clicked: rows of a label and a value, from the profile's record
// (in its cell order, as the reader fills it). Portable: the labels are named
// here by position, and the page takes their texts from the string table in this order.
#pragma once

#include <string>
#include <vector>

#include "acl/acl_record.h"

namespace acl {

// In the order the page lists them; the string table holds them in the same order.
enum class DetailLabel : int {
    kProfileId, kProfileType, kOwnerType, kProfileName,
    // Ethernet
    kVlan, kSourceMac, kDestinationMac, k8021p, kEthernetType,
    // IPv4 ("VLAN" as above)
    kDestinationIp, kSourceIp, kDscp, kIcmp, kIcmpType, kIcmpCode, kIgmp, kTcpDstPortMask,
    kTcpSrcPortMask, kTcpFlagBit, kTcpFlagBitMask, kUdpDstPortMask, kUdpSrcPortMask, kProtocolId,
    kUserMask, kProtoIdOption,
    // IPv6
    kIpv6Class, kIpv6FlowLabel, kDestinationIpv6Mask, kSourceIpv6Mask,
    // Packet content: chunk layout, offset layout
    kChunk1, kChunk2, kChunk3, kChunk4,
    kContMaskOffset0to15, kContMaskOffset16to31, kContMaskOffset32to47, kContMaskOffset48to63,
    kContMaskOffset64to79,
    kCount
};

struct DetailRow {
    DetailLabel label;
    std::string value;
    bool operator==(const DetailRow&) const = default;
};

// Yes/no fields: "Enabled" for the enable flag 1, else "Disabled".
std::string EnabledWord(const std::string& flag);
// TCP flag bits: the names of the set bits of a decimal value in the order "urg" (32), "ack"
// (16), "psh" (8), "rst" (4), "syn" (2), "fin" (1), separated by "/"; "" when none is set.
std::string TcpFlagNames(const std::string& decimal);

// The details of a profile of `type` read from a device of `model` for `owner`. Rows start
// with "Profile ID", "Profile Type", "Owner Type" (value "CPU ACL" for the CPU ACL, else empty)
// and, for TVR4512 with the ordinary ACL, "ProfileName"; then the type's own rows. Cells the
// record lacks read as empty.
std::vector<DetailRow> ProfileDetails(AclType type, const AclRecord& record, AclOwner owner,
                                      const ModelEntry& model);

}  // namespace acl
