#include "cli/commands.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <iomanip>
#include <iostream>
#include <map>
#include <memory>
#include <mutex>
#include <sstream>
#include <unordered_map>

#include "acl/acl_audit.h"
#include "cli/engine.h"
#include "cli/interrupt.h"
#include "cli/switch_state.h"
#include "cli/plan_json.h"

namespace {

constexpr const char* kExitText =
    "Exit status:\n"
    "    0  done and every change verified by reading it back, or nothing to do\n"
    "    1  bad arguments, an inventory or state file that cannot be read or is invalid\n"
    "       (nothing is sent), or a deletion not confirmed\n"
    "    2  a switch did not answer (or stopped answering partway through a table, which counts\n"
    "       as not read: nothing is planned or shown from part of a table), refused a request,\n"
    "       or did not read back as written\n"
    "    3  plan --detailed-exitcode only: changes pending\n"
    "  130  apply or delete stopped by Ctrl-C or SIGTERM: no new record was sent, what landed\n"
    "       got its closing request, the recap says what was done (a second Ctrl-C ends at once)\n";

const char* OwnerKey(AclOwner o) { return o == AclOwner::kCpu ? "cpu_acl" : "acl"; }

const char* Mark(Change c) {
  switch (c) {
    case Change::kCreate: return "+";
    case Change::kDelete: return "-";
    case Change::kReplace: return "-/+";
    case Change::kUnchanged: return "=";
    case Change::kKept: return "~";
  }
  return "?";
}

std::string RecordName(const PlanItem& i) {
  const AclRecord& r = i.change == Change::kDelete ? i.actual : i.wanted;
  std::string s = std::string(OwnerKey(i.owner)) + (i.kind == AclKind::kProfiles ? " profile " : " rule ") + r[0];
  if (i.kind == AclKind::kRules) s += "/" + r[1];
  if (i.change == Change::kReplace && i.heldType != i.type)
    return s + " (" + TypeName(i.heldType) + " -> " + TypeName(i.type) + ")";
  return s + " (" + TypeName(i.type) + ")";
}

// The record on the switch (`held`) or the one the file asks for, without its keys.
Json ItemJson(const SwitchEntry& sw, const PlanItem& i, bool held) {
  const AclRecord& r = held ? i.actual : i.wanted;
  const AclType type = held ? i.heldType : i.type;
  Json j = i.kind == AclKind::kProfiles ? ProfileJson(sw, i.owner, type, r) : RuleJson(sw, i.owner, type, r, i.protocol);
  j.erase("id");
  j.erase("access_id");
  j.erase("type");
  return j;
}

// The fields that differ, as "name: switch -> file".
std::string FieldChanges(const SwitchEntry& sw, const PlanItem& i) {
  const Json have = ItemJson(sw, i, true), want = ItemJson(sw, i, false);
  std::string s;
  auto text = [](const Json& v) { return v.is_null() ? std::string("(none)") : v.is_string() ? v.get<std::string>() : v.dump(); };
  for (const auto& item : want.items()) {
    const Json old = have.contains(item.key()) ? have[item.key()] : Json();
    if (old == item.value()) continue;
    if (!s.empty()) s += "; ";
    s += item.key() + ": " + text(old) + " -> " + text(item.value());
  }
  return s.empty() ? "differs on the switch" : s;
}

void PrintSets(std::ostream& out, const SwitchEntry& sw, const PlanItem& i) {
  for (const SnmpBinding& b : ItemBindings(sw, i))
    out << "      SET " << b.oid << " = " << BindingTypeWord(b) << ": " << BindingValueText(b) << "\n";
}

// Progress on stderr. On a terminal: a summary line and the switches in flight, redrawn in
// place at most ten times a second, so a run of a thousand switches costs the terminal a few
// lines, not a line per switch per step. Otherwise (or --json): a plain line whenever a switch
// changes phase.
class Progress {
 public:
  Progress(std::ostream& err, const std::vector<SwitchPlan>& plans, bool terminal, bool plain)
      : err_(err), terminal_(terminal), plain_(plain), status_(plans.size()) {
    for (const SwitchPlan& p : plans) names_.push_back(p.sw->name);
  }
  ~Progress() {
    std::lock_guard<std::mutex> lock(mutex_);
    if (terminal_ && drawn_) Draw();
  }
  void Update(size_t i, const std::string& status) {
    std::lock_guard<std::mutex> lock(mutex_);
    const std::string phase = PhaseOf(status), old = PhaseOf(status_[i]);
    status_[i] = status;
    if (terminal_) {
      const auto now = std::chrono::steady_clock::now();
      if (!drawn_ || now - last_ >= std::chrono::milliseconds(100)) {
        last_ = now;
        Draw();
      }
    } else if (plain_ && phase != old) {
      err_ << names_[i] << ": " << phase << "\n" << std::flush;
    }
  }

 private:
  // "applying 3/20" is one phase however far it has gone.
  static std::string PhaseOf(const std::string& t) { return t.rfind("applying", 0) == 0 ? std::string("applying") : t; }
  static bool Finished(const std::string& t) {
    return t == "done" || t == "failed" || t == "no answer" || t == "interrupted" || t == "read" || t == "busy";
  }
  void Draw() {
    constexpr size_t kShown = 8;
    size_t finished = 0, waiting = 0;
    std::vector<size_t> flying;
    for (size_t i = 0; i < status_.size(); ++i) {
      if (status_[i].empty()) ++waiting;
      else if (Finished(status_[i])) ++finished;
      else flying.push_back(i);
    }
    std::ostringstream frame;
    if (drawn_) frame << "\x1b[" << lines_ << "F\x1b[J";  // back to the frame's first line, cleared
    frame << "  " << finished << "/" << status_.size() << " switches finished, " << flying.size() << " in flight, "
          << waiting << " waiting\n";
    lines_ = 1;
    for (size_t k = 0; k < flying.size() && k < kShown; ++k, ++lines_)
      frame << "    " << names_[flying[k]] << "  " << status_[flying[k]] << "\n";
    if (flying.size() > kShown) {
      frame << "    ... and " << flying.size() - kShown << " more\n";
      ++lines_;
    }
    err_ << frame.str() << std::flush;
    drawn_ = true;
  }
  std::ostream& err_;
  bool terminal_, plain_;
  std::vector<std::string> names_, status_;
  bool drawn_ = false;
  size_t lines_ = 0;
  std::chrono::steady_clock::time_point last_;
  std::mutex mutex_;
};

// A switch's progress word once its read is over.
const char* ReadWord(const SwitchHoldings& h) { return h.reached ? "read" : h.cut.empty() ? "no answer" : "not read"; }

std::string Records(size_t n) { return std::to_string(n) + " record" + (n == 1 ? "" : "s"); }

// One switch's part of a plan as people read it.
std::string PlanText(const SwitchPlan& p, bool verbose) {
  std::ostringstream out;
  const SwitchEntry& sw = *p.sw;
  out << sw.name << " (" << sw.target.ip << ", " << sw.target.typeText << ")";
  if (!p.failure.empty()) {
    out << ": " << p.failure << "\n";
    return out.str();
  }
  out << (p.items.empty() && p.owedClosings.empty() ? ": nothing named for this switch\n" : "\n");
  for (const OwedClosing& o : p.owedClosings)
    out << "  !   closing request of the " << OwedClosingName(o)
        << " owed: an earlier apply was stopped, or lost an answer, after its records landed; apply sends it\n";
  for (const PlanItem& i : p.items) {
    out << "  " << std::left << std::setw(3) << Mark(i.change) << " " << RecordName(i);
    if (i.change == Change::kCreate) out << ": " << FieldsSummary(ItemJson(sw, i, false));
    // A kept record the switch does not hold at all says why in its note.
    const bool held = !i.actual.empty();
    if (i.change == Change::kReplace || (i.change == Change::kKept && held)) out << ": " << FieldChanges(sw, i);
    if (i.change == Change::kKept && held) out << " (kept: --state replaced would replace it)";
    if (!i.note.empty()) out << "; " << i.note;
    out << "\n";
    if (verbose) PrintSets(out, sw, i);
  }
  return out.str();
}

// The counts under a plan, summed over the switches, and the line that says what they mean.
struct PlanCounts {
  size_t create = 0, remove = 0, replace = 0, same = 0, kept = 0, owed = 0, silent = 0;
  void add(const SwitchPlan& p) {
    if (!p.failure.empty()) {
      ++silent;
      return;
    }
    create += p.count(Change::kCreate);
    remove += p.count(Change::kDelete);
    replace += p.count(Change::kReplace);
    same += p.count(Change::kUnchanged);
    kept += p.count(Change::kKept);
    owed += p.owedClosings.size();
  }
  // `nothing`: the line when no switch has anything to do and every switch answered.
  void print(std::ostream& out, const char* nothing) const {
    out << "\n";
    if (create + remove + replace + owed > 0) {
      out << "Plan: " << create << " to create, " << remove << " to delete, " << replace << " to replace, " << same
          << " unchanged" << (kept ? ", " + std::to_string(kept) + " kept as they are" : std::string())
          << (owed ? ", " + std::to_string(owed) + " closing request" + (owed == 1 ? "" : "s") + " owed" : std::string())
          << ".\n";
    } else if (kept > 0) {
      out << "No changes in --state merged, but " << Records(kept)
          << " on the switches differ from the file and are kept as they are.\n";
    } else if (silent == 0) {
      out << nothing << "\n";
    }
    if (silent > 0)
      out << silent << " switch" << (silent == 1 ? " was" : "es were")
          << " not read (see above): nothing is known of what they hold.\n";
  }
};

constexpr const char* kNoChanges = "No changes. The switches hold what the file says.";

void PrintPlan(std::ostream& out, const std::vector<SwitchPlan>& plans, bool verbose, const char* nothing = kNoChanges) {
  PlanCounts counts;
  for (const SwitchPlan& p : plans) {
    out << PlanText(p, verbose);
    counts.add(p);
  }
  counts.print(out, nothing);
}

// Each switch's text in inventory order, printed as soon as it and every switch before it are
// done (or, held, all at finish), so finished switches never wait in memory for a slow one.
class InOrderOutput {
 public:
  InOrderOutput(std::ostream& out, bool hold) : out_(out), hold_(hold) {}
  void put(size_t index, std::string text) {
    std::lock_guard<std::mutex> lock(mutex_);
    waiting_.emplace(index, std::move(text));
    if (!hold_) flush();
  }
  void finish() {
    std::lock_guard<std::mutex> lock(mutex_);
    hold_ = false;
    flush();
  }

 private:
  void flush() {
    for (auto it = waiting_.begin(); it != waiting_.end() && it->first == next_; it = waiting_.erase(it), ++next_)
      out_ << it->second;
  }
  std::ostream& out_;
  bool hold_;
  std::map<size_t, std::string> waiting_;
  size_t next_ = 0;
  std::mutex mutex_;
};

// The recap's totals, summed over the switches.
struct RecapCounts {
  size_t switches = 0, created = 0, deleted = 0, same = 0, failed = 0, verified = 0, changes = 0, badSwitches = 0,
         interrupted = 0;
  void print(std::ostream& out) const {
    out << "Total: " << switches << " switch" << (switches == 1 ? "" : "es") << ", " << badSwitches << " failed"
        << (interrupted ? ", " + std::to_string(interrupted) + " interrupted" : std::string()) << "; created=" << created << " deleted=" << deleted << " unchanged=" << same << " failed=" << failed
        << " verified=" << verified << "/" << changes << "\n";
  }
};

// One switch's recap lines (its name padded to `width`); adds its counts to `counts`.
std::string RecapText(const SwitchPlan& p, size_t width, RecapCounts& counts) {
  std::ostringstream out;
  size_t c = 0, d = 0, f = 0, k = 0, v = 0, n = 0;
  for (const PlanItem& i : p.items) {
    if (i.change == Change::kUnchanged || i.change == Change::kKept) continue;
    ++n;
    if (i.done && i.change != Change::kDelete) ++c;
    if (i.done && i.change == Change::kDelete) ++d;
    if (i.change == Change::kReplace && i.heldDeleted) ++d;
    if (i.skipped) ++k;
    else if (!i.failure.empty() || !i.done) ++f;
    if (i.verified) ++v;
  }
  if (!p.before.reached) f = 0;
  const bool bad = p.failed();
  out << std::left << std::setw(static_cast<int>(width)) << p.sw->name << "  " << std::setw(6)
      << (p.interrupted ? "INTERRUPTED" : bad ? "FAILED" : "ok") << "  created=" << c << " deleted=" << d
      << " unchanged=" << p.count(Change::kUnchanged) << " failed=" << f
      << (k ? " skipped=" + std::to_string(k) : std::string()) << " verified=" << v << "/" << n;
  char secs[32];
  std::snprintf(secs, sizeof secs, "  %.2fs", p.seconds);
  out << secs << "\n";
  if (!p.failure.empty()) out << "    " << p.failure << "\n";
  for (const PlanItem& i : p.items)
    if (!i.failure.empty()) {
      out << "    " << Mark(i.change) << " " << RecordName(i) << ": " << i.failure << "\n";
      out << "      record: " << FieldsSummary(ItemJson(*p.sw, i, i.change == Change::kDelete)) << "\n";
    }
  ++counts.switches;
  // A switch the interruption stopped did not fail: it holds part of the plan, and says so.
  counts.badSwitches += bad && !p.interrupted;
  counts.interrupted += p.interrupted;
  counts.created += c;
  counts.deleted += d;
  counts.same += p.count(Change::kUnchanged);
  counts.failed += f;
  counts.verified += v;
  counts.changes += n;
  return out.str();
}

struct Common {
  std::string inventory;
  SingleSwitch single;
  std::vector<std::string> limit;
  unsigned long timeoutMs = kSnmpTimeoutMs;
  int parallel = 10;
  int retries = 0;
  std::string auditLog;
  std::string stateDir;  // the switches' locks and owed closing requests
};

struct Session {
  std::istream& in;
  std::ostream& out;
  std::ostream& err;
  bool terminal;
  Common c;
  Inventory inventory;
  std::vector<const SwitchEntry*> selected;
  bool json = false;  // one JSON document on stdout instead of the tables
  StateMode mode = StateMode::kMerged;

  // The inventory file, or the one switch of --switch (SENTREL_INVENTORY is not read then).
  bool Load(CommunityNeed need) {
    std::string error;
    const bool single = !c.single.address.empty();
    if (!single && c.inventory.empty())
      if (const char* env = std::getenv("SENTREL_INVENTORY")) c.inventory = env;
    bool ok = false;
    if (single)
      ok = SingleSwitchInventory(c.single, need, inventory, error);
    else if (c.inventory.empty())
      error = "give --inventory (or SENTREL_INVENTORY), or --switch and --model";
    else
      ok = LoadInventory(c.inventory, need, inventory, error);
    ok = ok && SelectSwitches(inventory, c.limit, selected, error);
    if (!ok) err << "sentrel-acl: " << error << "\n";
    return ok;
  }

  std::string StateDir() const { return c.stateDir.empty() ? StateFolder() : c.stateDir; }

  // Reads the switches (in parallel) into fresh plans.
  std::vector<SwitchPlan> Read(const std::vector<const SwitchEntry*>& switches,
                               const std::vector<std::array<bool, 2>>& owners, bool progress) {
    std::vector<SwitchPlan> plans(switches.size());
    for (size_t i = 0; i < switches.size(); ++i) plans[i].sw = switches[i];
    std::unique_ptr<Progress> p;
    if (progress && terminal) p = std::make_unique<Progress>(err, plans, true, false);
    ForEachParallel(plans.size(), c.parallel, [&](size_t i) {
      const SnmpSocketScope oneSocketPerSwitch;
      if (p) p->Update(i, "reading");
      ReadOne(plans[i], owners[i]);
      if (p) p->Update(i, ReadWord(plans[i].before));
    });
    return plans;
  }

  void ReadOne(SwitchPlan& plan, std::array<bool, 2> owners) {
    const auto start = std::chrono::steady_clock::now();
    plan.before = ReadSwitch(*plan.sw, owners, c.timeoutMs, c.retries);
    plan.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    if (!plan.before.reached) plan.failure = NotReadText(plan.before, c.timeoutMs);
  }

  // Reads (unless `planOne` needs no switch) and plans every switch in the workers. For people,
  // each switch's plan is printed in inventory order as soon as those before it are and its
  // records are then dropped, so memory follows --parallel, not the size of the fleet; --json
  // keeps every plan for its one document. Exit status.
  int PlanEach(const std::vector<const SwitchEntry*>& switches,
               const std::function<void(size_t, SwitchPlan&)>& planOne, bool verbose, bool detailed) {
    std::vector<SwitchPlan> plans(switches.size());
    for (size_t i = 0; i < switches.size(); ++i) plans[i].sw = switches[i];
    std::unique_ptr<Progress> p;
    if (terminal) p = std::make_unique<Progress>(err, plans, true, false);
    InOrderOutput texts(out, p != nullptr);  // a terminal's progress lines are redrawn meanwhile
    std::mutex countsMutex;
    PlanCounts counts;
    bool pending = false, unreachable = false;
    ForEachParallel(switches.size(), c.parallel, [&](size_t i) {
      const SnmpSocketScope oneSocketPerSwitch;
      if (p) p->Update(i, "reading");
      planOne(i, plans[i]);
      if (p) p->Update(i, ReadWord(plans[i].before));
      std::lock_guard<std::mutex> lock(countsMutex);
      counts.add(plans[i]);
      pending = pending || plans[i].pending();
      unreachable = unreachable || !plans[i].before.reached;
      if (json) return;
      texts.put(i, PlanText(plans[i], verbose));
      SwitchPlan done;
      done.sw = plans[i].sw;
      plans[i] = std::move(done);
    });
    p.reset();  // its last frame is drawn now, not over the plan's closing lines
    if (json) {
      out << PlanResultJson(false, mode, plans).dump(2) << "\n";
    } else {
      texts.finish();
      counts.print(out, kNoChanges);
    }
    return unreachable ? kExitFailed : (pending && detailed) ? kExitPending : kExitOk;
  }

  // Applies the plans in parallel with the audit log open; prints the recap. Exit status.
  // `prepare`, when given, reads and plans a switch in its own worker first, so a slow switch
  // never holds the others back between reading and writing.
  int Apply(std::vector<SwitchPlan>& plans, const std::function<void(size_t)>& prepare = nullptr) {
    // The audit log names the switch of every SET: looked up by address once, not per SET.
    std::unordered_map<std::string, std::string> nameByAddress;
    for (const SwitchEntry* s : selected) nameByAddress.emplace(s->target.ip, s->name);
    AclAuditLog audit(c.auditLog.empty() ? DefaultAuditLogPath() : c.auditLog, [&nameByAddress](const AclTarget& t) {
      auto it = nameByAddress.find(t.ip);
      return it != nameByAddress.end() ? it->second : std::string();
    });
    // Without the folder, two applies could write one switch at once and an owed closing
    // request would be forgotten.
    const std::string folder = StateDir();
    if (folder.empty()) {
      err << "sentrel-acl: no folder for the switches' locks and owed closing requests: give --state-dir, or set "
             "SENTREL_STATE_DIR or XDG_STATE_HOME; nothing was sent\n";
      return kExitUsage;
    }
    std::string error;
    if (!audit.Open(error)) {
      err << "sentrel-acl: " << error << "\n";
      return kExitUsage;
    }
    ClosingLedger ledger(folder);
    SetAclWriteObserver([&](const AclWriteEvent& e) {
      audit.Write(e);
      ledger.Observe(e);
      CollectSetOutcome(e);
    });
    InterruptGuard interrupt;
    size_t width = 0;
    for (const SwitchPlan& p : plans) width = std::max(width, p.sw->name.size());
    InOrderOutput recap(out, true);  // after the progress lines
    std::mutex countsMutex;
    RecapCounts counts;
    bool interrupted = false;
    {
      Progress progress(err, plans, terminal, !json);
      RunOptions options;
      options.timeoutMs = c.timeoutMs;
      options.retries = c.retries;
      options.progress = [&](size_t i, const std::string& s) { progress.Update(i, s); };
      options.stop = &InterruptGuard::Requested;
      ForEachParallel(plans.size(), c.parallel, [&](size_t i) {
        SwitchPlan& p = plans[i];
        ApplyOne(p, i, options, folder, audit.user(), ledger, prepare);
        if (p.interrupted) {
          size_t sent = 0, changes = 0;
          for (const PlanItem& item : p.items) {
            changes += item.change != Change::kUnchanged && item.change != Change::kKept;
            sent += item.done || item.heldDeleted || (!item.skipped && !item.failure.empty());
          }
          audit.WriteSwitchOutcome(p.sw->target, "interrupted",
                                   p.before.reached ? std::to_string(sent) + " of " + std::to_string(changes) +
                                                          " changes sent"
                                                    : "not started");
        }
        std::lock_guard<std::mutex> lock(countsMutex);
        interrupted = interrupted || p.interrupted;
        if (json) return;  // the document needs every switch's records
        // Only the recap's lines outlive the switch's work.
        recap.put(i, RecapText(p, width, counts));
        SwitchPlan done;
        done.sw = p.sw;
        p = std::move(done);
      });
    }
    SetAclWriteObserver(nullptr);
    int status;
    if (json) {
      out << PlanResultJson(true, mode, plans).dump(2) << "\n";
      status = std::any_of(plans.begin(), plans.end(), [](const SwitchPlan& p) { return p.failed(); }) ? kExitFailed
                                                                                                       : kExitOk;
    } else {
      out << "\n";
      recap.finish();
      counts.print(out);
      status = counts.badSwitches > 0 ? kExitFailed : kExitOk;
      if (interrupted) out << "Interrupted: the switches above that were not finished hold part of the plan.\n";
    }
    return interrupted ? kExitInterrupted : status;
  }

  // One switch's apply in its worker: its lock, what it owes from an earlier run, its reading
  // and plan (`prepare`), its records and closing requests, and the read-back, all through one
  // socket.
  void ApplyOne(SwitchPlan& p, size_t i, const RunOptions& options, const std::string& folder, const std::string& user,
                ClosingLedger& ledger, const std::function<void(size_t)>& prepare) {
    if (options.stop()) {
      p.interrupted = true;
      return options.progress(i, "interrupted");
    }
    SwitchLock lock;
    std::string busy;
    if (!lock.Acquire(folder, p.sw->target.ip, user, busy)) {
      p.failure = busy;
      p.busy = true;
      return options.progress(i, "busy");
    }
    p.owedClosings = ledger.Owed(p.sw->target.ip);
    const SnmpSocketScope oneSocketPerSwitch;
    if (prepare) {
      // Ctrl-C while this worker took the lock: a switch not yet started is not read either.
      if (options.stop()) {
        p.interrupted = true;
        return options.progress(i, "interrupted");
      }
      options.progress(i, "reading");
      prepare(i);
    }
    if (p.before.reached) ApplySwitch(p, options, i);
    else options.progress(i, "no answer");
  }
};

void ShowTable(std::ostream& out, const SwitchEntry& sw, const SwitchHoldings& h, unsigned long timeoutMs) {
  out << sw.name << "  " << sw.target.ip << "  " << sw.target.typeText;
  if (!h.reached) {
    out << "  " << NotReadText(h, timeoutMs) << "\n\n";
    return;
  }
  out << "\n";
  std::vector<std::array<std::string, 7>> rows{{"ACL", "PROFILE", "RULE", "TYPE", "ACTION", "PORTS", "FIELDS"}};
  for (size_t o = 0; o < 2; ++o) {
    if (!h.read[o]) continue;
    const AclOwner owner = o ? AclOwner::kCpu : AclOwner::kAcl;
    for (AclType t : {AclType::kEthernet, AclType::kIPv4, AclType::kIPv6, AclType::kPacketContent}) {
      for (const AclRecord& p : h.acls[o].profiles[static_cast<size_t>(t)]) {
        Json j = ProfileJson(sw, owner, t, p);
        j.erase("id");
        j.erase("type");
        rows.push_back({OwnerKey(owner), p[0], "", TypeName(t), "", "", FieldsSummary(j)});
        for (const AclRecord& r : h.acls[o].rules[static_cast<size_t>(t)]) {
          if (r.size() < 2 || r[0] != p[0]) continue;
          Json rj = RuleJson(sw, owner, t, r, ProtocolOfProfile(t, p));
          const std::string action = rj.value("action", ""), ports = rj.value("ports", "");
          for (const char* k : {"access_id", "action", "ports"}) rj.erase(k);
          rows.push_back({OwnerKey(owner), r[0], r[1], TypeName(t), action, ports, FieldsSummary(rj)});
        }
      }
    }
  }
  if (rows.size() == 1) {
    out << "  no profiles\n\n";
    return;
  }
  std::array<size_t, 7> w{};
  for (const auto& r : rows)
    for (size_t k = 0; k < 7; ++k) w[k] = std::max(w[k], r[k].size());
  for (const auto& r : rows) {
    out << " ";
    for (size_t k = 0; k < 6; ++k) out << " " << std::left << std::setw(static_cast<int>(w[k])) << r[k];
    out << " " << r[6] << "\n";
  }
  out << "\n";
}

// Asks on the terminal (or whatever stdin is, for delete); only "yes" goes ahead.
bool Confirm(std::istream& in, std::ostream& out, const std::string& question) {
  out << question << " Only 'yes' goes ahead: " << std::flush;
  std::string answer;
  std::getline(in, answer);
  return answer == "yes";
}

size_t Deletions(const std::vector<SwitchPlan>& plans) {
  size_t n = 0;
  for (const SwitchPlan& p : plans) n += p.count(Change::kDelete) + p.count(Change::kReplace);
  return n;
}


bool ParseDeleteTarget(const std::string& text, bool cpu, DeleteTarget& t) {
  t.owner = cpu ? AclOwner::kCpu : AclOwner::kAcl;
  if (text.rfind("profile:", 0) == 0) {
    t.profileId = text.substr(8);
    return IsIndexText(t.profileId);
  }
  if (text.rfind("rule:", 0) == 0) {
    const size_t slash = text.find('/');
    if (slash == std::string::npos) return false;
    t.profileId = text.substr(5, slash - 5);
    t.accessId = text.substr(slash + 1);
    return IsIndexText(t.profileId) && IsIndexText(t.accessId);
  }
  return false;
}

}  // namespace


int RunCli(int argc, const char* const* argv, std::istream& in, std::ostream& out, std::ostream& err,
           bool terminal, bool inputTerminal) {
  Session s{in, out, err, terminal, {}, {}, {}};
  CLI::App app{"Show, plan, apply and delete ACL profiles and rules on many switches at once, over SNMPv1.\n"
               "Every change is read back from the switch and compared cell by cell, and written\n"
               "to an audit log. Communities come from the environment or a secrets file named in\n"
               "the inventory, never from the command line.",
               "sentrel-acl"};
  app.require_subcommand(1);
  app.fallthrough();
  app.option_defaults()->always_capture_default();
  app.set_version_flag("--version", std::string("sentrel-acl ") + SENTREL_VERSION);
  auto* inventoryOpt = app.add_option("-i,--inventory", s.c.inventory,
                                      "Inventory file: switches, models, groups, communities\n"
                                      "(default: $SENTREL_INVENTORY)");
  auto* switchOpt = app.add_option("--switch", s.c.single.address,
                                   "One switch by its address (a.b.c.d[:port]) instead of an inventory;\n"
                                   "its communities come from the environment")
                        ->excludes(inventoryOpt);
  auto* modelOpt = app.add_option("--model", s.c.single.model, "The model of the --switch, e.g. TVR4820");
  switchOpt->needs(modelOpt);
  modelOpt->needs(switchOpt);
  app.add_option("--name", s.c.single.name, "The name of the --switch in output and the audit log (default: its address)")
      ->needs(switchOpt);
  app.add_option("--read-community-env", s.c.single.readEnv, "The environment variable holding the --switch's read community")
      ->needs(switchOpt);
  app.add_option("--write-community-env", s.c.single.writeEnv,
                 "The environment variable holding the --switch's write community")
      ->needs(switchOpt);
  app.add_option("-l,--limit", s.c.limit, "Only these switches or groups (repeat, or comma-separated)")
      ->delimiter(',')
      ->allow_extra_args(false);
  app.add_option("-t,--timeout", s.c.timeoutMs, "Wait this many ms for each answer")->check(CLI::Range(100, 60000));
  app.add_option("-p,--parallel", s.c.parallel, "Work on up to N switches at a time")->check(CLI::Range(1, 256));
  app.add_option("-r,--retries", s.c.retries,
                 "Ask a switch again when an answer is lost, up to N times: a read or read-back simply\n"
                 "again from the start; a record only after reading that its row is still absent\n"
                 "(one that landed counts as sent)")
      ->check(CLI::Range(0, 10));
  app.add_option("--state-dir", s.c.stateDir,
                 "Keep the switches' locks and owed closing requests here, a folder every operator\n"
                 "and service user who applies to these switches can write (default: $SENTREL_STATE_DIR,\n"
                 "else $XDG_STATE_HOME/sentrel; %LOCALAPPDATA%\\Sentrel on Windows)");
  app.footer(std::string("\n") + kExitText +
             "\nExamples:\n"
             "  export SENTREL_INVENTORY=site.json ACL_READ=... ACL_WRITE=...\n"
             "  sentrel-acl show --limit core\n"
             "  sentrel-acl plan desired.json\n"
             "  sentrel-acl apply desired.json\n"
             "  sentrel-acl show --json > backup.json && sentrel-acl apply --state overridden backup.json\n"
             "  SENTREL_READ_COMMUNITY=... sentrel-acl plan --json --switch 10.0.0.5 --model TVR4820 - < state.json\n");

  auto* show = app.add_subcommand("show", "Read the switches and print their profiles and rules; a rule\n"
                                          "whose profile is missing is named on stderr, not printed");
  show->add_flag("--json", s.json, "Print the desired-state format (a backup that apply restores)");

  std::string stateFile, mode = "merged";
  bool verbose = false, detailed = false, dryRun = false, assumeEmpty = false, yes = false;
  const std::map<std::string, StateMode> modes{
      {"merged", StateMode::kMerged}, {"replaced", StateMode::kReplaced}, {"overridden", StateMode::kOverridden}};
  auto addStateOptions = [&](CLI::App* cmd) {
    cmd->add_option("STATE", stateFile, "Desired-state file; - reads it from stdin")
        ->required()
        ->check(CLI::IsMember({"-"}) | CLI::ExistingFile);
    cmd->add_option("-s,--state", mode,
                    "merged: only create what is missing; replaced: also delete and create again the\n"
                    "records that differ (a replaced profile's rules go with it); overridden: also\n"
                    "delete the records the file does not name (for the ACL kinds it names)")
        ->check(CLI::IsMember({"merged", "replaced", "overridden"}));
    cmd->add_flag("-v,--verbose", verbose, "Show every SET that would go out: OID, type, value");
    cmd->add_flag("--json", s.json, "Print one JSON document (cli/schema/plan-result.schema.json) instead of tables");
  };
  auto* plan = app.add_subcommand("plan", "Read the switches and show what apply would change; sends no SET");
  addStateOptions(plan);
  plan->add_flag("--detailed-exitcode", detailed, "Exit 3 when there are changes to make");
  plan->add_flag("--assume-empty", assumeEmpty,
                 "Plan against switches taken to hold nothing: reads nothing, needs no community");
  auto* apply = app.add_subcommand("apply", "Make the switches hold what the file says, read back and verify");
  addStateOptions(apply);
  apply->add_flag("-n,--dry-run", dryRun, "Only show the plan (the same as the plan command)");
  apply->add_flag("-y,--yes", yes, "Delete and replace without asking (needed when stdin is not a terminal)");
  apply->add_option("--audit-log", s.c.auditLog,
                    "Append the audit log (JSON Lines) here instead of\n"
                    "$XDG_STATE_HOME/sentrel/audit.jsonl (%LOCALAPPDATA%\\Sentrel on Windows)");

  std::vector<std::string> records;
  bool cpu = false;
  auto* del = app.add_subcommand("delete", "Delete profiles (with their rules) or rules, after a confirmation");
  del->add_option("RECORD", records, "profile:ID or rule:PROFILE/ACCESS, e.g. profile:5 rule:5/10")->required();
  del->add_flag("--cpu", cpu, "The records are in the CPU ACL (default: the ordinary ACL)");
  del->add_flag("-y,--yes", yes, "Do not ask for confirmation");
  del->add_option("--audit-log", s.c.auditLog, "Append the audit log here (see apply)");

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    const int code = app.exit(e, out, err);
    return code == 0 ? kExitOk : kExitUsage;
  }
  // Read-only users and auditors show and plan with the read community alone.
  const bool writes = (apply->parsed() && !dryRun) || del->parsed();
  if (!s.Load(plan->parsed() && assumeEmpty ? CommunityNeed::kNone
              : writes                      ? CommunityNeed::kReadWrite
                                            : CommunityNeed::kRead))
    return kExitUsage;
  s.mode = modes.at(mode);

  if (show->parsed()) {
    std::vector<SwitchPlan> plans = s.Read(s.selected, std::vector<std::array<bool, 2>>(s.selected.size(), {true, true}), true);
    std::vector<std::pair<const SwitchEntry*, SwitchHoldings>> read;
    bool missing = false;
    for (SwitchPlan& p : plans) {
      missing = missing || !p.before.reached;
      if (!p.before.reached && s.json) err << "sentrel-acl: " << p.sw->name << ": " << p.failure << "\n";
      for (const std::string& rule : RulesWithoutProfile(p.before))
        err << "sentrel-acl: " << p.sw->name << ": " << rule << "; not shown (apply --state overridden deletes it)\n";
      read.emplace_back(p.sw, std::move(p.before));
    }
    if (s.json)
      out << HoldingsJson(read).dump(2) << "\n";
    else
      for (const auto& [sw, h] : read) ShowTable(out, *sw, h, s.c.timeoutMs);
    return missing ? kExitFailed : kExitOk;
  }

  std::vector<SwitchPlan> plans;
  if (plan->parsed() || apply->parsed()) {
    DesiredStateFile file;
    std::vector<std::string> errors;
    std::vector<const SwitchEntry*> switches;
    std::vector<std::array<bool, 2>> owners;
    // Every switch's part is built and checked before anything is sent, and dropped: it is
    // built again when the switch's turn comes, so the fleet's parts are never all held at once.
    if (file.Load(stateFile, in, s.inventory, errors))
      for (const SwitchEntry* sw : s.selected) {
        const DesiredSwitch d = file.For(*sw, errors);
        if (!d.named[0] && !d.named[1]) continue;
        switches.push_back(sw);
        owners.push_back(d.named);
      }
    for (const std::string& e : errors) err << "sentrel-acl: " << e << "\n";
    if (!errors.empty()) {
      err << "sentrel-acl: " << errors.size() << " error" << (errors.size() == 1 ? "" : "s") << "; nothing was sent\n";
      return kExitUsage;
    }
    auto planSwitch = [&](size_t i, SwitchPlan& plan) {
      std::vector<std::string> checkedAlready;
      if (plan.before.reached) PlanSwitch(file.For(*switches[i], checkedAlready), s.mode, plan);
    };
    if (apply->parsed() && !dryRun) {
      // Merged never deletes, and --yes has agreed to whatever the plans delete: each switch is
      // read, planned and written in its own worker, so a slow switch holds nobody back.
      if (yes || s.mode == StateMode::kMerged) {
        plans.resize(switches.size());
        for (size_t i = 0; i < plans.size(); ++i) plans[i].sw = switches[i];
        return s.Apply(plans, [&](size_t i) {
          s.ReadOne(plans[i], owners[i]);
          planSwitch(i, plans[i]);
        });
      }
      plans = s.Read(switches, owners, true);
      for (size_t i = 0; i < plans.size(); ++i) planSwitch(i, plans[i]);
      if (const size_t n = Deletions(plans); n > 0) {
        PrintPlan(s.json ? err : out, plans, verbose);
        if (!inputTerminal) {
          err << "sentrel-acl: the plan deletes " << Records(n)
              << " and stdin is not a terminal to ask: give --yes to go ahead; nothing was sent\n";
          return kExitUsage;
        }
        if (!Confirm(in, s.json ? err : out, "Delete or replace these " + Records(n) + "?")) {
          (s.json ? err : out) << "Nothing sent.\n";
          return kExitUsage;
        }
      }
      return s.Apply(plans);
    }
    if (assumeEmpty)
      return s.PlanEach(switches, [&](size_t i, SwitchPlan& plan) {
        plan.before.reached = true;
        plan.before.read = owners[i];
        planSwitch(i, plan);
      }, verbose, detailed);
    ClosingLedger ledger(s.StateDir());
    return s.PlanEach(switches, [&](size_t i, SwitchPlan& plan) {
      s.ReadOne(plan, owners[i]);
      if (plan.before.reached) plan.owedClosings = ledger.Owed(plan.sw->target.ip);
      planSwitch(i, plan);
    }, verbose, detailed);
  }

  // delete
  std::vector<DeleteTarget> targets;
  for (const std::string& r : records) {
    DeleteTarget t;
    if (!ParseDeleteTarget(r, cpu, t)) {
      err << "sentrel-acl: delete: \"" << r << "\" is not profile:ID or rule:PROFILE/ACCESS\n";
      return kExitUsage;
    }
    targets.push_back(t);
  }
  plans = s.Read(s.selected, std::vector<std::array<bool, 2>>(s.selected.size(), {!cpu, cpu}), true);
  size_t count = 0;
  for (SwitchPlan& p : plans) {
    if (p.before.reached) PlanDeletion(targets, p);
    count += p.items.size();
  }
  PrintPlan(out, plans, false, "Nothing to delete: no switch holds any of these records.");
  if (count == 0) return plans.empty() || std::all_of(plans.begin(), plans.end(), [](const SwitchPlan& p) {
                            return p.before.reached;
                          }) ? kExitOk : kExitFailed;
  if (!yes && !Confirm(in, out, "Delete these " + Records(count) + "?")) {
    out << "Nothing deleted.\n";
    return kExitUsage;
  }
  return s.Apply(plans);
}
