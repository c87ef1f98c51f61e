#include "acl/acl_record.h"

#include <cctype>

std::string_view TrimBlanks(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t')) s.remove_suffix(1);
  return s;
}

namespace {

std::string TrimUpper(std::string_view text) {
  std::string s(TrimBlanks(text));
  for (char& c : s) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return s;
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsUpperHex(char c) { return IsDigit(c) || (c >= 'A' && c <= 'F'); }

// A decimal field holds at most 10 characters (the fixed buffers of the dialogs); a longer
// text fails the field's range check.
constexpr size_t kMaxDecimalText = 10;

// Empty passes; otherwise the leading decimal number must lie in min..max.
bool OptionalInRange(std::string_view text, long min, long max) {
  if (text.size() > kMaxDecimalText) return false;
  return CheckRange(text, min, max) != RangeCheck::kOutOfRange;
}

AclMessage CheckAccessIdField(const ModelEntry& model, AclOwner owner, AclType type,
                              std::string_view text) {
  if (text.empty()) return AclMessage::kAccessIdNull;
  if (text.size() > kMaxDecimalText ||
      CheckAccessId(model, owner, type, text) == RangeCheck::kOutOfRange)
    return AclMessage::kAccessIdRange;
  return AclMessage::kNone;
}

// Rx Rate empty, or in the model's range (0 also on TVR4060). The CPU ACL has no Rx Rate,
// so any text there is out of range.
bool RxRateOk(const ModelEntry& model, AclOwner owner, std::string_view text) {
  if (text.empty()) return true;
  if (owner == AclOwner::kCpu || text.size() > kMaxDecimalText) return false;
  return CheckRxRate(model, text) == RangeCheck::kInRange;
}

const char* Flag(bool on) { return on ? kFlagYes : kFlagNo; }

// Address-mask state: 1 none, 2 destination only, 3 source only, 4 both.
const char* MaskState(bool src, bool dst) {
  if (src && dst) return "4";
  if (dst) return "2";
  if (src) return "3";
  return "1";
}

std::string RuleMac(std::string_view text) {
  std::string s = NormalizeMac(text);
  return s.empty() ? std::string(kOmittedMac) : s;
}

// The owner cell: TVR4512's ordinary ACL sends it to its profile-name column.
std::string OwnerCell(AclOwner owner, const ModelEntry& model, const ProfileFields& f) {
  if (owner == AclOwner::kAcl && std::string_view(model.typeText) == "TVR4512") return f.profileName;
  return owner == AclOwner::kCpu ? "2" : "1";
}

}  // namespace

AclRecordKind RecordKindFor(const ModelEntry& model, AclOwner owner, AclKind kind, AclType type) {
  AclRecordKind k{owner, kind, type, PacketShape::kNone};
  if (type == AclType::kPacketContent) k.shape = model.packetShape(owner, kind);
  return k;
}

size_t RecordCellCount(const AclRecordKind& k) {
  const bool cpu = k.owner == AclOwner::kCpu;
  if (k.kind == AclKind::kProfiles) {
    switch (k.type) {
      case AclType::kEthernet: return 10;
      case AclType::kIPv4: return 22;
      case AclType::kIPv6: return 9;
      case AclType::kPacketContent:
        return k.shape == PacketShape::kChunks4 ? 15 : k.shape == PacketShape::kBlock16 ? 7 : 0;
    }
    return 0;
  }
  switch (k.type) {
    case AclType::kEthernet: return cpu ? 10 : 15;
    case AclType::kIPv4: return cpu ? 17 : 25;
    case AclType::kIPv6: return cpu ? 9 : 14;
    case AclType::kPacketContent:
      switch (k.shape) {
        case PacketShape::kOffsetItems: return 18;
        case PacketShape::kChunks4: return 18;
        case PacketShape::kBlock16: return cpu ? 10 : 14;
        case PacketShape::kNone: return 0;
      }
  }
  return 0;
}

const char* TypeWord(AclType type) {
  switch (type) {
    case AclType::kEthernet: return "Ethernet";
    case AclType::kIPv4: return "IPv4";
    case AclType::kIPv6: return "IPv6";
    case AclType::kPacketContent: return "Packet Content";
  }
  return "";
}

const char* OwnerWord(AclOwner owner) { return owner == AclOwner::kCpu ? "CPU ACL" : "ACL"; }

namespace {

struct ActionNames {
  const char* code;
  const char* dropDown;
  const char* detail;
  const char* staging;
  const char* command;
  bool cpu;  // the CPU ACL takes it
};

// Deny first: the word of a code not listed here.
constexpr ActionNames kActions[] = {
    {"1", "Deny", "deny", "deny", "deny", true},
    {"2", "Permit", "Permit", "permit", "permit", true},
    {"3", "Mirror", "mirror", "miror", "mirror", false},
};

const ActionNames* ActionOfCode(std::string_view code) {
  for (const ActionNames& a : kActions)
    if (code == a.code) return &a;
  return nullptr;
}

}  // namespace

std::string ActionCode(std::string_view dropDownWord, AclOwner owner) {
  for (const ActionNames& a : kActions)
    if (dropDownWord == a.dropDown && (a.cpu || owner == AclOwner::kAcl)) return a.code;
  return kActions[0].code;
}

const char* ActionWord(std::string_view code) {
  const ActionNames* a = ActionOfCode(code);
  return (a ? a : &kActions[0])->dropDown;
}

const char* ActionDetailWord(std::string_view code) {
  const ActionNames* a = ActionOfCode(code);
  return (a ? a : &kActions[0])->detail;
}

std::string ActionStagingWord(std::string_view code) {
  const ActionNames* a = ActionOfCode(code);
  return a ? a->staging : std::string(code);
}

std::string ActionCommandName(std::string_view code) {
  const ActionNames* a = ActionOfCode(code);
  return a ? a->command : std::string(code);
}

std::string ActionCodeOfCommandName(std::string_view name, AclOwner owner) {
  for (const ActionNames& a : kActions)
    if (name == a.command && (a.cpu || owner == AclOwner::kAcl)) return a.code;
  return {};
}

bool AddProfile(AclRecordList& list, AclRecord record) {
  const std::string key = record.empty() ? std::string() : record[0];
  for (const AclRecord& r : list)
    if (!r.empty() && r[0] == key) return false;
  list.push_back(std::move(record));
  return true;
}

bool RulePending(const AclRecordList& list, const AclRecord& record) {
  const std::string id = record.size() > 0 ? record[0] : std::string();
  const std::string access = record.size() > 1 ? record[1] : std::string();
  for (const AclRecord& r : list)
    if (r.size() > 1 && r[0] == id && r[1] == access) return true;
  return false;
}

std::string NormalizeMac(std::string_view text) { return TrimUpper(text); }

bool ValidateMac(std::string_view text) {
  if (text.size() > kMaxFieldText) return false;
  std::string s = TrimUpper(text);
  if (s.size() != 12) return false;
  for (char c : s)
    if (!IsUpperHex(c)) return false;
  return true;
}

bool ValidateHex(std::string_view text) {
  if (text.size() > kMaxFieldText) return false;
  for (char c : TrimUpper(text))
    if (!IsUpperHex(c)) return false;
  return true;
}

bool ValidateHexWidth(std::string_view text, size_t digits) {
  return TrimBlanks(text).size() == digits && ValidateHex(text);
}

bool ValidateChunkOffset(std::string_view text) {
  const std::string_view t = TrimBlanks(text);
  if (t.empty() || t.size() > 2 || !ValidateDigits(t)) return false;
  return std::stoi(std::string(t)) <= 31;
}

std::string PadHex(std::string_view text, size_t width) {
  std::string s(text);
  if (s.size() < width) s.insert(0, width - s.size(), '0');
  return s;
}

bool ValidateDigits(std::string_view text) {
  if (text.size() > kMaxFieldText) return false;
  for (char c : TrimUpper(text))
    if (!IsDigit(c)) return false;
  return true;
}

bool ValidatePortList(std::string_view s, int portCount) {
  // A port list of one model fits in 96 characters.
  if (s.size() > kMaxFieldText) return false;
  for (char c : s)
    if (!IsDigit(c) && c != '-' && c != ',') return false;
  const size_t n = s.size();
  for (size_t i = 0; i < n; ++i) {
    if (IsDigit(s[i])) {
      // A lone digit, every two adjacent digits, and every three adjacent digits starting
      // with 1..9 are read as numbers that must not exceed the port count.
      const bool prevDigit = i > 0 && IsDigit(s[i - 1]);
      const bool nextDigit = i + 1 < n && IsDigit(s[i + 1]);
      if (!prevDigit && !nextDigit && s[i] - '0' > portCount) return false;
      if (nextDigit && (s[i] - '0') * 10 + (s[i + 1] - '0') > portCount) return false;
      if (s[i] != '0' && i + 2 < n && nextDigit && IsDigit(s[i + 2]) &&
          (s[i] - '0') * 100 + (s[i + 1] - '0') * 10 + (s[i + 2] - '0') > portCount)
        return false;
    } else if (s[i] == '-') {
      if (i + 1 < n && s[i + 1] == '-') return false;                       // "5--7"
      if (i + 2 < n && IsDigit(s[i + 1]) && s[i + 2] == '-') return false;  // "5-6-7"
    }
  }
  return true;
}

AclCheck ValidateRule(AclType ruleType, AclOwner owner, const ModelEntry& model, const RuleFields& f) {
  const AclCheck values = ValidateRuleValues(ruleType, owner, model, f);
  return values.code != AclMessage::kNone ? values : CheckRuleComplete(ruleType, f);
}

AclCheck CheckRuleComplete(AclType ruleType, const RuleFields& f) {
  using M = AclMessage;
  switch (ruleType) {
    case AclType::kEthernet:
      if (f.ports.empty()) return {M::kPortError};
      return {};
    case AclType::kIPv4:
      if (f.accessId.empty() || f.ports.empty()) return {M::kAccessIdNull};
      return {};
    case AclType::kIPv6:
    case AclType::kPacketContent:
      if (f.ports.empty() || f.accessId.empty() || f.action.empty()) return {M::kPortNull};
      return {};
  }
  return {};
}

AclCheck ValidateRuleValues(AclType ruleType, AclOwner owner, const ModelEntry& model, const RuleFields& f) {
  using M = AclMessage;
  const int ports = model.portCount;
  AclMessage m = M::kNone;
  switch (ruleType) {
    case AclType::kEthernet:
      if (!OptionalInRange(f.p8021, 0, 7)) return {M::k8021pRange};
      if ((m = CheckAccessIdField(model, owner, ruleType, f.accessId)) != M::kNone) return {m};
      // The destination MAC is checked before the priority, the source MAC after the Rx rate.
      if (!f.dstMac.empty() && !ValidateMac(f.dstMac)) return {M::kInvalidMac};
      if (!OptionalInRange(f.priority, 0, 7)) return {M::kPriorityRange};
      if (!RxRateOk(model, owner, f.rxRate)) return {M::kRxRateRange};
      if (!f.srcMac.empty() && !ValidateMac(f.srcMac)) return {M::kInvalidMac};
      // An Ethertype holds 4 hex digits (2 bytes on the wire).
      if (!f.ethertype.empty() && (!ValidateHex(f.ethertype) || TrimUpper(f.ethertype).size() > 4))
        return {M::kInvalidEthertype};
      if (!ValidatePortList(f.ports, ports)) return {M::kPortError};
      if (!OptionalInRange(f.replaceDscp, 0, 63)) return {M::kDscpRange};
      if (!OptionalInRange(f.replaceTos, 0, 7)) return {M::kReplaceTosRange};
      return {};
    case AclType::kIPv4: {
      if ((m = CheckAccessIdField(model, owner, ruleType, f.accessId)) != M::kNone) return {m};
      if (!OptionalInRange(f.priority, 0, 7)) return {M::kPriorityRange};
      if (!RxRateOk(model, owner, f.rxRate)) return {M::kRxRateRange};
      if (!OptionalInRange(f.replaceDscp, 0, 63)) return {M::kReplaceDscpRange};
      if (!ValidatePortList(f.ports, ports)) return {M::kPortError};
      if (!OptionalInRange(f.dscp, 0, 63)) return {M::kDscpRange};
      if (!OptionalInRange(f.replaceTos, 0, 7)) return {M::kReplaceTosRange};
      const std::string& p = f.protocol;
      const bool tcpUdp = p == "4" || p == "5";
      const bool byte = p == "2" || p == "3" || p == "6";
      if (!f.value1.empty()) {
        if (byte && !OptionalInRange(f.value1, 0, 255)) return {M::kValue255};
        if (tcpUdp && !OptionalInRange(f.value1, 0, 65535)) return {M::kValue65535};
      }
      if (!f.value2.empty()) {
        // The user mask holds 8 hex digits (4 bytes on the wire).
        if (p == "6" && (!ValidateHex(f.value2) || TrimUpper(f.value2).size() > 8))
          return {M::kUserMaskError};
        if ((p == "2" || p == "3") && (!ValidateDigits(f.value2) || !OptionalInRange(f.value2, 0, 255)))
          return {M::kValue255};
        if (tcpUdp && (!ValidateDigits(f.value2) || !OptionalInRange(f.value2, 0, 65535))) return {M::kValue65535};
      }
      return {};
    }
    case AclType::kIPv6:
      if ((m = CheckAccessIdField(model, owner, ruleType, f.accessId)) != M::kNone) return {m};
      if (!OptionalInRange(f.ipv6Class, 0, 255)) return {M::kClassRange};
      if (!OptionalInRange(f.priority, 0, 7)) return {M::kPriorityRange};
      if (!RxRateOk(model, owner, f.rxRate)) return {M::kRxRateRange};
      // A flow label holds 8 hex digits (4 bytes on the wire).
      if (!f.flowLabel.empty() && (!ValidateHex(f.flowLabel) || TrimUpper(f.flowLabel).size() > 8))
        return {M::kInvalidFlowLabel};
      if (!ValidatePortList(f.ports, ports)) return {M::kPortError};
      if (!OptionalInRange(f.replaceDscp, 0, 63)) return {M::kDscpRange};
      if (!OptionalInRange(f.replaceTos, 0, 7)) return {M::kReplaceTosRange};
      return {};
    case AclType::kPacketContent:
      if ((m = CheckAccessIdField(model, owner, ruleType, f.accessId)) != M::kNone) return {m};
      if (!OptionalInRange(f.priority, 0, 7)) return {M::kPriorityRange};
      if (!RxRateOk(model, owner, f.rxRate)) return {M::kRxRateRange};
      if (!ValidatePortList(f.ports, ports)) return {M::kPortError};
      if (!OptionalInRange(f.replaceDscp, 0, 63)) return {M::kDscpRange};
      if (!OptionalInRange(f.replaceTos, 0, 7)) return {M::kReplaceTosRange};
      return {};
  }
  return {};
}

AclRecord BuildRule(AclType ruleType, AclOwner owner, const ModelEntry& model,
                    const RuleFields& f) {
  const bool cpu = owner == AclOwner::kCpu;
  const std::string prio = f.priorityChecked ? f.priority : std::string();
  const std::string rdscp = f.replaceDscpChecked ? f.replaceDscp : std::string();
  const std::string tos = f.replaceTosChecked ? f.replaceTos : std::string();
  switch (ruleType) {
    case AclType::kEthernet: {
      const std::string src = RuleMac(f.srcMac), dst = RuleMac(f.dstMac);
      const std::string eth = TrimUpper(f.ethertype);
      if (cpu) return {f.profileId, f.accessId, f.vlan, src, dst, f.p8021, eth, f.action, "4", f.ports};
      // Cell 9 is the replacement DSCP when chosen, else "2".
      return {f.profileId, f.accessId, f.vlan, src, dst, f.p8021, eth, Flag(f.priorityChecked), prio,
              f.replaceDscpChecked ? f.replaceDscp : std::string("2"), f.action, f.ports, "4", tos,
              f.rxRate};
    }
    case AclType::kIPv4: {
      AclRecord r(cpu ? 17 : 25);
      r[0] = f.profileId;
      r[1] = f.accessId;
      r[2] = f.vlan;
      r[3] = f.srcIp;
      r[4] = f.dstIp;
      r[5] = f.dscp;
      r[6] = f.protocol;
      // Which of cells 7..13 are filled depends on the protocol.
      if (f.protocol == "2") {
        r[7] = f.value1;
        r[8] = f.value2;
      } else if (f.protocol == "3") {
        r[7] = f.value1;
      } else if (f.protocol == "4") {
        r[9] = f.value1;
        r[10] = f.value2;
        r[11] = f.flagBits;
      } else if (f.protocol == "5") {
        r[9] = f.value1;
        r[10] = f.value2;
      } else if (f.protocol == "6") {
        r[12] = f.value1;
        r[13] = TrimUpper(f.value2);
      }
      if (cpu) {
        r[14] = f.action;
        r[15] = "4";
        r[16] = f.ports;
        return r;
      }
      r[14] = f.priorityChecked ? "1" : "";
      r[15] = prio;
      r[17] = f.replaceDscpChecked ? "1" : "";
      r[18] = rdscp;
      r[19] = f.action;
      r[20] = f.ports;
      r[21] = "4";
      r[23] = f.rxRate;
      r[24] = tos;
      return r;
    }
    case AclType::kIPv6: {
      const std::string flow = TrimUpper(f.flowLabel);
      const std::string src = TrimUpper(f.srcIpv6), dst = TrimUpper(f.dstIpv6);
      if (cpu) return {f.profileId, f.accessId, f.ipv6Class, flow, src, dst, f.action, "4", f.ports};
      return {f.profileId, f.accessId, f.ipv6Class, flow, src, dst, Flag(f.priorityChecked), prio,
              f.replaceDscpChecked ? f.replaceDscp : std::string("2"), f.action, f.ports, "4", "",
              f.rxRate};
    }
    case AclType::kPacketContent: {
      auto data = [&](size_t i) { return f.items[i].checked ? TrimUpper(f.items[i].data) : std::string(); };
      auto offset = [&](size_t i) { return f.items[i].checked ? f.items[i].offset : std::string(); };
      AclRecord r{f.profileId, f.accessId};
      switch (model.packetShape(owner, AclKind::kRules)) {
        case PacketShape::kOffsetItems:
          for (size_t i = 0; i < 5; ++i) {
            r.push_back(offset(i));
            r.push_back(data(i));
          }
          for (const std::string& c : {std::string(Flag(f.priorityChecked)), prio, f.rxRate, f.action,
                                       std::string("4"), f.ports})
            r.push_back(c);
          return r;
        case PacketShape::kChunks4:
          for (size_t i = 0; i < 4; ++i) {
            r.push_back(offset(i));
            r.push_back(data(i));
          }
          for (const std::string& c : {rdscp, tos, std::string(Flag(f.priorityChecked)), prio, f.rxRate,
                                       f.action, std::string("4"), f.ports})
            r.push_back(c);
          return r;
        case PacketShape::kBlock16:
          for (size_t i = 0; i < 5; ++i) r.push_back(data(i));
          if (cpu) {
            for (const std::string& c : {f.action, std::string("4"), f.ports}) r.push_back(c);
          } else {
            for (const std::string& c : {std::string(Flag(f.priorityChecked)), prio,
                                         std::string(Flag(f.replaceDscpChecked)), rdscp, f.action,
                                         std::string("4"), f.ports})
              r.push_back(c);
          }
          return r;
        case PacketShape::kNone: return {};
      }
      return {};
    }
  }
  return {};
}

AclCheck ValidateProfile(AclType type, const ProfileFields& f) {
  // Each checked MAC mask must pass the MAC check.
  if (type == AclType::kEthernet && ((f.srcMacChecked && !ValidateMac(f.srcMac)) ||
                                     (f.dstMacChecked && !ValidateMac(f.dstMac))))
    return {AclMessage::kInvalidMac};
  return {};
}

AclRecord BuildProfile(AclType type, AclOwner owner, const ModelEntry& model,
                       const ProfileFields& f) {
  switch (type) {
    case AclType::kEthernet:
      // The masks keep the text as typed.
      return {f.profileId, Flag(f.vlan), MaskState(f.srcMacChecked, f.dstMacChecked),
              f.srcMacChecked ? f.srcMac : "", f.dstMacChecked ? f.dstMac : "", Flag(f.p8021),
              Flag(f.ethernetType), "4", OwnerCell(owner, model, f), ""};
    case AclType::kIPv4: {
      AclRecord r(22);
      r[0] = f.profileId;
      r[1] = Flag(f.vlan);
      r[2] = MaskState(f.srcIpChecked, f.dstIpChecked);
      r[3] = f.srcIpChecked ? f.srcIp : "0.0.0.0";
      r[4] = f.dstIpChecked ? f.dstIp : "0.0.0.0";
      r[5] = Flag(f.dscp);
      // Every option is an INTEGER column that the switch keeps from row creation on, so each
      // goes out with its "none" code unless the shown protocol group sets it: a row created
      // without them would hold whatever the switch's firmware defaults to.
      r[6] = "1";   // UseProtoType: none
      r[7] = "1";   // IcmpOption: none
      r[8] = "2";   // IgmpOption: no type
      r[9] = "1";   // TcpOption: no port mask
      r[10] = "1";  // UdpOption: no port mask
      r[13] = "2";  // TCPFlagBit: no
      r[14] = "0";  // TCPFlagBitMask
      r[15] = "2";  // ProtolIDOption: no
      auto portOption = [&] {
        bool s = !f.srcPortMask.empty(), d = !f.dstPortMask.empty();
        return std::string(s && d ? "4" : s ? "3" : d ? "2" : "1");
      };
      switch (f.protocolGroup) {
        case 3:
          r[6] = f.protocolChecked ? "2" : "1";
          r[7] = !f.protocolChecked ? "1"
                 : f.typeChecked && f.codeChecked ? "4"
                 : f.typeChecked                  ? "2"
                 : f.codeChecked                  ? "3"
                                                  : "1";
          break;
        case 4:
          r[6] = f.protocolChecked ? "3" : "1";
          r[8] = f.protocolChecked && f.typeChecked ? "1" : "2";
          break;
        case 5:
          r[6] = f.protocolChecked ? "4" : "1";
          r[9] = f.protocolChecked ? portOption() : "1";
          r[11] = f.srcPortMask;
          r[12] = f.dstPortMask;
          r[13] = f.flagBitsChecked ? "1" : "2";
          r[14] = f.flagBitsChecked ? std::to_string(f.flagValue) : "0";
          break;
        case 6:
          r[6] = f.protocolChecked ? "5" : "1";
          r[10] = f.protocolChecked ? portOption() : "1";
          r[11] = f.srcPortMask;
          r[12] = f.dstPortMask;
          break;
        case 7:
          r[6] = f.protocolChecked ? "6" : "1";
          r[15] = f.protocolChecked ? "1" : "2";
          r[16] = f.protocolChecked ? f.protocolId : "";
          break;
        default: break;
      }
      if (f.userMaskChecked) r[17] = TrimUpper(f.userMask);
      r[18] = "4";
      r[19] = OwnerCell(owner, model, f);
      return r;
    }
    case AclType::kIPv6:
      return {f.profileId, Flag(f.ipv6Class), Flag(f.flowLabel),
              MaskState(f.srcIpv6Checked, f.dstIpv6Checked),
              f.srcIpv6Checked ? TrimUpper(f.srcIpv6Mask) : "", f.dstIpv6Checked ? TrimUpper(f.dstIpv6Mask) : "",
              "4", OwnerCell(owner, model, f), ""};
    case AclType::kPacketContent: {
      AclRecord r{f.profileId};
      if (model.packetShape(owner, AclKind::kProfiles) == PacketShape::kChunks4) {
        for (size_t i = 0; i < 4; ++i) {
          const bool on = f.items[i].checked;
          r.push_back(on ? "1" : "");
          r.push_back(on ? f.items[i].offset : "");
          r.push_back(on ? TrimUpper(f.items[i].mask) : "");
        }
        r.push_back("4");
        r.push_back(f.profileName);
        return r;
      }
      for (size_t i = 0; i < 5; ++i) r.push_back(f.items[i].checked ? TrimUpper(f.items[i].mask) : "");
      r.push_back("4");
      return r;
    }
  }
  return {};
}

int ApplyProgress(long long r, long long d, long long t, long long n) {
  if (t <= 0 || n <= 0) return 0;
  return static_cast<int>((r * d * 100 / t) / n);
}
