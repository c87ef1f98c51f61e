#include "cli/json_fields.h"

#include <functional>
#include <set>

#include "acl/acl_fields.h"

namespace {

constexpr unsigned kEth = AclTypeBit(AclType::kEthernet);
constexpr unsigned kV4 = AclTypeBit(AclType::kIPv4);
constexpr unsigned kV6 = AclTypeBit(AclType::kIPv6);
constexpr unsigned kPkt = AclTypeBit(AclType::kPacketContent);
constexpr unsigned kAll = kEth | kV4 | kV6 | kPkt;

// Rule fields held as text (numbers may be written as JSON numbers). `checked` names the dialog
// check box that the field's presence stands for.
struct RuleText {
  const char* name;
  std::string RuleFields::*member;
  bool RuleFields::*checked;
  unsigned types;
  bool number;
};
const RuleText kRuleTexts[] = {
    {"vlan", &RuleFields::vlan, nullptr, kEth | kV4, false},
    {"src_mac", &RuleFields::srcMac, nullptr, kEth, false},
    {"dst_mac", &RuleFields::dstMac, nullptr, kEth, false},
    {"802.1p", &RuleFields::p8021, nullptr, kEth, true},
    {"ethertype", &RuleFields::ethertype, nullptr, kEth, false},
    {"src_ip", &RuleFields::srcIp, nullptr, kV4, false},
    {"dst_ip", &RuleFields::dstIp, nullptr, kV4, false},
    {"dscp", &RuleFields::dscp, nullptr, kV4, true},
    {"class", &RuleFields::ipv6Class, nullptr, kV6, true},
    {"flow_label", &RuleFields::flowLabel, nullptr, kV6, false},
    {"src_ipv6", &RuleFields::srcIpv6, nullptr, kV6, false},
    {"dst_ipv6", &RuleFields::dstIpv6, nullptr, kV6, false},
    {"priority", &RuleFields::priority, &RuleFields::priorityChecked, kAll, true},
    {"replace_dscp", &RuleFields::replaceDscp, &RuleFields::replaceDscpChecked, kAll, true},
    {"replace_tos", &RuleFields::replaceTos, &RuleFields::replaceTosChecked, kAll, true},
    {"rx_rate", &RuleFields::rxRate, nullptr, kAll, true},
};

// The names of an IPv4 rule's protocol values by its profile's protocol code.
struct ProtocolNames {
  const char* code;
  const char* word;
  const char* value1;
  const char* value2;
  const char* flags;
};
const ProtocolNames kProtocols[] = {
    {"1", "none", nullptr, nullptr, nullptr},
    {"2", "icmp", "icmp_type", "icmp_code", nullptr},
    {"3", "igmp", "igmp_type", nullptr, nullptr},
    {"4", "tcp", "src_port", "dst_port", "tcp_flags"},
    {"5", "udp", "src_port", "dst_port", nullptr},
    {"6", "protocol_id", "protocol_id", "user_mask", nullptr},
};
const ProtocolNames* ProtocolByCode(std::string_view code) {
  for (const ProtocolNames& p : kProtocols)
    if (code == p.code) return &p;
  return nullptr;
}

struct TcpFlag {
  const char* name;
  int bit;
};
const TcpFlag kTcpFlags[] = {{"urg", 32}, {"ack", 16}, {"psh", 8}, {"rst", 4}, {"syn", 2}, {"fin", 1}};

// Profile flags (true/false).
struct ProfileFlag {
  const char* name;
  bool ProfileFields::*member;
  unsigned types;
};
const ProfileFlag kProfileFlags[] = {
    {"vlan", &ProfileFields::vlan, kEth | kV4},
    {"802.1p", &ProfileFields::p8021, kEth},
    {"ethertype", &ProfileFields::ethernetType, kEth},
    {"dscp", &ProfileFields::dscp, kV4},
    {"class", &ProfileFields::ipv6Class, kV6},
    {"flow_label", &ProfileFields::flowLabel, kV6},
};

// Profile masks: present means the page's check box is checked.
struct ProfileMask {
  const char* name;
  std::string ProfileFields::*member;
  bool ProfileFields::*checked;
  unsigned types;
};
const ProfileMask kProfileMasks[] = {
    {"src_mac_mask", &ProfileFields::srcMac, &ProfileFields::srcMacChecked, kEth},
    {"dst_mac_mask", &ProfileFields::dstMac, &ProfileFields::dstMacChecked, kEth},
    {"src_ip_mask", &ProfileFields::srcIp, &ProfileFields::srcIpChecked, kV4},
    {"dst_ip_mask", &ProfileFields::dstIp, &ProfileFields::dstIpChecked, kV4},
    {"src_ipv6_mask", &ProfileFields::srcIpv6Mask, &ProfileFields::srcIpv6Checked, kV6},
    {"dst_ipv6_mask", &ProfileFields::dstIpv6Mask, &ProfileFields::dstIpv6Checked, kV6},
    {"user_mask", &ProfileFields::userMask, &ProfileFields::userMaskChecked, kV4},
};

const char* const kBlockNames[] = {"0-15", "16-31", "32-47", "48-63", "64-79"};

bool Has(unsigned types, AclType t) { return (types & AclTypeBit(t)) != 0; }

std::string Child(const std::string& path, std::string_view key) { return path + "." + std::string(key); }

// Reads member `key` as text; JSON numbers (whole, not negative) are accepted where `number`.
bool ReadText(const Json& j, const std::string& key, const std::string& path, bool number, std::string& out,
              std::vector<FieldError>& errors) {
  const Json& v = j.at(key);
  if (v.is_string()) {
    out = v.get<std::string>();
    return true;
  }
  if (number && v.is_number_unsigned()) {
    out = std::to_string(v.get<unsigned long long>());
    return true;
  }
  errors.push_back({Child(path, key), number ? "expected a number" : "expected a text"});
  return false;
}

bool ReadBool(const Json& j, const std::string& key, const std::string& path, bool& out,
              std::vector<FieldError>& errors) {
  const Json& v = j.at(key);
  if (!v.is_boolean()) {
    errors.push_back({Child(path, key), "expected true or false"});
    return false;
  }
  out = v.get<bool>();
  return true;
}

// Decimal text as a JSON number when it is one, else the text.
Json Value(const std::string& text, bool number) {
  if (number && IsIndexText(text) && (text == "0" || text[0] != '0')) return std::stoull(text);
  return text;
}

void UnknownKeys(const Json& j, const std::string& path, const std::set<std::string>& known,
                 std::vector<FieldError>& errors) {
  std::string accepted;
  for (const std::string& k : known) accepted += (accepted.empty() ? "" : ", ") + k;
  for (const auto& item : j.items())
    if (!known.count(item.key()))
      errors.push_back({Child(path, item.key()), "unknown field for this record (accepted: " + accepted + ")"});
}

bool IsDottedQuad(std::string_view s) {
  int parts = 0;
  size_t i = 0;
  while (parts < 4) {
    size_t start = i;
    while (i < s.size() && s[i] >= '0' && s[i] <= '9') ++i;
    if (i == start || i - start > 3 || std::stoi(std::string(s.substr(start, i - start))) > 255) return false;
    ++parts;
    if (parts < 4) {
      if (i >= s.size() || s[i] != '.') return false;
      ++i;
    }
  }
  return i == s.size();
}

// Of a packet-content record's "blocks", "chunks" and "items", the model's records take `key`:
// the others are errors.
void OtherItemKeys(const Json& j, const std::string& path, std::string_view key,
                   std::initializer_list<const char*> candidates, const char* records,
                   std::set<std::string>& known, std::vector<FieldError>& errors) {
  for (const char* other : candidates) {
    known.insert(other);
    if (key != other && j.contains(other))
      errors.push_back({Child(path, other), std::string("this model's packet-content ") + records + " take \"" +
                                                std::string(key) + "\""});
  }
}

// A packet-content record's items: an object naming them ("0-15" .. "64-79" for blocks, "1" ..
// otherwise), each a block's 32 hexadecimal digits or {"offset": n, "<value>": hex}. `check`
// judges an offset item read whole: the member it faults and why, or {nullptr, nullptr}.
struct ItemsShape {
  bool blocks;
  size_t count;
  const char* value;       // "mask" or "data"
  const char* noSuchItem;  // a name that is not an item
  const char* badBlock;    // a block not 32 hexadecimal digits
  const char* badItem;     // an item not {"offset", value}
};
template <class Item, class Check>
void ReadItems(const Json& j, const std::string& path, const ItemsShape& shape, std::string Item::*value,
               std::array<Item, 5>& out, Check check, std::vector<FieldError>& errors) {
  if (!j.is_object()) {
    errors.push_back({path, "expected an object"});
    return;
  }
  for (const auto& item : j.items()) {
    const std::string at = Child(path, item.key());
    size_t index = shape.count;
    for (size_t i = 0; i < shape.count; ++i)
      if (item.key() == (shape.blocks ? std::string(kBlockNames[i]) : std::to_string(i + 1))) index = i;
    if (index == shape.count) {
      errors.push_back({at, shape.noSuchItem});
      continue;
    }
    Item& it = out[index];
    it.checked = true;
    const Json& v = item.value();
    if (shape.blocks) {
      if (!v.is_string() || !ValidateHexWidth(v.get<std::string>(), 32))
        errors.push_back({at, shape.badBlock});
      else
        it.*value = v.get<std::string>();
      continue;
    }
    if (!v.is_object() || !v.contains("offset") || !v.contains(shape.value)) {
      errors.push_back({at, shape.badItem});
      continue;
    }
    std::vector<FieldError> local;
    ReadText(v, "offset", at, true, it.offset, local);
    ReadText(v, shape.value, at, false, it.*value, local);
    UnknownKeys(v, at, {"offset", shape.value}, local);
    if (local.empty())
      if (const auto [member, message] = check(it); message != nullptr) local.push_back({Child(at, member), message});
    errors.insert(errors.end(), local.begin(), local.end());
  }
}

// The core's checks answer with the first message that fails and name no field. Each message is
// pinned on the field whose clearing (or a value every model takes, for a required field)
// silences it, and the checks run again without that field,
// so a record's every fault is reported at its JSON path. A fault no single field silences
// stays on the record.
template <class Fields>
struct Culprit {
  const char* name;
  std::function<void(Fields&)> clear;
};
template <class Fields>
void PinMessages(const std::string& path, Fields f, const std::function<AclCheck(const Fields&)>& check,
                 const std::vector<Culprit<Fields>>& culprits, std::vector<FieldError>& errors) {
  std::set<std::string> cleared;
  for (AclCheck c = check(f); c.code != AclMessage::kNone; c = check(f)) {
    bool pinned = false;
    for (const Culprit<Fields>& culprit : culprits) {
      if (cleared.count(culprit.name)) continue;
      Fields probe = f;
      culprit.clear(probe);
      if (check(probe).code == c.code) continue;
      errors.push_back({Child(path, culprit.name), MessageText(c.code)});
      cleared.insert(culprit.name);
      f = probe;
      pinned = true;
      break;
    }
    if (!pinned) {
      errors.push_back({path, MessageText(c.code)});
      return;
    }
  }
}

}  // namespace

bool ParseTypeName(std::string_view text, AclType& type) {
  for (AclType t : {AclType::kEthernet, AclType::kIPv4, AclType::kIPv6, AclType::kPacketContent})
    if (text == TypeName(t)) {
      type = t;
      return true;
    }
  return false;
}

const char* TypeName(AclType type) {
  switch (type) {
    case AclType::kEthernet: return "ethernet";
    case AclType::kIPv4: return "ipv4";
    case AclType::kIPv6: return "ipv6";
    case AclType::kPacketContent: return "packet_content";
  }
  return "";
}

std::string ProfileProtocolCode(const ProfileFields& f) {
  if (!f.protocolChecked || f.protocolGroup < 3 || f.protocolGroup > 7) return "1";
  return std::to_string(f.protocolGroup - 1);
}

std::string ActionName(std::string_view code) { return ActionCommandName(code); }

void ProfileFromJson(const Json& j, const std::string& path, AclType type, AclOwner owner,
                     const ModelEntry& model, ProfileFields& f, std::vector<FieldError>& errors) {
  std::set<std::string> known = {"id", "type", "rules"};
  auto has = [&](const char* key) {
    known.insert(key);
    return j.contains(key);
  };
  if (has("name")) ReadText(j, "name", path, false, f.profileName, errors);
  for (const ProfileFlag& p : kProfileFlags)
    if (Has(p.types, type) && has(p.name)) ReadBool(j, p.name, path, f.*p.member, errors);
  for (const ProfileMask& m : kProfileMasks)
    if (Has(m.types, type) && has(m.name) && ReadText(j, m.name, path, false, f.*m.member, errors))
      f.*m.checked = true;
  const size_t errorsBefore = errors.size();
  if (type == AclType::kIPv4) {
    for (const char* ip : {"src_ip_mask", "dst_ip_mask"})
      if (j.contains(ip) && j.at(ip).is_string() && !IsDottedQuad(j.at(ip).get<std::string>()))
        errors.push_back({Child(path, ip), "expected a dotted mask such as 255.255.255.0"});
    if (f.userMaskChecked) {
      // TVR4510 and TVR4820 take five 8-digit user fields, the others one.
      const std::string_view m = model.typeText;
      const size_t digits = m == "TVR4510" || m == "TVR4820" ? 40 : 8;
      f.userMask = PadHex(TrimBlanks(f.userMask), digits);
      if (!ValidateHexWidth(f.userMask, digits))
        errors.push_back({Child(path, "user_mask"), "expected " + std::to_string(digits) + " hexadecimal digits"});
    }
    std::string proto = "none";
    if (has("protocol")) ReadText(j, "protocol", path, false, proto, errors);
    const ProtocolNames* p = nullptr;
    for (const ProtocolNames& q : kProtocols)
      if (proto == q.word) p = &q;
    if (p == nullptr) {
      errors.push_back({Child(path, "protocol"), "expected none, icmp, igmp, tcp, udp or protocol_id"});
    } else if (p->code[0] != '1') {
      f.protocolGroup = p->code[0] - '0' + 1;
      f.protocolChecked = true;
    }
    const int g = f.protocolGroup;
    if (g == 3) {
      if (has("icmp_type")) ReadBool(j, "icmp_type", path, f.typeChecked, errors);
      if (has("icmp_code")) ReadBool(j, "icmp_code", path, f.codeChecked, errors);
    } else if (g == 4) {
      if (has("igmp_type")) ReadBool(j, "igmp_type", path, f.typeChecked, errors);
    } else if (g == 5 || g == 6) {
      for (auto [key, member] : {std::pair{"src_port_mask", &ProfileFields::srcPortMask},
                                 std::pair{"dst_port_mask", &ProfileFields::dstPortMask}})
        if (has(key) && ReadText(j, key, path, false, f.*member, errors)) {
          f.*member = PadHex(TrimBlanks(f.*member), 4);
          if (!ValidateHexWidth(f.*member, 4))
            errors.push_back({Child(path, key), "expected up to 4 hexadecimal digits"});
        }
      if (g == 5 && has("tcp_flags")) {
        const Json& flags = j.at("tcp_flags");
        f.flagBitsChecked = true;
        if (!flags.is_array()) errors.push_back({Child(path, "tcp_flags"), "expected a list such as [\"syn\", \"ack\"]"});
        for (size_t i = 0; flags.is_array() && i < flags.size(); ++i) {
          const TcpFlag* hit = nullptr;
          for (const TcpFlag& t : kTcpFlags)
            if (flags[i].is_string() && flags[i].get<std::string>() == t.name) hit = &t;
          if (hit == nullptr)
            errors.push_back({Child(path, "tcp_flags") + "[" + std::to_string(i) + "]",
                              "expected urg, ack, psh, rst, syn or fin"});
          else
            f.flagValue |= hit->bit;
        }
      }
    } else if (g == 7) {
      if (has("protocol_id_mask") && ReadText(j, "protocol_id_mask", path, true, f.protocolId, errors) &&
          CheckRange(f.protocolId, 0, 255) != RangeCheck::kInRange)
        errors.push_back({Child(path, "protocol_id_mask"), "value is 0 to 255"});
    }
  }
  if (type == AclType::kIPv6)
    for (auto [key, on, member] : {std::tuple{"src_ipv6_mask", f.srcIpv6Checked, &f.srcIpv6Mask},
                                   std::tuple{"dst_ipv6_mask", f.dstIpv6Checked, &f.dstIpv6Mask}})
      if (on && !ValidateHexWidth(*member, 32)) errors.push_back({Child(path, key), MessageText(AclMessage::kInvalidIpv6Mask)});
  if (type == AclType::kPacketContent) {
    const bool chunks = model.packetShape(owner, AclKind::kProfiles) == PacketShape::kChunks4;
    const char* key = chunks ? "chunks" : "blocks";
    OtherItemKeys(j, path, key, {"blocks", "chunks"}, "profiles", known, errors);
    const ItemsShape shape{!chunks, chunks ? 4u : 5u, "mask", chunks ? "expected chunk 1 to 4"
                                                                    : "expected a block 0-15, 16-31, 32-47, 48-63 or 64-79",
                           MessageText(AclMessage::kInvalidOffsetMask),
                           "expected {\"offset\": 0-31, \"mask\": 8 hexadecimal digits}"};
    if (j.contains(key))
      ReadItems(j.at(key), Child(path, key), shape, &ProfileFields::Item::mask, f.items,
                [](const ProfileFields::Item& it) -> std::pair<const char*, const char*> {
                  if (!ValidateChunkOffset(it.offset)) return {"offset", MessageText(AclMessage::kInvalidChunkOffset)};
                  if (!ValidateHexWidth(it.mask, 8)) return {"mask", MessageText(AclMessage::kInvalidChunkMask)};
                  return {nullptr, nullptr};
                },
                errors);
  }
  UnknownKeys(j, path, known, errors);
  if (errors.size() == errorsBefore) {
    std::vector<Culprit<ProfileFields>> culprits;
    for (const ProfileMask& m : kProfileMasks)
      if (Has(m.types, type) && j.contains(m.name))
        culprits.push_back({m.name, [m](ProfileFields& p) { p.*m.checked = false; }});
    PinMessages<ProfileFields>(path, f, [type](const ProfileFields& p) { return ValidateProfile(type, p); }, culprits,
                               errors);
  }
}

void RuleFromJson(const Json& j, const std::string& path, AclType type, AclOwner owner,
                  const ModelEntry& model, std::string_view protocol, RuleFields& f,
                  std::vector<FieldError>& errors) {
  std::set<std::string> known = {"access_id"};
  auto has = [&](const char* key) {
    known.insert(key);
    return j.contains(key);
  };
  // No default action: a rule that permits by omission is a hole nobody asked for.
  if (!has("action")) {
    errors.push_back({Child(path, "action"), owner == AclOwner::kCpu ? "missing: permit or deny" : "missing: permit, deny or mirror"});
  } else {
    std::string a;
    if (ReadText(j, "action", path, false, a, errors)) {
      if (std::string code = ActionCodeOfCommandName(a, owner); !code.empty())
        f.action = code;
      else
        errors.push_back({Child(path, "action"), owner == AclOwner::kCpu ? "expected permit or deny (the CPU ACL does not mirror)"
                                                                         : "expected permit, deny or mirror"});
    }
  }
  if (has("ports")) ReadText(j, "ports", path, false, f.ports, errors);
  for (const RuleText& t : kRuleTexts)
    if (Has(t.types, type) && has(t.name) && ReadText(j, t.name, path, t.number, f.*t.member, errors) && t.checked)
      f.*t.checked = true;
  // The wizard's address controls only let well-formed addresses through.
  for (auto [key, text] : {std::pair{"src_ip", &f.srcIp}, std::pair{"dst_ip", &f.dstIp}})
    if (type == AclType::kIPv4 && !text->empty() && !IsDottedQuad(*text))
      errors.push_back({Child(path, key), "expected a dotted address such as 10.0.0.1"});
  for (auto [key, text] : {std::pair{"src_ipv6", &f.srcIpv6}, std::pair{"dst_ipv6", &f.dstIpv6}})
    if (type == AclType::kIPv6 && !text->empty() && !ValidateHexWidth(*text, 32))
      errors.push_back({Child(path, key), "expected 32 hexadecimal digits"});
  f.protocol = std::string(protocol);
  if (type == AclType::kIPv4)
    if (const ProtocolNames* p = ProtocolByCode(protocol)) {
      if (p->value1 && has(p->value1)) ReadText(j, p->value1, path, true, f.value1, errors);
      if (p->value2 && has(p->value2)) ReadText(j, p->value2, path, p->code[0] != '6', f.value2, errors);
      if (p->flags && has(p->flags)) ReadText(j, p->flags, path, true, f.flagBits, errors);
    }
  if (type == AclType::kPacketContent) {
    const PacketShape shape = model.packetShape(owner, AclKind::kRules);
    const bool blocks = shape == PacketShape::kBlock16;
    const char* key = blocks ? "blocks" : shape == PacketShape::kChunks4 ? "chunks" : "items";
    OtherItemKeys(j, path, key, {"blocks", "chunks", "items"}, "rules", known, errors);
    const ItemsShape items{blocks, shape == PacketShape::kChunks4 ? 4u : 5u, "data",
                           blocks ? "no such block" : "no such item", "expected 32 hexadecimal digits",
                           "expected {\"offset\": number, \"data\": hexadecimal digits}"};
    if (j.contains(key))
      ReadItems(j.at(key), Child(path, key), items, &RuleFields::Item::data, f.items,
                [](const RuleFields::Item& it) -> std::pair<const char*, const char*> {
                  if (!ValidateHex(it.data)) return {"data", "expected hexadecimal digits"};
                  return {nullptr, nullptr};
                },
                errors);
  }
  UnknownKeys(j, path, known, errors);
}

void CheckRuleFields(const Json& j, const std::string& path, AclType type, AclOwner owner, const ModelEntry& model,
                     const RuleFields& f, std::vector<FieldError>& errors) {
  // Access ID and ports are required: the probe puts in a value every model takes instead.
  const auto range = model.accessIdRange(owner, type);
  const std::string anyAccessId = std::to_string(range ? range->min : 1);
  std::vector<Culprit<RuleFields>> culprits{{"access_id", [anyAccessId](RuleFields& r) { r.accessId = anyAccessId; }},
                                            {"ports", [](RuleFields& r) { r.ports = "1"; }}};
  for (const RuleText& t : kRuleTexts)
    if (Has(t.types, type) && j.contains(t.name))
      culprits.push_back({t.name, [t](RuleFields& r) {
                            (r.*t.member).clear();
                            if (t.checked) r.*t.checked = false;
                          }});
  if (type == AclType::kIPv4)
    if (const ProtocolNames* p = ProtocolByCode(f.protocol))
      for (auto [name, member] : {std::pair{p->value1, &RuleFields::value1}, std::pair{p->value2, &RuleFields::value2},
                                  std::pair{p->flags, &RuleFields::flagBits}})
        if (name && j.contains(name)) culprits.push_back({name, [member](RuleFields& r) { (r.*member).clear(); }});
  PinMessages<RuleFields>(path, f, [&](const RuleFields& r) { return ValidateRule(type, owner, model, r); }, culprits,
                          errors);
}

Json ProfileToJson(AclType type, AclOwner owner, const ModelEntry& model, const ProfileFields& f) {
  Json j = Json::object();
  if (!f.profileName.empty()) j["name"] = f.profileName;
  for (const ProfileFlag& p : kProfileFlags)
    if (Has(p.types, type)) j[p.name] = f.*p.member;
  for (const ProfileMask& m : kProfileMasks)
    if (Has(m.types, type) && f.*m.checked) j[m.name] = f.*m.member;
  if (type == AclType::kIPv4) {
    const ProtocolNames* p = ProtocolByCode(ProfileProtocolCode(f));
    j["protocol"] = p ? p->word : "none";
    const int g = f.protocolChecked ? f.protocolGroup : 0;
    if (g == 3) {
      j["icmp_type"] = f.typeChecked;
      j["icmp_code"] = f.codeChecked;
    } else if (g == 4) {
      j["igmp_type"] = f.typeChecked;
    } else if (g == 5 || g == 6) {
      if (!f.srcPortMask.empty()) j["src_port_mask"] = f.srcPortMask;
      if (!f.dstPortMask.empty()) j["dst_port_mask"] = f.dstPortMask;
      if (g == 5 && f.flagBitsChecked) {
        Json flags = Json::array();
        for (const TcpFlag& t : kTcpFlags)
          if (f.flagValue & t.bit) flags.push_back(t.name);
        j["tcp_flags"] = flags;
      }
    } else if (g == 7) {
      j["protocol_id_mask"] = Value(f.protocolId, true);
    }
  }
  if (type == AclType::kPacketContent) {
    const bool chunks = model.packetShape(owner, AclKind::kProfiles) == PacketShape::kChunks4;
    Json items = Json::object();
    for (size_t i = 0; i < (chunks ? 4u : 5u); ++i) {
      if (!f.items[i].checked) continue;
      if (chunks)
        items[std::to_string(i + 1)] = Json{{"offset", Value(f.items[i].offset, true)}, {"mask", f.items[i].mask}};
      else
        items[kBlockNames[i]] = f.items[i].mask;
    }
    j[chunks ? "chunks" : "blocks"] = items;
  }
  return j;
}

Json RuleToJson(AclType type, AclOwner owner, const ModelEntry& model, std::string_view protocol,
                const RuleFields& f) {
  Json j = Json::object();
  j["action"] = ActionName(f.action);
  j["ports"] = CompactPortList(f.ports);
  for (const RuleText& t : kRuleTexts) {
    if (!Has(t.types, type) || (t.checked && !(f.*t.checked))) continue;
    const std::string& v = f.*t.member;
    if (!v.empty()) j[t.name] = Value(v, t.number);
  }
  if (type == AclType::kIPv4)
    if (const ProtocolNames* p = ProtocolByCode(protocol)) {
      if (p->value1 && !f.value1.empty()) j[p->value1] = Value(f.value1, true);
      if (p->value2 && !f.value2.empty()) j[p->value2] = Value(f.value2, p->code[0] != '6');
      if (p->flags && !f.flagBits.empty()) j[p->flags] = Value(f.flagBits, true);
    }
  if (type == AclType::kPacketContent) {
    const PacketShape shape = model.packetShape(owner, AclKind::kRules);
    const size_t count = shape == PacketShape::kChunks4 ? 4 : 5;
    Json items = Json::object();
    for (size_t i = 0; i < count; ++i) {
      if (!f.items[i].checked) continue;
      if (shape == PacketShape::kBlock16)
        items[kBlockNames[i]] = f.items[i].data;
      else
        items[std::to_string(i + 1)] = Json{{"offset", Value(f.items[i].offset, true)}, {"data", f.items[i].data}};
    }
    j[shape == PacketShape::kBlock16 ? "blocks" : shape == PacketShape::kChunks4 ? "chunks" : "items"] = items;
  }
  return j;
}

std::string FieldsSummary(const Json& fields) {
  std::string out;
  for (const auto& item : fields.items()) {
    const Json& v = item.value();
    if (v.is_boolean() && !v.get<bool>()) continue;
    if (v.is_object() && v.empty()) continue;
    if (!out.empty()) out += ", ";
    out += item.key();
    if (v.is_boolean()) continue;
    out += '=';
    out += v.is_string() ? v.get<std::string>() : v.dump();
  }
  return out;
}
