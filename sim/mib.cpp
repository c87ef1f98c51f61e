#include "sim/mib.h"

#include <cstdio>
#include <cstdlib>
#include <map>

namespace sim {

const ColumnDef* TableDef::column(uint32_t number) const {
  for (const ColumnDef& c : columns)
    if (c.number == number) return &c;
  return nullptr;
}

const ColumnDef* TableDef::rowStatusColumn() const {
  for (const ColumnDef& c : columns)
    if (c.rowStatus) return &c;
  return nullptr;
}

snmp::Oid OidOf(std::string_view text) {
  snmp::Oid o;
  if (!snmp::ParseOid(text, o)) {
    std::fprintf(stderr, "sim: bad OID literal %.*s\n", static_cast<int>(text.size()), text.data());
    std::abort();
  }
  return o;
}

ColumnDef IndexColumn(uint32_t number, std::string name, int part) {
  ColumnDef c;
  c.number = number;
  c.name = std::move(name);
  c.access = Access::kReadOnly;
  c.indexPart = part;
  return c;
}

ColumnDef IntColumn(uint32_t number, std::string name, int64_t min, int64_t max) {
  ColumnDef c;
  c.number = number;
  c.name = std::move(name);
  c.minValue = min;
  c.maxValue = max;
  return c;
}

ColumnDef BytesColumn(uint32_t number, std::string name, size_t length) {
  ColumnDef c;
  c.number = number;
  c.name = std::move(name);
  c.type = snmp::kTagOctetString;
  c.minLength = c.maxLength = length;
  c.hasDefault = true;
  c.defaultValue = snmp::Value::OctetString(std::string(length, '\0'));
  return c;
}

ColumnDef TextColumn(uint32_t number, std::string name, size_t maxLength) {
  ColumnDef c;
  c.number = number;
  c.name = std::move(name);
  c.type = snmp::kTagOctetString;
  c.maxLength = maxLength;
  return c;
}

ColumnDef IpColumn(uint32_t number, std::string name) {
  ColumnDef c;
  c.number = number;
  c.name = std::move(name);
  c.type = snmp::kTagIpAddress;
  c.minLength = c.maxLength = 4;
  c.hasDefault = true;
  c.defaultValue = snmp::Value::IpAddress(0);
  return c;
}

ColumnDef RowStatusColumn(uint32_t number, std::string name) {
  ColumnDef c = IntColumn(number, std::move(name), 1, 6);
  c.rowStatus = true;
  return c;
}

ColumnDef ReadOnlyIntColumn(uint32_t number, std::string name, int64_t value) {
  ColumnDef c = IntColumn(number, std::move(name));
  c.access = Access::kReadOnly;
  c.hasDefault = true;
  c.defaultValue = snmp::Value::Integer(value);
  return c;
}

ColumnDef ReadOnlyTextColumn(uint32_t number, std::string name, std::string value) {
  ColumnDef c = TextColumn(number, std::move(name), 255);
  c.access = Access::kReadOnly;
  c.hasDefault = true;
  c.defaultValue = snmp::Value::OctetString(std::move(value));
  return c;
}

ColumnDef WithDefault(ColumnDef c, snmp::Value v) {
  c.hasDefault = true;
  c.defaultValue = std::move(v);
  return c;
}

namespace {

constexpr const char* kAcl = "1.3.6.1.4.1.32473.12.9";
constexpr const char* kClose6 = "1.3.6.1.4.1.32473.12.1.2.6.0";
constexpr const char* kClose18 = "1.3.6.1.4.1.32473.12.1.2.18.4.0";

std::string Under(const char* suffix) { return std::string(kAcl) + "." + suffix; }

// Part 2.2 table 5: the closing-request scalar of the model; INTEGER, writable.
ScalarDef Closing(const char* oid) {
  ScalarDef s;
  s.name = "ClosingRequest";
  s.oid = OidOf(oid);
  s.access = Access::kReadWrite;
  s.initial = snmp::Value::Integer(0);
  return s;
}

// Ethernet profile table (Part 4.2, as TVG5240-10 names it). Layout1 models stop at column 8.
TableDef EthernetProfile(const char* entry, bool layout1, bool withName, int64_t owner) {
  TableDef t;
  t.name = owner == 2 ? "CpuEthernetProfile" : "EthernetProfile";
  t.entry = OidOf(Under(entry));
  t.index = {IndexPart{1, 65535}};
  t.columns = {IndexColumn(1, "ProfileID", 0),
               WithDefault(IntColumn(2, "UseVLAN"), snmp::Value::Integer(2)),
               WithDefault(IntColumn(3, "MacAddrMaskState"), snmp::Value::Integer(1)),
               BytesColumn(4, "SrcMacAddrMask", 6),
               BytesColumn(5, "DstMacAddrMask", 6),
               WithDefault(IntColumn(6, "Use802.1P"), snmp::Value::Integer(2)),
               WithDefault(IntColumn(7, "EthernetType"), snmp::Value::Integer(2)),
               RowStatusColumn(8, "EthernetRowStatus")};
  if (!layout1 && owner == 1) {
    t.columns.push_back(ReadOnlyIntColumn(9, "EthernetOwner", owner));
    t.columns.push_back(ReadOnlyIntColumn(10, "EthernetUnusedRuleEntries", 128));
    if (withName) t.columns.push_back(WithDefault(TextColumn(11, "ProfileName", 32), snmp::Value::OctetString("")));
  }
  return t;
}

// Ethernet rule table (Part 4.2): index ProfileID.AccessID; the port bitmap's length is the
// model's (4, 8 or 96 bytes). `rowStatus` and `rxRate` name the columns that carry them.
TableDef EthernetRule(const char* entry, size_t portBytes, uint32_t rowStatus, uint32_t rxRate,
                      bool withRx, bool withTos) {
  TableDef t;
  t.name = "EthernetRule";
  t.entry = OidOf(Under(entry));
  t.index = {IndexPart{1, 65535}, IndexPart{0, 65535}};
  t.columns = {IndexColumn(1, "ProfileID", 0),
               IndexColumn(2, "AccessID", 1),
               WithDefault(TextColumn(3, "VLAN", 32), snmp::Value::OctetString("")),
               BytesColumn(4, "SrcMac", 6),
               BytesColumn(5, "DstMac", 6),
               WithDefault(IntColumn(6, "802.1p"), snmp::Value::Integer(0)),
               WithDefault(BytesColumn(7, "Ethertype", 2), snmp::Value::OctetString(std::string(2, '\0'))),
               WithDefault(IntColumn(8, "PriorityFlag"), snmp::Value::Integer(2)),
               WithDefault(IntColumn(9, "Priority"), snmp::Value::Integer(0)),
               WithDefault(IntColumn(10, "ReplaceDSCP"), snmp::Value::Integer(0)),
               WithDefault(IntColumn(13, "Action", 1, 3), snmp::Value::Integer(2)),
               BytesColumn(14, "Ports", portBytes)};
  std::map<uint32_t, ColumnDef> extra;
  extra[rowStatus] = RowStatusColumn(rowStatus, "RowStatus");
  if (withTos) extra[16] = WithDefault(IntColumn(16, "ToSPrecedence"), snmp::Value::Integer(0));
  if (withRx) extra[rxRate] = WithDefault(IntColumn(rxRate, "RxRate"), snmp::Value::Integer(0));
  for (auto& [n, c] : extra) t.columns.push_back(c);
  return t;
}

TableDef CpuEthernetRule(size_t portBytes, bool swapped) {
  TableDef t;
  t.name = "CpuEthernetRule";
  t.entry = OidOf(Under("5.1.1"));
  t.index = {IndexPart{1, 65535}, IndexPart{0, 65535}};
  t.columns = {IndexColumn(1, "ProfileID", 0),
               IndexColumn(2, "AccessID", 1),
               WithDefault(TextColumn(3, "VLAN", 32), snmp::Value::OctetString("")),
               BytesColumn(4, "SrcMac", 6),
               BytesColumn(5, "DstMac", 6),
               WithDefault(IntColumn(6, "802.1p"), snmp::Value::Integer(0)),
               WithDefault(BytesColumn(7, "Ethertype", 2), snmp::Value::OctetString(std::string(2, '\0'))),
               WithDefault(IntColumn(8, "Action", 1, 3), snmp::Value::Integer(2))};
  // Part 4.2: on TVG5470/TVG5690 the row status sits in column 10 and the ports in column 9.
  if (swapped) {
    t.columns.push_back(BytesColumn(9, "Ports", portBytes));
    t.columns.push_back(RowStatusColumn(10, "RowStatus"));
  } else {
    t.columns.push_back(RowStatusColumn(9, "RowStatus"));
    t.columns.push_back(BytesColumn(10, "Ports", portBytes));
  }
  return t;
}

MibDef Layout2(const char* closing, size_t portBytes, bool tvgPair, bool withName, bool withRx) {
  MibDef m;
  m.scalars = {Closing(closing)};
  m.tables = {EthernetProfile("2.1.1", false, withName, 1),
              tvgPair ? EthernetRule("3.1.1", portBytes, 16, 15, true, false)
                      : EthernetRule("3.1.1", portBytes, 15, 17, withRx, true),
              EthernetProfile("4.1.1", false, false, 2),
              CpuEthernetRule(portBytes, tvgPair)};
  return m;
}

const std::map<std::string, MibDef, std::less<>>& Mibs() {
  static const std::map<std::string, MibDef, std::less<>> mibs = [] {
    std::map<std::string, MibDef, std::less<>> m;
    m["TVG5240-10"] = Layout2(kClose6, 4, false, false, true);
    m["TVG5470"] = Layout2(kClose6, 96, true, false, true);
    m["TVG5690"] = Layout2(kClose18, 96, true, false, true);
    m["TVR4060"] = Layout2(kClose6, 4, false, false, true);
    m["TVR4820"] = Layout2(kClose6, 4, false, false, false);
    m["TVR4512"] = Layout2(kClose6, 8, false, true, true);
    MibDef l1;  // TVR4510: profiles under .1, rules under .2 (Part 2.2)
    l1.scalars = {Closing(kClose6)};
    l1.tables = {EthernetProfile("1.1.1", true, false, 1),
                 EthernetRule("2.1.1", 4, 15, 17, false, false),
                 EthernetProfile("4.1.1", false, false, 2),
                 CpuEthernetRule(4, false)};
    m["TVR4510"] = l1;
    m["replay"] = MibDef{};  // no definitions: a read-only device loaded from a walk dump
    return m;
  }();
  return mibs;
}

}  // namespace

const MibDef* ModelMib(std::string_view model) {
  auto it = Mibs().find(model);
  return it == Mibs().end() ? nullptr : &it->second;
}

std::vector<std::string> ModelNames() {
  std::vector<std::string> v;
  for (auto& [name, def] : Mibs()) v.push_back(name);
  return v;
}

}  // namespace sim
