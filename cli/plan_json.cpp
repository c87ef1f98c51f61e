#include "cli/plan_json.h"

#include "acl/acl_audit.h"
#include "acl/acl_mib.h"

namespace {

const char* ActionWord(Change c) {
  switch (c) {
    case Change::kCreate: return "create";
    case Change::kDelete: return "delete";
    case Change::kReplace: return "replace";
    case Change::kUnchanged: return "unchanged";
    case Change::kKept: return "kept";
  }
  return "";
}

// A profile (without its rules) or a rule as the desired-state file writes it.
Json RecordJson(const SwitchEntry& sw, const PlanItem& i, bool held) {
  const AclRecord& r = held ? i.actual : i.wanted;
  const AclType type = held ? i.heldType : i.type;
  if (r.empty()) return nullptr;
  return i.kind == AclKind::kProfiles ? ProfileJson(sw, i.owner, type, r) : RuleJson(sw, i.owner, type, r, i.protocol);
}

const char* ItemResult(bool applied, const PlanItem& i) {
  if (!applied) return "planned";
  if (i.change == Change::kUnchanged || i.change == Change::kKept) return "done";
  // The old row is gone but the new one is not there: the switch holds neither.
  if (i.heldDeleted && !i.done) return "deleted_only";
  if (i.skipped) return "skipped";
  return i.failure.empty() && i.done ? "done" : "failed";
}

const char* SwitchResult(bool applied, const SwitchPlan& p) {
  if (applied && p.interrupted) return "interrupted";
  if (p.busy) return "failed";
  if (!p.before.reached) return "unreachable";
  if (applied && p.failed()) return "failed";
  if (!p.pending()) return "unchanged";
  return applied ? "changed" : "changes";
}

Json ChangeJson(bool applied, const SwitchPlan& p, const PlanItem& i) {
  const SwitchEntry& sw = *p.sw;
  const AclRecord& key = i.change == Change::kDelete ? i.actual : i.wanted;
  Json c{{"action", ActionWord(i.change)},
         {"owner", i.owner == AclOwner::kCpu ? "cpu_acl" : "acl"},
         {"kind", i.kind == AclKind::kProfiles ? "profile" : "rule"},
         {"type", TypeName(i.type)},
         {"profile_id", std::stoull(key[0])}};
  if (i.kind == AclKind::kRules) c["access_id"] = std::stoull(key[1]);
  c["before"] = RecordJson(sw, i, true);
  c["after"] = i.change == Change::kDelete ? Json(nullptr) : RecordJson(sw, i, false);
  Json sets = Json::array();
  if (i.change != Change::kUnchanged && i.change != Change::kKept)
    for (const SnmpBinding& b : ItemBindings(sw, i))
      sets.push_back({{"oid", "." + b.oid}, {"type", BindingTypeWord(b)}, {"value", BindingValueText(b)}});
  c["sets"] = sets;
  if (!i.note.empty()) c["note"] = i.note;
  c["result"] = ItemResult(applied, i);
  if (applied && !i.failure.empty()) c["error"] = i.failure;
  if (applied && i.change != Change::kUnchanged && i.change != Change::kKept) c["verified"] = i.verified;
  return c;
}

}  // namespace

const char* StateModeName(StateMode mode) {
  switch (mode) {
    case StateMode::kMerged: return "merged";
    case StateMode::kReplaced: return "replaced";
    case StateMode::kOverridden: return "overridden";
  }
  return "";
}

Json PlanResultJson(bool applied, StateMode mode, const std::vector<SwitchPlan>& plans) {
  Json switches = Json::array();
  for (const SwitchPlan& p : plans) {
    const SwitchEntry& sw = *p.sw;
    Json s{{"name", sw.name}, {"address", sw.target.ip}, {"model", sw.target.typeText}, {"result", SwitchResult(applied, p)}};
    if (!p.failure.empty()) s["error"] = p.failure;
    if (!p.owedClosings.empty()) {
      Json owed = Json::array();
      for (const auto& o : p.owedClosings)
        owed.push_back({{"owner", o.first == AclOwner::kCpu ? "cpu_acl" : "acl"},
                        {"kind", o.second == AclKind::kRules ? "rule" : "profile"}});
      s["closing_owed"] = owed;
    }
    if (p.before.reached) {
      Json closing = Json::array();
      for (const auto& [key, b] : ClosingRequests(p)) {
        const auto done = p.closings.find(key);
        const char* result = !applied                   ? "planned"
                             : done == p.closings.end() ? "held_back"
                             : done->second == ClosingResult::kSent   ? "sent"
                             : done->second == ClosingResult::kFailed ? "failed"
                                                                      : "held_back";
        closing.push_back({{"owner", key.first == AclOwner::kCpu ? "cpu_acl" : "acl"},
                           {"kind", key.second == AclKind::kRules ? "rule" : "profile"},
                           {"oid", "." + b.oid},
                           {"type", BindingTypeWord(b)},
                           {"value", BindingValueText(b)},
                           {"result", result}});
      }
      s["closing"] = closing;
    }
    s["before"] = p.before.reached ? SwitchJson(sw, p.before) : Json(nullptr);
    // An apply whose read-back did not happen or went unanswered knows nothing of the end
    // state: an empty one would claim every record gone.
    if (!p.before.reached || (applied && !p.after.reached)) s["after"] = nullptr;
    else s["after"] = SwitchJson(sw, applied ? p.after : PlannedHoldings(p));
    Json changes = Json::array();
    for (const PlanItem& i : p.items) {
      // A row whose index is no number is left out, as it is of the holdings above.
      const AclRecord& key = i.change == Change::kDelete ? i.actual : i.wanted;
      if (key.empty() || !IsIndexText(key[0]) || (i.kind == AclKind::kRules && (key.size() < 2 || !IsIndexText(key[1]))))
        continue;
      changes.push_back(ChangeJson(applied, p, i));
    }
    s["changes"] = changes;
    switches.push_back(s);
  }
  return Json{{"format_version", 1}, {"command", applied ? "apply" : "plan"}, {"state", StateModeName(mode)},
              {"switches", switches}};
}
