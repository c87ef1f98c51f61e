// What a rule page offers on a model and how the chosen profile enables its fields: the rows a
// model has, the labels and limits, the port list of "ALL Ports", the MAC forms a user may type,
// and the protocol area of the IPv4 page. Portable, so the pages and their tests share it.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "acl/acl_record.h"

namespace acl {

// The optional rows of a rule page on a model and owner: a row is shown only when the
// switch's rule record has the cells it fills.
struct RuleRows {
  bool priority = false;
  bool replaceDscp = false;
  bool replaceTos = false;
  bool rxRate = false;
  bool allPorts = true;
  bool portsFixedZero = false;  // the CPU ACL of TVR4510 and TVR4820 takes port "0" only
};
RuleRows RuleRowsFor(const ModelEntry& model, AclOwner owner, AclType ruleType);

// The Access ID and Rx Rate labels of the model ("" where the model has none).
std::string AccessIdLabel(const ModelEntry& model, AclOwner owner, AclType ruleType);
std::string RxRateLabel(const ModelEntry& model, AclType ruleType);

// "ALL Ports": every port of the model, "1-N".
std::string AllPortsText(const ModelEntry& model);

// A MAC address as the page's example shows it ("00-00-00-00-FF-FF", or with ":") becomes the
// 12 digits the switch takes; any other text is left as typed, so the MAC check still refuses it.
std::string MacWithoutSeparators(std::string_view text);

// While typing in the ports field: the text after the user confirms the port error (the last
// character taken away).
std::string DropLastCharacter(std::string_view text);

// The IPv4 page's protocol area, set by the profile's "UseProtoType".
enum class ProtocolArea { kNone, kIcmp, kIgmp, kTcp, kUdp, kProtocolId };

// Which fields the chosen profile's masks enable. `profile` holds the fields the select page
// copies: Ethernet: ID, UseVLAN, MacAddrMaskState, Use802.1P, EthernetType; IPv4: ID, UseVLAN,
// AddrMaskState, UseDSCP, UseProtoType, IcmpOption, IgmpOption, TcpOption, UdpOption,
// TCPFlagBit, ProtolIDOption; IPv6: ID, MaskClass, MaskFlowlabel, AddrMaskState.
struct RuleEnabling {
  bool vlan = false, srcAddr = false, dstAddr = false;  // MACs, IPv4 or IPv6 addresses
  bool p8021 = false, ethertype = false;                // Ethernet
  bool dscp = false;                                    // IPv4
  ProtocolArea area = ProtocolArea::kNone;
  bool first = false, second = false, flags = false;    // the protocol area's fields
  bool ipv6Class = false, flowLabel = false;            // IPv6
};
RuleEnabling EnablingFor(AclType ruleType, std::span<const std::string> profile);

// The "UseProtoType" code a protocol area stands for ("1" none, "2" ICMP ... "6" protocol ID).
const char* ProtocolCode(ProtocolArea area);

}  // namespace acl

namespace acl {

// The fields of a profile read from a switch that a rule needs (the select page copies them
// into the sheet, in the order RuleEnabling's comment gives); empty for a short record.
std::vector<std::string> ChosenProfileFields(AclType type, const AclRecord& profile);

}  // namespace acl
