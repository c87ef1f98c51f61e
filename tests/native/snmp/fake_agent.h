// A scripted SNMP agent for the client tests: a thread that answers each request on a UDP
// socket bound to <address>:161 through a handler that the test gives. Built from the same
// codec and transport as the client, so it runs natively and under Wine.
#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "snmp/ber.h"
#include "snmp/udp_transport.h"

// Natively every scripted agent has its own loopback address on UDP 161 (127.0.3.n:161).
// Under Wine a socket bound to 127.x.y.z is bound to 0.0.0.0 on the loopback device (Wine's
// interface binding), so there the agents share 127.0.0.1 and differ by port:
// SNMP_TEST_PORT_BASE + n, through the "address:port" form of the agent text.
#ifndef SNMP_TEST_NET
#define SNMP_TEST_NET "127.0.3."
#endif

inline std::string TestAddress(int host) {
#ifdef SNMP_TEST_PORT_BASE
  return std::string("127.0.0.1:") + std::to_string(SNMP_TEST_PORT_BASE + host);
#else
  return std::string(SNMP_TEST_NET) + std::to_string(host);
#endif
}

class FakeAgent {
 public:
  // Handler: gets the decoded request and the sender; answers through Reply()/Send().
  using Handler = std::function<void(FakeAgent& agent, const snmp::Message& request,
                                     const snmp::Endpoint& from)>;

  FakeAgent(const std::string& address, Handler handler, uint16_t port = snmp::kSnmpPort)
      : handler_(std::move(handler)) {
    snmp::Endpoint local;
    snmp::ParseEndpoint(address, port, local);
    bound_ = socket_.Bind(local);
    if (bound_) thread_ = std::thread([this] { Run(); });
  }
  ~FakeAgent() {
    stop_ = true;
    if (thread_.joinable()) thread_.join();
  }
  bool bound() const { return bound_; }
  snmp::UdpSocket& socket() { return socket_; }

  // Answers `request` with a GetResponse holding `varbinds` and the given error fields.
  void Reply(const snmp::Message& request, const snmp::Endpoint& to,
             std::vector<snmp::VarBind> varbinds, int errorStatus = 0, int errorIndex = 0,
             int32_t requestIdDelta = 0) {
    snmp::Message m;
    m.version = 0;
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
    if (snmp::EncodeMessage(m, bytes)) socket_.SendTo(to, bytes.data(), bytes.size());
  }
  void SendRaw(const std::string& bytes, const snmp::Endpoint& to) {
    socket_.SendTo(to, bytes.data(), bytes.size());
  }

  std::vector<snmp::Message> requests;  // every decoded request, in arrival order
  std::vector<std::string> rawRequests;  // their bytes

 private:
  void Run() {
    std::vector<uint8_t> buf(70000);
    while (!stop_) {
      size_t n = 0;
      snmp::Endpoint from;
      auto r = socket_.RecvFrom(buf.data(), buf.size(), n, from, 50);
      if (r != snmp::UdpSocket::Recv::kOk) continue;
      snmp::Message m;
      if (snmp::DecodeMessage(buf.data(), n, m) != snmp::DecodeError::kOk) continue;
      requests.push_back(m);
      rawRequests.emplace_back(reinterpret_cast<const char*>(buf.data()), n);
      handler_(*this, m, from);
    }
  }

  Handler handler_;
  snmp::UdpSocket socket_;
  bool bound_ = false;
  std::atomic<bool> stop_{false};
  std::thread thread_;
};

// Builds an OID from text, for brevity in tests.
inline snmp::Oid O(const char* text) {
  snmp::Oid o;
  snmp::ParseOid(text, o);
  return o;
}
