#include "sim/switch.h"

#include <cctype>
#include <cstdio>

#include "sim/walk_dump.h"
#include "snmp/udp_transport.h"

namespace sim {

namespace {

// A zero value of the column's type, for new rows that do not set the column.
snmp::Value ZeroOf(const ColumnDef& c) {
  if (c.hasDefault) return c.defaultValue;
  switch (c.type) {
    case snmp::kTagOctetString: return snmp::Value::OctetString(std::string(c.minLength, '\0'));
    case snmp::kTagIpAddress: return snmp::Value::IpAddress(0);
    default: return snmp::Value::Integer(c.minValue > 0 ? c.minValue : 0);
  }
}

// SNMPv1 has no wrongType/wrongLength/wrongValue: all become badValue (RFC 2576 section 4.3).
bool ValueFits(uint8_t type, int64_t minValue, int64_t maxValue, size_t minLen, size_t maxLen,
               const snmp::Value& v) {
  if (v.tag != type || v.undecoded) return false;
  switch (type) {
    case snmp::kTagInteger: return v.integer >= minValue && v.integer <= maxValue;
    case snmp::kTagOctetString: return v.bytes.size() >= minLen && v.bytes.size() <= maxLen;
    case snmp::kTagIpAddress: return v.bytes.size() == 4;
    default: return true;
  }
}

}  // namespace

std::optional<Switch> Switch::Create(const SwitchConfig& config, std::string& error) {
  const MibDef* mib = ModelMib(config.model);
  if (mib == nullptr) {
    error = "unknown model '" + config.model + "' (known: ";
    for (const std::string& n : ModelNames()) error += n + " ";
    error += ")";
    return std::nullopt;
  }
  snmp::Endpoint e;
  if (!snmp::ParseEndpoint(config.address, 0, e) || config.address.find(':') != std::string::npos) {
    error = "bad address '" + config.address + "'";
    return std::nullopt;
  }
  Switch s(config, mib);
  for (const ScalarDef& d : mib->scalars) s.store_[d.oid] = d.initial;
  for (const std::string& file : config.dumpFiles) {
    std::vector<snmp::VarBind> binds;
    if (!LoadWalkDumpFile(file, binds, error)) return std::nullopt;
    for (snmp::VarBind& vb : binds) {
      Target t;
      if (!s.Locate(vb.name, t)) s.readOnly_.insert(vb.name);
      s.store_[vb.name] = std::move(vb.value);
    }
  }
  return s;
}

snmp::Oid Switch::Instance(const TableDef& t, uint32_t column, const snmp::Oid& index) {
  snmp::Oid o = t.entry;
  o.push_back(column);
  o.insert(o.end(), index.begin(), index.end());
  return o;
}

bool Switch::Locate(const snmp::Oid& oid, Target& t) const {
  for (const ScalarDef& s : mib_->scalars) {
    if (s.oid == oid) {
      t.scalar = &s;
      return true;
    }
  }
  for (const TableDef& table : mib_->tables) {
    size_t n = table.entry.size();
    if (oid.size() <= n + 1 || !snmp::OidIsUnder(oid, table.entry)) continue;
    const ColumnDef* c = table.column(oid[n]);
    if (c == nullptr) return false;
    // The index must have exactly the table's parts, each in its range.
    if (oid.size() - n - 1 != table.index.size()) return false;
    for (size_t i = 0; i < table.index.size(); ++i) {
      uint32_t part = oid[n + 1 + i];
      if (part < table.index[i].min || part > table.index[i].max) return false;
    }
    t.table = &table;
    t.column = c;
    t.index.assign(oid.begin() + static_cast<long>(n + 1), oid.end());
    return true;
  }
  return false;
}

snmp::Oid Switch::RowKey(const TableDef& t, const snmp::Oid& index) { return Instance(t, 0, index); }

std::vector<std::string> Switch::WrittenReport(bool incompleteOnly) const {
  std::vector<std::string> out;
  for (const auto& [key, columns] : written_) {
    for (const TableDef& t : mib_->tables) {
      const size_t n = t.entry.size();
      if (key.size() <= n + 1 || !snmp::OidIsUnder(key, t.entry) || key[n] != 0) continue;
      std::string wrote, missing;
      // Appended piece by piece: a literal + a temporary string trips gcc 12's -Wrestrict at -O2.
      for (uint32_t c : columns) {
        if (!wrote.empty()) wrote += ',';
        wrote += std::to_string(c);
      }
      for (const ColumnDef& c : t.columns)
        if (c.required && !columns.count(c.number)) missing += (missing.empty() ? "" : ",") + c.name;
      if (incompleteOnly && missing.empty()) continue;
      out.push_back(RowText(t, key) + " wrote " + wrote + (missing.empty() ? "" : " missing " + missing));
    }
  }
  return out;
}

std::string Switch::RowText(const TableDef& t, const snmp::Oid& key) {
  std::string s = t.name;
  for (size_t i = t.entry.size() + 1; i < key.size(); ++i) {
    s += '.';
    s += std::to_string(key[i]);
  }
  return s;
}

bool Switch::RowExists(const TableDef& t, const snmp::Oid& index) const {
  const ColumnDef* rs = t.rowStatusColumn();
  uint32_t col = rs ? rs->number : t.columns.front().number;
  return store_.count(Instance(t, col, index)) != 0;
}

std::optional<std::string> Switch::Handle(const uint8_t* data, size_t size) {
  if (config_.faults.silent) return std::nullopt;
  snmp::Message m;
  if (snmp::DecodeMessage(data, size, m) != snmp::DecodeError::kOk) return std::nullopt;
  if (m.version != 0) return std::nullopt;  // SNMPv1 only
  bool isSet = m.pdu.type == snmp::kTagSetRequest;
  // A wrong community is dropped silently (RFC 1157 4.1): the client sees a time-out.
  bool writeOk = !config_.writeCommunity.empty() && m.community == config_.writeCommunity;
  bool readOk = writeOk || m.community == config_.readCommunity;
  if (isSet ? !writeOk : !readOk) return std::nullopt;

  const std::vector<snmp::VarBind> requestBinds = m.pdu.varbinds;
  const bool isGet = m.pdu.type == snmp::kTagGetRequest || m.pdu.type == snmp::kTagGetNextRequest;
  if (isGet && config_.faults.dropGets.count(++getCount_)) return std::nullopt;
  switch (m.pdu.type) {
    case snmp::kTagGetRequest: HandleGet(m, false); break;
    case snmp::kTagGetNextRequest: HandleGet(m, true); break;
    case snmp::kTagSetRequest: {
      bool drop = false;
      HandleSet(m, drop);
      if (drop) return std::nullopt;
      break;
    }
    default: return std::nullopt;  // a GetResponse is not a request
  }
  m.pdu.type = snmp::kTagGetResponse;
  std::string out;
  if (snmp::EncodeMessage(m, out)) return out;
  // Too big for one datagram: tooBig with the request's bindings (RFC 1157 4.1.2).
  m.pdu.errorStatus = snmp::kTooBig;
  m.pdu.errorIndex = 0;
  m.pdu.varbinds = requestBinds;
  out.clear();
  if (snmp::EncodeMessage(m, out)) return out;
  return std::nullopt;
}

void Switch::HandleGet(snmp::Message& m, bool next) {
  std::vector<snmp::VarBind> out;
  out.reserve(m.pdu.varbinds.size());
  for (size_t i = 0; i < m.pdu.varbinds.size(); ++i) {
    const snmp::Oid& name = m.pdu.varbinds[i].name;
    auto it = next ? store_.upper_bound(name) : store_.find(name);
    if (it == store_.end()) {
      // In SNMPv1 a missing instance, and a GetNext past the end of the MIB, is noSuchName;
      // the answer carries the request's bindings unchanged.
      m.pdu.errorStatus = snmp::kNoSuchName;
      m.pdu.errorIndex = static_cast<int32_t>(i + 1);
      return;
    }
    out.push_back(snmp::VarBind{it->first, it->second});
  }
  m.pdu.errorStatus = snmp::kNoError;
  m.pdu.errorIndex = 0;
  m.pdu.varbinds = std::move(out);
}

void Switch::HandleSet(snmp::Message& m, bool& drop) {
  ++setCount_;
  SetEvent ev;
  ev.config = &config_;
  ev.number = setCount_;
  ev.time = std::chrono::steady_clock::now();
  ev.varbinds = m.pdu.varbinds;
  auto finish = [&](int32_t status, int32_t index) {
    m.pdu.errorStatus = status;
    m.pdu.errorIndex = index;
    ev.errorStatus = status;
    ev.errorIndex = index;
    if (onSet) onSet(ev);
  };
  if (config_.faults.dropSets.count(setCount_)) {
    drop = true;
    ev.dropped = true;
    if (onSet) onSet(ev);
    return;
  }
  if (config_.faults.refuseSets.count(setCount_)) {
    finish(config_.faults.refuseStatus, 1);
    return;
  }
  const int32_t readOnlyStatus =
      config_.faults.readOnlyAsNoSuchName ? snmp::kNoSuchName : snmp::kReadOnly;

  // Phase 1: check every binding; nothing changes unless all of them pass (all or nothing).
  struct RowOp {
    const TableDef* table;
    snmp::Oid index;
    int status = 0;          // RowStatus value set in this request, 0 = none
    size_t statusPos = 0;    // its 1-based binding position
    size_t firstPos = 0;     // first binding of this row
    bool otherColumns = false;
  };
  std::vector<RowOp> rows;
  auto rowOf = [&](const TableDef* t, const snmp::Oid& idx, size_t pos) -> RowOp& {
    for (RowOp& r : rows)
      if (r.table == t && r.index == idx) return r;
    rows.push_back(RowOp{t, idx, 0, 0, pos, false});
    return rows.back();
  };
  std::vector<Target> targets(m.pdu.varbinds.size());
  for (size_t i = 0; i < m.pdu.varbinds.size(); ++i) {
    const snmp::VarBind& vb = m.pdu.varbinds[i];
    const int32_t pos = static_cast<int32_t>(i + 1);
    Target& t = targets[i];
    if (!Locate(vb.name, t)) {
      // An instance of a dump (read-only device) exists but cannot be written.
      finish(store_.count(vb.name) ? readOnlyStatus : snmp::kNoSuchName, pos);
      return;
    }
    if (t.scalar) {
      if (t.scalar->access == Access::kReadOnly) return finish(readOnlyStatus, pos);
      if (!ValueFits(t.scalar->initial.tag, t.scalar->minValue, t.scalar->maxValue, 0, 65535, vb.value))
        return finish(snmp::kBadValue, pos);
      continue;
    }
    const ColumnDef& c = *t.column;
    if (c.access == Access::kReadOnly) return finish(readOnlyStatus, pos);
    if (!ValueFits(c.type, c.minValue, c.maxValue, c.minLength, c.maxLength, vb.value))
      return finish(snmp::kBadValue, pos);
    RowOp& row = rowOf(t.table, t.index, i + 1);
    if (c.rowStatus) {
      if (row.status != 0) return finish(snmp::kBadValue, pos);  // two row statuses for one row
      row.status = static_cast<int>(vb.value.integer);
      row.statusPos = i + 1;
    } else {
      row.otherColumns = true;
    }
  }
  // Row rules (SNMPv2-TC RowStatus, mapped to SNMPv1 as net-snmp does).
  int32_t errStatus = 0;
  size_t errPos = 0;
  auto fail = [&](int32_t status, size_t pos) {
    if (errPos == 0 || pos < errPos) {
      errStatus = status;
      errPos = pos;
    }
  };
  for (RowOp& r : rows) {
    bool exists = RowExists(*r.table, r.index);
    switch (r.status) {
      case 0:  // plain column writes need an existing row (noCreation -> noSuchName)
        if (!exists) fail(snmp::kNoSuchName, r.firstPos);
        break;
      case 4:  // createAndGo on an existing row: inconsistentValue -> badValue
        if (exists) fail(snmp::kBadValue, r.statusPos);
        break;
      case 6:  // destroy: an absent row is fine; other columns with it are inconsistent
        if (r.otherColumns) fail(snmp::kBadValue, r.statusPos);
        break;
      case 1:
      case 2:  // active / notInService: only for an existing row
        if (!exists) fail(snmp::kBadValue, r.statusPos);
        break;
      default:  // notReady(3) is never written, createAndWait(5) is not supported
        fail(snmp::kBadValue, r.statusPos);
        break;
    }
  }
  if (errPos) return finish(errStatus, static_cast<int32_t>(errPos));

  // Phase 2: commit.
  for (RowOp& r : rows) {
    const snmp::Oid key = RowKey(*r.table, r.index);
    if (r.status == 6) {
      for (const ColumnDef& c : r.table->columns) store_.erase(Instance(*r.table, c.number, r.index));
      written_.erase(key);
    } else if (r.status == 4) {
      written_[key].clear();
      for (const ColumnDef& c : r.table->columns) {
        snmp::Value v = c.indexPart >= 0 ? snmp::Value::Integer(r.index[static_cast<size_t>(c.indexPart)])
                        : c.rowStatus    ? snmp::Value::Integer(1)  // createAndGo -> active
                                         : ZeroOf(c);
        store_[Instance(*r.table, c.number, r.index)] = std::move(v);
      }
    }
  }
  for (size_t i = 0; i < m.pdu.varbinds.size(); ++i) {
    const Target& t = targets[i];
    const bool destroyed = t.column && t.column->rowStatus && m.pdu.varbinds[i].value.integer == 6;
    if (t.table && !destroyed) written_[RowKey(*t.table, t.index)].insert(t.column->number);
    if (t.column && t.column->rowStatus) {
      int st = static_cast<int>(m.pdu.varbinds[i].value.integer);
      if (st == 1 || st == 2) store_[m.pdu.varbinds[i].name] = snmp::Value::Integer(st);
      continue;
    }
    store_[m.pdu.varbinds[i].name] = m.pdu.varbinds[i].value;
  }
  finish(snmp::kNoError, 0);
}

}  // namespace sim
