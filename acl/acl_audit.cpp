#include "acl/acl_audit.h"

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <memory>

#ifndef _WIN32
#include <pwd.h>
#include <unistd.h>
#endif

namespace {

std::mutex g_observerMutex;
std::shared_ptr<const AclWriteObserver> g_observer;

std::shared_ptr<const AclWriteObserver> CurrentObserver() {
  std::lock_guard<std::mutex> lock(g_observerMutex);
  return g_observer;
}

std::string Env(const char* name) {
  const char* v = std::getenv(name);
  return v != nullptr ? std::string(v) : std::string();
}

}  // namespace

std::string UtcNow() {
  using namespace std::chrono;
  const auto now = system_clock::now();
  const std::time_t t = system_clock::to_time_t(now);
  const long long ms = duration_cast<milliseconds>(now.time_since_epoch()).count() % 1000;
  std::tm tm{};
#ifdef _WIN32
  gmtime_s(&tm, &t);
#else
  gmtime_r(&t, &tm);
#endif
  char buf[96];
  std::snprintf(buf, sizeof buf, "%04d-%02d-%02dT%02d:%02d:%02d.%03lldZ", tm.tm_year + 1900, tm.tm_mon + 1,
                tm.tm_mday, tm.tm_hour, tm.tm_min, tm.tm_sec, ms);
  return buf;
}

void SetAclWriteObserver(AclWriteObserver observer) {
  std::lock_guard<std::mutex> lock(g_observerMutex);
  g_observer = observer ? std::make_shared<const AclWriteObserver>(std::move(observer)) : nullptr;
}

SnmpSetResult AuditedSnmpSet(const AclTarget& target, AclWriteOp op, AclOwner owner, AclKind kind,
                             std::string_view profileId, std::string_view accessId,
                             const std::vector<SnmpBinding>& bindings, unsigned long timeoutMs) {
  const auto observer = CurrentObserver();
  AclWriteEvent event{target, op, owner, kind, profileId, accessId, bindings, nullptr};
  if (observer) (*observer)(event);
  const SnmpSetResult result = SnmpSet(target.ip, target.writeCommunity, bindings, timeoutMs);
  event.outcome = &result;
  if (observer) (*observer)(event);
  return result;
}

AclOwner OwnerOfColumn(std::string_view columnOid) {
  const std::string prefix = std::string(kAclMibPrefix) + ".";
  if (columnOid.substr(0, prefix.size()) != prefix) return AclOwner::kAcl;
  const std::string_view rest = columnOid.substr(prefix.size());
  return rest.substr(0, 2) == "4." || rest.substr(0, 2) == "5." ? AclOwner::kCpu : AclOwner::kAcl;
}

const char* WriteOpWord(AclWriteOp op) {
  switch (op) {
    case AclWriteOp::kCreate: return "create";
    case AclWriteOp::kDelete: return "delete";
    case AclWriteOp::kClose: return "close";
  }
  return "";
}

std::string OutcomeWord(const SnmpSetResult& r) {
  if (!r.responded) return "no answer";
  if (r.errorStatus == 0) return "ok";
  return "error " + SnmpErrorStatusName(r.errorStatus) + " at binding " + std::to_string(r.errorIndex);
}

const char* BindingTypeWord(const SnmpBinding& b) {
  switch (b.type) {
    case kSnmpInteger: return "INTEGER";
    case kSnmpIpAddress: return "IpAddress";
    case kSnmpOctetString: return b.raw ? "Hex-STRING" : "STRING";
    default: return "NULL";
  }
}

std::string BindingValueText(const SnmpBinding& b) {
  if (b.type != kSnmpOctetString || !b.raw) return b.value;
  static const char kHex[] = "0123456789ABCDEF";  // every raw value of every SET is logged
  std::string out;
  out.reserve(b.value.size() * 3);
  for (unsigned char c : b.value) {
    if (!out.empty()) out += ' ';
    out += kHex[c >> 4];
    out += kHex[c & 15];
  }
  return out;
}

std::string JsonQuote(std::string_view text) {
  std::string out = "\"";
  for (unsigned char c : text) {
    switch (c) {
      case '"': out += "\\\""; break;
      case '\\': out += "\\\\"; break;
      case '\n': out += "\\n"; break;
      case '\r': out += "\\r"; break;
      case '\t': out += "\\t"; break;
      default:
        if (c < 0x20 || c >= 0x80) {
          // Bytes outside ASCII (a VLAN name in the ANSI code page) as \u00XX, so every line
          // stays valid UTF-8 whatever the switch holds.
          char buf[8];
          std::snprintf(buf, sizeof buf, "\\u%04X", c);
          out += buf;
        } else {
          out += static_cast<char>(c);
        }
    }
  }
  return out + "\"";
}

std::string DefaultAuditLogPath() {
  namespace fs = std::filesystem;
#ifdef _WIN32
  const std::string base = Env("LOCALAPPDATA");
  if (base.empty()) return {};
  return (fs::path(base) / "Sentrel" / "audit.jsonl").string();
#else
  std::string base = Env("XDG_STATE_HOME");
  if (base.empty()) {
    const std::string home = Env("HOME");
    if (home.empty()) return {};
    base = (fs::path(home) / ".local" / "state").string();
  }
  return (fs::path(base) / "sentrel" / "audit.jsonl").string();
#endif
}

std::string OperatorName() {
  for (const char* name : {"USER", "LOGNAME", "USERNAME"})
    if (std::string v = Env(name); !v.empty()) return v;
#ifndef _WIN32
  if (const passwd* pw = getpwuid(getuid()); pw != nullptr && pw->pw_name != nullptr) return pw->pw_name;
#endif
  return "unknown";
}

AclAuditLog::AclAuditLog(std::string path, std::function<std::string(const AclTarget&)> switchName)
    : path_(std::move(path)), switchName_(std::move(switchName)), user_(OperatorName()) {}

AclAuditLog::~AclAuditLog() {
  if (file_ != nullptr) std::fclose(file_);
}

bool AclAuditLog::Open(std::string& error) {
  namespace fs = std::filesystem;
  if (path_.empty()) {
    error = "no audit log path (set --audit-log, or HOME / XDG_STATE_HOME / LOCALAPPDATA)";
    return false;
  }
  std::error_code ec;
  const fs::path parent = fs::path(path_).parent_path();
  if (!parent.empty()) fs::create_directories(parent, ec);
  file_ = std::fopen(path_.c_str(), "ab");
  if (file_ == nullptr) {
    error = "cannot open the audit log " + path_ + " for appending";
    return false;
  }
  return true;
}

void AclAuditLog::Write(const AclWriteEvent& e) {
  std::string line = "{\"time\":" + JsonQuote(UtcNow()) + ",\"user\":" + JsonQuote(user_);
  if (switchName_) line += ",\"switch\":" + JsonQuote(switchName_(e.target));
  line += ",\"address\":" + JsonQuote(e.target.ip) + ",\"model\":" + JsonQuote(e.target.typeText);
  line += ",\"operation\":" + JsonQuote(WriteOpWord(e.op));
  line += std::string(",\"acl\":") + (e.owner == AclOwner::kCpu ? "\"cpu\"" : "\"acl\"");
  line += std::string(",\"table\":") + (e.kind == AclKind::kRules ? "\"rules\"" : "\"profiles\"");
  if (!e.profileId.empty()) line += ",\"profile\":" + JsonQuote(e.profileId);
  if (!e.accessId.empty()) line += ",\"access_id\":" + JsonQuote(e.accessId);
  line += std::string(",\"phase\":") + (e.outcome == nullptr ? "\"request\"" : "\"outcome\"");
  if (e.outcome == nullptr) {
    line += ",\"set\":[";
    for (size_t i = 0; i < e.bindings.size(); ++i) {
      const SnmpBinding& b = e.bindings[i];
      if (i > 0) line += ',';
      line += "{\"oid\":" + JsonQuote(b.oid) + ",\"type\":" + JsonQuote(BindingTypeWord(b)) +
              ",\"value\":" + JsonQuote(BindingValueText(b)) + "}";
    }
    line += "]";
  } else {
    line += ",\"result\":" + JsonQuote(OutcomeWord(*e.outcome));
    if (e.outcome->responded)
      line += ",\"error_status\":" + std::to_string(e.outcome->errorStatus) +
              ",\"error_index\":" + std::to_string(e.outcome->errorIndex);
  }
  line += "}\n";
  Append(line);
}

void AclAuditLog::WriteSwitchOutcome(const AclTarget& target, std::string_view result, std::string_view detail) {
  std::string line = "{\"time\":" + JsonQuote(UtcNow()) + ",\"user\":" + JsonQuote(user_);
  if (switchName_) line += ",\"switch\":" + JsonQuote(switchName_(target));
  line += ",\"address\":" + JsonQuote(target.ip) + ",\"model\":" + JsonQuote(target.typeText);
  line += ",\"operation\":\"apply\",\"phase\":\"outcome\",\"result\":" + JsonQuote(result);
  line += ",\"detail\":" + JsonQuote(detail) + "}\n";
  Append(line);
}

void AclAuditLog::Append(const std::string& line) {
  std::lock_guard<std::mutex> lock(mutex_);
  if (file_ == nullptr) return;
  std::fwrite(line.data(), 1, line.size(), file_);
  std::fflush(file_);
}

AclWriteObserver AclAuditLog::Observer() {
  return [this](const AclWriteEvent& e) { Write(e); };
}
