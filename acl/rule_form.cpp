#include "acl/rule_form.h"

namespace acl {
namespace {

bool IsHexDigit(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
}

std::string_view Cell(std::span<const std::string> profile, size_t k) {
  return k < profile.size() ? std::string_view(profile[k]) : std::string_view();
}

// Address-mask state: "4" both, "2" destination only, "3" source only.
void AddressMask(std::string_view state, RuleEnabling& e) {
  e.srcAddr = state == "4" || state == "3";
  e.dstAddr = state == "4" || state == "2";
}

// TCP and UDP options: "3" source port only, "2" destination port only, "4" both.
void PortOption(std::string_view option, RuleEnabling& e) {
  e.first = option == "3" || option == "4";
  e.second = option == "2" || option == "4";
}

}  // namespace

RuleRows RuleRowsFor(const ModelEntry& model, AclOwner owner, AclType ruleType) {
  RuleRows rows;
  const std::string_view type = model.typeText;
  rows.portsFixedZero = owner == AclOwner::kCpu && (type == "TVR4510" || type == "TVR4820");
  rows.allPorts = !rows.portsFixedZero;
  if (owner == AclOwner::kCpu) return rows;  // CPU rules carry no priority, replacement or rate
  rows.priority = true;
  rows.rxRate = !RxRateLabel(model, ruleType).empty();
  switch (ruleType) {
    case AclType::kEthernet:
    case AclType::kIPv4:
      rows.replaceDscp = rows.replaceTos = true;
      break;
    case AclType::kIPv6:
      rows.replaceDscp = true;
      break;
    case AclType::kPacketContent: {
      const PacketShape shape = model.packetShape(owner, AclKind::kRules);
      rows.replaceDscp = shape != PacketShape::kOffsetItems;
      rows.replaceTos = shape == PacketShape::kChunks4;
      // The Block16 record has no Rx Rate cell.
      if (shape == PacketShape::kBlock16) rows.rxRate = false;
      break;
    }
  }
  return rows;
}

std::string AccessIdLabel(const ModelEntry& model, AclOwner owner, AclType ruleType) {
  auto range = model.accessIdRange(owner, ruleType);
  return range && range->label ? range->label : "";
}

std::string RxRateLabel(const ModelEntry& model, AclType ruleType) {
  auto rx = model.rxRange();
  if (!rx) return "";
  const char* label = ruleType == AclType::kPacketContent ? rx->packetContentLabel : rx->label;
  return label ? label : "";
}

std::string AllPortsText(const ModelEntry& model) {
  if (model.portCount <= 1) return model.portCount == 1 ? "1" : "";
  return "1-" + std::to_string(model.portCount);
}

std::string MacWithoutSeparators(std::string_view text) {
  const std::string_view t = TrimBlanks(text);
  if (t.size() != 17) return std::string(text);
  const char separator = t[2];
  if (separator != '-' && separator != ':') return std::string(text);
  std::string digits;
  for (size_t i = 0; i < t.size(); ++i) {
    if (i % 3 == 2) {
      if (t[i] != separator) return std::string(text);
    } else if (!IsHexDigit(t[i])) {
      return std::string(text);
    } else {
      digits += t[i];
    }
  }
  return digits;
}

std::string DropLastCharacter(std::string_view text) {
  return std::string(text.empty() ? text : text.substr(0, text.size() - 1));
}

const char* ProtocolCode(ProtocolArea area) {
  switch (area) {
    case ProtocolArea::kIcmp: return "2";
    case ProtocolArea::kIgmp: return "3";
    case ProtocolArea::kTcp: return "4";
    case ProtocolArea::kUdp: return "5";
    case ProtocolArea::kProtocolId: return "6";
    case ProtocolArea::kNone: break;
  }
  return "1";
}

RuleEnabling EnablingFor(AclType ruleType, std::span<const std::string> p) {
  RuleEnabling e;
  switch (ruleType) {
    case AclType::kEthernet:
      e.vlan = Cell(p, 1) != kFlagNo;
      AddressMask(Cell(p, 2), e);
      e.p8021 = Cell(p, 3) != kFlagNo;
      e.ethertype = Cell(p, 4) != kFlagNo;
      break;
    case AclType::kIPv4: {
      e.vlan = Cell(p, 1) != kFlagNo;
      AddressMask(Cell(p, 2), e);
      e.dscp = Cell(p, 3) != kFlagNo;
      const std::string_view proto = Cell(p, 4);
      if (proto == "2") {
        e.area = ProtocolArea::kIcmp;
        const std::string_view o = Cell(p, 5);
        e.first = o == "2" || o == "4";
        e.second = o == "3" || o == "4";
      } else if (proto == "3") {
        e.area = ProtocolArea::kIgmp;
        e.first = Cell(p, 6) == kFlagYes;
      } else if (proto == "4") {
        e.area = ProtocolArea::kTcp;
        PortOption(Cell(p, 7), e);
        e.flags = Cell(p, 9) == kFlagYes;
      } else if (proto == "5") {
        e.area = ProtocolArea::kUdp;
        PortOption(Cell(p, 8), e);
      } else if (proto == "6") {
        e.area = ProtocolArea::kProtocolId;
        e.first = e.second = Cell(p, 10) == kFlagYes;
      }
      break;
    }
    case AclType::kIPv6:
      e.ipv6Class = Cell(p, 1) != kFlagNo;
      e.flowLabel = Cell(p, 2) != kFlagNo;
      AddressMask(Cell(p, 3), e);
      break;
    case AclType::kPacketContent:
      break;
  }
  return e;
}

}  // namespace acl

namespace acl {

std::vector<std::string> ChosenProfileFields(AclType type, const AclRecord& profile) {
  static constexpr size_t kEthernet[] = {0, 1, 2, 5, 6};
  static constexpr size_t kIpv4[] = {0, 1, 2, 5, 6, 7, 8, 9, 10, 13, 15};
  static constexpr size_t kIpv6[] = {0, 1, 2, 3};
  static constexpr size_t kPacket[] = {0};
  std::span<const size_t> cells;
  switch (type) {
    case AclType::kEthernet: cells = kEthernet; break;
    case AclType::kIPv4: cells = kIpv4; break;
    case AclType::kIPv6: cells = kIpv6; break;
    case AclType::kPacketContent: cells = kPacket; break;
  }
  std::vector<std::string> out;
  for (size_t k : cells) {
    if (k >= profile.size()) return {};
    out.push_back(profile[k]);
  }
  return out;
}

}  // namespace acl
