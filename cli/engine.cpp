#include "cli/engine.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <map>
#include <optional>
#include <mutex>
#include <set>
#include <thread>

#include "acl/acl_audit.h"
#include "acl/acl_fields.h"

namespace {

constexpr AclType kTypes[] = {AclType::kEthernet, AclType::kIPv4, AclType::kIPv6, AclType::kPacketContent};
size_t OwnerIndex(AclOwner o) { return o == AclOwner::kCpu ? 1 : 0; }
AclOwner OwnerAt(size_t i) { return i == 1 ? AclOwner::kCpu : AclOwner::kAcl; }

// Found on the switch: a profile by ID or a rule by (profile ID, Access ID), with its type.
struct Held {
  AclType type;
  const AclRecord* record;
};
std::map<std::string, Held> ProfilesById(const AclHoldings& h) {
  std::map<std::string, Held> m;
  for (AclType t : kTypes)
    for (const AclRecord& r : h.profiles[static_cast<size_t>(t)])
      if (!r.empty()) m.emplace(r[0], Held{t, &r});
  return m;
}
std::map<std::pair<std::string, std::string>, Held> RulesByKey(const AclHoldings& h) {
  std::map<std::pair<std::string, std::string>, Held> m;
  for (AclType t : kTypes)
    for (const AclRecord& r : h.rules[static_cast<size_t>(t)])
      if (r.size() > 1) m.emplace(std::pair{r[0], r[1]}, Held{t, &r});
  return m;
}

// The outcome of every SET one switch answered, gathered by the process-wide write observer.
struct SetOutcome {
  AclWriteOp op;
  AclOwner owner;
  AclKind kind;
  std::string profileId, accessId;
  std::vector<SnmpBinding> bindings;
  SnmpSetResult result;
};
std::mutex g_collectMutex;
std::map<std::string, std::vector<SetOutcome>*> g_collectors;  // by agent address

std::string Describe(const SetOutcome& o) {
  std::string s = OutcomeWord(o.result);
  if (o.result.responded && o.result.errorIndex >= 1 &&
      static_cast<size_t>(o.result.errorIndex) <= o.bindings.size())
    s += " (" + o.bindings[static_cast<size_t>(o.result.errorIndex) - 1].oid + ")";
  return s;
}

}  // namespace

// Gathers outcomes by target address; installed next to the audit log by the command line.
void CollectSetOutcome(const AclWriteEvent& e) {
  if (e.outcome == nullptr) return;
  std::lock_guard<std::mutex> lock(g_collectMutex);
  auto it = g_collectors.find(e.target.ip);
  if (it == g_collectors.end()) return;
  it->second->push_back(SetOutcome{e.op, e.owner, e.kind, std::string(e.profileId), std::string(e.accessId),
                                   e.bindings, *e.outcome});
}

size_t SwitchPlan::count(Change c) const {
  size_t n = 0;
  for (const PlanItem& i : items) n += i.change == c;
  return n;
}

bool SwitchPlan::pending() const {
  return count(Change::kCreate) + count(Change::kDelete) + count(Change::kReplace) > 0 || !owedClosings.empty();
}

bool SwitchPlan::failed() const {
  if (!failure.empty()) return true;
  for (const PlanItem& i : items)
    if (i.change != Change::kUnchanged && i.change != Change::kKept && (!i.failure.empty() || !i.verified)) return true;
  return false;
}

std::vector<SnmpBinding> ItemBindings(const SwitchEntry& sw, const PlanItem& i) {
  std::vector<SnmpBinding> out;
  if (i.change == Change::kDelete || i.change == Change::kReplace)
    out.push_back(SnmpBinding::Integer(InstanceOid(RowStatusColumnOid(*sw.model, i.owner, i.kind, i.heldType), i.actual[0],
                                                   i.kind == AclKind::kRules ? i.actual[1] : ""),
                                       kRowStatusDestroy));
  if (i.change == Change::kCreate || i.change == Change::kReplace)
    if (auto table = TableOf(sw, i))
      for (const SnmpBinding& b : RecordBindings(*sw.model, *table, i.wanted)) out.push_back(b);
  return out;
}

std::vector<std::pair<std::pair<AclOwner, AclKind>, SnmpBinding>> ClosingRequests(const SwitchPlan& plan) {
  std::vector<std::pair<std::pair<AclOwner, AclKind>, SnmpBinding>> out;
  for (AclOwner owner : {AclOwner::kAcl, AclOwner::kCpu})
    for (AclKind kind : {AclKind::kProfiles, AclKind::kRules}) {
      const std::pair key{owner, kind};
      const bool creates = std::any_of(plan.items.begin(), plan.items.end(), [&](const PlanItem& i) {
        return i.owner == owner && i.kind == kind && (i.change == Change::kCreate || i.change == Change::kReplace);
      });
      const bool owed = std::find(plan.owedClosings.begin(), plan.owedClosings.end(), key) != plan.owedClosings.end();
      if (!creates && !owed) continue;
      const auto closing = plan.sw->model->closingRequest(owner, kind);
      if (closing && closing->oid != nullptr) out.emplace_back(key, SnmpBinding::Integer(closing->oid, closing->value));
    }
  return out;
}

SwitchHoldings PlannedHoldings(const SwitchPlan& plan) {
  SwitchHoldings h = plan.before;
  for (const PlanItem& i : plan.items) {
    AclHoldings& held = h.acls[OwnerIndex(i.owner)];
    auto& lists = i.kind == AclKind::kProfiles ? held.profiles : held.rules;
    const bool rule = i.kind == AclKind::kRules;
    if (i.change == Change::kDelete || i.change == Change::kReplace)
      for (AclRecordList& list : lists)
        list.erase(std::remove_if(list.begin(), list.end(),
                                  [&](const AclRecord& r) {
                                    return !r.empty() && r[0] == i.actual[0] && (!rule || (r.size() > 1 && r[1] == i.actual[1]));
                                  }),
                   list.end());
    if (i.change == Change::kCreate || i.change == Change::kReplace) lists[static_cast<size_t>(i.type)].push_back(i.wanted);
  }
  return h;
}

bool SwitchAnswers(const AclTarget& target, unsigned long timeoutMs) {
  CSnmpV1 request(0);
  request.setType(kSnmpGetNextRequest);
  request.clearVarBindList();
  request.setCommunity(target.readCommunity.c_str());
  request.addValue(kAclMibPrefix, kSnmpNull, nullptr);
  CSnmp* answer = nullptr;
  const int status = request.send(target.ip.c_str(), answer, timeoutMs);
  delete answer;
  return status == kSnmpOk;
}

namespace {

std::string CutText(const AclTableCut& cut) {
  const std::string table = std::string(cut.owner == AclOwner::kCpu ? "cpu_acl " : "acl ") + TypeName(cut.type) +
                            (cut.kind == AclKind::kRules ? " rule" : " profile") + " table";
  const std::string rows = std::to_string(cut.walk.rows) + " row" + (cut.walk.rows == 1 ? "" : "s");
  switch (cut.walk.end) {
    case SnmpWalkEnd::kNoAnswer:
      return "the switch stopped answering while its " + table + " was read (" + rows + " read)";
    case SnmpWalkEnd::kStopped: return "the read of its " + table + " was stopped (" + rows + " read)";
    default: return "the walk of its " + table + " ended on " + SnmpWalkEndText(cut.walk) + " after " + rows;
  }
}

SwitchHoldings ReadOnce(const SwitchEntry& sw, std::array<bool, 2> owners, unsigned long timeoutMs) {
  SwitchHoldings h;
  if (!SwitchAnswers(sw.target, timeoutMs)) return h;
  AclReadOptions options;
  options.timeoutMs = timeoutMs;
  // A table cut short by a lost answer would pass for the whole table: a plan would create
  // what the switch already holds and miss what it should delete, a backup would lack rows
  // that restoring it deletes. So the rest of such a read is not even asked for.
  auto whole = [&h](const AclReadResult& r) {
    if (r.cut) h.cut = CutText(*r.cut);
    return r.complete();
  };
  for (size_t o = 0; o < 2; ++o) {
    if (!owners[o]) continue;
    h.read[o] = true;
    AclReadResult profiles = ReadProfiles(sw.target, OwnerAt(o), options);
    if (!whole(profiles)) return h;
    h.acls[o].profiles = std::move(profiles.records);
    for (AclType t : kTypes) {
      AclReadResult rules = ReadRules(sw.target, OwnerAt(o), t, options);
      if (!whole(rules)) return h;
      h.acls[o].rules[static_cast<size_t>(t)] = std::move(rules.records[static_cast<size_t>(t)]);
    }
  }
  h.reached = true;
  return h;
}

}  // namespace

SwitchHoldings ReadSwitch(const SwitchEntry& sw, std::array<bool, 2> owners, unsigned long timeoutMs, int retries) {
  SwitchHoldings h = ReadOnce(sw, owners, timeoutMs);
  for (int attempt = 0; attempt < retries && !h.reached; ++attempt) h = ReadOnce(sw, owners, timeoutMs);
  return h;
}

std::string NotReadText(const SwitchHoldings& h, unsigned long timeoutMs) {
  // SNMPv1 agents drop a request with a wrong community without a word.
  if (h.cut.empty()) return "no answer within " + std::to_string(timeoutMs) + " ms (a wrong community looks the same)";
  return "not read: " + h.cut + "; nothing is planned or shown from a partial read";
}

std::optional<AclTableLayout> TableOf(const SwitchEntry& sw, const PlanItem& item) {
  return TableLayout(*sw.model, item.owner, item.kind, item.type);
}

void PlanSwitch(const DesiredSwitch& desired, StateMode mode, SwitchPlan& plan) {
  const SwitchEntry& sw = *plan.sw;
  for (size_t o = 0; o < 2; ++o) {
    if (!desired.named[o]) continue;
    const AclOwner owner = OwnerAt(o);
    const AclHoldings& held = plan.before.acls[o];
    const auto profiles = ProfilesById(held);
    const auto rules = RulesByKey(held);
    std::set<std::string> wantedProfiles;
    std::set<std::pair<std::string, std::string>> wantedRules, deletedRules;
    auto item = [&](Change c, AclKind kind, AclType type) {
      PlanItem i;
      i.change = c;
      i.owner = owner;
      i.kind = kind;
      i.type = type;
      i.heldType = type;
      return i;
    };
    auto diff = [&](AclKind kind, AclType type, const AclRecord& want, const AclRecord& have) {
      PlanItem probe = item(Change::kCreate, kind, type);
      auto table = TableOf(sw, probe);
      return table ? DiffRecordCells(*sw.model, *table, want, have) : std::vector<size_t>{};
    };
    for (const DesiredProfile& p : desired.profiles[o]) {
      const std::string& id = p.record[0];
      wantedProfiles.insert(id);
      auto found = profiles.find(id);
      PlanItem pi = item(Change::kCreate, AclKind::kProfiles, p.type);
      pi.wanted = p.record;
      bool profileRecreated = false;
      if (found != profiles.end()) {
        pi.actual = *found->second.record;
        pi.heldType = found->second.type;
        pi.differing = found->second.type != p.type ? std::vector<size_t>{0}
                                                    : diff(AclKind::kProfiles, p.type, p.record, pi.actual);
        if (pi.differing.empty()) {
          pi.change = Change::kUnchanged;
        } else if (mode == StateMode::kMerged) {
          pi.change = Change::kKept;
        } else {
          pi.change = Change::kReplace;
          profileRecreated = true;
          // A profile is deleted only after its rules: they go with it, and the file's rules
          // are created again afterwards.
          size_t n = 0;
          for (const auto& [key, r] : rules)
            if (key.first == id) {
              PlanItem d = item(Change::kDelete, AclKind::kRules, r.type);
              d.actual = *r.record;
              d.protocol = ProtocolOfProfile(found->second.type, pi.actual);
              d.note = "goes with profile " + id;
              plan.items.push_back(d);
              deletedRules.insert(key);
              ++n;
            }
          if (n > 0) pi.note = "its " + std::to_string(n) + " rule" + (n == 1 ? "" : "s") + " on the switch go with it";
        }
      }
      plan.items.push_back(pi);
      for (const DesiredRule& r : p.rules) {
        const std::pair key{r.record[0], r.record[1]};
        wantedRules.insert(key);
        PlanItem ri = item(Change::kCreate, AclKind::kRules, p.type);
        ri.wanted = r.record;
        ri.protocol = p.protocol;
        auto f = rules.find(key);
        if (f != rules.end() && !profileRecreated) {
          ri.actual = *f->second.record;
          ri.heldType = f->second.type;
          ri.differing = f->second.type != p.type ? std::vector<size_t>{0}
                                                  : diff(AclKind::kRules, p.type, r.record, ri.actual);
          ri.change = ri.differing.empty()           ? Change::kUnchanged
                      : mode == StateMode::kMerged ? Change::kKept
                                                   : Change::kReplace;
        }
        // Sent into the file's type, the rule would land in a table whose profile the switch
        // does not hold: a rule no profile shows, left behind for good.
        if (ri.change == Change::kCreate && pi.change == Change::kKept && pi.heldType != p.type) {
          ri.change = Change::kKept;
          ri.note = "not sent: profile " + id + " on the switch is " + TypeName(pi.heldType) + ", the file says " +
                    TypeName(p.type) + "; --state replaced replaces it";
        }
        plan.items.push_back(ri);
      }
    }
    if (mode != StateMode::kOverridden) continue;
    for (const auto& [key, r] : rules) {
      if (wantedRules.count(key) || deletedRules.count(key)) continue;
      PlanItem d = item(Change::kDelete, AclKind::kRules, r.type);
      d.actual = *r.record;
      auto p = profiles.find(key.first);
      d.protocol = p != profiles.end() ? ProtocolOfProfile(p->second.type, *p->second.record) : "1";
      if (p == profiles.end() || p->second.type != r.type)
        d.note = "no " + std::string(TypeName(r.type)) + " profile " + key.first + " on the switch (show leaves it out)";
      plan.items.push_back(d);
    }
    for (const auto& [id, p] : profiles) {
      if (wantedProfiles.count(id)) continue;
      PlanItem d = item(Change::kDelete, AclKind::kProfiles, p.type);
      d.actual = *p.record;
      plan.items.push_back(d);
    }
  }
}

void PlanDeletion(const std::vector<DeleteTarget>& targets, SwitchPlan& plan) {
  for (const DeleteTarget& t : targets) {
    const size_t o = OwnerIndex(t.owner);
    const auto profiles = ProfilesById(plan.before.acls[o]);
    const auto rules = RulesByKey(plan.before.acls[o]);
    auto add = [&](AclKind kind, const Held& h, std::string note) {
      for (const PlanItem& i : plan.items)
        if (i.owner == t.owner && i.kind == kind && i.actual == *h.record) return;
      PlanItem d;
      d.change = Change::kDelete;
      d.owner = t.owner;
      d.kind = kind;
      d.type = h.type;
      d.heldType = h.type;
      d.actual = *h.record;
      auto p = profiles.find(h.record->at(0));
      d.protocol = p != profiles.end() ? ProtocolOfProfile(p->second.type, *p->second.record) : "1";
      d.note = std::move(note);
      plan.items.push_back(d);
    };
    if (t.accessId.empty()) {
      for (const auto& [key, r] : rules)
        if (key.first == t.profileId) add(AclKind::kRules, r, "goes with profile " + t.profileId);
      if (auto p = profiles.find(t.profileId); p != profiles.end()) add(AclKind::kProfiles, p->second, "");
    } else if (auto r = rules.find({t.profileId, t.accessId}); r != rules.end()) {
      add(AclKind::kRules, r->second, "");
    }
  }
}

void ForEachParallel(size_t count, int parallel, const std::function<void(size_t)>& work) {
  std::atomic<size_t> next{0};
  const size_t threads = std::min(count, static_cast<size_t>(parallel < 1 ? 1 : parallel));
  std::vector<std::thread> pool;
  for (size_t t = 0; t < threads; ++t)
    pool.emplace_back([&] {
      for (size_t i; (i = next++) < count;) work(i);
    });
  for (std::thread& th : pool) th.join();
}

namespace {

// Found in holdings: a profile by ID, a rule by (profile ID, Access ID), of any type.
std::optional<Held> Find(const AclHoldings& h, AclKind kind, const AclRecord& key) {
  for (AclType t : kTypes)
    for (const AclRecord& r : (kind == AclKind::kProfiles ? h.profiles : h.rules)[static_cast<size_t>(t)])
      if (!r.empty() && r[0] == key[0] && (kind == AclKind::kProfiles || (r.size() > 1 && r[1] == key[1])))
        return Held{t, &r};
  return std::nullopt;
}

bool Sends(Change c) { return c == Change::kCreate || c == Change::kDelete || c == Change::kReplace; }
bool Creates(Change c) { return c == Change::kCreate || c == Change::kReplace; }
bool Ok(const SetOutcome& o) { return o.result.responded && o.result.errorStatus == 0; }

// Why a record was not created; a replace whose old row already went says so, for the switch
// now holds neither.
std::string NotCreated(const PlanItem& i, const std::string& why) {
  return (i.heldDeleted ? "deleted, not created again: " : "not sent: ") + why;
}

// A rule sent after its profile failed would sit on the switch without one: show hides it, and
// the next plan would count it as unchanged.
void SkipRulesOfFailedProfiles(SwitchPlan& plan, AclOwner owner) {
  std::set<std::string> failed;
  for (const PlanItem& i : plan.items)
    if (i.owner == owner && i.kind == AclKind::kProfiles && Creates(i.change) && !i.done) failed.insert(i.wanted[0]);
  for (PlanItem& i : plan.items)
    if (i.owner == owner && i.kind == AclKind::kRules && Creates(i.change) && i.failure.empty() &&
        failed.count(i.wanted[0])) {
      i.skipped = true;
      i.failure = NotCreated(i, "profile " + i.wanted[0] + " failed");
    }
}

// Each change read back against what the switch should hold once the whole plan is carried
// out: a replaced profile's rule is deleted and created again, and must be there at the end.
void Verify(SwitchPlan& plan, const SwitchHoldings& expected) {
  const SwitchEntry& sw = *plan.sw;
  const SwitchHoldings& after = plan.after;
  for (PlanItem& i : plan.items) {
    if (!Sends(i.change) || !i.done) continue;
    const size_t o = OwnerIndex(i.owner);
    const AclRecord& key = i.change == Change::kDelete ? i.actual : i.wanted;
    const auto found = Find(after.acls[o], i.kind, key);
    const auto want = Find(expected.acls[o], i.kind, key);
    if (!after.reached) {
      i.failure = after.cut.empty() ? "read-back: no answer" : "read-back: not read whole: " + after.cut;
    } else if (!want) {
      i.verified = !found;
      if (!i.verified) i.failure = "read-back: still on the switch";
    } else if (!found) {
      i.failure = "read-back: not on the switch";
    } else if (auto table = TableLayout(*sw.model, i.owner, i.kind, want->type)) {
      const auto cells = found->type == want->type ? DiffRecordCells(*sw.model, *table, *want->record, *found->record)
                                                   : std::vector<size_t>{0};
      i.verified = cells.empty();
      if (!i.verified)
        i.failure = "read-back: cell " + std::to_string(cells.front()) + " reads \"" +
                    (cells.front() < found->record->size() ? (*found->record)[cells.front()] : "") + "\"";
    }
  }
}

// --retries: a record whose answer was lost may have landed. A record SET is safe to repeat
// only while its row is absent (a second createAndGo onto a row that exists is refused, or
// would change what someone else put there), so the switch is read first: a record that
// landed as planned counts as sent, an absent one goes out again, a different one is left
// alone and reported. Only when every fault of the kind was a lost answer: the closing
// request follows the wizard's rule and goes only when every record of the kind landed.
void RetryLost(SwitchPlan& plan, size_t o, AclKind kind, const RunOptions& options, const std::function<bool()>& stopped,
               const std::function<void(const std::vector<PlanItem*>&)>& sendAgain) {
  const SwitchEntry& sw = *plan.sw;
  for (int attempt = 0; attempt < options.retries && !stopped(); ++attempt) {
    std::vector<PlanItem*> lost;
    bool refused = false;
    for (PlanItem& i : plan.items) {
      if (OwnerIndex(i.owner) != o || i.kind != kind || !Creates(i.change) || i.failure.empty() || i.skipped) continue;
      if (i.lost) lost.push_back(&i);
      else refused = true;
    }
    if (lost.empty() || refused) return;
    std::array<bool, 2> owners{};
    owners[o] = true;
    const SwitchHoldings now = ReadSwitch(sw, owners, options.timeoutMs);
    if (!now.reached) continue;
    std::vector<PlanItem*> again;
    for (PlanItem* i : lost) {
      const auto found = Find(now.acls[o], kind, i->wanted);
      const auto table = TableOf(sw, *i);
      if (!found) {
        again.push_back(i);
      } else if (found->type == i->type && table && DiffRecordCells(*sw.model, *table, i->wanted, *found->record).empty()) {
        i->done = true;
        i->lost = false;
        i->failure.clear();
      } else {
        i->lost = false;
        i->failure += "; a different record holds its row now: not sent again";
      }
    }
    if (std::any_of(lost.begin(), lost.end(), [](const PlanItem* i) { return !i->done && !i->lost; })) return;
    for (PlanItem* i : again) i->failure.clear();
    sendAgain(again);
  }
}

}  // namespace

void ApplySwitch(SwitchPlan& plan, const RunOptions& options, size_t index) {
  const auto start = std::chrono::steady_clock::now();
  const SwitchEntry& sw = *plan.sw;
  auto status = [&](const std::string& s) {
    if (options.progress) options.progress(index, s);
  };
  auto stopped = [&] { return options.stop && options.stop(); };
  const SwitchHoldings expected = PlannedHoldings(plan);
  std::vector<SetOutcome> outcomes;
  {
    std::lock_guard<std::mutex> lock(g_collectMutex);
    g_collectors[sw.target.ip] = &outcomes;
  }
  size_t total = 0, sent = 0;
  for (const PlanItem& i : plan.items) total += Sends(i.change) ? (i.change == Change::kReplace ? 2 : 1) : 0;
  auto tick = [&] { status("applying " + std::to_string(++sent) + "/" + std::to_string(total)); };

  // Deletions first, rules before profiles, so no rule is ever left without its profile.
  for (AclKind kind : {AclKind::kRules, AclKind::kProfiles})
    for (PlanItem& i : plan.items) {
      if (i.kind != kind || (i.change != Change::kDelete && i.change != Change::kReplace) || stopped()) continue;
      const std::string column = RowStatusColumnOid(*sw.model, i.owner, i.kind, i.heldType);
      const bool ok = DeleteRow(sw.target, column, i.actual[0], kind == AclKind::kRules ? i.actual[1] : "",
                                options.timeoutMs);
      tick();
      if (i.change == Change::kDelete) i.done = ok;
      else i.heldDeleted = ok;
      if (!ok && !outcomes.empty()) i.failure = "delete: " + Describe(outcomes.back());
    }
  // Then, per ACL kind, the profiles and the rules through the wizard's apply: one SET per
  // record in the order Ethernet, IPv4, IPv6, packet content, and the closing request.
  std::set<std::pair<AclOwner, AclKind>> closed;
  auto send = [&](size_t o, AclKind kind, const std::vector<PlanItem*>& items) {
    std::array<AclRecordList, 4> lists;
    std::array<std::vector<PlanItem*>, 4> owners;
    for (PlanItem* i : items) {
      lists[static_cast<size_t>(i->type)].push_back(i->wanted);
      owners[static_cast<size_t>(i->type)].push_back(i);
    }
    AclApplyCallbacks cb;
    cb.stop = stopped;
    cb.recordSent = [&](size_t, AclType type, size_t r, bool ok) {
      PlanItem& i = *owners[static_cast<size_t>(type)][r];
      i.done = ok;
      i.lost = !ok && !outcomes.empty() && !outcomes.back().result.responded;
      if (!ok && i.heldDeleted)
        i.failure = "deleted, not created again: create " +
                    (outcomes.empty() || !outcomes.back().result.responded ? std::string("not answered")
                                                                           : "refused: " + Describe(outcomes.back()));
      else if (!ok)
        i.failure = outcomes.empty() ? "create: not sent" : "create: " + Describe(outcomes.back());
      tick();
    };
    const size_t before = outcomes.size();
    (kind == AclKind::kProfiles ? ApplyProfiles : ApplyRules)({sw.target}, OwnerAt(o), lists, cb, options.timeoutMs);
    for (size_t k = before; k < outcomes.size(); ++k)
      if (outcomes[k].op == AclWriteOp::kClose) {
        if (!Ok(outcomes[k])) plan.failure = "closing request: " + Describe(outcomes[k]);
        else closed.insert({OwnerAt(o), kind});
        plan.closings[{OwnerAt(o), kind}] = Ok(outcomes[k]) ? ClosingResult::kSent : ClosingResult::kFailed;
      }
  };
  for (size_t o = 0; o < 2; ++o)
    for (AclKind kind : {AclKind::kProfiles, AclKind::kRules}) {
      if (kind == AclKind::kRules) SkipRulesOfFailedProfiles(plan, OwnerAt(o));
      std::vector<PlanItem*> items;
      for (PlanItem& i : plan.items)
        if (OwnerIndex(i.owner) == o && i.kind == kind && Creates(i.change) && i.failure.empty()) items.push_back(&i);
      if (items.empty() || stopped()) continue;
      send(o, kind, items);
      RetryLost(plan, o, kind, options, stopped, [&](const std::vector<PlanItem*>& again) {
        if (!again.empty()) return send(o, kind, again);
        // Every lost answer's record had landed: the closing request the first round held back.
        const SnmpSetResult r = SendClosingRequest(sw.target, OwnerAt(o), kind, options.timeoutMs);
        const bool ok = r.responded && r.errorStatus == 0;
        if (ok) closed.insert({OwnerAt(o), kind});
        else plan.failure = "closing request: " + OutcomeWord(r);
        plan.closings[{OwnerAt(o), kind}] = ok ? ClosingResult::kSent : ClosingResult::kFailed;
      });
    }
  // A closing request an earlier apply owes (it stopped after its records landed) goes out
  // once this apply has done its part without a fault.
  const bool clean = std::none_of(plan.items.begin(), plan.items.end(),
                                  [](const PlanItem& i) { return Sends(i.change) && !i.failure.empty(); });
  for (const auto& owed : plan.owedClosings) {
    if (closed.count(owed) || !clean || !plan.failure.empty() || stopped()) continue;
    const SnmpSetResult r = SendClosingRequest(sw.target, owed.first, owed.second, options.timeoutMs);
    const bool ok = r.responded && r.errorStatus == 0;
    if (!ok) plan.failure = "owed closing request: " + OutcomeWord(r);
    plan.closings[owed] = ok ? ClosingResult::kSent : ClosingResult::kFailed;
  }
  // The rest were held back: a record of the kind failed, or the apply was stopped first.
  for (const auto& [key, binding] : ClosingRequests(plan)) plan.closings.emplace(key, ClosingResult::kHeldBack);
  {
    std::lock_guard<std::mutex> lock(g_collectMutex);
    g_collectors.erase(sw.target.ip);
  }
  for (PlanItem& i : plan.items)
    if (Sends(i.change) && !i.done && i.failure.empty()) {
      i.skipped = true;
      i.failure = NotCreated(i, "interrupted");
      plan.interrupted = true;
    }
  // Stopped before its first request: nothing changed on the switch, and reading it back
  // would only keep the interrupted run waiting on it.
  if (total > 0 && (sent > 0 || !stopped())) {
    status("verifying");
    std::array<bool, 2> owners{};
    for (const PlanItem& i : plan.items) owners[OwnerIndex(i.owner)] = true;
    plan.after = ReadSwitch(sw, owners, options.timeoutMs, options.retries);
    Verify(plan, expected);
  } else if (total == 0) {
    plan.after = plan.before;
  }
  plan.seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  status(plan.interrupted ? "interrupted" : plan.failed() ? "failed" : "done");
}
