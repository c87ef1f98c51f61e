// Agents served by a thread of the test on a UDP socket, built from the same codec and
// transport as the client, so they run natively and under Wine. UdpAgent is the one loop;
// FakeAgent scripts answers, SimAgent (tests/native/acl/sim_agent.h) serves a simulated switch.
//
// Natively every agent has its own loopback address on UDP 161 (127.0.x.n:161). Under Wine a
// socket bound to 127.x.y.z is bound to 0.0.0.0, so there the agents share 127.0.0.1 and differ
// by port: TEST_PORT_BASE + n, through the "address:port" form of the agent text.
#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "snmp/ber.h"
#include "snmp/udp_transport.h"

#ifndef TEST_NET
#define TEST_NET "127.0.3."
#endif

// The agent text of test host n, and the address and port a socket binds for it.
inline std::string TestAddress(int host) {
#ifdef TEST_PORT_BASE
  return std::string("127.0.0.1:") + std::to_string(TEST_PORT_BASE + host);
#else
  return std::string(TEST_NET) + std::to_string(host);
#endif
}

class UdpAgent {
 public:
  // Called on the agent's thread for every datagram, under mutex().
  using Serve = std::function<void(const std::string& datagram, const snmp::Endpoint& from)>;

  UdpAgent(const std::string& agentText, Serve serve) : serve_(std::move(serve)) {
    snmp::Endpoint local;
    bound_ = snmp::ParseEndpoint(agentText, snmp::kSnmpPort, local) && socket_.Bind(local);
    if (bound_) thread_ = std::thread([this] { Run(); });
  }
  ~UdpAgent() { Stop(); }
  UdpAgent(const UdpAgent&) = delete;
  UdpAgent& operator=(const UdpAgent&) = delete;

  // Ends the loop; call it before anything the serve function uses goes away.
  void Stop() {
    stop_ = true;
    if (thread_.joinable()) thread_.join();
  }
  bool bound() const { return bound_; }
  size_t datagrams() const { return datagrams_; }
  std::mutex& mutex() { return mutex_; }
  void SendTo(const snmp::Endpoint& to, const std::string& bytes) { socket_.SendTo(to, bytes.data(), bytes.size()); }

 private:
  void Run() {
    std::vector<uint8_t> buf(70000);
    while (!stop_) {
      size_t n = 0;
      snmp::Endpoint from;
      if (socket_.RecvFrom(buf.data(), buf.size(), n, from, 20) != snmp::UdpSocket::Recv::kOk) continue;
      ++datagrams_;
      std::lock_guard<std::mutex> lock(mutex_);
      serve_(std::string(reinterpret_cast<const char*>(buf.data()), n), from);
    }
  }

  Serve serve_;
  snmp::UdpSocket socket_;
  bool bound_ = false;
  std::mutex mutex_;
  std::atomic<size_t> datagrams_{0};
  std::atomic<bool> stop_{false};
  std::thread thread_;
};

// A scripted agent for the client tests: decodes each request, keeps it, and hands it to the
// test's handler, which answers through Reply/Send/SendRaw.
class FakeAgent {
 public:
  using Handler = std::function<void(FakeAgent& agent, const snmp::Message& request, const snmp::Endpoint& from)>;

  FakeAgent(const std::string& agentText, Handler handler)
      : handler_(std::move(handler)), udp_(agentText, [this](const std::string& d, const snmp::Endpoint& from) {
          snmp::Message m;
          if (snmp::DecodeMessage(d, m) != snmp::DecodeError::kOk) return;
          requests_.push_back(m);
          handler_(*this, m, from);
        }) {}
  ~FakeAgent() { udp_.Stop(); }
  bool bound() const { return udp_.bound(); }

  // Answers `request` with a GetResponse holding `varbinds` and the given error fields.
  void Reply(const snmp::Message& request, const snmp::Endpoint& to, std::vector<snmp::VarBind> varbinds,
             int errorStatus = 0, int errorIndex = 0, int32_t requestIdDelta = 0) {
    snmp::Message m;
    m.community = request.community;
    m.pdu.type = snmp::kTagGetResponse;
    m.pdu.requestId = request.pdu.requestId + requestIdDelta;
    m.pdu.errorStatus = errorStatus;
    m.pdu.errorIndex = errorIndex;
    m.pdu.varbinds = std::move(varbinds);
    Send(m, to);
  }
  void Send(const snmp::Message& m, const snmp::Endpoint& to) {
    std::string bytes;
    if (snmp::EncodeMessage(m, bytes)) udp_.SendTo(to, bytes);
  }
  void SendRaw(const std::string& bytes, const snmp::Endpoint& to) { udp_.SendTo(to, bytes); }

  // A copy taken under the agent's lock: every decoded request, in arrival order.
  std::vector<snmp::Message> Requests() {
    std::lock_guard<std::mutex> lock(udp_.mutex());
    return requests_;
  }

 private:
  Handler handler_;
  std::vector<snmp::Message> requests_;
  UdpAgent udp_;  // last: its thread stops before the members it uses go
};

// An OID from text, for brevity in tests.
inline snmp::Oid O(const char* text) {
  snmp::Oid o;
  snmp::ParseOid(text, o);
  return o;
}
