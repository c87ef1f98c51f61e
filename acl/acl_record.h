// The ACL records (ordered rows of text cells), their lists, the text checks and the rule
// checks, and the building of records from a page's field texts, so that the pages, the
// staging files, the writer, the command line and the tests share one implementation. Portable: no <windows.h>.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "acl/acl_messages.h"
#include "snmp/model_catalogue.h"

// A profile or rule: text cells in the fixed column order of its kind. An empty cell
// means the field is not given.
using AclRecord = std::vector<std::string>;
using AclRecordList = std::vector<AclRecord>;

// Which record: owner, profile or rule, type, and for packet content the layout.
struct AclRecordKind {
  AclOwner owner = AclOwner::kAcl;
  AclKind kind = AclKind::kProfiles;
  AclType type = AclType::kEthernet;
  PacketShape shape = PacketShape::kNone;  // packet content only
  bool operator==(const AclRecordKind&) const = default;
};

// The record kind that a model uses for an owner, kind and type (the packet-content layout
// from the catalogue). Profiles of packet content use the model's profile shape for the
// ordinary ACL and Block16 for the CPU ACL.
AclRecordKind RecordKindFor(const ModelEntry& model, AclOwner owner, AclKind kind, AclType type);

// Number of cells of a record kind (0 for a kind that does not exist).
size_t RecordCellCount(const AclRecordKind& kind);

// Codes as the switch takes them, in text.
inline constexpr const char* kRowStatusCreate = "4";   // create and go
inline constexpr const char* kRowStatusDestroy = "6";
inline constexpr const char* kFlagYes = "1";
inline constexpr const char* kFlagNo = "2";
inline constexpr const char* kOmittedMac = "00.00.00.00.00.00";  // a rule MAC not given

// Display words: "Ethernet", "IPv4", "IPv6", "Packet Content"; owners "ACL" / "CPU ACL".
const char* TypeWord(AclType type);
const char* OwnerWord(AclOwner owner);
// The rule actions by code (1 deny, 2 permit, 3 mirror; the CPU ACL does not mirror), in
// every form the system names them. The drop-down word to the code: "Permit" 2, "Mirror" 3
// (the CPU ACL: 1), anything else 1.
std::string ActionCode(std::string_view dropDownWord, AclOwner owner);
// The drop-down word a code selects: "Permit", "Mirror", "Deny" for any other code.
const char* ActionWord(std::string_view code);
// The action as the detail views show it: "Permit" for 2, "mirror" for 3, "deny" else.
const char* ActionDetailWord(std::string_view code);
// The action in the confirmation lists: "permit", "miror", "deny", other text as is.
std::string ActionStagingWord(std::string_view code);
// The command line's names: "deny", "permit", "mirror", other text as is; and back, the
// code of a name the owner takes (empty for any other name).
std::string ActionCommandName(std::string_view code);
std::string ActionCodeOfCommandName(std::string_view name, AclOwner owner);

// Appends unless the profile ID is already in the list. Returns whether the record was
// appended; an existing key leaves the list unchanged.
bool AddProfile(AclRecordList& list, AclRecord record);
// Whether a rule with the record's profile ID and Access ID is in the list.
bool RulePending(const AclRecordList& list, const AclRecord& record);

// Text checks. Inputs longer than a field can hold are refused (the dialogs' buffers are
// fixed); every check refuses texts longer than kMaxFieldText before looking further.
inline constexpr size_t kMaxFieldText = 96;
bool ValidateMac(std::string_view text);        // trim, upper-case, exactly 12 of 0-9 A-F
bool ValidateHex(std::string_view text);        // trim, upper-case, every char 0-9 A-F ("" passes)
bool ValidateDigits(std::string_view text);     // trim, upper-case, every char 0-9
bool ValidatePortList(std::string_view text, int portCount);  // each number <= portCount
// Trimmed (blanks at both ends) and upper-cased, as the MAC rule stores it.
std::string NormalizeMac(std::string_view text);
// Blanks (space, tab) removed at both ends.
std::string_view TrimBlanks(std::string_view text);

// Checks of the definition pages' fields beyond the MAC check: a mask of a fixed width must have exactly that many hex digits (blanks at the
// ends ignored, any case), since a shorter one would be sent padded with bytes nobody typed;
// a chunk offset is a decimal number 0 to 31 (its label's range).
bool ValidateHexWidth(std::string_view text, size_t digits);
bool ValidateChunkOffset(std::string_view text);
// A numeric hex mask (a port or user-defined mask) padded with leading zeros to its width, so
// "FF" means 0x00FF and not the bytes FF 00 (the encoder takes bytes from the first digit).
std::string PadHex(std::string_view text, size_t width);

// The fields of a rule dialog as texts, plus the check boxes that decide cells.
struct RuleFields {
  std::string profileId, accessId;
  std::string action = "2";        // code text: 1 deny, 2 permit, 3 mirror
  std::string ports;               // port list
  std::string rxRate;
  bool priorityChecked = false;
  std::string priority;
  bool replaceDscpChecked = false;
  std::string replaceDscp;
  bool replaceTosChecked = false;
  std::string replaceTos;
  // Ethernet
  std::string vlan, srcMac, dstMac, p8021, ethertype;
  // IPv4 (protocol: the chosen profile's "UseProtoType" code 1..6)
  std::string srcIp, dstIp, dscp, protocol;
  std::string value1, value2;      // first and second protocol field (type/code, ports, ID/mask)
  std::string flagBits;            // TCP flag bits, decimal
  // IPv6
  std::string ipv6Class, flowLabel, srcIpv6, dstIpv6;
  // Packet content: Block16 blocks (data), OffsetItems items (offset, data), Chunks4 chunks
  // (offset, data); an item not checked is left empty.
  struct Item {
    bool checked = false;
    std::string offset, data;
  };
  std::array<Item, 5> items{};
};

// `ValidateRule`: the checks of the rule type in their order, then the checks made
// before a record is added (empty Access ID / ports). Returns the first failing message.
AclCheck ValidateRule(AclType ruleType, AclOwner owner, const ModelEntry& model,
                      const RuleFields& fields);
// Its two halves: the value checks, and the checks made just before a record is added (the
// rule dialogs skip a rule already pending between the two, without a word).
AclCheck ValidateRuleValues(AclType ruleType, AclOwner owner, const ModelEntry& model,
                            const RuleFields& fields);
AclCheck CheckRuleComplete(AclType ruleType, const RuleFields& fields);

// Builds the rule record in its cell order for the model and owner, as the rule dialogs do: MACs upper-cased and trimmed, an empty MAC stored as kOmittedMac,
// priority flags "1"/"2", row status "4".
AclRecord BuildRule(AclType ruleType, AclOwner owner, const ModelEntry& model,
                    const RuleFields& fields);

// The fields of a profile definition page.
struct ProfileFields {
  std::string profileId, profileName;
  // Ethernet
  bool vlan = false, p8021 = false, ethernetType = false;
  bool srcMacChecked = false, dstMacChecked = false;
  std::string srcMac, dstMac;
  // IPv4
  bool dscp = false;
  bool srcIpChecked = false, dstIpChecked = false;
  std::string srcIp = "0.0.0.0", dstIp = "0.0.0.0";
  int protocolGroup = 0;          // m_nFrameOption: 3 ICMP, 4 IGMP, 5 TCP, 6 UDP, 7 protocol ID
  bool protocolChecked = false;   // the group's own check box ("ICMP", "IGMP", "TCP", "UDP",
                                  // "Protocol ID Mask(0-255)")
  bool typeChecked = false, codeChecked = false;  // ICMP type / code, IGMP type
  std::string srcPortMask, dstPortMask;           // TCP/UDP, 4 hex digits, empty = unchecked
  bool flagBitsChecked = false;
  int flagValue = 0;                              // URG 32, ACK 16, PSH 8, RST 4, SYN 2, FIN 1
  std::string protocolId;
  bool userMaskChecked = false;
  std::string userMask;                           // 8 (or 40 on TVR4510/TVR4820) hex digits
  // IPv6
  bool ipv6Class = false, flowLabel = false;
  bool srcIpv6Checked = false, dstIpv6Checked = false;
  std::string srcIpv6Mask, dstIpv6Mask;
  // Packet content: Block16 masks (32 hex digits each) or Chunks4 chunks (offset, mask).
  struct Item {
    bool checked = false;
    std::string offset, mask;
  };
  std::array<Item, 5> items{};
};

// kInvalidMac when a checked MAC mask is not 12 hex digits.
AclCheck ValidateProfile(AclType type, const ProfileFields& fields);

// Builds the profile record in its cell order, as the definition pages do.
// The owner cell holds the owner code ("1" / "2"), except on TVR4512 with the ordinary ACL,
// whose writer sends that cell to the profile-name column, so it holds the name.
AclRecord BuildProfile(AclType type, AclOwner owner, const ModelEntry& model,
                       const ProfileFields& fields);

// The progress position after record r (1-based within its list) of target d
// (1-based) with t records in all and n targets: (r * d * 100 / t) / n, integer arithmetic.
// 0 when t or n is 0.
int ApplyProgress(long long r, long long d, long long t, long long n);
