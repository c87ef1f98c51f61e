// The desired-state file: for switches and groups of the inventory, the profiles of the
// ordinary ACL ("acl") and the CPU ACL ("cpu_acl"), each with its rules. Every record is
// checked against the switch's model with the core's checks and built by the core, as the
// wizard's pages build it; and the same format is what `show --json` prints.
#pragma once

#include <array>
#include <iosfwd>
#include <string>
#include <vector>

#include "cli/inventory.h"
#include "cli/json_fields.h"

struct DesiredRule {
  AclRecord record;
};
struct DesiredProfile {
  AclType type = AclType::kEthernet;
  AclRecord record;
  std::string protocol;  // IPv4 profiles: the protocol code its rules match on
  std::vector<DesiredRule> rules;
};
struct DesiredSwitch {
  const SwitchEntry* sw = nullptr;
  std::array<bool, 2> named{};  // [owner - 1]: the file names this ACL kind for the switch
  std::array<std::vector<DesiredProfile>, 2> profiles;
};

// A desired-state file read once and its switch and group names checked against the
// inventory; each switch's part is built when asked, so that a command working through a fleet
// holds the parts of the switches in work only, not of the whole fleet.
class DesiredStateFile {
 public:
  // Reads the file (`path` "-": `input`) and checks its names; false with the errors appended
  // when it cannot be used.
  bool Load(const std::string& path, std::istream& input, const Inventory& inventory,
            std::vector<std::string>& errors);
  // One switch's part: its groups' sections in the inventory's order, then its own (a later
  // profile with the same ID replaces an earlier one). Every error ("file: $.path: message") is
  // appended; the part is only used when there is none. Safe from several threads at once.
  DesiredSwitch For(const SwitchEntry& sw, std::vector<std::string>& errors) const;

 private:
  std::string path_;
  Json json_;
};

// What one switch holds, as read: per owner and type, the profiles and the rules.
struct AclHoldings {
  std::array<AclRecordList, 4> profiles, rules;
};
struct SwitchHoldings {
  // Answered, and every table asked for read to its end: only then is this what it holds.
  bool reached = false;
  // It answered, but a table's walk ended early: what happened ("" otherwise).
  std::string cut;
  std::array<bool, 2> read{};           // [owner - 1]
  std::array<AclHoldings, 2> acls;      // [owner - 1]
};

// The protocol code of an IPv4 profile record ("1" for other types).
std::string ProtocolOfProfile(AclType type, const AclRecord& profile);
// One profile (with its rules) or rule as the desired-state file writes it.
Json ProfileJson(const SwitchEntry& sw, AclOwner owner, AclType type, const AclRecord& profile);
Json RuleJson(const SwitchEntry& sw, AclOwner owner, AclType type, const AclRecord& rule,
              const std::string& protocol);
// The rules a switch holds without a profile of their ID and type (left by hand or by a
// failed deletion): the file format nests rules in profiles, so `show` names them instead,
// e.g. "acl rule 9/3 (ipv4) has no ipv4 profile 9".
std::vector<std::string> RulesWithoutProfile(const SwitchHoldings& h);
// One switch's entry under "switches" in that format: the ACL kinds read, their profiles with
// their rules.
Json SwitchJson(const SwitchEntry& sw, const SwitchHoldings& h);
// The file `show --json` prints for the switches read.
Json HoldingsJson(const std::vector<std::pair<const SwitchEntry*, SwitchHoldings>>& switches);
