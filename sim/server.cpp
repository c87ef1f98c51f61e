#include "sim/server.h"
#include "snmp/udp_transport.h"

#include <arpa/inet.h>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <netinet/in.h>
#include <queue>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace sim {

Server::~Server() {
  for (int fd : fds_) ::close(fd);
  if (epoll_ >= 0) ::close(epoll_);
}

bool Server::Bind(std::string& error) {
  epoll_ = ::epoll_create1(EPOLL_CLOEXEC);
  if (epoll_ < 0) {
    error = std::string("epoll_create1: ") + std::strerror(errno);
    return false;
  }
  for (size_t i = 0; i < switches_.size(); ++i) {
    const SwitchConfig& c = switches_[i].config();
    snmp::Endpoint e;
    snmp::ParseEndpoint(c.address, c.port, e);
    e.port = c.port;
    int fd = ::socket(AF_INET, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (fd < 0) {
      error = std::string("socket: ") + std::strerror(errno);
      return false;
    }
    fds_.push_back(fd);
    sockaddr_in sa{};
    sa.sin_family = AF_INET;
    sa.sin_addr.s_addr = htonl(e.addr);
    sa.sin_port = htons(e.port);
    if (::bind(fd, reinterpret_cast<sockaddr*>(&sa), sizeof sa) != 0) {
      error = "cannot bind " + c.address + ":" + std::to_string(c.port) + ": " + std::strerror(errno) +
              (c.port < 1024 ? " (ports below 1024 need root)" : "");
      return false;
    }
    epoll_event ev{};
    ev.events = EPOLLIN;
    ev.data.u32 = static_cast<uint32_t>(i);
    if (::epoll_ctl(epoll_, EPOLL_CTL_ADD, fd, &ev) != 0) {
      error = std::string("epoll_ctl: ") + std::strerror(errno);
      return false;
    }
  }
  return true;
}

void Server::Run(const std::atomic<int>& stop, std::atomic<int>* dump, const std::function<void()>& onDump) {
  using Clock = std::chrono::steady_clock;
  struct Delayed {
    Clock::time_point due;
    int fd;
    sockaddr_in to;
    std::string bytes;
    bool operator>(const Delayed& o) const { return due > o.due; }
  };
  std::priority_queue<Delayed, std::vector<Delayed>, std::greater<Delayed>> later;
  std::vector<uint8_t> buf(snmp::kMaxMessageSize + 1);
  epoll_event events[64];
  while (!stop.load()) {
    int timeout = 200;  // the flags are looked at least this often
    if (!later.empty()) {
      auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(later.top().due - Clock::now()).count();
      timeout = ms < 0 ? 0 : ms < timeout ? static_cast<int>(ms) + 1 : timeout;
    }
    int n = ::epoll_wait(epoll_, events, 64, timeout);
    for (int k = 0; k < n; ++k) {
      size_t i = events[k].data.u32;
      int fd = fds_[i];
      sockaddr_in from{};
      socklen_t len = sizeof from;
      ssize_t got = ::recvfrom(fd, buf.data(), buf.size(), MSG_TRUNC, reinterpret_cast<sockaddr*>(&from), &len);
      if (got < 0 || static_cast<size_t>(got) > snmp::kMaxMessageSize) continue;
      std::optional<std::string> answer = switches_[i].Handle(buf.data(), static_cast<size_t>(got));
      if (!answer) continue;
      int delay = switches_[i].answerDelayMs();
      if (delay > 0) {
        later.push(Delayed{Clock::now() + std::chrono::milliseconds(delay), fd, from, std::move(*answer)});
        continue;
      }
      ::sendto(fd, answer->data(), answer->size(), 0, reinterpret_cast<sockaddr*>(&from), sizeof from);
    }
    auto now = Clock::now();
    while (!later.empty() && later.top().due <= now) {
      const Delayed& d = later.top();
      ::sendto(d.fd, d.bytes.data(), d.bytes.size(), 0, reinterpret_cast<const sockaddr*>(&d.to), sizeof d.to);
      later.pop();
    }
    if (dump && dump->load()) {
      dump->store(0);
      if (onDump) onDump();
    }
  }
}

}  // namespace sim
