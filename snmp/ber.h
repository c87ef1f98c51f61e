// BER codec for SNMPv1 messages (RFC 1157, X.690). Pure functions apart from nothing: no I/O,
// no allocation beyond the output containers, so it is unit-tested with byte tables and fuzzed.
//
// Decoding is strict where leniency has broken other decoders: lengths must fit the buffer,
// indefinite lengths and long forms of more than 4 length bytes are refused, tags are single
// bytes, INTEGERs are 1..8 content bytes, OID sub-identifiers must fit 32 bits and may not end
// with the continuation bit, an OID has at most kMaxOidArcs arcs, and nothing may follow the
// message. The SNMP structure is fixed, so the decoder never recurses into constructed values.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace snmp {

// Universal, application and context tags used by SNMPv1.
enum Tag : uint8_t {
  kTagInteger = 0x02,
  kTagOctetString = 0x04,
  kTagNull = 0x05,
  kTagOid = 0x06,
  kTagSequence = 0x30,
  kTagIpAddress = 0x40,
  kTagCounter = 0x41,
  kTagGauge = 0x42,
  kTagTimeTicks = 0x43,
  kTagOpaque = 0x44,
  kTagCounter64 = 0x46,  // SNMPv2 only; decoded so a stray one renders as text
  kTagGetRequest = 0xA0,
  kTagGetNextRequest = 0xA1,
  kTagGetResponse = 0xA2,
  kTagSetRequest = 0xA3,
};

// SNMPv1 error-status values (RFC 1157 section 4.1.1).
enum ErrorStatus : int32_t {
  kNoError = 0,
  kTooBig = 1,
  kNoSuchName = 2,
  kBadValue = 3,
  kReadOnly = 4,
  kGenErr = 5,
};

constexpr size_t kMaxOidArcs = 128;        // RFC 2578 section 3.5: at most 128 sub-identifiers
constexpr size_t kMaxMessageSize = 65507;  // the largest UDP payload over IPv4

using Oid = std::vector<uint32_t>;

// Dotted text ("1.3.6.1" or ".1.3.6.1") to arcs. Refuses empty arcs, non-digits, arcs above
// 2^32-1, fewer than 2 or more than kMaxOidArcs arcs, and first arcs that BER cannot encode.
bool ParseOid(std::string_view text, Oid& out);
// Arcs to dotted text without a leading dot.
std::string FormatOid(const Oid& oid);
// True when `oid` lies strictly below `prefix` (longer and starting with it).
bool OidIsUnder(const Oid& oid, const Oid& prefix);
// Lexicographic order of OIDs (what GetNext follows): <0, 0, >0.
int CompareOids(const Oid& a, const Oid& b);

struct Value {
  uint8_t tag = kTagNull;
  int64_t integer = 0;    // INTEGER (signed); Counter, Gauge, TimeTicks (unsigned 32-bit)
  uint64_t counter64 = 0; // Counter64
  std::string bytes;      // OCTET STRING, Opaque, IpAddress (4 bytes)
  Oid oid;                // OBJECT IDENTIFIER values
  bool undecoded = false; // `bytes` hold the content as received: a number too long for its
                          // type, or a type SNMPv1 does not define (rendered like Opaque)

  static Value Null() { return Value{}; }
  static Value Integer(int64_t v) { Value x; x.tag = kTagInteger; x.integer = v; return x; }
  static Value Unsigned(uint8_t tag, uint32_t v) { Value x; x.tag = tag; x.integer = v; return x; }
  static Value OctetString(std::string b) { Value x; x.tag = kTagOctetString; x.bytes = std::move(b); return x; }
  static Value IpAddress(uint32_t hostOrder);
  static Value ObjectId(Oid o) { Value x; x.tag = kTagOid; x.oid = std::move(o); return x; }
  bool operator==(const Value&) const = default;
};

struct VarBind {
  Oid name;
  Value value;
  bool operator==(const VarBind&) const = default;
};

struct Pdu {
  uint8_t type = kTagGetResponse;
  int32_t requestId = 0;
  int32_t errorStatus = 0;
  int32_t errorIndex = 0;
  std::vector<VarBind> varbinds;
};

struct Message {
  int32_t version = 0;  // 0 = SNMPv1
  std::string community;
  Pdu pdu;
};

// Appends the encoding of `msg` to `out`. Fails (false, `out` unchanged) on a value that
// cannot be encoded: an OID of fewer than 2 arcs or a bad first arc, an IpAddress not of 4
// bytes, an unknown tag, or a result larger than kMaxMessageSize.
bool EncodeMessage(const Message& msg, std::string& out);

enum class DecodeError {
  kOk = 0,
  kTruncated,       // a length runs past its enclosing element or the buffer
  kBadLength,       // indefinite, reserved, or long form of more than 4 bytes
  kBadTag,          // unexpected or multi-byte tag
  kBadInteger,      // empty, too long, or out of range for its field
  kBadOid,          // empty, overflowing arc, dangling continuation bit, too many arcs
  kBadValue,        // NULL with content, IpAddress not of 4 bytes, unsigned out of range
  kTrailingBytes,   // something after the last element of a SEQUENCE or of the message
};

// Decodes one complete SNMP message (v1 layout; the version number is reported, not checked).
DecodeError DecodeMessage(const uint8_t* data, size_t size, Message& out);
inline DecodeError DecodeMessage(std::string_view bytes, Message& out) {
  return DecodeMessage(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size(), out);
}
const char* DecodeErrorText(DecodeError e);

// How values are handed to callers: INTEGER and the unsigned types as decimal text, IpAddress as
// dotted text, OCTET STRING as its raw octets, OID as dotted text, NULL as "", Opaque as
// upper-case hex pairs joined by blanks (so is an undecoded value).
std::string RenderValue(const Value& v);
// A short type name ("INTEGER", "OCTET STRING", "IpAddress", ...).
const char* TypeName(uint8_t tag);

}  // namespace snmp
