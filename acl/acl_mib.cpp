#include "acl/acl_mib.h"

#include <cstdio>

namespace {

using K = CellKind;

// --- the kind of every cell, per record kind (model-independent) ---------------------------

std::vector<CellKind> CellKinds(const AclRecordKind& r) {
  const bool cpu = r.owner == AclOwner::kCpu;
  if (r.kind == AclKind::kProfiles) {
    switch (r.type) {
      case AclType::kEthernet:
        return {K::kIndex, K::kFlag, K::kFlag, K::kMac, K::kMac, K::kFlag, K::kFlag,
                K::kRowStatus, K::kOwner, K::kReadOnly};
      case AclType::kIPv4:  // 16 "ProtolID" is the one INTEGER given only with its protocol
        return {K::kIndex,      K::kFlag,    K::kFlag,    K::kIpMask,   K::kIpMask,    K::kFlag,
                K::kFlag,       K::kFlag,    K::kFlag,    K::kFlag,     K::kFlag,      K::kHex2Always,
                K::kHex2Always, K::kFlag,    K::kFlag,    K::kFlag,     K::kInteger,   K::kProtoMask,
                K::kRowStatus,  K::kOwner,   K::kReadOnly, K::kReadOnly};
      case AclType::kIPv6:
        return {K::kIndex, K::kFlag, K::kFlag, K::kFlag, K::kHex16Always, K::kHex16Always,
                K::kRowStatus, K::kOwner, K::kReadOnly};
      case AclType::kPacketContent:
        if (r.shape == PacketShape::kChunks4) {
          std::vector<CellKind> k{K::kIndex};
          for (int i = 0; i < 4; ++i) k.insert(k.end(), {K::kInteger, K::kInteger, K::kHex4});
          k.insert(k.end(), {K::kRowStatus, K::kOwner});
          return k;
        }
        return {K::kIndex, K::kHex16, K::kHex16, K::kHex16, K::kHex16, K::kHex16, K::kRowStatus};
    }
    return {};
  }
  switch (r.type) {
    case AclType::kEthernet:
      if (cpu)
        return {K::kIndex, K::kIndex, K::kText, K::kMac, K::kMac, K::kInteger, K::kEthertype,
                K::kAlways, K::kRowStatus, K::kPorts};
      return {K::kIndex,   K::kIndex,   K::kText,   K::kMac,   K::kMac,
              K::kInteger, K::kEthertype, K::kInteger, K::kInteger, K::kInteger,
              K::kAlways,  K::kPorts,   K::kRowStatus, K::kInteger, K::kInteger};
    case AclType::kIPv4: {
      std::vector<CellKind> k{K::kIndex, K::kIndex, K::kText, K::kIpRule, K::kIpRule};
      for (int i = 5; i <= 12; ++i) k.push_back(K::kInteger);  // DSCP .. protocol ID
      k.push_back(K::kHex4);                                    // 13 user mask
      if (cpu) {
        k.insert(k.end(), {K::kAlways, K::kRowStatus, K::kPorts});
        return k;
      }
      k.insert(k.end(), {K::kInteger, K::kInteger, K::kInteger, K::kInteger, K::kInteger,  // 14..18
                         K::kAlways, K::kPorts, K::kRowStatus, K::kInteger, K::kInteger, K::kInteger});
      return k;
    }
    case AclType::kIPv6:
      if (cpu)
        return {K::kIndex, K::kIndex, K::kInteger, K::kHex4, K::kHex16, K::kHex16, K::kAlways,
                K::kRowStatus, K::kPorts};
      return {K::kIndex,   K::kIndex,   K::kInteger, K::kHex4,  K::kHex16,     K::kHex16,   K::kInteger,
              K::kInteger, K::kInteger, K::kAlways,  K::kPorts, K::kRowStatus, K::kInteger, K::kInteger};
    case AclType::kPacketContent: {
      std::vector<CellKind> k{K::kIndex, K::kIndex};
      switch (r.shape) {
        case PacketShape::kOffsetItems:
          for (int i = 0; i < 5; ++i) k.insert(k.end(), {K::kInteger, K::kHexData});
          k.insert(k.end(), {K::kInteger, K::kInteger, K::kInteger, K::kAlways, K::kRowStatus, K::kPorts});
          return k;
        case PacketShape::kChunks4:
          for (int i = 0; i < 4; ++i) k.insert(k.end(), {K::kInteger, K::kHex4});
          k.insert(k.end(), {K::kInteger, K::kInteger, K::kInteger, K::kInteger, K::kInteger,
                             K::kAlways, K::kRowStatus, K::kPorts});
          return k;
        case PacketShape::kBlock16:
          for (int i = 0; i < 5; ++i) k.push_back(K::kHex16);
          if (cpu)
            k.insert(k.end(), {K::kAlways, K::kRowStatus, K::kPorts});
          else
            k.insert(k.end(), {K::kInteger, K::kInteger, K::kInteger, K::kInteger, K::kAlways,
                               K::kRowStatus, K::kPorts});
          return k;
        case PacketShape::kNone: return {};
      }
      return {};
    }
  }
  return {};
}

// --- the column lists, one row per table and group of models that share it ----------------

struct ListRow {
  AclOwner owner;
  AclKind kind;
  AclType type;
  PacketShape shape;      // packet content only
  const char* entry;      // below 1.3.6.1.4.1.32473.12.9
  const char* models;     // "|"-separated type texts
  const char* cells;      // "1 to 16, -, 18 to 25"
};

constexpr AclOwner O = AclOwner::kAcl;
constexpr AclOwner C = AclOwner::kCpu;
constexpr AclKind P = AclKind::kProfiles;
constexpr AclKind R = AclKind::kRules;
constexpr AclType E = AclType::kEthernet;
constexpr AclType V4 = AclType::kIPv4;
constexpr AclType V6 = AclType::kIPv6;
constexpr AclType PC = AclType::kPacketContent;
constexpr PacketShape N = PacketShape::kNone;
constexpr PacketShape B16 = PacketShape::kBlock16;
constexpr PacketShape C4 = PacketShape::kChunks4;
constexpr PacketShape OI = PacketShape::kOffsetItems;
constexpr const char* kAllCpu = "TVG5240-10|TVG5470|TVG5690|TVR4060|TVR4510|TVR4820|TVR4512";

const ListRow kLists[] = {
    // Ordinary ACL profiles.
    {O, P, E, N, "2.1.1", "TVG5240-10|TVG5470|TVG5690|TVR4060|TVR4820", "1, 2, 3, 4, 5, 6, 7, 8, 9, 10"},
    {O, P, E, N, "2.1.1", "TVR4512", "1, 2, 3, 4, 5, 6, 7, 8, 11, 10"},
    {O, P, E, N, "1.1.1", "TVR4510", "1, 2, 3, 4, 5, 6, 7, 8"},
    {O, P, V4, N, "2.2.1", "TVG5240-10|TVG5470|TVG5690|TVR4060|TVR4820", "1 to 22"},
    {O, P, V4, N, "2.2.1", "TVR4512", "1 to 19, 23"},
    {O, P, V4, N, "1.2.1", "TVR4510", "1 to 19"},
    {O, P, V6, N, "2.4.1", "TVG5240-10|TVG5470|TVG5690|TVR4820", "1 to 9"},
    {O, P, V6, N, "2.4.1", "TVR4512", "1 to 7, 10, 9"},
    {O, P, PC, B16, "2.3.1", "TVR4060|TVR4820", "1 to 7"},
    {O, P, PC, B16, "1.3.1", "TVR4510", "1 to 7"},
    {O, P, PC, C4, "2.8.1", "TVG5240-10|TVG5690", "1 to 14"},
    {O, P, PC, C4, "2.8.1", "TVR4512", "1 to 14, 17"},
    // Ordinary ACL rules.
    {O, R, E, N, "3.1.1", "TVG5240-10|TVR4060|TVR4820|TVR4512", "1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 13, 14, 15, 16, 17"},
    {O, R, E, N, "3.1.1", "TVG5470|TVG5690", "1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 13, 14, 16, -, 15"},
    {O, R, E, N, "2.1.1", "TVR4510", "1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 13, 14, 15, -, -"},
    {O, R, V4, N, "3.2.1", "TVG5240-10|TVR4060|TVR4820|TVR4512", "1 to 16, -, 18 to 25"},
    {O, R, V4, N, "3.2.1", "TVG5470|TVG5690",
     "1, 2, -, 4, 5, 6, 7, -, -, 10, 11, 12, 13, 14, 15, 16, -, 18, 19, 20, 21, 23, -, 22, -"},
    {O, R, V4, N, "2.2.1", "TVR4510", "1 to 16, -, 18 to 22, -, -, -"},
    {O, R, V6, N, "3.4.1", "TVG5240-10|TVR4512", "1 to 14"},
    {O, R, V6, N, "3.4.1", "TVG5470|TVG5690", "1 to 11, 13, -, 12"},
    {O, R, V6, N, "3.4.1", "TVR4820", "1 to 9, 12, 13, 15, -, 14"},
    {O, R, PC, B16, "3.3.1", "TVR4820", "1 to 9, 11, 12, 13, 15, 14"},
    {O, R, PC, B16, "2.3.1", "TVR4510", "1 to 9, 11, 12, 13, 15, 14"},
    {O, R, PC, C4, "3.7.1", "TVG5240-10|TVG5690|TVR4512", "1 to 10, 13, -, 11, 12, 20, 16, 17, 18"},
    {O, R, PC, OI, "3.9.1", "TVR4060", "1, 2, 8, 10, 11, 13, 14, 16, 17, 19, 20, 22, 23, 24, 28, 29, 30, 33"},
    // CPU ACL. The CPU packet-content profiles of TVR4060 and TVG5470 have no list of their
    // own; the list 1 to 7 of the other models fits their record.
    {C, P, E, N, "4.1.1", "TVG5240-10|TVG5470|TVR4060|TVR4510|TVR4820|TVR4512", "1 to 8"},
    {C, P, E, N, "4.1.1", "TVG5690", "1, 2, 3, 4, 5, -, 7, 8"},
    {C, P, V4, N, "4.2.1", kAllCpu, "1 to 19"},
    {C, P, V6, N, "4.4.1", kAllCpu, "1 to 7"},
    {C, P, PC, B16, "4.3.1", kAllCpu, "1 to 7"},
    {C, R, E, N, "5.1.1", "TVG5470|TVG5690", "1 to 8, 10, 9"},
    {C, R, E, N, "5.1.1", "TVG5240-10|TVR4060|TVR4510|TVR4820|TVR4512", "1 to 10"},
    {C, R, V4, N, "5.2.1", "TVG5470|TVG5690", "1 to 15, 17, 16"},
    {C, R, V4, N, "5.2.1", "TVG5240-10|TVR4060|TVR4510|TVR4820|TVR4512", "1 to 17"},
    {C, R, V6, N, "5.4.1", kAllCpu, "1 to 9"},
    {C, R, PC, B16, "5.3.1", "TVG5470|TVG5690", "1 to 8, 10, 9"},
    {C, R, PC, B16, "5.3.1", "TVG5240-10|TVR4060|TVR4510|TVR4820|TVR4512", "1 to 10"},
};

bool ListsModel(const char* models, std::string_view model) {
  std::string_view s(models);
  while (!s.empty()) {
    size_t bar = s.find('|');
    if (s.substr(0, bar) == model) return true;
    if (bar == std::string_view::npos) break;
    s.remove_prefix(bar + 1);
  }
  return false;
}

// "1 to 16, -, 18 to 25" -> 1..16, 0, 18..25.
std::vector<unsigned> ParseCells(std::string_view s) {
  std::vector<unsigned> out;
  while (!s.empty()) {
    size_t comma = s.find(',');
    std::string_view item = s.substr(0, comma);
    while (!item.empty() && item.front() == ' ') item.remove_prefix(1);
    while (!item.empty() && item.back() == ' ') item.remove_suffix(1);
    if (item == "-") {
      out.push_back(0);
    } else {
      size_t to = item.find(" to ");
      unsigned a = static_cast<unsigned>(ParseLeadingDecimal(item.substr(0, to)));
      unsigned b = to == std::string_view::npos ? a : static_cast<unsigned>(ParseLeadingDecimal(item.substr(to + 4)));
      for (unsigned c = a; c <= b; ++c) out.push_back(c);
    }
    if (comma == std::string_view::npos) break;
    s.remove_prefix(comma + 1);
  }
  return out;
}

bool IsModel(const ModelEntry& m, std::string_view text) { return std::string_view(m.typeText) == text; }

}  // namespace

std::string AclTableLayout::columnOid(size_t cell) const {
  if (cell >= columns.size() || columns[cell] == 0) return std::string();
  return entryOid + "." + std::to_string(columns[cell]);
}

std::optional<AclTableLayout> TableLayout(const ModelEntry& model, AclOwner owner, AclKind kind,
                                          AclType type) {
  if (!model.supported) return std::nullopt;
  if (kind == AclKind::kProfiles ? !model.offersProfileType(owner, type) : !model.offersRuleType(owner, type))
    return std::nullopt;
  const AclRecordKind rk = RecordKindFor(model, owner, kind, type);
  for (const ListRow& row : kLists) {
    if (row.owner != owner || row.kind != kind || row.type != type || row.shape != rk.shape) continue;
    if (!ListsModel(row.models, model.typeText)) continue;
    AclTableLayout t;
    t.record = rk;
    t.entryOid = std::string(kAclMibPrefix) + "." + row.entry;
    t.kinds = CellKinds(rk);
    t.columns = ParseCells(row.cells);
    t.columns.resize(t.kinds.size(), 0);  // cells beyond the list are not sent
    t.leftOut.assign(t.kinds.size(), false);
    for (size_t i = 0; i < t.kinds.size(); ++i)
      if (t.kinds[i] == CellKind::kRowStatus) t.rowStatusCell = static_cast<int>(i);
    // Cells that a model's writer leaves out although the list names a column.
    if (kind == AclKind::kRules && type == AclType::kEthernet && owner == AclOwner::kAcl) {
      t.leftOut[9] = true;   // "ReplaceDSCP"
      t.leftOut[13] = true;  // "ToSPrecedence"
    }
    if (kind == AclKind::kRules && type == AclType::kIPv4 && owner == AclOwner::kAcl) {
      t.leftOut[16] = true;  // "ReplacePriority", never filled
      t.leftOut[22] = true;
      // The TVG5470/TVG5690 writer skips VLAN, protocol, ICMP type and code. Its CPU table
      // has those columns (list 1 to 15), so the skip is kept to the ordinary ACL.
      if (IsModel(model, "TVG5470") || IsModel(model, "TVG5690"))
        for (size_t c : {2, 6, 7, 8}) t.leftOut[c] = true;
    }
    // Owner cells: a profile-name column on TVR4512 (ordinary ACL), read-only elsewhere.
    for (size_t i = 0; i < t.kinds.size(); ++i)
      if (t.kinds[i] == CellKind::kOwner && !(owner == AclOwner::kAcl && IsModel(model, "TVR4512")))
        t.leftOut[i] = true;
    return t;
  }
  return std::nullopt;
}

std::vector<std::string> ColumnList(const ModelEntry& model, AclOwner owner, AclKind kind, AclType type) {
  std::vector<std::string> out;
  auto t = TableLayout(model, owner, kind, type);
  if (!t) return out;
  for (size_t i = 0; i < t->columns.size(); ++i) out.push_back(t->columnOid(i));
  return out;
}

bool IsIndexText(std::string_view text) {
  if (text.empty() || text.size() > 10) return false;
  for (char c : text)
    if (c < '0' || c > '9') return false;
  return true;
}

std::string InstanceOid(std::string_view columnOid, std::string_view profileId, std::string_view accessId) {
  std::string s(columnOid);
  s += '.';
  s += profileId;
  if (!accessId.empty()) {
    s += '.';
    s += accessId;
  }
  return s;
}

// --- encodings ------------------------------------------------------------------------------

namespace {

int HexNibble(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return 0;
}

std::string_view Trim(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t')) s.remove_suffix(1);
  return s;
}

bool IsTvgPair(const ModelEntry& m) { return IsModel(m, "TVG5470") || IsModel(m, "TVG5690"); }

// The user-defined protocol mask is 20 bytes on TVR4510 and TVR4820 (the IPv4 profile page
// gives them five 8-digit fields) and 4 bytes elsewhere.
size_t ProtoMaskBytes(const ModelEntry& m) {
  return IsModel(m, "TVR4510") || IsModel(m, "TVR4820") ? 20 : 4;
}

// OffsetItems data go out with the length their hex text gives, at most 16 bytes: the switch
// matches exactly the bytes typed at the offset.
size_t DataBytes(std::string_view hex) {
  size_t n = (Trim(hex).size() + 1) / 2;
  return n > 16 ? 16 : n;
}

// A dotted IPv4 text for an IpAddress binding: four numbers 0..255, else nullopt (never send
// what the SNMP layer would refuse).
std::optional<std::string> DottedIp(std::string_view s) {
  s = Trim(s);
  int parts = 0;
  size_t i = 0;
  while (parts < 4) {
    size_t start = i;
    long v = 0;
    while (i < s.size() && s[i] >= '0' && s[i] <= '9' && i - start < 3) v = v * 10 + (s[i++] - '0');
    if (i == start || v > 255) return std::nullopt;
    ++parts;
    if (parts < 4) {
      if (i >= s.size() || s[i] != '.') return std::nullopt;
      ++i;
    }
  }
  if (i != s.size()) return std::nullopt;
  return std::string(s);
}

EncodedCell Int(std::string_view text) {
  return EncodedCell{kSnmpInteger, std::to_string(ParseLeadingDecimal(text)), false};
}
EncodedCell Raw(std::string bytes) { return EncodedCell{kSnmpOctetString, std::move(bytes), true}; }

}  // namespace

std::string HexToBytes(std::string_view hex, size_t length) {
  hex = Trim(hex);
  std::string out(length, '\0');
  for (size_t i = 0; i < length && 2 * i < hex.size(); ++i) {
    int hi = HexNibble(hex[2 * i]);
    int lo = 2 * i + 1 < hex.size() ? HexNibble(hex[2 * i + 1]) : 0;
    out[i] = static_cast<char>(hi * 16 + lo);
  }
  return out;
}

std::string BytesToHex(std::string_view bytes) {
  std::string s;
  char buf[3];
  for (unsigned char c : bytes) {
    std::snprintf(buf, sizeof buf, "%02X", c);
    s += buf;
  }
  return s;
}

size_t PortBitmapBytes(const ModelEntry& m) {
  if (IsTvgPair(m)) return 96;
  if (IsModel(m, "TVR4512")) return 8;
  return 4;
}

std::string PortListToBitmap(std::string_view list, const ModelEntry& m) {
  // Step 1: expand, at most 200 ports.
  std::vector<long> ports;
  while (!list.empty() && ports.size() < 200) {
    size_t comma = list.find(',');
    std::string_view item = list.substr(0, comma);
    if (!item.empty()) {
      size_t dash = item.find('-');
      long a = ParseLeadingDecimal(item.substr(0, dash));
      long b = dash == std::string_view::npos ? a : ParseLeadingDecimal(item.substr(dash + 1));
      for (long p = a; p <= b && ports.size() < 200; ++p) ports.push_back(p);
    }
    if (comma == std::string_view::npos) break;
    list.remove_prefix(comma + 1);
  }
  // Steps 2-5: 32 digits (128 ports) on the TVG pair, followed by 160 zero digits; 16 digits on
  // TVR4512; 8 digits elsewhere. Port 1 is the top bit of the first byte.
  const size_t bytes = PortBitmapBytes(m);
  const size_t markedPorts = IsTvgPair(m) ? 128 : bytes * 8;
  std::string out(bytes, '\0');
  for (long p : ports) {
    if (p < 1 || static_cast<size_t>(p) > markedPorts) continue;
    size_t bit = static_cast<size_t>(p - 1);
    out[bit / 8] = static_cast<char>(static_cast<unsigned char>(out[bit / 8]) | (0x80u >> (bit % 8)));
  }
  return out;
}

std::string BitmapToPortList(std::string_view bitmap) {
  std::string s;
  for (size_t i = 0; i < bitmap.size() * 8; ++i)
    if (static_cast<unsigned char>(bitmap[i / 8]) & (0x80u >> (i % 8))) s += std::to_string(i + 1) + ",";
  return s;
}

std::string PortListFromHex(std::string_view hex) {
  hex = Trim(hex);
  return BitmapToPortList(HexToBytes(hex, (hex.size() + 1) / 2));
}

std::optional<EncodedCell> EncodeCell(CellKind kind, const ModelEntry& model, std::string_view text) {
  const bool empty = Trim(text).empty();
  switch (kind) {
    case K::kIndex:
    case K::kReadOnly: return std::nullopt;
    case K::kInteger:
      if (empty) return std::nullopt;
      return Int(text);
    case K::kFlag:
      if (empty) return std::nullopt;  // RecordBindings refuses the record
      return Int(text);
    case K::kAlways: return Int(text);
    case K::kRowStatus: return EncodedCell{kSnmpInteger, kRowStatusCreate, false};
    case K::kText:
    case K::kOwner:
      if (text.empty()) return std::nullopt;
      return EncodedCell{kSnmpOctetString, std::string(text), false};
    case K::kMac:
      // An empty MAC, or the "00.00.00.00.00.00" stored for an omitted one, gives six zero bytes.
      if (empty || text == kOmittedMac) return Raw(std::string(6, '\0'));
      return Raw(HexToBytes(text, 6));
    case K::kEthertype:
      if (empty) return std::nullopt;
      return Raw(HexToBytes(Trim(text).substr(0, 4), 2));
    case K::kIpRule: {
      if (empty || Trim(text) == "0.0.0.0") return std::nullopt;
      auto ip = DottedIp(text);
      if (!ip) return std::nullopt;
      return EncodedCell{kSnmpIpAddress, *ip, false};
    }
    case K::kIpMask: {
      auto ip = DottedIp(text);
      return EncodedCell{kSnmpIpAddress, ip ? *ip : std::string("0.0.0.0"), false};
    }
    case K::kHex2Always: return Raw(HexToBytes(text, 2));
    case K::kHex4:
      if (empty) return std::nullopt;
      return Raw(HexToBytes(text, 4));
    case K::kProtoMask: return Raw(HexToBytes(text, ProtoMaskBytes(model)));
    case K::kHex16:
      if (empty) return std::nullopt;
      return Raw(HexToBytes(text, 16));
    case K::kHex16Always: return Raw(HexToBytes(text, 16));
    case K::kHexData:
      if (empty) return std::nullopt;
      return Raw(HexToBytes(text, DataBytes(text)));
    case K::kPorts: return Raw(PortListToBitmap(text, model));
  }
  return std::nullopt;
}

std::string DecodeCell(CellKind kind, const ModelEntry& /*model*/, const SnmpRowBinding& v) {
  // INTEGER and IpAddress as their text; byte strings by the cell kind.
  if (v.tag != snmp::kTagOctetString) return v.value;
  switch (kind) {
    case K::kText:
    case K::kOwner: return v.value;
    case K::kPorts: return BitmapToPortList(v.value);
    case K::kProtoMask: return BytesToHex(v.value) + " ";  // the detail view's "%02X%02X%02X%02X "
    default: return BytesToHex(v.value);
  }
}
