// Every SET that changes a switch (a record created, a row destroyed, the closing request)
// passes through AuditedSnmpSet, which tells an observer before the request goes out and once
// its outcome is known. The wizard and sentrel-acl give it the same audit log, a JSON Lines
// file that is only ever appended to. Communities never reach the observer. Portable.
#pragma once

#include <cstdio>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "acl/acl_device.h"

enum class AclWriteOp { kCreate, kDelete, kClose };

struct AclWriteEvent {
  const AclTarget& target;
  AclWriteOp op;
  AclOwner owner;        // kCreate, kClose; kDelete when the caller knows it
  AclKind kind;          // profiles or rules
  std::string_view profileId;  // "" for the closing request
  std::string_view accessId;   // rules only
  const std::vector<SnmpBinding>& bindings;
  const SnmpSetResult* outcome;  // nullptr: the request is about to go out
};

using AclWriteObserver = std::function<void(const AclWriteEvent&)>;

// Installs the process-wide observer (an empty one removes it). Observers run on the thread
// that sends, so one used by parallel appliers must be thread-safe.
void SetAclWriteObserver(AclWriteObserver observer);

// SnmpSet with the observer told before and after.
SnmpSetResult AuditedSnmpSet(const AclTarget& target, AclWriteOp op, AclOwner owner, AclKind kind,
                             std::string_view profileId, std::string_view accessId,
                             const std::vector<SnmpBinding>& bindings, unsigned long timeoutMs);

// The owner of a table by its column OID (the CPU ACL's tables lie under 12.9.4 and 12.9.5).
AclOwner OwnerOfColumn(std::string_view columnOid);

// "create", "delete", "close"; "ok", "error <status> at <index>", "no answer".
const char* WriteOpWord(AclWriteOp op);
std::string OutcomeWord(const SnmpSetResult& r);

// The JSON Lines audit log: one line per request and one per outcome, with the time (UTC),
// the operator, the switch's name, address and model, the operation, the record, every OID
// with its type and value, and the result. Thread-safe; each line is written and flushed
// whole, so parallel appliers never interleave inside a line.
class AclAuditLog {
 public:
  // `switchName` names a switch by its address ("" leaves the name out).
  AclAuditLog(std::string path, std::function<std::string(const AclTarget&)> switchName = {});
  ~AclAuditLog();
  AclAuditLog(const AclAuditLog&) = delete;
  AclAuditLog& operator=(const AclAuditLog&) = delete;

  // Opens (creating the folder) for appending; false with a reason when it cannot.
  bool Open(std::string& error);
  void Write(const AclWriteEvent& event);
  // The outcome of a switch's whole run where it ended before its requests did (e.g.
  // "interrupted"), with a detail such as how many changes were sent.
  void WriteSwitchOutcome(const AclTarget& target, std::string_view result, std::string_view detail);
  // An observer that writes to this log (install it with SetAclWriteObserver).
  AclWriteObserver Observer();
  const std::string& path() const { return path_; }
  // The operator's name as every line of this log gives it (safe from any thread).
  const std::string& user() const { return user_; }

 private:
  void Append(const std::string& line);  // whole and flushed
  std::string path_;
  std::function<std::string(const AclTarget&)> switchName_;
  std::string user_;  // looked up once: without USER set it reads the password database
  std::FILE* file_ = nullptr;
  std::mutex mutex_;
};

// The default log: $XDG_STATE_HOME/sentrel/audit.jsonl, else ~/.local/state/sentrel/audit.jsonl;
// on Windows %LOCALAPPDATA%\Sentrel\audit.jsonl. "" when none of these is known.
std::string DefaultAuditLogPath();
// The time as the audit log writes it: UTC, ISO 8601 with milliseconds.
std::string UtcNow();
// The operator's user name from the environment (USER, LOGNAME, USERNAME), "unknown" else.
std::string OperatorName();
// A binding as net-snmp tools name its type ("INTEGER", "Hex-STRING", "STRING", "IpAddress")
// and its value (decimal, upper-case hex bytes joined by blanks, the text, dotted).
const char* BindingTypeWord(const SnmpBinding& binding);
std::string BindingValueText(const SnmpBinding& binding);
// A text as a JSON string literal (quotes, backslash, control characters escaped; other bytes
// as they are).
std::string JsonQuote(std::string_view text);
