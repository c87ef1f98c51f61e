// POSIX implementation of udp_transport.h (Linux).
#include "snmp/udp_transport.h"

#include <arpa/inet.h>
#include <cerrno>
#include <chrono>
#include <netinet/in.h>
#include <sys/random.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

namespace snmp {

namespace {

sockaddr_in ToSockaddr(const Endpoint& e) {
  sockaddr_in sa{};
  sa.sin_family = AF_INET;
  sa.sin_addr.s_addr = htonl(e.addr);
  sa.sin_port = htons(e.port);
  return sa;
}

// The receive time-out currently set on each socket is remembered, so a walk of many requests
// with the same time-out costs one recvfrom per answer and no setsockopt.
thread_local int t_lastFd = -1;
thread_local int t_lastTimeoutMs = -1;

// A time-out already set that is at most 10 ms shorter than wanted is kept: the wait then ends
// a little early and RecvFrom's loop waits again for the rest, so no answer is missed, and the
// usual case (3000 ms, then 2999 ms, ...) costs no setsockopt.
bool SetRecvTimeout(int fd, int ms) {
  if (fd == t_lastFd && t_lastTimeoutMs <= ms && t_lastTimeoutMs + 10 >= ms) return true;
  timeval tv{};
  tv.tv_sec = ms / 1000;
  tv.tv_usec = (ms % 1000) * 1000;
  if (setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &tv, sizeof tv) != 0) return false;
  t_lastFd = fd;
  t_lastTimeoutMs = ms;
  return true;
}

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
    int fd = static_cast<int>(handle_);
    if (fd == t_lastFd) t_lastFd = -1;
    ::close(fd);
    handle_ = kInvalid;
    connected_ = false;
  }
}

bool UdpSocket::Open() { return Bind(Endpoint{}); }

bool UdpSocket::Bind(const Endpoint& local) {
  Close();
  int fd = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  if (fd < 0) return false;
  sockaddr_in sa = ToSockaddr(local);
  if (::bind(fd, reinterpret_cast<sockaddr*>(&sa), sizeof sa) != 0) {
    ::close(fd);
    return false;
  }
  if (fd == t_lastFd) t_lastFd = -1;  // a reused descriptor number starts without a time-out
  handle_ = fd;
  return true;
}

bool UdpSocket::SendTo(const Endpoint& to, const void* data, size_t size) {
  if (handle_ == kInvalid) return false;
  sockaddr_in sa = ToSockaddr(to);
  for (;;) {
    ssize_t n = ::sendto(static_cast<int>(handle_), data, size, 0,
                         reinterpret_cast<sockaddr*>(&sa), sizeof sa);
    if (n >= 0) return static_cast<size_t>(n) == size;
    if (errno != EINTR) return false;
  }
}

bool UdpSocket::Connect(const Endpoint& peer) {
  if (handle_ == kInvalid) return false;
  connected_ = false;
  sockaddr_in sa = ToSockaddr(peer);
  if (::connect(static_cast<int>(handle_), reinterpret_cast<sockaddr*>(&sa), sizeof sa) != 0) return false;
  peer_ = peer;
  connected_ = true;
  return true;
}

bool UdpSocket::Send(const void* data, size_t size) {
  if (!connected_) return false;
  for (;;) {
    ssize_t n = ::send(static_cast<int>(handle_), data, size, 0);
    if (n >= 0) return static_cast<size_t>(n) == size;
    // A port-unreachable left by an earlier datagram is reported here once; it says nothing
    // about this one.
    if (errno != EINTR && errno != ECONNREFUSED) return false;
  }
}

UdpSocket::Recv UdpSocket::RecvFrom(void* buffer, size_t capacity, size_t& size, Endpoint& from,
                                    int timeoutMs) {
  if (handle_ == kInvalid) return Recv::kError;
  int fd = static_cast<int>(handle_);
  using Clock = std::chrono::steady_clock;
  const auto deadline = Clock::now() + std::chrono::milliseconds(timeoutMs < 0 ? 0 : timeoutMs);
  for (;;) {
    int flags = MSG_TRUNC;
    auto remaining = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
    if (remaining.count() <= 0) {
      flags |= MSG_DONTWAIT;  // a last look without waiting
    } else if (!SetRecvTimeout(fd, static_cast<int>(remaining.count()))) {
      return Recv::kError;
    }
    sockaddr_in sa{};
    socklen_t len = sizeof sa;
    ssize_t n = ::recvfrom(fd, buffer, capacity, flags, reinterpret_cast<sockaddr*>(&sa), &len);
    if (n >= 0) {
      if (static_cast<size_t>(n) > capacity) continue;  // truncated: not an SNMP answer of ours
      size = static_cast<size_t>(n);
      from.addr = ntohl(sa.sin_addr.s_addr);
      from.port = ntohs(sa.sin_port);
      return Recv::kOk;
    }
    if (errno == EAGAIN || errno == EWOULDBLOCK) {
      if (flags & MSG_DONTWAIT) return Recv::kTimeout;
      continue;  // the socket time-out ran out; the deadline check above decides
    }
    if (errno == EINTR || errno == ECONNREFUSED) continue;
    return Recv::kError;
  }
}

Endpoint UdpSocket::LocalEndpoint() const {
  Endpoint e;
  if (handle_ == kInvalid) return e;
  sockaddr_in sa{};
  socklen_t len = sizeof sa;
  if (::getsockname(static_cast<int>(handle_), reinterpret_cast<sockaddr*>(&sa), &len) == 0) {
    e.addr = ntohl(sa.sin_addr.s_addr);
    e.port = ntohs(sa.sin_port);
  }
  return e;
}

uint32_t RandomU32() {
  // The kernel's generator, fetched 256 bytes at a time per thread (one syscall per 64 ids).
  thread_local uint32_t pool[64];
  thread_local size_t left = 0;
  if (left == 0) {
    size_t got = 0;
    char* p = reinterpret_cast<char*>(pool);
    while (got < sizeof pool) {
      ssize_t n = ::getrandom(p + got, sizeof pool - got, 0);
      if (n > 0) got += static_cast<size_t>(n);
      else if (errno != EINTR) break;
    }
    left = 64;
  }
  return pool[--left];
}

}  // namespace snmp
