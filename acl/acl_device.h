// Reading a switch's ACL tables into records and summary lines, and writing
// records, deletions and the closing request. Every request goes through SnmpSet / SnmpWalk
// (one request at a time, 3 s each). Progress, result words and the deletion of staged files reach the caller through
// callbacks, so the wizard's pages and the tests share one implementation. Portable.
#pragma once

#include <array>
#include <atomic>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "acl/acl_mib.h"
#include "acl/acl_record.h"

// One selected switch (`ACLTarget`).
struct AclTarget {
  std::string ip;
  std::string readCommunity;
  std::string writeCommunity;
  std::string typeText;
};

// --- reading ---------------------------------------------------------------------------------

// One line of the visible summary list: profile ID, type word and owner word ("ACL" /
// "CPU ACL"); for rules also the Access ID.
struct AclSummaryLine {
  std::string profileId;
  std::string accessId;
  std::string typeWord;
  std::string ownerWord;
};

// A table whose walk ended before the table's end (no answer, an error status, a looping
// agent, a stop): the rows before it were read, the rest is unknown.
struct AclTableCut {
  AclOwner owner = AclOwner::kAcl;
  AclKind kind = AclKind::kProfiles;
  AclType type = AclType::kEthernet;
  SnmpWalkResult walk;  // its rows read and how the walk ended
};

struct AclReadResult {
  std::array<AclRecordList, 4> records;  // by AclType: the hidden lists
  std::vector<AclSummaryLine> lines;     // the visible list, in reading order
  // The first table not read to its end. The wizard's pages show what was read either way;
  // whoever changes a switch from what it read must not take a cut table for the whole one.
  std::optional<AclTableCut> cut;
  bool complete() const { return !cut; }
};

// Called once per row as it arrives (a page inserts it into its lists); may be empty.
using AclRowSink = std::function<void(AclType type, const AclRecord& record, const AclSummaryLine& line)>;

struct AclReadOptions {
  unsigned long timeoutMs = kSnmpTimeoutMs;
  // Cooperative stop: a page that is left sets it; checked before each table and after each
  // answer, so a walk in progress ends at its next answer and sends no further request.
  const std::atomic<bool>* stop = nullptr;
  AclRowSink sink;
};

// Walks the profile tables of the model and owner in the order Ethernet, IPv4, IPv6, packet
// content (only those the model offers). An unknown or unsupported model reads nothing.
AclReadResult ReadProfiles(const AclTarget& target, AclOwner owner, const AclReadOptions& options = {});
// Walks one rule table of the model and owner.
AclReadResult ReadRules(const AclTarget& target, AclOwner owner, AclType ruleType,
                        const AclReadOptions& options = {});
// Walks one table given its layout (the two above use it); a walk that ends early sets
// `out.cut` unless an earlier table already did.
void ReadTable(const AclTarget& target, const ModelEntry& model, const AclTableLayout& table,
               const AclReadOptions& options, AclReadResult& out);

// The profile IDs 1..count not used by `profiles` (all four lists): on an empty switch, all.
std::vector<int> FreeProfileIds(const AclReadResult& profiles, int count);

// --- writing ---------------------------------------------------------------------------------

// The bindings that SetRecord sends for a record (instance suffix, left-out cells, encodings).
// Empty when the record cannot be sent: its profile ID (and Access ID for rules) is not a
// decimal number, or a profile flag is empty, so bad input never reaches a switch.
std::vector<SnmpBinding> RecordBindings(const ModelEntry& model, const AclTableLayout& table,
                                        const AclRecord& record);

// One SET with every column of the record and row status 4. Returns true when answered with
// error status 0. A record that cannot be sent (see RecordBindings) returns false unsent.
bool SetRecord(const AclTarget& target, const AclTableLayout& table, const AclRecord& record,
               unsigned long timeoutMs = kSnmpTimeoutMs);
// The same for a target whose model the caller has already looked up (the apply, once per target).
bool SetRecord(const AclTarget& target, const ModelEntry& model, const AclTableLayout& table,
               const AclRecord& record, unsigned long timeoutMs = kSnmpTimeoutMs);

// One SET of INTEGER 6 to the row-status column + ".profileId" (+ ".accessId" for rules).
// Refused unsent (false) when the IDs are not decimal numbers (a delete without a selected
// row never reaches the switch). Returns whether it was answered with error status 0.
bool DeleteRow(const AclTarget& target, const std::string& rowStatusColumnOid,
               const std::string& profileId, const std::string& accessId = {},
               unsigned long timeoutMs = kSnmpTimeoutMs);
// The row-status column OID of the model's table (the modify pages delete through it); "" if none.
std::string RowStatusColumnOid(const ModelEntry& model, AclOwner owner, AclKind kind, AclType type);

// The closing request of the target's model for owner and kind: the switch keeps the new
// rows only after it.
SnmpSetResult SendClosingRequest(const AclTarget& target, AclOwner owner, AclKind kind,
                                 unsigned long timeoutMs = kSnmpTimeoutMs);
SnmpSetResult SendClosingRequest(const AclTarget& target, const ModelEntry& model, AclOwner owner,
                                 AclKind kind, unsigned long timeoutMs = kSnmpTimeoutMs);

// The result word of a target by confirmation page, owner and outcome.
// `deviceOk` false gives "Fail" (no closing request was sent); otherwise the closing answer
// decides: no error "Succeed" ("Success" for CPU-ACL profiles), error "Fail", no answer "fail"
// ("Fail" for ordinary-ACL rules).
const char* ApplyResultWord(AclKind kind, AclOwner owner, bool deviceOk, const SnmpSetResult& closing);

struct AclApplyCallbacks {
  std::function<void(int position)> progress;                          // 0..100
  std::function<void(size_t target, const char* word)> result;         // per target, in order
  std::function<void()> deleteStaged;                                  // the group's staging files
  std::function<void(size_t target, AclType type, size_t record, bool ok)> recordSent;  // optional
  // Optional, asked before each record: true sends no further record. The records already
  // sent still get their closing request when every one of them succeeded.
  std::function<bool()> stop;
};

// Apply: for every target in order, the lists the model offers for the owner in the
// order Ethernet, IPv4, IPv6, packet content, one SetRecord per record with the progress
// formula, then the closing request when every record succeeded, and the result word; at the
// end the staged files of the group are deleted. `lists` is indexed by AclType; a packet-content
// list holds records in the model's shape (as its staging file holds them).
void ApplyProfiles(const std::vector<AclTarget>& targets, AclOwner owner,
                   const std::array<AclRecordList, 4>& lists, const AclApplyCallbacks& callbacks,
                   unsigned long timeoutMs = kSnmpTimeoutMs);
void ApplyRules(const std::vector<AclTarget>& targets, AclOwner owner,
                const std::array<AclRecordList, 4>& lists, const AclApplyCallbacks& callbacks,
                unsigned long timeoutMs = kSnmpTimeoutMs);
