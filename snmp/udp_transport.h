// The one platform-dependent piece of the SNMP library: an IPv4 UDP socket with a receive
// time-out, and a source of unpredictable numbers for request-ids. udp_posix.cpp implements it
// for Linux, udp_winsock.cpp for Windows (the only file of snmp/ that includes <winsock2.h>).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace snmp {

// An IPv4 address (host byte order) and a UDP port.
struct Endpoint {
  uint32_t addr = 0;
  uint16_t port = 0;
  bool operator==(const Endpoint&) const = default;
};

constexpr uint16_t kSnmpPort = 161;

// "a.b.c.d" (port = defaultPort) or "a.b.c.d:port". Four decimal numbers 0..255, nothing else.
// The ":port" form is an extension for tests and tools; the plug-in passes plain addresses
// and so always reaches UDP 161 (the switches' agent port).
bool ParseEndpoint(std::string_view text, uint16_t defaultPort, Endpoint& out);

class UdpSocket {
 public:
  UdpSocket() = default;
  ~UdpSocket();
  UdpSocket(const UdpSocket&) = delete;
  UdpSocket& operator=(const UdpSocket&) = delete;
  UdpSocket(UdpSocket&& other) noexcept : handle_(other.handle_), peer_(other.peer_), connected_(other.connected_) {
    other.handle_ = kInvalid;
    other.connected_ = false;
  }
  UdpSocket& operator=(UdpSocket&& other) noexcept;

  // A client socket on an ephemeral port of any local address.
  bool Open();
  // A socket bound to `local` (port 0 picks one).
  bool Bind(const Endpoint& local);
  bool IsOpen() const { return handle_ != kInvalid; }
  void Close();

  bool SendTo(const Endpoint& to, const void* data, size_t size);
  // Fixes the peer of an open socket (again when it changes): the kernel then looks the route
  // up once instead of per datagram and passes on only the peer's datagrams. Send goes to it.
  bool Connect(const Endpoint& peer);
  bool ConnectedTo(const Endpoint& peer) const { return connected_ && peer_ == peer; }
  bool Send(const void* data, size_t size);

  enum class Recv { kOk, kTimeout, kError };
  // Waits up to timeoutMs (0: do not wait) for one datagram. Datagrams larger than `capacity`
  // are dropped and the wait goes on. Transient errors (an ICMP port-unreachable reported by
  // Winsock as WSAECONNRESET) do not end the wait.
  Recv RecvFrom(void* buffer, size_t capacity, size_t& size, Endpoint& from, int timeoutMs);

  Endpoint LocalEndpoint() const;
  // The native handle (int on POSIX, SOCKET on Windows), for the simulator's event loop.
  intptr_t native() const { return handle_; }

 private:
  static constexpr intptr_t kInvalid = -1;
  intptr_t handle_ = kInvalid;
  Endpoint peer_;
  bool connected_ = false;
};

// 32 unpredictable bits from the operating system's generator (getrandom / BCryptGenRandom).
uint32_t RandomU32();

}  // namespace snmp
