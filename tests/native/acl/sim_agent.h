// One simulated switch (sim::Switch, the simulator's agent logic with its ACL MIB) served by a
// thread of the test, so the ACL reader and writer talk real SNMP to it both natively (its own
// loopback address 127.0.6.n on UDP 161) and under Wine (127.0.0.1, TEST_PORT_BASE + n).
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

// ACL_TEST_NET / ACL_TEST_PORT_BASE: the names the GUI flows and the command line's tests use.
#if defined(ACL_TEST_NET) && !defined(TEST_NET)
#define TEST_NET ACL_TEST_NET
#endif
#ifndef TEST_NET
#define TEST_NET "127.0.6."
#endif
#if defined(ACL_TEST_PORT_BASE) && !defined(TEST_PORT_BASE)
#define TEST_PORT_BASE ACL_TEST_PORT_BASE
#endif
#include "sim/switch.h"
#include "tests/native/snmp/test_agent.h"

class SimAgent {
 public:
  SimAgent(int host, const std::string& model, sim::Faults faults = {},
           const std::string& readCommunity = "public", const std::string& writeCommunity = "private")
      : address_(TestAddress(host)) {
    sim::SwitchConfig c;
    c.address = address_.substr(0, address_.find(':'));
    c.model = model;
    c.readCommunity = readCommunity;
    c.writeCommunity = writeCommunity;
    c.faults = std::move(faults);
    auto s = sim::Switch::Create(c, error_);
    if (!s) return;
    switch_.emplace(std::move(*s));
    switch_->onSet = [this](const sim::SetEvent& e) { sets_.push_back(e); };
    udp_.emplace(address_, [this](const std::string& d, const snmp::Endpoint& from) {
      auto answer = switch_->Handle(reinterpret_cast<const uint8_t*>(d.data()), d.size());
      if (!answer) return;
      // The delay fault: one client at a time here, so the agent may simply wait.
      if (const int ms = switch_->answerDelayMs() + delayMs_; ms > 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(ms));
      udp_->SendTo(from, *answer);
    });
    if (!udp_->bound()) error_ = "cannot bind " + address_;
  }
  ~SimAgent() {
    if (udp_) udp_->Stop();
  }

  bool ok() const { return error_.empty(); }
  const std::string& error() const { return error_; }
  // The agent text for the client ("127.0.6.n" natively, "127.0.0.1:port" under Wine).
  const std::string& address() const { return address_; }
  size_t requests() const { return udp_ ? udp_->datagrams() : 0; }
  // Makes the switch slow from now on (a switch that was quick while the test filled it).
  void delay(int ms) { delayMs_ = ms; }
  // Makes the switch lose answers from now on: the n-th Get or GetNext counted from here.
  void dropGets(std::initializer_list<uint64_t> nth) {
    std::lock_guard<std::mutex> lock(udp_->mutex());
    sim::Faults faults = switch_->config().faults;
    for (uint64_t n : nth) faults.dropGets.insert(switch_->getCount() + n);
    switch_->setFaults(std::move(faults));
  }
  // Copies taken between requests: the store, every SET handled (answered, refused or
  // dropped) in order, and the rows that lack a column their table needs at creation.
  sim::Switch::Store store() {
    std::lock_guard<std::mutex> lock(udp_->mutex());
    return switch_->store();
  }
  std::vector<sim::SetEvent> sets() {
    std::lock_guard<std::mutex> lock(udp_->mutex());
    return sets_;
  }
  void clearSets() {
    std::lock_guard<std::mutex> lock(udp_->mutex());
    sets_.clear();
  }
  std::vector<std::string> unwritten() {
    std::lock_guard<std::mutex> lock(udp_->mutex());
    return switch_->WrittenReport(true);
  }

 private:

  std::string address_;
  std::string error_;
  std::optional<sim::Switch> switch_;
  std::vector<sim::SetEvent> sets_;
  std::atomic<int> delayMs_{0};
  std::optional<UdpAgent> udp_;  // last: its thread stops before the switch goes
};
