// Reading switches, planning the changes a desired state asks for, and carrying them out on
// many switches at once: on each switch the wizard's write order and closing requests (the
// core's ApplyProfiles / ApplyRules), then every change read back and compared cell by cell.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "acl/acl_audit.h"
#include "cli/desired_state.h"

enum class StateMode { kMerged, kReplaced, kOverridden };

enum class Change {
  kCreate,     // +   not on the switch
  kDelete,     // -   on the switch, not wanted
  kReplace,    // -/+ on the switch but different: deleted and created again
  kUnchanged,  // =   the switch holds it as the file says
  kKept,       // ~   different, but --state merged leaves what exists alone
};

struct PlanItem {
  Change change = Change::kCreate;
  AclOwner owner = AclOwner::kAcl;
  AclKind kind = AclKind::kProfiles;
  AclType type = AclType::kEthernet;      // of `wanted`
  AclType heldType = AclType::kEthernet;  // of `actual`: a replace may move the row to another type's table
  AclRecord wanted;       // create, replace, unchanged, kept
  AclRecord actual;       // delete, replace, unchanged, kept
  std::string protocol;   // IPv4: the protocol of the rule's profile, for naming its fields
  std::vector<size_t> differing;  // replace, kept: the cells that differ
  std::string note;       // e.g. "goes with profile 5"
  // Filled by Apply.
  bool done = false;
  bool verified = false;
  bool skipped = false;   // not sent: what it depends on failed, or the run was interrupted
  bool lost = false;      // sent, but its answer never came (it may have landed)
  bool heldDeleted = false;  // replace: the row on the switch is gone, whether or not the new one landed
  std::string failure;    // the switch's answer when it refused, or why it was skipped
};

enum class ClosingResult { kSent, kFailed, kHeldBack };

struct SwitchPlan {
  const SwitchEntry* sw = nullptr;
  SwitchHoldings before;
  SwitchHoldings after;   // Apply: as read back (the owners it changed; else `before`)
  std::vector<PlanItem> items;
  std::string failure;    // the switch as a whole (no answer, closing request refused)
  bool interrupted = false;  // Apply stopped by a signal before the plan was carried out
  bool busy = false;         // another apply held the switch: nothing read or sent
  // Closing requests an earlier apply owes this switch (its records landed, then it stopped).
  std::vector<std::pair<AclOwner, AclKind>> owedClosings;  // (an OwedClosing)
  // Filled by Apply: what became of each closing request it owed the switch.
  std::map<std::pair<AclOwner, AclKind>, ClosingResult> closings;
  double seconds = 0;
  size_t count(Change c) const;
  bool pending() const;   // anything to create or delete, or a closing request owed
  bool failed() const;    // after Apply: no answer, a refusal, or a change that did not verify
};

// The SETs of one change in the order they go out (the closing requests not included).
std::vector<SnmpBinding> ItemBindings(const SwitchEntry& sw, const PlanItem& item);
// The closing requests a plan calls for, in the order they go out: each kind it creates
// records of, and those an earlier apply owes; with the SET of each (kinds whose model has
// none are left out).
std::vector<std::pair<std::pair<AclOwner, AclKind>, SnmpBinding>> ClosingRequests(const SwitchPlan& plan);
// What the switch holds once its plan is carried out.
SwitchHoldings PlannedHoldings(const SwitchPlan& plan);

struct RunOptions {
  unsigned long timeoutMs = kSnmpTimeoutMs;
  int parallel = 10;
  int retries = 0;        // rounds for records whose answer was lost: read, then re-sent if absent;
                          // and further reads of a read-back that failed
  // Asked before each request that starts something new: true stops the apply, which
  // finishes the request in flight and the closing request of what already landed.
  std::function<bool()> stop;
  // Per switch, from its worker thread: a short status ("reading", "applying 3/20", "done").
  std::function<void(size_t index, const std::string& status)> progress;
};

// Whether the switch answers at all (one GetNext into its ACL MIB).
bool SwitchAnswers(const AclTarget& target, unsigned long timeoutMs);
// Reads the owners asked for (both when `owners` is {true, true}). A table cut short leaves
// the switch unread (`reached` false, `cut` saying where). A failed read is asked again up to
// `retries` times: reading does no harm.
SwitchHoldings ReadSwitch(const SwitchEntry& sw, std::array<bool, 2> owners, unsigned long timeoutMs,
                          int retries = 0);
// Why a switch was not read, for messages: no answer at all, or where its read was cut.
std::string NotReadText(const SwitchHoldings& h, unsigned long timeoutMs);

// The plan of one switch for a desired state.
void PlanSwitch(const DesiredSwitch& desired, StateMode mode, SwitchPlan& plan);
// The plan of a deletion: profiles (with their rules) or rules by key.
struct DeleteTarget {
  AclOwner owner = AclOwner::kAcl;
  std::string profileId, accessId;  // accessId "" for a profile
};
void PlanDeletion(const std::vector<DeleteTarget>& targets, SwitchPlan& plan);

// Runs `work` for every index in up to `parallel` threads.
void ForEachParallel(size_t count, int parallel, const std::function<void(size_t)>& work);

// Hands every SET's outcome to the switch's ApplySwitch (install it as, or inside, the
// process-wide write observer while switches are applied).
void CollectSetOutcome(const AclWriteEvent& event);

// Carries out one switch's plan and reads it back.
void ApplySwitch(SwitchPlan& plan, const RunOptions& options, size_t index);

// The table a record lives in on the switch's model.
std::optional<AclTableLayout> TableOf(const SwitchEntry& sw, const PlanItem& item);
