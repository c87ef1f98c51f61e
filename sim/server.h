// The simulator's event loop (Linux): one UDP socket per switch on its own loopback address,
// all served by one thread through epoll; delayed answers wait in a timer queue so a slow
// switch never holds up the others.
#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <vector>

#include "sim/switch.h"

namespace sim {

class Server {
 public:
  explicit Server(std::vector<Switch>& switches) : switches_(switches) {}
  ~Server();
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  // Binds every switch's address and port. Fails with a message naming the address.
  bool Bind(std::string& error);
  // Serves until `stop` becomes non-zero. When `dump` becomes non-zero, calls onDump and
  // clears it (the simulator's SIGUSR1).
  void Run(const std::atomic<int>& stop, std::atomic<int>* dump = nullptr,
           const std::function<void()>& onDump = nullptr);

 private:
  std::vector<Switch>& switches_;
  std::vector<int> fds_;
  int epoll_ = -1;
};

}  // namespace sim
