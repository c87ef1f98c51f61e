#include "acl/rule_details.h"

#include <initializer_list>

#include "acl/profile_details.h"

namespace acl {
namespace {

// How a cell reads in the details; hidden cells (row status, unused) are left out.
enum class Show { kText, kFlag, kAction, kHidden };

struct Field {
    std::string label;
    Show show = Show::kText;
};

using Fields = std::vector<Field>;

const Field kProfile{"Profile ID"};
const Field kAccess{"Access ID"};
const Field kAction{"Action", Show::kAction};
const Field kPorts{"Ports"};
const Field kHidden{"", Show::kHidden};
const Field kPriorityFlag{"Priority", Show::kFlag};
const Field kPriority{"Priority(0-7)"};
const Field kReplaceDscpFlag{"Replace DSCP", Show::kFlag};
const Field kReplaceDscp{"Replace DSCP(0-63)"};
const Field kReplaceTos{"Replace ToS Precedence"};
const Field kRxRate{"Rx Rate"};

Fields Cat(std::initializer_list<Fields> parts) {
    Fields out;
    for (const Fields& p : parts) out.insert(out.end(), p.begin(), p.end());
    return out;
}

// Packet-content items "<name> n" (with their offsets before them when `offsets`).
Fields Items(const std::string& name, int count, bool offsets) {
    Fields out;
    for (int i = 1; i <= count; ++i) {
        if (offsets) out.push_back({name + " " + std::to_string(i) + " Offset"});
        out.push_back({name + " " + std::to_string(i)});
    }
    return out;
}

// The labels of a record kind, cell by cell in the reader's order.
Fields FieldsOf(const AclRecordKind& k) {
    const bool cpu = k.owner == AclOwner::kCpu;
    const Fields cpuTail = {kAction, kHidden, kPorts};  // action, row status, ports
    switch (k.type) {
        case AclType::kEthernet: {
            const Fields head = {kProfile, kAccess, {"VLAN"}, {"Source MAC"}, {"Destination MAC"}, {"802.1P"},
                                 {"Ethernet Type"}};
            if (cpu) return Cat({head, cpuTail});
            // The replacement DSCP cell holds "2" when none was chosen.
            return Cat({head, {kPriorityFlag, kPriority, {"Replace DSCP"}, kAction, kPorts, kHidden, kReplaceTos,
                               kRxRate}});
        }
        case AclType::kIPv4: {
            const Fields head = {kProfile, kAccess, {"VLAN"}, {"Source IP"}, {"Destination IP"}, {"DSCP"},
                                 {"Protocol"}, {"ICMP/IGMP Type"}, {"ICMP Code"}, {"Source Port"},
                                 {"Destination Port"}, {"TCP Flag Bits"}, {"Protocol ID"}, {"User Mask"}};
            if (cpu) return Cat({head, cpuTail});
            return Cat({head, {kPriorityFlag, kPriority, kHidden, kReplaceDscpFlag, kReplaceDscp, kAction, kPorts,
                               kHidden, kHidden, kRxRate, kReplaceTos}});
        }
        case AclType::kIPv6: {
            const Fields head = {kProfile, kAccess, {"Class"}, {"Flow Label"}, {"IPv6 Source Address"},
                                 {"IPv6 Destination Address"}};
            if (cpu) return Cat({head, cpuTail});
            return Cat({head, {kPriorityFlag, kPriority, {"Replace DSCP"}, kAction, kPorts, kHidden, kHidden,
                               kRxRate}});
        }
        case AclType::kPacketContent:
            switch (k.shape) {
                case PacketShape::kOffsetItems:
                    return Cat({{kProfile, kAccess}, Items("Content Item", 5, true),
                                {kPriorityFlag, kPriority, kRxRate, kAction, kHidden, kPorts}});
                case PacketShape::kChunks4:
                    return Cat({{kProfile, kAccess}, Items("Chunk", 4, true),
                                {kReplaceDscp, kReplaceTos, kPriorityFlag, kPriority, kRxRate, kAction, kHidden,
                                 kPorts}});
                case PacketShape::kBlock16: {
                    const Fields blocks = {{"offset 0-15"}, {"offset 16-31"}, {"offset 32-47"}, {"offset 48-63"},
                                           {"offset 64-79"}};
                    if (cpu) return Cat({{kProfile, kAccess}, blocks, cpuTail});
                    return Cat({{kProfile, kAccess}, blocks,
                                {kPriorityFlag, kPriority, kReplaceDscpFlag, kReplaceDscp, kAction, kHidden, kPorts}});
                }
                case PacketShape::kNone:
                    break;
            }
            break;
    }
    return {};
}

}  // namespace

std::vector<std::pair<std::string, std::string>> RuleDetails(const AclRecordKind& kind, const AclRecord& record) {
    std::vector<std::pair<std::string, std::string>> rows;
    const Fields fields = FieldsOf(kind);
    for (size_t k = 0; k < fields.size(); ++k) {
        const std::string cell = k < record.size() ? record[k] : std::string();
        switch (fields[k].show) {
            case Show::kHidden: break;
            case Show::kText: rows.emplace_back(fields[k].label, cell); break;
            case Show::kFlag: rows.emplace_back(fields[k].label, EnabledWord(cell)); break;
            case Show::kAction: rows.emplace_back(fields[k].label, ActionDetailWord(cell)); break;
        }
    }
    return rows;
}

}  // namespace acl
