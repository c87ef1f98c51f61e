// The simulator's MIB definitions as data: scalars and tables (column OIDs, value types,
// access, index parts), one set per switch model, every ACL table included; everything else in the simulator works from these definitions.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "snmp/ber.h"

namespace sim {

enum class Access { kReadOnly, kReadWrite, kReadCreate };

struct ColumnDef {
  uint32_t number = 0;
  std::string name;
  uint8_t type = snmp::kTagInteger;  // kTagInteger, kTagOctetString, kTagIpAddress, ...
  Access access = Access::kReadCreate;
  int64_t minValue = INT32_MIN;      // INTEGER range
  int64_t maxValue = INT32_MAX;
  size_t minLength = 0;              // OCTET STRING length range (fixed when equal)
  size_t maxLength = 255;
  bool rowStatus = false;            // RowStatus (SNMPv2-TC) column
  int indexPart = -1;                // >= 0: this column shows index part n (read-only)
  bool hasDefault = false;           // value given to a new row that does not set it
  bool required = false;             // a creating request must carry it: the row's state is
                                     // otherwise the switch's default, not what the user chose
  snmp::Value defaultValue;
};

struct IndexPart {
  uint32_t min = 1;
  uint32_t max = 0xFFFFFFFFu;
};

struct TableDef {
  std::string name;
  snmp::Oid entry;                  // the table's entry OID; instances are entry.column.index
  std::vector<IndexPart> index;     // one entry per index sub-identifier
  std::vector<ColumnDef> columns;   // in column-number order

  const ColumnDef* column(uint32_t number) const;
  const ColumnDef* rowStatusColumn() const;
};

struct ScalarDef {
  std::string name;
  snmp::Oid oid;                    // the instance OID (ending in .0)
  Access access = Access::kReadWrite;
  snmp::Value initial;
  int64_t minValue = INT32_MIN;
  int64_t maxValue = INT32_MAX;
};

struct MibDef {
  std::vector<ScalarDef> scalars;
  std::vector<TableDef> tables;
};

// Builders that keep the definitions short.
ColumnDef IndexColumn(uint32_t number, std::string name, int part);
ColumnDef IntColumn(uint32_t number, std::string name, int64_t min = INT32_MIN, int64_t max = INT32_MAX);
ColumnDef BytesColumn(uint32_t number, std::string name, size_t length);  // fixed length
ColumnDef TextColumn(uint32_t number, std::string name, size_t maxLength);
ColumnDef IpColumn(uint32_t number, std::string name);
ColumnDef RowStatusColumn(uint32_t number, std::string name);
ColumnDef ReadOnlyIntColumn(uint32_t number, std::string name, int64_t value);
ColumnDef ReadOnlyTextColumn(uint32_t number, std::string name, std::string value);
// Gives a read-create column a default for rows created without it.
ColumnDef WithDefault(ColumnDef c, snmp::Value v);
snmp::Oid OidOf(std::string_view text);  // aborts on a bad literal (definitions are code)

// The MIB of a model of the catalogue, or nullptr for texts without one.
const MibDef* ModelMib(std::string_view model);
// The model names that have a MIB.
std::vector<std::string> ModelNames();

}  // namespace sim
