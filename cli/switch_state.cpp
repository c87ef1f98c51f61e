#include "cli/switch_state.h"

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "snmp/udp_transport.h"

#ifdef _WIN32
#include <windows.h>
#include <process.h>
#define SENTREL_GETPID _getpid
#else
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#define SENTREL_GETPID getpid
#endif

namespace {

namespace fs = std::filesystem;

// One name per switch however its address is written ("10.0.0.5" and "10.0.0.5:161" are one
// agent), usable as a file name (a port's colon is not allowed on Windows).
std::string FileName(const std::string& address) {
  snmp::Endpoint ep;
  if (!snmp::ParseEndpoint(address, snmp::kSnmpPort, ep)) {
    std::string name = address;
    for (char& c : name)
      if (c == ':') c = '_';
    return name;
  }
  return std::to_string(ep.addr >> 24) + "." + std::to_string((ep.addr >> 16) & 255) + "." +
         std::to_string((ep.addr >> 8) & 255) + "." + std::to_string(ep.addr & 255) + "_" + std::to_string(ep.port);
}

std::string ReadAll(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

}  // namespace

const char* OwedClosingName(const OwedClosing& o) {
  const bool cpu = o.first == AclOwner::kCpu, rules = o.second == AclKind::kRules;
  return cpu ? (rules ? "cpu_acl rules" : "cpu_acl profiles") : (rules ? "acl rules" : "acl profiles");
}

std::string StateFolder() {
  if (const char* dir = std::getenv("SENTREL_STATE_DIR"); dir != nullptr && *dir != '\0') return dir;
  const std::string log = DefaultAuditLogPath();
  return log.empty() ? std::string() : fs::path(log).parent_path().string();
}

bool SwitchLock::Acquire(const std::string& folder, const std::string& address, const std::string& user,
                         std::string& error) {
  std::error_code ec;
  const fs::path dir = fs::path(folder) / "locks";
  fs::create_directories(dir, ec);
  const fs::path file = dir / (FileName(address) + ".lock");
  const std::string holder = "pid " + std::to_string(SENTREL_GETPID()) + " of " + user + " since " + UtcNow();
  // The holder's text stays readable: the lock is on a byte far past it (Windows) or on the
  // whole file as an advisory lock (POSIX).
#ifdef _WIN32
  HANDLE h = CreateFileW(file.wstring().c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                         nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (h == INVALID_HANDLE_VALUE) {
    error = file.string() + ": cannot be opened for the switch's lock";
    return false;
  }
  OVERLAPPED at{};
  at.Offset = 0x40000000;
  if (!LockFileEx(h, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &at)) {
    CloseHandle(h);
    error = "another apply holds this switch (" + ReadAll(file) + "; " + file.string() + ")";
    return false;
  }
  DWORD written = 0;
  SetFilePointer(h, 0, nullptr, FILE_BEGIN);
  WriteFile(h, holder.data(), static_cast<DWORD>(holder.size()), &written, nullptr);
  SetEndOfFile(h);
  handle_ = h;
#else
  const int fd = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
  if (fd < 0) {
    error = file.string() + ": cannot be opened for the switch's lock";
    return false;
  }
  if (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
    ::close(fd);
    error = "another apply holds this switch (" + ReadAll(file) + "; " + file.string() + ")";
    return false;
  }
  if (::ftruncate(fd, 0) == 0 && ::pwrite(fd, holder.data(), holder.size(), 0) < 0) {
    // The holder's text is a courtesy to the next comer; the lock holds without it.
  }
  fd_ = fd;
#endif
  return true;
}

SwitchLock::~SwitchLock() {
#ifdef _WIN32
  if (handle_ != nullptr) CloseHandle(static_cast<HANDLE>(handle_));
#else
  if (fd_ >= 0) ::close(fd_);
#endif
}

std::set<OwedClosing>& ClosingLedger::Load(const std::string& key) {
  auto found = owed_.find(key);
  if (found != owed_.end()) return found->second;
  std::set<OwedClosing>& owed = owed_[key];
  if (folder_.empty()) return owed;
  std::istringstream lines(ReadAll(fs::path(folder_) / "closing-owed" / key));
  for (std::string line; std::getline(lines, line);)
    for (AclOwner o : {AclOwner::kAcl, AclOwner::kCpu})
      for (AclKind k : {AclKind::kProfiles, AclKind::kRules})
        if (line == OwedClosingName({o, k})) owed.insert({o, k});
  return owed;
}

void ClosingLedger::Save(const std::string& key, const std::set<OwedClosing>& owed) {
  if (folder_.empty()) return;
  std::error_code ec;
  const fs::path dir = fs::path(folder_) / "closing-owed";
  fs::create_directories(dir, ec);
  const fs::path file = dir / key;
  if (owed.empty()) {
    fs::remove(file, ec);
    return;
  }
  // Written aside and renamed over the old note, so a kill mid-write leaves one or the other.
  const fs::path temporary = fs::path(file).concat(".tmp");
  {
    std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
    for (const OwedClosing& o : owed) out << OwedClosingName(o) << "\n";
    if (!out.flush()) return;
  }
#ifdef _WIN32
  MoveFileExW(temporary.wstring().c_str(), file.wstring().c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH);
#else
  fs::rename(temporary, file, ec);
#endif
}

std::vector<OwedClosing> ClosingLedger::Owed(const std::string& address) {
  std::lock_guard<std::mutex> lock(mutex_);
  const std::set<OwedClosing>& owed = Load(FileName(address));
  return {owed.begin(), owed.end()};
}

void ClosingLedger::Observe(const AclWriteEvent& e) {
  const bool answered = e.outcome != nullptr && e.outcome->responded;
  const bool request = e.op == AclWriteOp::kCreate && e.outcome == nullptr;
  const bool refused = e.op == AclWriteOp::kCreate && answered && e.outcome->errorStatus != 0;
  const bool closed = e.op == AclWriteOp::kClose && answered && e.outcome->errorStatus == 0;
  if (!request && !refused && !closed) return;
  std::lock_guard<std::mutex> lock(mutex_);
  const OwedClosing key{e.owner, e.kind};
  const std::string name = FileName(e.target.ip);
  std::set<OwedClosing>& refusedKinds = refused_[name];
  // The batch goes on after a refusal, but its closing request will not be sent.
  if (request && refusedKinds.count(key)) return;
  if (refused) refusedKinds.insert(key);
  if (closed) refusedKinds.erase(key);
  std::set<OwedClosing>& owed = Load(name);
  if (request == (owed.count(key) > 0)) return;
  if (request) owed.insert(key);
  else owed.erase(key);
  Save(name, owed);
}
