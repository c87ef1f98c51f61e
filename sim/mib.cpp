#include "sim/mib.h"

#include <cstdio>
#include <cstdlib>
#include <algorithm>
#include <map>
#include <string>

#include "snmp/model_catalogue.h"

namespace sim {

const ColumnDef* TableDef::column(uint32_t number) const {
  for (const ColumnDef& c : columns)
    if (c.number == number) return &c;
  return nullptr;
}

const ColumnDef* TableDef::rowStatusColumn() const {
  for (const ColumnDef& c : columns)
    if (c.rowStatus) return &c;
  return nullptr;
}

snmp::Oid OidOf(std::string_view text) {
  snmp::Oid o;
  if (!snmp::ParseOid(text, o)) {
    std::fprintf(stderr, "sim: bad OID literal %.*s\n", static_cast<int>(text.size()), text.data());
    std::abort();
  }
  return o;
}

ColumnDef IndexColumn(uint32_t number, std::string name, int part) {
  ColumnDef c;
  c.number = number;
  c.name = std::move(name);
  c.access = Access::kReadOnly;
  c.indexPart = part;
  return c;
}

ColumnDef IntColumn(uint32_t number, std::string name, int64_t min, int64_t max) {
  ColumnDef c;
  c.number = number;
  c.name = std::move(name);
  c.minValue = min;
  c.maxValue = max;
  return c;
}

ColumnDef BytesColumn(uint32_t number, std::string name, size_t length) {
  ColumnDef c;
  c.number = number;
  c.name = std::move(name);
  c.type = snmp::kTagOctetString;
  c.minLength = c.maxLength = length;
  c.hasDefault = true;
  c.defaultValue = snmp::Value::OctetString(std::string(length, '\0'));
  return c;
}

ColumnDef TextColumn(uint32_t number, std::string name, size_t maxLength) {
  ColumnDef c;
  c.number = number;
  c.name = std::move(name);
  c.type = snmp::kTagOctetString;
  c.maxLength = maxLength;
  return c;
}

ColumnDef IpColumn(uint32_t number, std::string name) {
  ColumnDef c;
  c.number = number;
  c.name = std::move(name);
  c.type = snmp::kTagIpAddress;
  c.minLength = c.maxLength = 4;
  c.hasDefault = true;
  c.defaultValue = snmp::Value::IpAddress(0);
  return c;
}

ColumnDef RowStatusColumn(uint32_t number, std::string name) {
  ColumnDef c = IntColumn(number, std::move(name), 1, 6);
  c.rowStatus = true;
  return c;
}

ColumnDef ReadOnlyIntColumn(uint32_t number, std::string name, int64_t value) {
  ColumnDef c = IntColumn(number, std::move(name));
  c.access = Access::kReadOnly;
  c.hasDefault = true;
  c.defaultValue = snmp::Value::Integer(value);
  return c;
}

ColumnDef ReadOnlyTextColumn(uint32_t number, std::string name, std::string value) {
  ColumnDef c = TextColumn(number, std::move(name), 255);
  c.access = Access::kReadOnly;
  c.hasDefault = true;
  c.defaultValue = snmp::Value::OctetString(std::move(value));
  return c;
}

ColumnDef WithDefault(ColumnDef c, snmp::Value v) {
  c.hasDefault = true;
  c.defaultValue = std::move(v);
  return c;
}

namespace {

constexpr const char* kAcl = "1.3.6.1.4.1.32473.12.9";
constexpr const char* kClose6 = "1.3.6.1.4.1.32473.12.1.2.6.0";
constexpr const char* kClose18 = "1.3.6.1.4.1.32473.12.1.2.18.4.0";

std::string Under(const char* suffix) { return std::string(kAcl) + "." + suffix; }

// The closing-request scalar of the model; INTEGER, writable.
ScalarDef Closing(const char* oid) {
  ScalarDef s;
  s.name = "ClosingRequest";
  s.oid = OidOf(oid);
  s.access = Access::kReadWrite;
  s.initial = snmp::Value::Integer(0);
  return s;
}

// --- the ACL tables as data ----------------------------------------------------------------
//
// A table is written as "column:name:type" items, in the words of the MIB's named-column
// table, per model where the models differ. Types:
//   idx0 idx1  first / second index (ProfileID, AccessID), read-only, shows the index
//   int        INTEGER (read-create, default 0)     flag   INTEGER 1..2 (default 2)
//   state      address-mask state 1..4 (default 1)  act    action 1..3 (default 2)
//   rs         RowStatus                            ip     IpAddress (default 0.0.0.0)
//   bN         OCTET STRING of exactly N bytes (default N zero bytes)
//   sN         text of at most N bytes (default "") hN     OCTET STRING of 0..N bytes
//   ports      port bitmap of the model's length    own    owner (read-only: 1 or 2)
//   ro         read-only INTEGER (unused rule entries, 128)
// A "!" after the type marks a column that a creating request must carry (so do every action
// and port bitmap): the profile's flags, states and options, masks and MACs.

struct TableText {
  const char* name;
  const char* entry;  // below 1.3.6.1.4.1.32473.12.9
  const char* columns;
};

TableDef Table(const TableText& text, size_t portBytes, int64_t owner) {
  TableDef t;
  t.name = text.name;
  t.entry = OidOf(Under(text.entry));
  std::string_view cols(text.columns);
  bool rule = false;
  while (!cols.empty()) {
    size_t sp = cols.find(' ');
    std::string_view item = cols.substr(0, sp);
    cols = sp == std::string_view::npos ? std::string_view() : cols.substr(sp + 1);
    if (item.empty()) continue;
    size_t c1 = item.find(':'), c2 = item.rfind(':');
    uint32_t number = static_cast<uint32_t>(std::stoul(std::string(item.substr(0, c1))));
    std::string name(item.substr(c1 + 1, c2 - c1 - 1));
    std::string_view type = item.substr(c2 + 1);
    const bool required = !type.empty() && type.back() == '!';
    if (required) type.remove_suffix(1);
    auto n = [&] { return static_cast<size_t>(std::stoul(std::string(type.substr(1)))); };
    ColumnDef c;
    if (type == "idx0") c = IndexColumn(number, name, 0);
    else if (type == "idx1") { c = IndexColumn(number, name, 1); rule = true; }
    else if (type == "int") c = WithDefault(IntColumn(number, name), snmp::Value::Integer(0));
    else if (type == "flag") c = WithDefault(IntColumn(number, name, 1, 2), snmp::Value::Integer(2));
    else if (type == "state") c = WithDefault(IntColumn(number, name, 1, 4), snmp::Value::Integer(1));
    else if (type == "act") c = WithDefault(IntColumn(number, name, 1, 3), snmp::Value::Integer(2));
    else if (type == "rs") c = RowStatusColumn(number, name);
    else if (type == "ip") c = IpColumn(number, name);
    else if (type == "ports") c = BytesColumn(number, name, portBytes);
    else if (type == "own") c = ReadOnlyIntColumn(number, name, owner);
    else if (type == "ro") c = ReadOnlyIntColumn(number, name, 128);
    else if (type[0] == 'b') c = BytesColumn(number, name, n());
    else if (type[0] == 's') c = WithDefault(TextColumn(number, name, n()), snmp::Value::OctetString(""));
    else if (type[0] == 'h') c = WithDefault(TextColumn(number, name, n()), snmp::Value::OctetString(""));
    else {
      std::fprintf(stderr, "sim: bad column type in %s\n", text.name);
      std::abort();
    }
    c.required = required || type == "act" || type == "ports";
    t.columns.push_back(std::move(c));
  }
  std::sort(t.columns.begin(), t.columns.end(),
            [](const ColumnDef& a, const ColumnDef& b) { return a.number < b.number; });
  // Profile IDs from 1; Access IDs from 0 (TVR4510's IPv6 rules start at 0).
  t.index = rule ? std::vector<IndexPart>{IndexPart{1, 65535}, IndexPart{0, 65535}}
                 : std::vector<IndexPart>{IndexPart{1, 65535}};
  return t;
}

// Ordinary ACL profiles.
constexpr const char* kEthProfile =
    "1:ProfileID:idx0 2:UseVLAN:flag! 3:MacAddrMaskState:state! 4:SrcMacAddrMask:b6! "
    "5:DstMacAddrMask:b6! 6:Use802.1P:flag! 7:EthernetType:flag! 8:EthernetRowStatus:rs";
constexpr const char* kEthProfileRead = " 9:EthernetOwner:own 10:EthernetUnusedRuleEntries:ro";
constexpr const char* kIpv4ProfileHead =
    "1:ProfileID:idx0 2:UseVLAN:flag! 3:AddrMaskState:state! 4:SrcIPAddrMask:ip! 5:DstIPAddrMask:ip! "
    "6:UseDSCP:flag! 7:UseProtoType:int! 8:IcmpOption:int! 9:IgmpOption:int! 10:TcpOption:int! "
    "11:UdpOption:int! 12:TCPorUDPSrcPortMask:b2! 13:TCPorUDPDstPortMask:b2! 14:TCPFlagBit:int! "
    "15:TCPFlagBitMask:int! 16:ProtolIDOption:int! 17:ProtolID:int 19:RowStatus:rs";
constexpr const char* kIpv4ProfileRead = " 20:Owner:own 21:UnusedRuleEntries:ro 22:Spare:ro";
constexpr const char* kIpv6Profile =
    "1:ProfileID:idx0 2:MaskClass:flag! 3:MaskFlowlabel:flag! 4:AddrMaskState:state! "
    "5:SrcIPv6Mask:b16! 6:DstIPv6Mask:b16! 7:RowStatus:rs";
constexpr const char* kBlock16Profile =
    "1:ProfileID:idx0 2:offset0to15:b16 3:offset16to31:b16 4:offset32to47:b16 5:offset48to63:b16 "
    "6:offset64to79:b16 7:RowStatus:rs";
constexpr const char* kChunks4Profile =
    "1:ID:idx0 2:Chunk1:int 3:Value1:int 4:Mask1:b4 5:Chunk2:int 6:Value2:int 7:Mask2:b4 "
    "8:Chunk3:int 9:Value3:int 10:Mask3:b4 11:Chunk4:int 12:Value4:int 13:Mask4:b4 14:RowStatus:rs";

// Ordinary ACL rules.
constexpr const char* kEthRuleHead =
    "1:ProfileID:idx0 2:AccessID:idx1 3:VLAN:s32 4:SrcMac:b6! 5:DstMac:b6! 6:802.1p:int "
    "7:Ethertype:b2 8:PriorityFlag:flag 9:Priority:int 10:ReplaceDSCP:int 13:Action:act 14:Ports:ports";
constexpr const char* kIpv4RuleMid =
    "4:SrcIp:ip 5:DstIp:ip 6:DSCP:int 7:Protocol:int 10:SrcPort:int 11:DstPort:int "
    "12:FlagBits:int 13:ProtoID:int 14:UserMask:b4 15:PriorityFlag:int 16:Priority:int "
    "18:ReplaceDSCPFlag:int 19:ReplaceDSCP:int 20:Action:act 21:Ports:ports";
constexpr const char* kIpv4RuleFull = " 3:VLAN:s32 8:IcmpType:int 9:IcmpCode:int";
constexpr const char* kIpv6RuleHead =
    "1:profileID:idx0 2:AccessID:idx1 3:Class:int 4:Flowlabel:b4 5:SrcIpv6Addr:b16 "
    "6:DstIpv6Addr:b16 7:PriorityFlag:int 8:Priority:int 9:ReplaceDSCP:int";
constexpr const char* kBlock16Rule =
    "1:ProfileID:idx0 2:AccessID:idx1 3:offset0to15:b16 4:offset16to31:b16 5:offset32to47:b16 "
    "6:offset48to63:b16 7:offset64to79:b16 8:EnablePriority:int 9:Priority:int "
    "11:EnableReplaceDscp:int 12:RepDscp:int 13:Action:act 14:Ports:ports 15:RowStatus:rs";
constexpr const char* kChunks4Rule =
    "1:ProfileID:idx0 2:AccessID:idx1 3:Chunk1Offset:int 4:Chunk1Content:b4 5:Chunk2Offset:int "
    "6:Chunk2Content:b4 7:Chunk3Offset:int 8:Chunk3Content:b4 9:Chunk4Offset:int "
    "10:Chunk4Content:b4 11:EnablePriority:int 12:Priority:int 13:ReplaceDSCP:int 16:Action:act "
    "17:RowStatus:rs 18:Ports:ports 20:RxRate:int";
constexpr const char* kOffsetItemsRule =
    "1:ProfileID:idx0 2:AccessID:idx1 8:OffsetIndex1:int 10:OffsetData1:h16 11:OffsetIndex2:int "
    "13:OffsetData2:h16 14:OffsetIndex3:int 16:OffsetData3:h16 17:OffsetIndex4:int "
    "19:OffsetData4:h16 20:OffsetIndex5:int 22:OffsetData5:h16 23:EnablePriority:int "
    "24:Priority:int 28:RxRate:int 29:Action:act 30:RowStatus:rs 33:Ports:ports";

// CPU ACL.
constexpr const char* kCpuEthRuleHead =
    "1:ProfileID:idx0 2:AccessID:idx1 3:VLAN:s32 4:SrcMac:b6! 5:DstMac:b6! 6:802.1p:int "
    "7:Ethertype:b2 8:Action:act";
constexpr const char* kCpuIpv4RuleHead =
    "1:ProfileID:idx0 2:AccessID:idx1 3:VLAN:s32 4:SrcIp:ip 5:DstIp:ip 6:DSCP:int 7:Protocol:int "
    "8:Type:int 9:Code:int 10:SrcPort:int 11:DstPort:int 12:FlagBits:int 13:ProtoID:int "
    "14:UserMask:b4 15:Action:act";
constexpr const char* kCpuIpv6Rule =
    "1:profileID:idx0 2:AccessID:idx1 3:Class:int 4:Flowlabel:b4 5:SrcIpv6Addr:b16 "
    "6:DstIpv6Addr:b16 7:Action:act 8:RowStatus:rs 9:Ports:ports";
constexpr const char* kCpuBlock16RuleHead =
    "1:ProfileID:idx0 2:AccessID:idx1 3:offset0to15:b16 4:offset16to31:b16 5:offset32to47:b16 "
    "6:offset48to63:b16 7:offset64to79:b16 8:Action:act";

std::string Cat(std::initializer_list<const char*> parts) {
  std::string s;
  for (const char* p : parts) (s += p) += ' ';
  return s;
}

// What distinguishes the models.
struct ModelShape {
  const char* closing;
  size_t portBytes;       // 4, 8 (TVR4512) or 96 (TVG5470, TVG5690)
  bool layout1;           // TVR4510
  bool tvgPair;           // TVG5470, TVG5690: own column positions
  bool named;             // TVR4512: profile-name columns
  bool tvr4820;           // its IPv6 rule columns (12 action, 13 ports, 15 row status)
  bool cpuEthNo8021p;     // TVG5690: its CPU Ethernet profiles have no column 6
  size_t protoMaskBytes;  // 20 on TVR4510, TVR4820 (five 8-digit fields)
  unsigned ordProfiles, ordRules, cpuProfiles, cpuRules;  // bit 0 E, 1 IPv4, 2 IPv6, 3 PC
  PacketShape ordProfileShape, ordRuleShape;
};

MibDef BuildModel(const ModelShape& m) {
  MibDef d;
  d.scalars = {Closing(m.closing)};
  auto add = [&](const char* name, const std::string& entry, const std::string& cols, int64_t owner) {
    d.tables.push_back(Table(TableText{name, entry.c_str(), cols.c_str()}, m.portBytes, owner));
  };
  const std::string protoMask = " 18:ProtolIDMask:b" + std::to_string(m.protoMaskBytes) + "!";
  const char* L = m.layout1 ? "1" : "2";  // profile branch
  const char* RL = m.layout1 ? "2" : "3";  // rule branch
  auto E = [&](const char* tail) { return std::string(L) + tail; };
  auto RE = [&](const char* tail) { return std::string(RL) + tail; };
  // Ordinary ACL profiles.
  if (m.ordProfiles & 1)
    add("EthernetProfile", E(".1.1"),
        Cat({kEthProfile, m.layout1 ? "" : kEthProfileRead, m.named ? "11:ProfileName:s32" : ""}), 1);
  if (m.ordProfiles & 2)
    add("Ipv4Profile", E(".2.1"),
        Cat({kIpv4ProfileHead, protoMask.c_str(), m.layout1 ? "" : kIpv4ProfileRead,
             m.named ? "23:ProfileName:s32" : ""}), 1);
  if (m.ordProfiles & 4)
    add("Ipv6Profile", "2.4.1", Cat({kIpv6Profile, "8:Owner:own 9:UnusedRuleEntries:ro",
                                      m.named ? "10:ProfileName:s32" : ""}), 1);
  if (m.ordProfiles & 8) {
    if (m.ordProfileShape == PacketShape::kChunks4)
      add("ChunkProfile", "2.8.1", Cat({kChunks4Profile, m.named ? "17:ProfileName:s32" : ""}), 1);
    else
      add("PacketProfile", E(".3.1"), kBlock16Profile, 1);
  }
  // Ordinary ACL rules.
  if (m.ordRules & 1)
    add("EthernetRule", RE(".1.1"),
        Cat({kEthRuleHead, m.layout1  ? "15:RowStatus:rs"
                           : m.tvgPair ? "15:RxRate:int 16:RowStatus:rs"
                                       : "15:RowStatus:rs 16:ToSPrecedence:int 17:RxRate:int"}), 1);
  if (m.ordRules & 2)
    add("Ipv4Rule", RE(".2.1"),
        Cat({"1:ProfileID:idx0 2:AccessID:idx1", kIpv4RuleMid,
             m.tvgPair ? "22:RxRate:int 23:RowStatus:rs" : kIpv4RuleFull,
             m.tvgPair || m.layout1 ? "" : "22:RowStatus:rs 23:Spare:int 24:RxRate:int 25:ReplaceTOS:int",
             m.layout1 ? "22:RowStatus:rs" : ""}), 1);
  if (m.ordRules & 4)
    add("Ipv6Rule", "3.4.1",
        Cat({kIpv6RuleHead,
             m.tvgPair             ? "10:Action:act 11:Ports:ports 12:RxRate:int 13:RowStatus:rs"
             : m.tvr4820 ? "12:Action:act 13:Ports:ports 14:RxRate:int 15:RowStatus:rs"
                                   : "10:Action:act 11:Ports:ports 12:RowStatus:rs 13:Spare:int 14:RxRate:int"}),
        1);
  if (m.ordRules & 8) {
    switch (m.ordRuleShape) {
      case PacketShape::kChunks4: add("ChunkRule", "3.7.1", kChunks4Rule, 1); break;
      case PacketShape::kOffsetItems: add("OffsetRule", "3.9.1", kOffsetItemsRule, 1); break;
      default: add("PacketRule", RE(".3.1"), kBlock16Rule, 1); break;
    }
  }
  // CPU ACL: profiles under .4, rules under .5 on every model.
  if (m.cpuProfiles & 1)
    add("CpuEthernetProfile", "4.1.1",
        m.cpuEthNo8021p
            ? "1:ProfileID:idx0 2:UseVLAN:flag! 3:MacAddrMaskState:state! 4:SrcMacAddrMask:b6! "
              "5:DstMacAddrMask:b6! 7:EthernetType:flag! 8:EthernetRowStatus:rs"
            : kEthProfile,
        2);
  if (m.cpuProfiles & 2) add("CpuIpv4Profile", "4.2.1", Cat({kIpv4ProfileHead, protoMask.c_str()}), 2);
  if (m.cpuProfiles & 4) add("CpuIpv6Profile", "4.4.1", kIpv6Profile, 2);
  if (m.cpuProfiles & 8) add("CpuPacketProfile", "4.3.1", kBlock16Profile, 2);
  // On the TVG pair the CPU rules keep the ports before the row status.
  const bool swapped = m.tvgPair;
  if (m.cpuRules & 1)
    add("CpuEthernetRule", "5.1.1",
        Cat({kCpuEthRuleHead, swapped ? "9:Ports:ports 10:RowStatus:rs" : "9:RowStatus:rs 10:Ports:ports"}), 2);
  if (m.cpuRules & 2)
    add("CpuIpv4Rule", "5.2.1",
        Cat({kCpuIpv4RuleHead, swapped ? "16:Ports:ports 17:RowStatus:rs" : "16:RowStatus:rs 17:Ports:ports"}), 2);
  if (m.cpuRules & 4) add("CpuIpv6Rule", "5.4.1", kCpuIpv6Rule, 2);
  if (m.cpuRules & 8)
    add("CpuPacketRule", "5.3.1",
        Cat({kCpuBlock16RuleHead, swapped ? "9:Ports:ports 10:RowStatus:rs" : "9:RowStatus:rs 10:Ports:ports"}), 2);
  return d;
}

const std::map<std::string, MibDef, std::less<>>& Mibs() {
  static const std::map<std::string, MibDef, std::less<>> mibs = [] {
    using PS = PacketShape;
    constexpr unsigned E = 1, V4 = 2, V6 = 4, PC = 8;
    std::map<std::string, MibDef, std::less<>> m;
    // Tables offered, closing scalar and port bitmap length per model.
    // closing, ports, layout1, tvgPair, named, tvr4820, cpuEthNo8021p, protocol-mask bytes,
    // ordinary profiles / rules, CPU profiles / rules, ordinary packet shapes (profiles, rules).
    m["TVG5240-10"] = BuildModel({kClose6, 4, false, false, false, false, false, 4, E | V4 | V6 | PC,
                                  E | V4 | V6 | PC, E | V4 | V6 | PC, E | V4 | V6 | PC, PS::kChunks4, PS::kChunks4});
    m["TVG5470"] = BuildModel({kClose6, 96, false, true, false, false, false, 4, E | V4 | V6, E | V4 | V6, E | V4 | PC,
                               E | V4 | PC, PS::kNone, PS::kNone});
    m["TVG5690"] = BuildModel({kClose18, 96, false, true, false, false, true, 4, E | V4 | V6 | PC, E | V4 | V6 | PC,
                               E | V4 | V6 | PC, E | V4 | V6 | PC, PS::kChunks4, PS::kChunks4});
    m["TVR4060"] = BuildModel({kClose6, 4, false, false, false, false, false, 4, E | V4 | PC, E | V4 | PC, E | V4 | PC,
                               E | V4 | PC, PS::kBlock16, PS::kOffsetItems});
    m["TVR4510"] = BuildModel({kClose6, 4, true, false, false, false, false, 20, E | V4 | PC, E | V4 | PC, E | V4 | PC,
                               E | V4 | PC, PS::kBlock16, PS::kBlock16});
    m["TVR4820"] = BuildModel({kClose6, 4, false, false, false, true, false, 20, E | V4 | V6 | PC, E | V4 | V6 | PC,
                               E | V4 | PC, E | V4 | PC, PS::kBlock16, PS::kBlock16});
    m["TVR4512"] = BuildModel({kClose6, 8, false, false, true, false, false, 4, E | V4 | V6 | PC, E | V4 | V6 | PC,
                               E | V4 | V6 | PC, E | V4 | V6 | PC, PS::kChunks4, PS::kChunks4});
    m["replay"] = MibDef{};  // no definitions: a read-only device loaded from a walk dump
    return m;
  }();
  return mibs;
}

}  // namespace

const MibDef* ModelMib(std::string_view model) {
  auto it = Mibs().find(model);
  return it == Mibs().end() ? nullptr : &it->second;
}

std::vector<std::string> ModelNames() {
  std::vector<std::string> v;
  for (auto& [name, def] : Mibs()) v.push_back(name);
  return v;
}

}  // namespace sim
