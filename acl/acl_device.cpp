#include "acl/acl_device.h"

#include "acl/acl_audit.h"

namespace {

constexpr AclType kTypeOrder[] = {AclType::kEthernet, AclType::kIPv4, AclType::kIPv6,
                                  AclType::kPacketContent};

bool Stopped(const AclReadOptions& o) { return o.stop != nullptr && o.stop->load(); }

bool IsRule(const AclTableLayout& t) { return t.record.kind == AclKind::kRules; }

void Apply(AclKind kind, const std::vector<AclTarget>& targets, AclOwner owner,
           const std::array<AclRecordList, 4>& lists, const AclApplyCallbacks& cb,
           unsigned long timeoutMs) {
  // Step 1 (the progress bar shown at 0).
  if (cb.progress) cb.progress(0);
  long long total = 0;
  for (const AclRecordList& l : lists) total += static_cast<long long>(l.size());
  const long long n = static_cast<long long>(targets.size());
  for (size_t i = 0; i < targets.size(); ++i) {
    const AclTarget& target = targets[i];
    const long long d = static_cast<long long>(i) + 1;
    const SnmpSocketScope oneSocketPerSwitch;  // its records and its closing request
    bool deviceOk = true;
    // The model once per target: every record of it goes through the same tables.
    const ModelEntry* model = LookupSupportedModel(target.typeText);
    SnmpSetResult closing;
    if (model == nullptr) {
      // The wizard admits only supported types; an unknown one gets nothing sent.
      deviceOk = false;
    } else {
      size_t sent = 0;
      bool stopped = false;
      for (AclType type : kTypeOrder) {
        auto table = TableLayout(*model, owner, kind, type);
        if (!table) continue;  // the model has no such table for this owner
        const AclRecordList& list = lists[static_cast<size_t>(type)];
        for (size_t r = 0; r < list.size() && !stopped; ++r) {
          if (cb.stop && cb.stop()) {
            stopped = true;
            break;
          }
          if (cb.progress) cb.progress(ApplyProgress(static_cast<long long>(r) + 1, d, total, n));
          bool ok = SetRecord(target, *model, *table, list[r], timeoutMs);
          ++sent;
          if (!ok) deviceOk = false;  // the apply goes on with the next record, no retry
          if (cb.recordSent) cb.recordSent(i, type, r, ok);
        }
      }
      if (deviceOk && (sent > 0 || !stopped)) closing = SendClosingRequest(target, *model, owner, kind, timeoutMs);
    }
    if (cb.result) cb.result(i, ApplyResultWord(kind, owner, deviceOk, closing));
  }
  if (cb.deleteStaged) cb.deleteStaged();
}

}  // namespace

// --- reading -----------------------------------------------------------------------------------

void ReadTable(const AclTarget& target, const ModelEntry& model, const AclTableLayout& table,
               const AclReadOptions& options, AclReadResult& out) {
  // Step 2: every column of the table in cell order; cells without a column stay empty.
  std::vector<std::string> columns;
  std::vector<size_t> cellOf;
  for (size_t c = 0; c < table.columns.size(); ++c) {
    if (table.columns[c] == 0) continue;
    columns.push_back(table.columnOid(c));
    cellOf.push_back(c);
  }
  if (columns.empty()) return;
  const size_t cells = RecordCellCount(table.record);
  const AclType type = table.record.type;
  SnmpWalkResult walk;
  SnmpWalk(target.ip, target.readCommunity, columns,
           [&](const SnmpRow& row) {
             AclRecord record(cells);
             // Rows with fewer varbinds than columns leave the missing cells empty.
             for (size_t i = 0; i < row.bindings.size() && i < cellOf.size(); ++i)
               record[cellOf[i]] = DecodeCell(table.kinds[cellOf[i]], model, row.bindings[i]);
             AclSummaryLine line{record[0], IsRule(table) ? record[1] : std::string(), TypeWord(type),
                                 OwnerWord(table.record.owner)};
             out.records[static_cast<size_t>(type)].push_back(record);
             out.lines.push_back(line);
             if (options.sink) options.sink(type, record, line);
           },
           options.timeoutMs, options.stop, &walk);
  if (!walk.complete() && !out.cut) out.cut = AclTableCut{table.record.owner, table.record.kind, type, walk};
}

AclReadResult ReadProfiles(const AclTarget& target, AclOwner owner, const AclReadOptions& options) {
  AclReadResult out;
  const ModelEntry* model = LookupSupportedModel(target.typeText);
  if (model == nullptr) return out;
  const SnmpSocketScope oneSocket;  // for the walks of every table
  for (AclType type : kTypeOrder) {
    if (Stopped(options)) break;
    if (auto table = TableLayout(*model, owner, AclKind::kProfiles, type))
      ReadTable(target, *model, *table, options, out);
  }
  return out;
}

AclReadResult ReadRules(const AclTarget& target, AclOwner owner, AclType ruleType,
                        const AclReadOptions& options) {
  AclReadResult out;
  const ModelEntry* model = LookupSupportedModel(target.typeText);
  if (model == nullptr || Stopped(options)) return out;
  if (auto table = TableLayout(*model, owner, AclKind::kRules, ruleType))
    ReadTable(target, *model, *table, options, out);
  return out;
}

std::vector<int> FreeProfileIds(const AclReadResult& profiles, int count) {
  std::vector<bool> used(static_cast<size_t>(count > 0 ? count : 0) + 1, false);
  for (const AclRecordList& list : profiles.records)
    for (const AclRecord& r : list) {
      if (r.empty() || !IsIndexText(r[0])) continue;
      long id = ParseLeadingDecimal(r[0]);
      if (id >= 1 && id <= count) used[static_cast<size_t>(id)] = true;
    }
  std::vector<int> free;
  for (int id = 1; id <= count; ++id)
    if (!used[static_cast<size_t>(id)]) free.push_back(id);
  return free;
}

// --- writing -----------------------------------------------------------------------------------

std::vector<SnmpBinding> RecordBindings(const ModelEntry& model, const AclTableLayout& table,
                                        const AclRecord& record) {
  std::vector<SnmpBinding> out;
  auto cell = [&](size_t k) -> std::string_view {
    return k < record.size() ? std::string_view(record[k]) : std::string_view();
  };
  // Step 2: the instance suffix. An ID that is not a decimal number never becomes an OID.
  if (!IsIndexText(cell(0))) return out;
  if (IsRule(table) && !IsIndexText(cell(1))) return out;
  const std::string profileId(cell(0));
  const std::string accessId = IsRule(table) ? std::string(cell(1)) : std::string();
  // Step 3: every further cell with a column, in cell order, by its encoding.
  for (size_t k = 0; k < table.columns.size(); ++k) {
    if (table.columns[k] == 0 || table.leftOut[k]) continue;
    auto enc = EncodeCell(table.kinds[k], model, cell(k));
    if (!enc && table.kinds[k] == CellKind::kFlag) return {};  // never half a profile
    if (!enc) continue;
    out.push_back(SnmpBinding{InstanceOid(table.columnOid(k), profileId, accessId), enc->type,
                              std::move(enc->value), enc->raw});
  }
  return out;
}

bool SetRecord(const AclTarget& target, const AclTableLayout& table, const AclRecord& record,
               unsigned long timeoutMs) {
  const ModelEntry* model = LookupSupportedModel(target.typeText);
  return model != nullptr && SetRecord(target, *model, table, record, timeoutMs);
}

bool SetRecord(const AclTarget& target, const ModelEntry& model, const AclTableLayout& table,
               const AclRecord& record, unsigned long timeoutMs) {
  std::vector<SnmpBinding> bindings = RecordBindings(model, table, record);
  if (bindings.empty()) return false;
  SnmpSetResult r = AuditedSnmpSet(target, AclWriteOp::kCreate, table.record.owner, table.record.kind,
                                   record[0], IsRule(table) ? std::string_view(record[1]) : "", bindings,
                                   timeoutMs);
  return r.responded && r.errorStatus == 0;
}

bool DeleteRow(const AclTarget& target, const std::string& rowStatusColumnOid,
               const std::string& profileId, const std::string& accessId, unsigned long timeoutMs) {
  if (rowStatusColumnOid.empty() || !IsIndexText(profileId) ||
      (!accessId.empty() && !IsIndexText(accessId)))
    return false;
  SnmpSetResult r = AuditedSnmpSet(
      target, AclWriteOp::kDelete, OwnerOfColumn(rowStatusColumnOid),
      accessId.empty() ? AclKind::kProfiles : AclKind::kRules, profileId, accessId,
      {SnmpBinding::Integer(InstanceOid(rowStatusColumnOid, profileId, accessId), kRowStatusDestroy)},
      timeoutMs);
  return r.responded && r.errorStatus == 0;
}

std::string RowStatusColumnOid(const ModelEntry& model, AclOwner owner, AclKind kind, AclType type) {
  auto t = TableLayout(model, owner, kind, type);
  if (!t || t->rowStatusCell < 0) return std::string();
  return t->columnOid(static_cast<size_t>(t->rowStatusCell));
}

SnmpSetResult SendClosingRequest(const AclTarget& target, AclOwner owner, AclKind kind,
                                 unsigned long timeoutMs) {
  const ModelEntry* model = LookupSupportedModel(target.typeText);
  if (model == nullptr) return SnmpSetResult{};
  return SendClosingRequest(target, *model, owner, kind, timeoutMs);
}

SnmpSetResult SendClosingRequest(const AclTarget& target, const ModelEntry& model, AclOwner owner,
                                 AclKind kind, unsigned long timeoutMs) {
  auto closing = model.closingRequest(owner, kind);
  if (!closing || closing->oid == nullptr) return SnmpSetResult{};
  return AuditedSnmpSet(target, AclWriteOp::kClose, owner, kind, "", "",
                        {SnmpBinding::Integer(closing->oid, closing->value)}, timeoutMs);
}

const char* ApplyResultWord(AclKind kind, AclOwner owner, bool deviceOk, const SnmpSetResult& closing) {
  if (!deviceOk) return "Fail";
  if (!closing.responded) return kind == AclKind::kRules && owner == AclOwner::kAcl ? "Fail" : "fail";
  const bool success = kind == AclKind::kProfiles && owner == AclOwner::kCpu;
  return SnmpVerdict(closing, success ? SnmpSuccessWord::kSuccess : SnmpSuccessWord::kSucceed);
}

void ApplyProfiles(const std::vector<AclTarget>& targets, AclOwner owner,
                   const std::array<AclRecordList, 4>& lists, const AclApplyCallbacks& callbacks,
                   unsigned long timeoutMs) {
  Apply(AclKind::kProfiles, targets, owner, lists, callbacks, timeoutMs);
}

void ApplyRules(const std::vector<AclTarget>& targets, AclOwner owner,
                const std::array<AclRecordList, 4>& lists, const AclApplyCallbacks& callbacks,
                unsigned long timeoutMs) {
  Apply(AclKind::kRules, targets, owner, lists, callbacks, timeoutMs);
}
