// The wire contract between the ACL records and the switch's private ACL MIB: per
// model, owner and table kind the ordered column list (as data), the instance naming, and the
// encoding of each cell kind in both directions (port bitmap included). Portable.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "acl/acl_record.h"
#include "snmp/model_catalogue.h"
#include "snmp/snmp_ops.h"

inline constexpr const char* kAclMibPrefix = "1.3.6.1.4.1.32473.12.9";

// How a cell travels, in both directions.
enum class CellKind {
  kIndex,         // profile ID / Access ID: only in the instance, never sent; walked
  kInteger,       // INTEGER from decimal text, sent only when not empty
  kFlag,          // profile flag, state or option: INTEGER, always sent (the pages always fill
                  // it; a row created without it would keep the switch's own default)
  kAlways,        // action: INTEGER, always sent
  kRowStatus,     // row status: INTEGER "4", always sent
  kText,          // VLAN name: OCTET STRING text, only when not empty
  kMac,           // 6 bytes, always (empty or omitted "00.00.00.00.00.00" -> six zero bytes)
  kEthertype,     // 2 bytes from the first four hex digits, only when not empty
  kIpRule,        // IpAddress, only when not empty and not "0.0.0.0"
  kIpMask,        // IpAddress, always (empty -> "0.0.0.0")
  kHex2Always,    // TCP/UDP port masks: 2 bytes, always
  kHex4,          // 4 bytes (user mask, flow label, chunk mask/content), only when not empty
  kProtoMask,     // IPv4 profile protocol ID mask: 4 bytes (20 on TVR4510/TVR4820), always;
                  // read back with a trailing blank, as the detail view shows it
  kHex16,         // 16 bytes (IPv6 rule address, Block16 block), only when not empty
  kHex16Always,   // 16 bytes (IPv6 profile masks), always
  kHexData,       // OffsetItems data: as many bytes as the hex text holds, only when not empty
  kPorts,         // port bitmap of the model's length, always
  kOwner,         // owner (walked, read-only) or, where the model has a profile-name column,
                  // the profile name (text, only when not empty)
  kReadOnly,      // filled only when read from a device; never sent
};

// One ACL table of a model: the entry OID and, per record cell, its column (0 = none: the cell
// is neither sent nor walked) and kind, and whether the writer leaves it out although the
// list names a column (the model's writer never sends it).
struct AclTableLayout {
  AclRecordKind record;
  std::string entryOid;           // e.g. "1.3.6.1.4.1.32473.12.9.3.1.1"
  std::vector<unsigned> columns;  // one per cell, 0 = "-"
  std::vector<CellKind> kinds;    // one per cell
  std::vector<bool> leftOut;      // one per cell
  int rowStatusCell = -1;

  std::string columnOid(size_t cell) const;  // "" when the cell has no column
};

// The table of the model for owner, kind and type, or nullopt when the model does not offer it
// or is unsupported. Built from the column lists as data.
std::optional<AclTableLayout> TableLayout(const ModelEntry& model, AclOwner owner, AclKind kind,
                                          AclType type);

// `ColumnList`: the ordered column OID texts, one per record cell, "" for a cell that
// is never sent for that model. Empty when the model has no such table.
std::vector<std::string> ColumnList(const ModelEntry& model, AclOwner owner, AclKind kind,
                                    AclType type);

// `InstanceOid`: column OID + "." + profile ID (+ "." + Access ID for rules).
std::string InstanceOid(std::string_view columnOid, std::string_view profileId,
                        std::string_view accessId = {});
// Whether a text may name an instance part: 1 to 10 decimal digits (bad input never becomes an
// OID).
bool IsIndexText(std::string_view text);

// An encoded cell: the SNMP type code (kSnmpInteger, ...) and the value (text, or raw bytes).
struct EncodedCell {
  int type = kSnmpInteger;
  std::string value;
  bool raw = false;
  bool operator==(const EncodedCell&) const = default;
};

// `EncodeCell`: nullopt when the cell is not sent (empty optional cell, index,
// read-only). The model gives the port bitmap length and the protocol-mask length.
std::optional<EncodedCell> EncodeCell(CellKind kind, const ModelEntry& model, std::string_view text);
// `DecodeCell`: the record text of a walked value (`tag` is its BER tag, `value`
// its exact bytes or rendered text as SnmpWalk gives it).
std::string DecodeCell(CellKind kind, const ModelEntry& model, const SnmpRowBinding& value);

// Hex text to exactly `length` bytes, two characters at a time from the start, first the high
// nibble. Blanks around the text are ignored; a non-hex character counts as 0 and a
// short text is padded with zero bytes, so any text gives a value of the stated length.
std::string HexToBytes(std::string_view hex, size_t length);
// Upper-case hex, "%02X" per byte.
std::string BytesToHex(std::string_view bytes);

// Port bitmap length in bytes on a model: 4, 8 (TVR4512) or 96 (TVG5470, TVG5690).
size_t PortBitmapBytes(const ModelEntry& model);
// Port list to bitmap: at most 200 listed ports; port 1 is the top bit of byte 0.
std::string PortListToBitmap(std::string_view list, const ModelEntry& model);
// Bitmap back to a port list: "%d," per set bit, port 1 first.
std::string BitmapToPortList(std::string_view bitmap);
// The rule detail view: the hex digits of a bitmap back into a port list (same form).
std::string PortListFromHex(std::string_view hex);
