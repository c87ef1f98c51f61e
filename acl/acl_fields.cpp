#include "acl/acl_fields.h"

#include <set>

namespace {

std::string Cell(const AclRecord& r, size_t k) { return k < r.size() ? r[k] : std::string(); }
std::string Trimmed(const AclRecord& r, size_t k) { return std::string(TrimBlanks(Cell(r, k))); }

// A MAC read back as six zero bytes, or the text stored for an omitted one: not given.
std::string RuleMacField(const std::string& cell) {
  return cell == kOmittedMac || cell == "000000000000" ? std::string() : cell;
}

bool On(const std::string& flag) { return flag == kFlagYes; }

}  // namespace

RuleFields RuleFieldsFromRecord(AclType ruleType, AclOwner owner, const ModelEntry& model,
                                const AclRecord& r, std::string_view protocol) {
  RuleFields f;
  const bool cpu = owner == AclOwner::kCpu;
  f.profileId = Cell(r, 0);
  f.accessId = Cell(r, 1);
  auto priority = [&](size_t flag, size_t value) {
    f.priorityChecked = On(Cell(r, flag));
    if (f.priorityChecked) f.priority = Cell(r, value);
  };
  // The CPU ACL's rules end in the action and, a cell further on, the ports.
  auto cpuTail = [&](size_t action) {
    f.action = Cell(r, action);
    f.ports = Cell(r, action + 2);
  };
  // Ethernet and IPv6 rules from cell k on: priority, the replacement DSCP ("2" when none was
  // chosen), action, ports, and the Rx Rate at k + 7.
  auto ordinaryTail = [&](size_t k) {
    priority(k, k + 1);
    f.replaceDscpChecked = !Cell(r, k + 2).empty() && Cell(r, k + 2) != "2";
    if (f.replaceDscpChecked) f.replaceDscp = Cell(r, k + 2);
    f.action = Cell(r, k + 3);
    f.ports = Cell(r, k + 4);
    f.rxRate = Cell(r, k + 7);
  };
  switch (ruleType) {
    case AclType::kEthernet:
      f.vlan = Cell(r, 2);
      f.srcMac = RuleMacField(Cell(r, 3));
      f.dstMac = RuleMacField(Cell(r, 4));
      f.p8021 = Cell(r, 5);
      f.ethertype = Cell(r, 6);
      if (cpu) {
        cpuTail(7);
        break;
      }
      ordinaryTail(7);
      f.replaceTosChecked = !Cell(r, 13).empty();
      f.replaceTos = Cell(r, 13);
      break;
    case AclType::kIPv4: {
      f.vlan = Cell(r, 2);
      f.srcIp = Cell(r, 3) == "0.0.0.0" ? std::string() : Cell(r, 3);
      f.dstIp = Cell(r, 4) == "0.0.0.0" ? std::string() : Cell(r, 4);
      f.dscp = Cell(r, 5);
      f.protocol = std::string(protocol);
      if (protocol == "2") {
        f.value1 = Cell(r, 7);
        f.value2 = Cell(r, 8);
      } else if (protocol == "3") {
        f.value1 = Cell(r, 7);
      } else if (protocol == "4" || protocol == "5") {
        f.value1 = Cell(r, 9);
        f.value2 = Cell(r, 10);
        if (protocol == "4") f.flagBits = Cell(r, 11);
      } else if (protocol == "6") {
        f.value1 = Cell(r, 12);
        f.value2 = Cell(r, 13);
      }
      if (cpu) {
        cpuTail(14);
        break;
      }
      priority(14, 15);
      f.replaceDscpChecked = On(Cell(r, 17));
      if (f.replaceDscpChecked) f.replaceDscp = Cell(r, 18);
      f.action = Cell(r, 19);
      f.ports = Cell(r, 20);
      f.rxRate = Cell(r, 23);
      f.replaceTosChecked = !Cell(r, 24).empty();
      f.replaceTos = Cell(r, 24);
      break;
    }
    case AclType::kIPv6:
      f.ipv6Class = Cell(r, 2);
      f.flowLabel = Cell(r, 3);
      f.srcIpv6 = Cell(r, 4);
      f.dstIpv6 = Cell(r, 5);
      if (cpu)
        cpuTail(6);
      else
        ordinaryTail(6);
      break;
    case AclType::kPacketContent: {
      auto item = [&](size_t i, std::string offset, std::string data) {
        f.items[i].checked = !offset.empty() || !data.empty();
        f.items[i].offset = std::move(offset);
        f.items[i].data = std::move(data);
      };
      switch (const PacketShape shape = model.packetShape(owner, AclKind::kRules)) {
        case PacketShape::kOffsetItems:
        case PacketShape::kChunks4: {
          // Five (offset, data) items, or four chunks followed by the two replacements.
          const bool chunks = shape == PacketShape::kChunks4;
          for (size_t i = 0; i < (chunks ? 4u : 5u); ++i) item(i, Cell(r, 2 + 2 * i), Cell(r, 3 + 2 * i));
          if (chunks) {
            f.replaceDscpChecked = !Cell(r, 10).empty();
            f.replaceDscp = Cell(r, 10);
            f.replaceTosChecked = !Cell(r, 11).empty();
            f.replaceTos = Cell(r, 11);
          }
          priority(12, 13);
          f.rxRate = Cell(r, 14);
          f.action = Cell(r, 15);
          f.ports = Cell(r, 17);
          break;
        }
        case PacketShape::kBlock16:
          for (size_t i = 0; i < 5; ++i) item(i, std::string(), Cell(r, 2 + i));
          if (cpu) {
            cpuTail(7);
          } else {
            priority(7, 8);
            f.replaceDscpChecked = On(Cell(r, 9));
            if (f.replaceDscpChecked) f.replaceDscp = Cell(r, 10);
            f.action = Cell(r, 11);
            f.ports = Cell(r, 13);
          }
          break;
        case PacketShape::kNone: break;
      }
      break;
    }
  }
  return f;
}

ProfileFields ProfileFieldsFromRecord(AclType type, AclOwner owner, const ModelEntry& model,
                                      const AclRecord& r) {
  ProfileFields f;
  f.profileId = Cell(r, 0);
  // The owner cell carries the profile's name where the model keeps one there (see BuildProfile).
  auto nameFromOwnerCell = [&](size_t k) {
    if (owner == AclOwner::kAcl && std::string_view(model.typeText) == "TVR4512") f.profileName = Cell(r, k);
  };
  // A mask state cell (3 source, 2 destination, 4 both) and the two masks after it.
  auto masks = [&](size_t state, bool& srcOn, std::string& src, bool& dstOn, std::string& dst) {
    const std::string s = Cell(r, state);
    srcOn = s == "3" || s == "4";
    dstOn = s == "2" || s == "4";
    if (srcOn) src = Cell(r, state + 1);
    if (dstOn) dst = Cell(r, state + 2);
  };
  switch (type) {
    case AclType::kEthernet:
      f.vlan = On(Cell(r, 1));
      masks(2, f.srcMacChecked, f.srcMac, f.dstMacChecked, f.dstMac);
      f.p8021 = On(Cell(r, 5));
      f.ethernetType = On(Cell(r, 6));
      nameFromOwnerCell(8);
      break;
    case AclType::kIPv4: {
      f.vlan = On(Cell(r, 1));
      masks(2, f.srcIpChecked, f.srcIp, f.dstIpChecked, f.dstIp);
      f.dscp = On(Cell(r, 5));
      const std::string proto = Cell(r, 6);
      f.protocolChecked = proto >= "2" && proto <= "6" && proto.size() == 1;
      auto portMasks = [&](const std::string& option) {
        if (option == "3" || option == "4") f.srcPortMask = Cell(r, 11);
        if (option == "2" || option == "4") f.dstPortMask = Cell(r, 12);
      };
      if (proto == "2") {
        f.protocolGroup = 3;
        const std::string o = Cell(r, 7);
        f.typeChecked = o == "2" || o == "4";
        f.codeChecked = o == "3" || o == "4";
      } else if (proto == "3") {
        f.protocolGroup = 4;
        f.typeChecked = Cell(r, 8) == "1";
      } else if (proto == "4") {
        f.protocolGroup = 5;
        portMasks(Cell(r, 9));
        f.flagBitsChecked = On(Cell(r, 13));
        if (f.flagBitsChecked) f.flagValue = static_cast<int>(ParseLeadingDecimal(Cell(r, 14)));
      } else if (proto == "5") {
        f.protocolGroup = 6;
        portMasks(Cell(r, 10));
      } else if (proto == "6") {
        f.protocolGroup = 7;
        f.protocolId = Cell(r, 16);
      }
      const std::string userMask = Trimmed(r, 17);
      f.userMaskChecked = !userMask.empty() && userMask.find_first_not_of('0') != std::string::npos;
      if (f.userMaskChecked) f.userMask = userMask;
      nameFromOwnerCell(19);
      break;
    }
    case AclType::kIPv6:
      f.ipv6Class = On(Cell(r, 1));
      f.flowLabel = On(Cell(r, 2));
      masks(3, f.srcIpv6Checked, f.srcIpv6Mask, f.dstIpv6Checked, f.dstIpv6Mask);
      nameFromOwnerCell(7);
      break;
    case AclType::kPacketContent:
      if (model.packetShape(owner, AclKind::kProfiles) == PacketShape::kChunks4) {
        for (size_t i = 0; i < 4; ++i) {
          f.items[i].checked = Cell(r, 1 + 3 * i) == "1";
          if (!f.items[i].checked) continue;
          f.items[i].offset = Cell(r, 2 + 3 * i);
          f.items[i].mask = Cell(r, 3 + 3 * i);
        }
        f.profileName = Cell(r, 14);
      } else {
        for (size_t i = 0; i < 5; ++i) {
          f.items[i].mask = Cell(r, 1 + i);
          f.items[i].checked = !f.items[i].mask.empty();
        }
      }
      break;
  }
  return f;
}

std::vector<size_t> DiffRecordCells(const ModelEntry& model, const AclTableLayout& table,
                                    const AclRecord& wanted, const AclRecord& actual) {
  std::vector<size_t> out;
  const size_t keys = table.record.kind == AclKind::kRules ? 2 : 1;
  for (size_t k = 0; k < table.columns.size(); ++k) {
    if (k < keys) {
      if (Cell(wanted, k) != Cell(actual, k)) out.push_back(k);
      continue;
    }
    if (table.columns[k] == 0 || table.leftOut[k] || table.kinds[k] == CellKind::kIndex) continue;
    if (table.kinds[k] == CellKind::kRowStatus) {
      if (Cell(actual, k) != "1") out.push_back(k);  // createAndGo leaves the row active
      continue;
    }
    const auto want = EncodeCell(table.kinds[k], model, Cell(wanted, k));
    if (!want) continue;  // not sent: whatever the switch holds stands
    const auto got = EncodeCell(table.kinds[k], model, Cell(actual, k));
    if (!got || *got != *want) out.push_back(k);
  }
  return out;
}

std::string CompactPortList(std::string_view list) {
  std::set<long> ports;
  size_t i = 0;
  while (i < list.size()) {
    size_t end = list.find(',', i);
    if (end == std::string_view::npos) end = list.size();
    const std::string_view item = TrimBlanks(list.substr(i, end - i));
    i = end + 1;
    if (item.empty()) continue;
    const size_t dash = item.find('-');
    const std::string_view a = item.substr(0, dash);
    const std::string_view b = dash == std::string_view::npos ? a : item.substr(dash + 1);
    if (!IsIndexText(a) || !IsIndexText(b)) return std::string(list);
    const long lo = ParseLeadingDecimal(a), hi = ParseLeadingDecimal(b);
    if (hi < lo || hi - lo > 512) return std::string(list);
    for (long p = lo; p <= hi; ++p) ports.insert(p);
  }
  std::string out;
  for (auto it = ports.begin(); it != ports.end();) {
    const long start = *it;
    long last = start;
    while (++it != ports.end() && *it == last + 1) last = *it;
    if (!out.empty()) out += ',';
    out += std::to_string(start);
    if (last > start) out += '-' + std::to_string(last);
  }
  return out;
}
