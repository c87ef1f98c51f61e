// The catalogue of switch models. One static table (the models' limits, tables and closing requests as
// data) and one lookup; no other code compares device-type texts.
#pragma once

#include <optional>
#include <string_view>

enum class AclOwner { kAcl = 1, kCpu = 2 };  // ordinary ACL (owner 1), CPU ACL (owner 2)
enum class AclType { kEthernet = 0, kIPv4 = 1, kIPv6 = 2, kPacketContent = 3 };
enum class AclKind { kProfiles = 0, kRules = 1 };
enum class MibLayout { kNone, kLayout1, kLayout2 };
enum class PacketShape { kNone, kBlock16, kOffsetItems, kChunks4 };

// Bit of an AclType in a type set.
constexpr unsigned AclTypeBit(AclType t) { return 1u << static_cast<unsigned>(t); }

struct AccessIdRange {
  const char* label;  // exactly as shown next to the Access ID field, e.g. "Access ID(1-200)"
  long min;
  long max;
};

struct RxRateRange {
  const char* label;               // Ethernet, IPv4 and IPv6 rule dialogs
  const char* packetContentLabel;  // Packet Content rule dialog; nullptr: no Rx Rate there
  long min;
  long max;
  bool zeroAllowed;                // 0 accepted besides min..max (TVR4060)
};

struct ClosingRequest {
  const char* oid;  // "1.3.6.1.4.1.32473.12.1.2.6.0" or "1.3.6.1.4.1.32473.12.1.2.18.4.0"
  int value;        // sent as INTEGER
};

struct ModelEntry {
  const char* typeText;
  bool supported;
  MibLayout mibLayout;
  int portCount;
  unsigned ruleTypes[2];     // [owner - 1]: AclTypeBit set
  unsigned profileTypes[2];  // [owner - 1]
  PacketShape ruleShape;     // ordinary ACL packet-content rules (table 1)
  PacketShape profileShape;  // ordinary ACL packet-content profiles (table 2)
  // [owner - 1][AclType]; label nullptr: no such dialog row.
  AccessIdRange accessIds[2][4];
  RxRateRange rx;            // label nullptr: the model has no Rx Rate
  ClosingRequest closing[2][2];  // [owner - 1][AclKind]

  // Queries. An unsupported entry answers nothing (no range, no type, kNone).
  std::optional<AccessIdRange> accessIdRange(AclOwner owner, AclType ruleType) const;
  std::optional<RxRateRange> rxRange() const;  // ordinary ACL only; the CPU ACL has none
  bool offersRuleType(AclOwner owner, AclType type) const;
  bool offersProfileType(AclOwner owner, AclType type) const;
  // The packet-content layout for the owner's rules (the CPU ACL always uses kBlock16).
  PacketShape packetShape(AclOwner owner) const;
  PacketShape packetShape(AclOwner owner, AclKind kind) const;
  std::optional<ClosingRequest> closingRequest(AclOwner owner, AclKind kind) const;
};

// Exact, case-sensitive, whole-text comparison with every typeText (no trimming, no prefix).
// Returns the entry (supported or not), or nullptr for an unknown text.
const ModelEntry* LookupModel(std::string_view typeText);
// The entry only when it is known and supported; nullptr otherwise.
const ModelEntry* LookupSupportedModel(std::string_view typeText);

// All catalogue entries, for tests and tools.
const ModelEntry* CatalogueBegin();
const ModelEntry* CatalogueEnd();

// The decimal conversion of the range checks: leading blanks and one sign are skipped, then
// digits are read up to the first non-digit ("12ab" is 12, "ab" is 0); saturates at the long
// range.
long ParseLeadingDecimal(std::string_view text);

enum class RangeCheck { kEmpty, kInRange, kOutOfRange };
// Range rule: an empty field is not checked (kEmpty; the caller decides); otherwise the
// converted value must satisfy min <= value <= max, or be 0 when zeroAllowed.
RangeCheck CheckRange(std::string_view text, long min, long max, bool zeroAllowed = false);
// The same with the model's ranges; kOutOfRange when the model has no such range.
RangeCheck CheckAccessId(const ModelEntry& model, AclOwner owner, AclType ruleType,
                         std::string_view text);
RangeCheck CheckRxRate(const ModelEntry& model, std::string_view text);
