// What sentrel-acl keeps per switch between runs, in the folder of the default audit log: a
// lock file while an apply works on the switch (one apply per switch at a time, across
// processes), and the closing requests an apply still owes a switch whose records landed
// before it stopped (Ctrl-C, a kill, a closing request without an answer).
#pragma once

#include <mutex>
#include <set>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "acl/acl_audit.h"

// $SENTREL_STATE_DIR, else the default audit log's folder: $XDG_STATE_HOME/sentrel
// (%LOCALAPPDATA%\Sentrel on Windows); "" when none is known.
std::string StateFolder();

class SwitchLock {
 public:
  SwitchLock() = default;
  SwitchLock(const SwitchLock&) = delete;
  SwitchLock& operator=(const SwitchLock&) = delete;
  ~SwitchLock();
  // Takes the switch's lock without waiting; false with a message naming the holder. `user`
  // is looked up once by the caller: the password database is not safe from many threads.
  bool Acquire(const std::string& folder, const std::string& address, const std::string& user, std::string& error);

 private:
#ifdef _WIN32
  void* handle_ = nullptr;
#else
  int fd_ = -1;
#endif
};

using OwedClosing = std::pair<AclOwner, AclKind>;
// "acl profiles", "cpu_acl rules", ...
const char* OwedClosingName(const OwedClosing& owed);

class ClosingLedger {
 public:
  explicit ClosingLedger(std::string folder) : folder_(std::move(folder)) {}
  std::vector<OwedClosing> Owed(const std::string& address);
  // A record request makes its kind's closing request owed until a closing request is
  // answered: what stays owed is a batch cut short by a kill, an interruption or a lost
  // answer. A refused record settles it too: the apply rightly holds the closing request back
  // for a partly refused batch, and the next apply sends the record again with its own.
  // Thread-safe (an observer of every SET).
  void Observe(const AclWriteEvent& event);

 private:
  // By the switch's canonical name (its endpoint), not the address as written.
  std::set<OwedClosing>& Load(const std::string& key);
  void Save(const std::string& key, const std::set<OwedClosing>& owed);
  std::string folder_;
  std::mutex mutex_;
  std::map<std::string, std::set<OwedClosing>> owed_;
  std::map<std::string, std::set<OwedClosing>> refused_;  // a record of the batch was refused
};
