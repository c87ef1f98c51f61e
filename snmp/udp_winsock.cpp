// Winsock implementation of udp_transport.h: the only file of snmp/ that includes Windows
// headers (DESIGN.md section 3).
#include "snmp/udp_transport.h"

#include <winsock2.h>
#include <ws2tcpip.h>
#include <windows.h>
#include <bcrypt.h>

#include <chrono>
#include <mutex>

namespace snmp {

namespace {

bool StartWinsock() {
  static std::once_flag once;
  static bool ok = false;
  std::call_once(once, [] {
    WSADATA data;
    ok = WSAStartup(MAKEWORD(2, 2), &data) == 0;
  });
  return ok;
}

sockaddr_in ToSockaddr(const Endpoint& e) {
  sockaddr_in sa{};
  sa.sin_family = AF_INET;
  sa.sin_addr.s_addr = htonl(e.addr);
  sa.sin_port = htons(e.port);
  return sa;
}

SOCKET Sock(intptr_t h) { return static_cast<SOCKET>(h); }

// An ICMP port-unreachable on a connected socket: Windows reports it as WSAECONNRESET, Wine
// may pass on the host's ECONNREFUSED as WSAECONNREFUSED.
bool PortUnreachable(int err) { return err == WSAECONNRESET || err == WSAECONNREFUSED; }

}  // namespace

UdpSocket::~UdpSocket() { Close(); }

UdpSocket& UdpSocket::operator=(UdpSocket&& other) noexcept {
  if (this != &other) {
    Close();
    handle_ = other.handle_;
    peer_ = other.peer_;
    connected_ = other.connected_;
    other.handle_ = kInvalid;
    other.connected_ = false;
  }
  return *this;
}

void UdpSocket::Close() {
  if (handle_ != kInvalid) {
    closesocket(Sock(handle_));
    handle_ = kInvalid;
    connected_ = false;
  }
}

bool UdpSocket::Open() { return Bind(Endpoint{}); }

bool UdpSocket::Bind(const Endpoint& local) {
  Close();
  if (!StartWinsock()) return false;
  SOCKET s = ::socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP);
  if (s == INVALID_SOCKET) return false;
  sockaddr_in sa = ToSockaddr(local);
  if (::bind(s, reinterpret_cast<sockaddr*>(&sa), sizeof sa) != 0) {
    closesocket(s);
    return false;
  }
  handle_ = static_cast<intptr_t>(s);
  return true;
}

bool UdpSocket::SendTo(const Endpoint& to, const void* data, size_t size) {
  if (handle_ == kInvalid || size > 0x7FFFFFFF) return false;
  sockaddr_in sa = ToSockaddr(to);
  int n = ::sendto(Sock(handle_), static_cast<const char*>(data), static_cast<int>(size), 0,
                   reinterpret_cast<sockaddr*>(&sa), sizeof sa);
  return n >= 0 && static_cast<size_t>(n) == size;
}

bool UdpSocket::Connect(const Endpoint& peer) {
  if (handle_ == kInvalid) return false;
  connected_ = false;
  sockaddr_in sa = ToSockaddr(peer);
  if (::connect(Sock(handle_), reinterpret_cast<sockaddr*>(&sa), sizeof sa) != 0) return false;
  peer_ = peer;
  connected_ = true;
  return true;
}

bool UdpSocket::Send(const void* data, size_t size) {
  if (!connected_ || size > 0x7FFFFFFF) return false;
  // Under Wine a port-unreachable met by an earlier datagram stays on the socket, and the
  // socket hears no answer after it even once the error is read: the next request takes a
  // fresh socket to the same switch.
  int pending = 0;
  int len = sizeof pending;
  if (getsockopt(Sock(handle_), SOL_SOCKET, SO_ERROR, reinterpret_cast<char*>(&pending), &len) == 0 &&
      PortUnreachable(pending)) {
    const Endpoint peer = peer_;
    if (!Open() || !Connect(peer)) return false;
  }
  for (;;) {
    int n = ::send(Sock(handle_), static_cast<const char*>(data), static_cast<int>(size), 0);
    if (n >= 0) return static_cast<size_t>(n) == size;
    // A port-unreachable left by an earlier datagram is reported here once; it says nothing
    // about this one.
    if (!PortUnreachable(WSAGetLastError())) return false;
  }
}

UdpSocket::Recv UdpSocket::RecvFrom(void* buffer, size_t capacity, size_t& size, Endpoint& from,
                                    int timeoutMs) {
  if (handle_ == kInvalid) return Recv::kError;
  using Clock = std::chrono::steady_clock;
  const auto deadline = Clock::now() + std::chrono::milliseconds(timeoutMs < 0 ? 0 : timeoutMs);
  int cap = capacity > 0x7FFFFFFF ? 0x7FFFFFFF : static_cast<int>(capacity);
  for (;;) {
    auto remaining = std::chrono::duration_cast<std::chrono::microseconds>(deadline - Clock::now());
    long long us = remaining.count() < 0 ? 0 : remaining.count();
    fd_set set;
    FD_ZERO(&set);
    FD_SET(Sock(handle_), &set);
    timeval tv;
    tv.tv_sec = static_cast<long>(us / 1000000);
    tv.tv_usec = static_cast<long>(us % 1000000);
    int ready = ::select(0, &set, nullptr, nullptr, &tv);
    if (ready == SOCKET_ERROR) return Recv::kError;
    if (ready == 0) return Recv::kTimeout;
    sockaddr_in sa{};
    int len = sizeof sa;
    int n = ::recvfrom(Sock(handle_), static_cast<char*>(buffer), cap, 0,
                       reinterpret_cast<sockaddr*>(&sa), &len);
    if (n >= 0) {
      size = static_cast<size_t>(n);
      from.addr = ntohl(sa.sin_addr.s_addr);
      from.port = ntohs(sa.sin_port);
      return Recv::kOk;
    }
    int err = WSAGetLastError();
    // A port-unreachable of an earlier datagram, or a datagram too large for us: neither is our
    // answer, so the wait goes on.
    if (PortUnreachable(err) || err == WSAEMSGSIZE || err == WSAEWOULDBLOCK || err == WSAEINTR)
      continue;
    return Recv::kError;
  }
}

Endpoint UdpSocket::LocalEndpoint() const {
  Endpoint e;
  if (handle_ == kInvalid) return e;
  sockaddr_in sa{};
  int len = sizeof sa;
  if (::getsockname(Sock(handle_), reinterpret_cast<sockaddr*>(&sa), &len) == 0) {
    e.addr = ntohl(sa.sin_addr.s_addr);
    e.port = ntohs(sa.sin_port);
  }
  return e;
}

uint32_t RandomU32() {
  // The system generator, fetched 256 bytes at a time per thread.
  thread_local uint32_t pool[64];
  thread_local size_t left = 0;
  if (left == 0) {
    BCryptGenRandom(nullptr, reinterpret_cast<PUCHAR>(pool), sizeof pool, BCRYPT_USE_SYSTEM_PREFERRED_RNG);
    left = 64;
  }
  return pool[--left];
}

}  // namespace snmp
