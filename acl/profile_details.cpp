#include "acl/profile_details.h"

#include <cstdlib>
#include <string_view>

#include "acl/acl_mib.h"

namespace acl {
namespace {

using L = DetailLabel;

std::string Cell(const AclRecord& record, size_t i) { return i < record.size() ? record[i] : std::string(); }

// Where the record of the model keeps the owner cell (on TVR4512's ordinary ACL: the name).
std::string OwnerCell(AclType type, const AclRecord& record, AclOwner owner, const ModelEntry& model) {
    const auto layout = TableLayout(model, owner, AclKind::kProfiles, type);
    if (!layout) return {};
    for (size_t i = 0; i < layout->kinds.size(); ++i)
        if (layout->kinds[i] == CellKind::kOwner) return Cell(record, i);
    return {};
}

bool Is(const std::string& cell, const char* code) { return cell == code; }

// The page names the IPv4 rows, not their values: a protocol row
// reads "Enabled" when the profile's protocol selector (cell 6) is that protocol; ICMP type and
// code from "IcmpOption" (2 type, 3 code, 4 both); port masks only under their own protocol.
void AddIpv4(std::vector<DetailRow>& rows, const AclRecord& r) {
    const std::string proto = Cell(r, 6);
    const std::string icmp = Cell(r, 7);
    const bool tcp = Is(proto, "4"), udp = Is(proto, "5");
    const auto yes = [](bool b) { return EnabledWord(b ? kFlagYes : "2"); };
    rows.push_back({L::kVlan, EnabledWord(Cell(r, 1))});
    rows.push_back({L::kDestinationIp, Cell(r, 4)});
    rows.push_back({L::kSourceIp, Cell(r, 3)});
    rows.push_back({L::kDscp, EnabledWord(Cell(r, 5))});
    rows.push_back({L::kIcmp, yes(Is(proto, "2"))});
    rows.push_back({L::kIcmpType, yes(Is(proto, "2") && (Is(icmp, "2") || Is(icmp, "4")))});
    rows.push_back({L::kIcmpCode, yes(Is(proto, "2") && (Is(icmp, "3") || Is(icmp, "4")))});
    rows.push_back({L::kIgmp, yes(Is(proto, "3"))});
    rows.push_back({L::kTcpDstPortMask, tcp ? Cell(r, 12) : std::string()});
    rows.push_back({L::kTcpSrcPortMask, tcp ? Cell(r, 11) : std::string()});
    rows.push_back({L::kTcpFlagBit, tcp ? EnabledWord(Cell(r, 13)) : EnabledWord("2")});
    rows.push_back({L::kTcpFlagBitMask, tcp ? TcpFlagNames(Cell(r, 14)) : std::string()});
    rows.push_back({L::kUdpDstPortMask, udp ? Cell(r, 12) : std::string()});
    rows.push_back({L::kUdpSrcPortMask, udp ? Cell(r, 11) : std::string()});
    rows.push_back({L::kProtocolId, Is(proto, "6") ? Cell(r, 16) : std::string()});
    rows.push_back({L::kUserMask, Is(proto, "6") ? Cell(r, 17) : std::string()});
    rows.push_back({L::kProtoIdOption, EnabledWord(Cell(r, 15))});
}

}  // namespace

std::string EnabledWord(const std::string& flag) { return flag == kFlagYes ? "Enabled" : "Disabled"; }

std::string TcpFlagNames(const std::string& decimal) {
    static const struct {
        int weight;
        const char* name;
    } kFlags[] = {{32, "urg"}, {16, "ack"}, {8, "psh"}, {4, "rst"}, {2, "syn"}, {1, "fin"}};
    const long value = std::strtol(decimal.c_str(), nullptr, 10);
    std::string out;
    for (const auto& f : kFlags) {
        if (!(value & f.weight)) continue;
        if (!out.empty()) out += '/';
        out += f.name;
    }
    return out;
}

std::vector<DetailRow> ProfileDetails(AclType type, const AclRecord& r, AclOwner owner, const ModelEntry& model) {
    std::vector<DetailRow> rows;
    rows.push_back({L::kProfileId, Cell(r, 0)});
    rows.push_back({L::kProfileType, TypeWord(type)});
    rows.push_back({L::kOwnerType, owner == AclOwner::kCpu ? OwnerWord(owner) : ""});
    if (owner == AclOwner::kAcl && std::string_view(model.typeText) == "TVR4512")
        rows.push_back({L::kProfileName, OwnerCell(type, r, owner, model)});
    switch (type) {
    case AclType::kEthernet:
        rows.push_back({L::kVlan, EnabledWord(Cell(r, 1))});
        rows.push_back({L::kSourceMac, Cell(r, 3)});
        rows.push_back({L::kDestinationMac, Cell(r, 4)});
        rows.push_back({L::k8021p, EnabledWord(Cell(r, 5))});
        rows.push_back({L::kEthernetType, EnabledWord(Cell(r, 6))});
        break;
    case AclType::kIPv4:
        AddIpv4(rows, r);
        break;
    case AclType::kIPv6:
        rows.push_back({L::kIpv6Class, EnabledWord(Cell(r, 1))});
        rows.push_back({L::kIpv6FlowLabel, EnabledWord(Cell(r, 2))});
        rows.push_back({L::kDestinationIpv6Mask, Cell(r, 5)});
        rows.push_back({L::kSourceIpv6Mask, Cell(r, 4)});
        break;
    case AclType::kPacketContent:
        if (RecordKindFor(model, owner, AclKind::kProfiles, type).shape == PacketShape::kChunks4) {
            // Each chunk is three cells (chunk, value, mask): "Value:" offset ", Mask:0x" mask.
            for (size_t c = 0; c < 4; ++c)
                rows.push_back({static_cast<L>(static_cast<int>(L::kChunk1) + static_cast<int>(c)),
                                "Value:" + Cell(r, 2 + 3 * c) + ", Mask:0x" + Cell(r, 3 + 3 * c)});
        } else {
            for (size_t i = 0; i < 5; ++i)
                rows.push_back({static_cast<L>(static_cast<int>(L::kContMaskOffset0to15) + static_cast<int>(i)),
                                Cell(r, 1 + i)});
        }
        break;
    }
    return rows;
}

}  // namespace acl
