// One simulated switch (sim::Switch, the simulator's agent logic with its ACL MIB) served on a
// UDP socket by a thread of the test, so the ACL reader and writer talk real SNMP to it both
// natively and under Wine. Natively each agent has its own loopback address on UDP 161
// (127.0.6.n, root); under Wine sockets bound to 127.x.y.z land on 0.0.0.0, so there the
// agents share 127.0.0.1 and differ by port (ACL_TEST_PORT_BASE + n).
#pragma once

#include <atomic>
#include <chrono>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "sim/switch.h"
#include "snmp/udp_transport.h"

#ifndef ACL_TEST_NET
#define ACL_TEST_NET "127.0.6."
#endif

class SimAgent {
 public:
  SimAgent(int host, const std::string& model, sim::Faults faults = {},
           const std::string& readCommunity = "public", const std::string& writeCommunity = "private") {
    sim::SwitchConfig c;
#ifdef ACL_TEST_PORT_BASE
    c.address = "127.0.0.1";
    c.port = static_cast<uint16_t>(ACL_TEST_PORT_BASE + host);
    address_ = "127.0.0.1:" + std::to_string(c.port);
#else
    c.address = std::string(ACL_TEST_NET) + std::to_string(host);
    address_ = c.address;
#endif
    c.model = model;
    c.readCommunity = readCommunity;
    c.writeCommunity = writeCommunity;
    c.faults = std::move(faults);
    std::string error;
    auto s = sim::Switch::Create(c, error);
    if (!s) {
      error_ = error;
      return;
    }
    switch_.emplace(std::move(*s));
    switch_->onSet = [this](const sim::SetEvent& e) {
      std::lock_guard<std::mutex> lock(mutex_);
      sets_.push_back(e);
    };
    snmp::Endpoint local;
    snmp::ParseEndpoint(c.address, c.port, local);
    if (!socket_.Bind(local)) {
      error_ = "cannot bind " + address_;
      return;
    }
    thread_ = std::thread([this] { Run(); });
  }
  ~SimAgent() {
    stop_ = true;
    if (thread_.joinable()) thread_.join();
  }
  SimAgent(const SimAgent&) = delete;
  SimAgent& operator=(const SimAgent&) = delete;

  bool ok() const { return error_.empty(); }
  const std::string& error() const { return error_; }
  // The agent text for the client ("127.0.6.n" natively, "127.0.0.1:port" under Wine).
  const std::string& address() const { return address_; }
  // A copy of the switch's store, taken between requests.
  sim::Switch::Store store() {
    std::lock_guard<std::mutex> lock(handleMutex_);
    return switch_->store();
  }

  // Every SET the switch handled (answered, refused or dropped), in order.
  std::vector<sim::SetEvent> sets() {
    std::lock_guard<std::mutex> lock(mutex_);
    return sets_;
  }
  void clearSets() {
    std::lock_guard<std::mutex> lock(mutex_);
    sets_.clear();
  }
  size_t requests() const { return requests_; }

 private:
  void Run() {
    std::vector<uint8_t> buf(70000);
    while (!stop_) {
      size_t n = 0;
      snmp::Endpoint from;
      if (socket_.RecvFrom(buf.data(), buf.size(), n, from, 20) != snmp::UdpSocket::Recv::kOk) continue;
      ++requests_;
      std::optional<std::string> answer;
      {
        std::lock_guard<std::mutex> lock(handleMutex_);
        answer = switch_->Handle(buf.data(), n);
      }
      if (!answer) continue;
      // The delay fault: one client at a time here, so the agent may simply wait.
      if (const int ms = switch_->answerDelayMs(); ms > 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(ms));
      socket_.SendTo(from, answer->data(), answer->size());
    }
  }

  std::string address_;
  std::string error_;
  std::optional<sim::Switch> switch_;
  snmp::UdpSocket socket_;
  std::mutex handleMutex_;  // the switch, between the agent thread and store()
  std::mutex mutex_;        // sets_
  std::vector<sim::SetEvent> sets_;
  std::atomic<size_t> requests_{0};
  std::atomic<bool> stop_{false};
  std::thread thread_;
};
