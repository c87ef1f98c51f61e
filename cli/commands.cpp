#include "cli/commands.h"

#include <CLI/CLI.hpp>
#include <chrono>
#include <iomanip>
#include <iostream>
#include <map>
#include <memory>
#include <mutex>
#include <sstream>
#include <unordered_map>

#include "acl/acl_audit.h"
#include "cli/engine.h"

namespace {

constexpr const char* kExitText =
    "Exit status:\n"
    "  0  done and every change verified by reading it back, or nothing to do\n"
    "  1  bad arguments, an inventory or state file that cannot be read or is invalid\n"
    "     (nothing is sent), or a deletion not confirmed\n"
    "  2  a switch did not answer, refused a request, or did not read back as written\n"
    "  3  plan --detailed-exitcode only: changes pending\n";

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
  return s + " (" + TypeName(i.type) + ")";
}

Json ItemJson(const SwitchEntry& sw, const PlanItem& i, const AclRecord& r) {
  Json j = i.kind == AclKind::kProfiles ? ProfileJson(sw, i.owner, i.type, r) : RuleJson(sw, i.owner, i.type, r, i.protocol);
  j.erase("id");
  j.erase("access_id");
  j.erase("type");
  return j;
}

// The fields that differ, as "name: switch -> file".
std::string FieldChanges(const SwitchEntry& sw, const PlanItem& i) {
  const Json have = ItemJson(sw, i, i.actual), want = ItemJson(sw, i, i.wanted);
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
  auto line = [&](const SnmpBinding& b) {
    out << "      SET " << b.oid << " = " << BindingTypeWord(b) << ": " << BindingValueText(b) << "\n";
  };
  if (i.change == Change::kDelete || i.change == Change::kReplace)
    line(SnmpBinding::Integer(InstanceOid(RowStatusColumnOid(*sw.model, i.owner, i.kind, i.type), i.actual[0],
                                          i.kind == AclKind::kRules ? i.actual[1] : ""),
                              kRowStatusDestroy));
  if (i.change == Change::kCreate || i.change == Change::kReplace)
    if (auto table = TableOf(sw, i))
      for (const SnmpBinding& b : RecordBindings(*sw.model, *table, i.wanted)) line(b);
}

// Per-switch progress: redrawn in place on a terminal, plain lines when a switch changes phase
// otherwise.
class Progress {
 public:
  Progress(std::ostream& err, const std::vector<SwitchPlan>& plans, bool terminal, bool plain)
      : err_(err), terminal_(terminal), plain_(plain), status_(plans.size()) {
    for (const SwitchPlan& p : plans) names_.push_back(p.sw->name);
    for (const std::string& n : names_) width_ = std::max(width_, n.size());
    if (terminal_) Draw(false);
  }
  void Update(size_t i, const std::string& status) {
    std::lock_guard<std::mutex> lock(mutex_);
    // "applying 3/20" is one phase however far it has gone.
    auto phaseOf = [](const std::string& t) { return t.rfind("applying", 0) == 0 ? std::string("applying") : t; };
    const std::string phase = phaseOf(status), old = phaseOf(status_[i]);
    status_[i] = status;
    if (terminal_) Draw(true);
    else if (plain_ && phase != old) err_ << names_[i] << ": " << phase << "\n" << std::flush;
  }

 private:
  void Draw(bool again) {
    if (again) err_ << "\x1b[" << names_.size() << "A";
    for (size_t i = 0; i < names_.size(); ++i)
      err_ << "\x1b[2K  " << std::left << std::setw(static_cast<int>(width_)) << names_[i] << "  "
           << (status_[i].empty() ? "waiting" : status_[i]) << "\n";
    err_ << std::flush;
  }
  std::ostream& err_;
  bool terminal_, plain_;
  std::vector<std::string> names_, status_;
  size_t width_ = 0;
  std::mutex mutex_;
};

// The counts under a plan, summed over the switches.
struct PlanCounts {
  size_t create = 0, remove = 0, replace = 0, same = 0, kept = 0;
  void add(const SwitchPlan& p) {
    create += p.count(Change::kCreate);
    remove += p.count(Change::kDelete);
    replace += p.count(Change::kReplace);
    same += p.count(Change::kUnchanged);
    kept += p.count(Change::kKept);
  }
  void print(std::ostream& out) const {
    if (create + remove + replace == 0)
      out << "\nNo changes. The switches hold what the file says.\n";
    else
      out << "\nPlan: " << create << " to create, " << remove << " to delete, " << replace << " to replace, " << same
          << " unchanged" << (kept ? ", " + std::to_string(kept) + " kept as they are" : std::string()) << ".\n";
  }
};

std::string PlanText(const SwitchPlan& p, bool verbose) {
  std::ostringstream out;
  const SwitchEntry& sw = *p.sw;
  out << sw.name << " (" << sw.target.ip << ", " << sw.target.typeText << ")";
  if (!p.failure.empty()) {
    out << ": " << p.failure << "\n";
    return out.str();
  }
  out << (p.items.empty() ? ": nothing named for this switch\n" : "\n");
  for (const PlanItem& i : p.items) {
    out << "  " << std::left << std::setw(3) << Mark(i.change) << " " << RecordName(i);
    if (i.change == Change::kCreate) out << ": " << FieldsSummary(ItemJson(sw, i, i.wanted));
    if (i.change == Change::kReplace || i.change == Change::kKept) out << ": " << FieldChanges(sw, i);
    if (i.change == Change::kKept) out << " (kept: --state replaced would replace it)";
    if (!i.note.empty()) out << "; " << i.note;
    out << "\n";
    if (verbose) PrintSets(out, sw, i);
  }
  return out.str();
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
  size_t switches = 0, created = 0, deleted = 0, same = 0, failed = 0, verified = 0, changes = 0, badSwitches = 0;
  void print(std::ostream& out) const {
    out << "Total: " << switches << " switch" << (switches == 1 ? "" : "es") << ", " << badSwitches
        << " failed; created=" << created << " deleted=" << deleted << " unchanged=" << same << " failed=" << failed
        << " verified=" << verified << "/" << changes << "\n";
  }
};

// One switch's recap lines (names padded to `width`); adds its counts to `counts`.
std::string RecapText(const SwitchPlan& p, size_t width, RecapCounts& counts) {
  std::ostringstream out;
  size_t c = 0, d = 0, f = 0, v = 0, n = 0;
  for (const PlanItem& i : p.items) {
    if (i.change == Change::kUnchanged || i.change == Change::kKept) continue;
    ++n;
    if (i.done && i.change != Change::kDelete) ++c;
    if (i.done && i.change == Change::kDelete) ++d;
    if (i.change == Change::kReplace && i.done) ++d;
    if (!i.failure.empty() || !i.done) ++f;
    if (i.verified) ++v;
  }
  if (!p.before.reached) f = 0;
  const bool bad = !p.failure.empty() || f > 0 || v < n;
  out << std::left << std::setw(static_cast<int>(width)) << p.sw->name << "  " << std::setw(6)
      << (bad ? "FAILED" : "ok") << "  created=" << c << " deleted=" << d
      << " unchanged=" << p.count(Change::kUnchanged) << " failed=" << f << " verified=" << v << "/" << n;
  char secs[32];
  std::snprintf(secs, sizeof secs, "  %.2fs", p.seconds);
  out << secs << "\n";
  if (!p.failure.empty()) out << "    " << p.failure << "\n";
  for (const PlanItem& i : p.items)
    if (!i.failure.empty()) {
      out << "    " << Mark(i.change) << " " << RecordName(i) << ": " << i.failure << "\n";
      const AclRecord& r = i.change == Change::kDelete ? i.actual : i.wanted;
      out << "      record: " << FieldsSummary(ItemJson(*p.sw, i, r)) << "\n";
    }
  ++counts.switches;
  counts.badSwitches += bad;
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
  std::vector<std::string> limit;
  unsigned long timeoutMs = kSnmpTimeoutMs;
  int parallel = 10;
  std::string auditLog;
};

struct Session {
  std::istream& in;
  std::ostream& out;
  std::ostream& err;
  bool terminal;
  Common c;
  Inventory inventory;
  std::vector<const SwitchEntry*> selected;

  bool Load() {
    std::string error;
    if (!LoadInventory(c.inventory, inventory, error) || !SelectSwitches(inventory, c.limit, selected, error)) {
      err << "sentrel-acl: " << error << "\n";
      return false;
    }
    return true;
  }

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
      if (p) p->Update(i, plans[i].before.reached ? "read" : "no answer");
    });
    return plans;
  }

  void ReadOne(SwitchPlan& plan, std::array<bool, 2> owners) {
    const auto start = std::chrono::steady_clock::now();
    plan.before = ReadSwitch(*plan.sw, owners, c.timeoutMs);
    plan.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    if (!plan.before.reached) plan.failure = "no answer within " + std::to_string(c.timeoutMs) + " ms";
  }

  void PrintPlan(const std::vector<SwitchPlan>& plans, bool verbose) {
    PlanCounts counts;
    for (const SwitchPlan& p : plans) {
      out << PlanText(p, verbose);
      counts.add(p);
    }
    counts.print(out);
  }

  // Reads and plans every switch in the workers; each switch's plan is printed in inventory
  // order as soon as those before it are, and its records are dropped once its text is made,
  // so memory follows --parallel, not the size of the fleet. Exit status.
  int PlanEach(const std::vector<const SwitchEntry*>& switches,
               const std::function<void(size_t, SwitchPlan&)>& planOne, bool verbose, bool detailed) {
    std::vector<SwitchPlan> names(switches.size());
    for (size_t i = 0; i < switches.size(); ++i) names[i].sw = switches[i];
    std::unique_ptr<Progress> p;
    if (terminal) p = std::make_unique<Progress>(err, names, true, false);
    InOrderOutput texts(out, p != nullptr);  // a terminal's progress lines are redrawn meanwhile
    std::mutex countsMutex;
    PlanCounts counts;
    bool pending = false, unreachable = false;
    ForEachParallel(switches.size(), c.parallel, [&](size_t i) {
      const SnmpSocketScope oneSocketPerSwitch;
      SwitchPlan plan;
      plan.sw = switches[i];
      if (p) p->Update(i, "reading");
      planOne(i, plan);
      if (p) p->Update(i, plan.before.reached ? "read" : "no answer");
      texts.put(i, PlanText(plan, verbose));
      std::lock_guard<std::mutex> lock(countsMutex);
      counts.add(plan);
      pending = pending || plan.pending();
      unreachable = unreachable || !plan.before.reached;
    });
    texts.finish();
    counts.print(out);
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
    std::string error;
    if (!audit.Open(error)) {
      err << "sentrel-acl: " << error << "\n";
      return kExitUsage;
    }
    SetAclWriteObserver([&audit](const AclWriteEvent& e) {
      audit.Write(e);
      CollectSetOutcome(e);
    });
    Progress progress(err, plans, terminal, true);
    RunOptions options;
    options.timeoutMs = c.timeoutMs;
    options.progress = [&](size_t i, const std::string& s) { progress.Update(i, s); };
    size_t width = 0;
    for (const SwitchPlan& p : plans) width = std::max(width, p.sw->name.size());
    InOrderOutput recap(out, true);  // after the progress lines
    std::mutex countsMutex;
    RecapCounts counts;
    ForEachParallel(plans.size(), c.parallel, [&](size_t i) {
      {
        const SnmpSocketScope oneSocketPerSwitch;  // reading, writing and reading back
        if (prepare) {
          options.progress(i, "reading");
          prepare(i);
        }
        if (plans[i].before.reached) ApplySwitch(plans[i], options, i);
        else options.progress(i, "no answer");
      }
      // Only the recap's lines outlive the switch's work.
      std::lock_guard<std::mutex> lock(countsMutex);
      recap.put(i, RecapText(plans[i], width, counts));
      SwitchPlan done;
      done.sw = plans[i].sw;
      plans[i] = std::move(done);
    });
    SetAclWriteObserver(nullptr);
    out << "\n";
    recap.finish();
    counts.print(out);
    return counts.badSwitches > 0 ? kExitFailed : kExitOk;
  }
};

void ShowTable(std::ostream& out, const SwitchEntry& sw, const SwitchHoldings& h, unsigned long timeoutMs) {
  out << sw.name << "  " << sw.target.ip << "  " << sw.target.typeText;
  if (!h.reached) {
    out << "  no answer within " << timeoutMs << " ms\n\n";
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
           bool terminal) {
  Session s{in, out, err, terminal, {}, {}, {}};
  CLI::App app{"Show, plan, apply and delete ACL profiles and rules on many switches at once, over SNMPv1.\n"
               "Every change is read back from the switch and compared cell by cell, and written\n"
               "to an audit log. Communities come from the environment or a secrets file named in\n"
               "the inventory, never from the command line.",
               "sentrel-acl"};
  app.require_subcommand(1);
  app.fallthrough();
  app.option_defaults()->always_capture_default();
  app.add_option("-i,--inventory", s.c.inventory, "Inventory file: switches, models, groups, communities")
      ->required()
      ->envname("SENTREL_INVENTORY");
  app.add_option("-l,--limit", s.c.limit, "Only these switches or groups (repeat, or comma-separated)")
      ->delimiter(',')
      ->allow_extra_args(false);
  app.add_option("-t,--timeout", s.c.timeoutMs, "Wait this many ms for each answer")->check(CLI::Range(100, 60000));
  app.add_option("-p,--parallel", s.c.parallel, "Work on up to N switches at a time")->check(CLI::Range(1, 256));
  app.footer(std::string("\n") + kExitText +
             "\nExamples:\n"
             "  export SENTREL_INVENTORY=site.json ACL_READ=... ACL_WRITE=...\n"
             "  sentrel-acl show --limit core\n"
             "  sentrel-acl plan desired.json\n"
             "  sentrel-acl apply desired.json\n"
             "  sentrel-acl show --json > backup.json && sentrel-acl apply --state overridden backup.json\n");

  bool json = false;
  auto* show = app.add_subcommand("show", "Read the switches and print their profiles and rules; a rule\n"
                                          "whose profile is missing is named on stderr, not printed");
  show->add_flag("--json", json, "Print the desired-state format (a backup that apply restores)");

  std::string stateFile, mode = "merged";
  bool verbose = false, detailed = false, dryRun = false;
  const std::map<std::string, StateMode> modes{
      {"merged", StateMode::kMerged}, {"replaced", StateMode::kReplaced}, {"overridden", StateMode::kOverridden}};
  auto addStateOptions = [&](CLI::App* cmd) {
    cmd->add_option("STATE", stateFile, "Desired-state file")->required()->check(CLI::ExistingFile);
    cmd->add_option("-s,--state", mode,
                    "merged: only create what is missing; replaced: also delete and create again the\n"
                    "records that differ (a replaced profile's rules go with it); overridden: also\n"
                    "delete the records the file does not name (for the ACL kinds it names)")
        ->check(CLI::IsMember({"merged", "replaced", "overridden"}));
    cmd->add_flag("-v,--verbose", verbose, "Show every SET that would go out: OID, type, value");
  };
  auto* plan = app.add_subcommand("plan", "Read the switches and show what apply would change; sends no SET");
  addStateOptions(plan);
  plan->add_flag("--detailed-exitcode", detailed, "Exit 3 when there are changes to make");
  auto* apply = app.add_subcommand("apply", "Make the switches hold what the file says, read back and verify");
  addStateOptions(apply);
  apply->add_flag("-n,--dry-run", dryRun, "Only show the plan (the same as the plan command)");
  apply->add_option("--audit-log", s.c.auditLog,
                    "Append the audit log (JSON Lines) here instead of\n"
                    "$XDG_STATE_HOME/sentrel/audit.jsonl (%LOCALAPPDATA%\\Sentrel on Windows)");

  std::vector<std::string> records;
  bool cpu = false, yes = false;
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
  if (!s.Load()) return kExitUsage;

  if (show->parsed()) {
    std::vector<SwitchPlan> plans = s.Read(s.selected, std::vector<std::array<bool, 2>>(s.selected.size(), {true, true}), true);
    std::vector<std::pair<const SwitchEntry*, SwitchHoldings>> read;
    bool missing = false;
    for (SwitchPlan& p : plans) {
      missing = missing || !p.before.reached;
      if (!p.before.reached && json) err << "sentrel-acl: " << p.sw->name << ": " << p.failure << "\n";
      for (const std::string& rule : RulesWithoutProfile(p.before))
        err << "sentrel-acl: " << p.sw->name << ": " << rule << "; not shown (apply --state overridden deletes it)\n";
      read.emplace_back(p.sw, std::move(p.before));
    }
    if (json)
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
    if (file.Load(stateFile, s.inventory, errors))
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
    auto planOne = [&](size_t i, SwitchPlan& plan) {
      s.ReadOne(plan, owners[i]);
      std::vector<std::string> checkedAlready;
      if (plan.before.reached) PlanSwitch(file.For(*switches[i], checkedAlready), modes.at(mode), plan);
    };
    if (apply->parsed() && !dryRun) {
      plans.resize(switches.size());
      for (size_t i = 0; i < plans.size(); ++i) plans[i].sw = switches[i];
      return s.Apply(plans, [&](size_t i) { planOne(i, plans[i]); });
    }
    return s.PlanEach(switches, planOne, verbose, detailed);
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
  s.PrintPlan(plans, false);
  if (count == 0) return plans.empty() || std::all_of(plans.begin(), plans.end(), [](const SwitchPlan& p) {
                            return p.before.reached;
                          }) ? kExitOk : kExitFailed;
  if (!yes) {
    out << "Delete these " << count << " record" << (count == 1 ? "" : "s") << "? Only 'yes' goes ahead: " << std::flush;
    std::string answer;
    std::getline(in, answer);
    if (answer != "yes") {
      out << "Nothing deleted.\n";
      return kExitUsage;
    }
  }
  return s.Apply(plans);
}
