// What the interop tests share: net-snmp's tools and our own programs run as processes, and
// the files they write.
#pragma once

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

extern char** environ;

inline std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

// Runs a command through the shell; returns its standard output, `rc` gets its exit status.
inline std::string RunShell(const std::string& command, int* rc = nullptr) {
  FILE* p = popen(command.c_str(), "r");
  std::string out;
  char buf[4096];
  for (size_t n; (n = fread(buf, 1, sizeof buf, p)) > 0;) out.append(buf, n);
  const int status = pclose(p);
  if (rc) *rc = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return out;
}

// A program (snmpd, sentrel-sim) started with its output and errors in `logPath`; stopped with
// SIGTERM however the test ends.
class Spawned {
 public:
  Spawned(const std::vector<std::string>& argv, const std::string& logPath) {
    posix_spawn_file_actions_t fa;
    posix_spawn_file_actions_init(&fa);
    posix_spawn_file_actions_addopen(&fa, 1, logPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    posix_spawn_file_actions_adddup2(&fa, 1, 2);
    std::vector<char*> args;
    for (const std::string& a : argv) args.push_back(const_cast<char*>(a.c_str()));
    args.push_back(nullptr);
    if (posix_spawnp(&pid_, args[0], &fa, nullptr, args.data(), environ) != 0) pid_ = -1;
    posix_spawn_file_actions_destroy(&fa);
  }
  ~Spawned() {
    if (pid_ <= 0) return;
    kill(pid_, SIGTERM);
    waitpid(pid_, nullptr, 0);
  }
  Spawned(const Spawned&) = delete;
  Spawned& operator=(const Spawned&) = delete;
  pid_t pid() const { return pid_; }

 private:
  pid_t pid_ = -1;
};

// Waits up to `ms` for `text` to appear in the file at `path`.
inline bool WaitForText(const std::string& path, const std::string& text, int ms = 5000) {
  for (int waited = 0; ReadFile(path).find(text) == std::string::npos; waited += 50) {
    if (waited >= ms) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  return true;
}
