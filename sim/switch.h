// One simulated switch: an SNMPv1 agent over an in-memory, ordered MIB store, driven by the
// model's definitions (mib.h). Pure logic: a request datagram in, an answer datagram (or
// nothing) out, so the tests and the fuzzer drive it without sockets.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "sim/mib.h"
#include "snmp/ber.h"

namespace sim {

struct Faults {
  bool silent = false;               // answer nothing at all
  int delayMs = 0;                   // answer every request this much later
  std::set<uint64_t> refuseSets;     // the n-th SET requests (1-based) are refused ...
  int32_t refuseStatus = snmp::kGenErr;  // ... with this error status (error-index 1)
  std::set<uint64_t> dropSets;       // the n-th SET requests get no answer (nothing applied)
  std::set<uint64_t> dropGets;       // the n-th Get/GetNext requests get no answer (a lossy link)
  bool readOnlyAsNoSuchName = false; // SET on a read-only object: noSuchName like net-snmp
};

struct SwitchConfig {
  std::string address;               // dotted IPv4 text
  uint16_t port = 161;
  std::string model;                 // a catalogue text with a MIB, or "replay"
  std::string readCommunity = "public";
  std::string writeCommunity = "private";  // empty: no SET is accepted (all dropped)
  Faults faults;
  std::vector<std::string> dumpFiles;  // walk dumps preloaded into the store
};

// What a SET did, for the log.
struct SetEvent {
  const SwitchConfig* config = nullptr;
  uint64_t number = 0;               // 1-based count of SET requests received
  std::vector<snmp::VarBind> varbinds;
  int32_t errorStatus = 0;
  int32_t errorIndex = 0;
  bool dropped = false;              // drop-set fault: no answer
  std::chrono::steady_clock::time_point time;  // when the request arrived (pauses between SETs show)
};

class Switch {
 public:
  // Fails (error text in `error`) when the model has no MIB or a dump cannot be loaded.
  static std::optional<Switch> Create(const SwitchConfig& config, std::string& error);

  // Handles one request datagram. Returns the answer datagram, or nothing when the request
  // is dropped (not SNMPv1, malformed, wrong community, silent switch, drop fault).
  std::optional<std::string> Handle(const uint8_t* data, size_t size);
  int answerDelayMs() const { return config_.faults.delayMs; }

  // The store: every instance and its value, in OID order.
  using Store = std::map<snmp::Oid, snmp::Value>;
  const Store& store() const { return store_; }
  // Puts a value straight into the store (a dump line, a test's preset).
  void Put(const snmp::Oid& oid, snmp::Value v) { store_[oid] = std::move(v); }
  const SwitchConfig& config() const { return config_; }
  uint64_t setCount() const { return setCount_; }
  uint64_t getCount() const { return getCount_; }  // Get and GetNext requests received
  // New faults from the next request on (a test makes a switch lossy once it has filled it);
  // the counts of requests go on.
  void setFaults(Faults faults) { config_.faults = std::move(faults); }

  std::function<void(const SetEvent&)> onSet;  // called for every SET handled

  // Which columns SETs wrote to each row since it was created, keyed by RowKey. A switch keeps
  // what a creating request leaves out at its own defaults, so a client that forgets a column
  // goes unnoticed in the store; this record shows it.
  using Written = std::map<snmp::Oid, std::set<uint32_t>>;
  const Written& written() const { return written_; }
  // One line per row: "<table>.<index> wrote <column numbers>", followed by " missing
  // <names>" when the row lacks a column its table requires at creation. With incompleteOnly,
  // only those rows (empty when every row is complete).
  std::vector<std::string> WrittenReport(bool incompleteOnly = false) const;
  static snmp::Oid RowKey(const TableDef& t, const snmp::Oid& index);  // entry.0.index
  static std::string RowText(const TableDef& t, const snmp::Oid& key);  // "<table>.<index>"

 private:
  Switch(SwitchConfig config, const MibDef* mib) : config_(std::move(config)), mib_(mib) {}

  void HandleGet(snmp::Message& m, bool next);
  void HandleSet(snmp::Message& m, bool& drop);

  // Where an OID lies in the definitions.
  struct Target {
    const ScalarDef* scalar = nullptr;
    const TableDef* table = nullptr;
    const ColumnDef* column = nullptr;
    snmp::Oid index;   // the instance's index part (tables)
  };
  bool Locate(const snmp::Oid& oid, Target& t) const;
  bool RowExists(const TableDef& t, const snmp::Oid& index) const;
  static snmp::Oid Instance(const TableDef& t, uint32_t column, const snmp::Oid& index);

  SwitchConfig config_;
  const MibDef* mib_;
  Store store_;
  std::set<snmp::Oid> readOnly_;  // instances loaded from a dump outside any definition
  Written written_;
  uint64_t setCount_ = 0;
  uint64_t getCount_ = 0;
};

}  // namespace sim
