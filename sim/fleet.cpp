#include "sim/fleet.h"

#include <fstream>
#include <sstream>

namespace sim {

namespace {

bool ParseNumber(std::string_view s, uint64_t max, uint64_t& v) {
  if (s.empty() || s.size() > 10) return false;
  v = 0;
  for (char c : s) {
    if (c < '0' || c > '9') return false;
    v = v * 10 + static_cast<uint64_t>(c - '0');
  }
  return v <= max;
}

bool ParseList(std::string_view s, std::set<uint64_t>& out) {
  while (!s.empty()) {
    size_t comma = s.find(',');
    uint64_t n = 0;
    if (!ParseNumber(s.substr(0, comma), 0xFFFFFFFFu, n) || n == 0) return false;
    out.insert(n);
    if (comma == std::string_view::npos) break;
    s.remove_prefix(comma + 1);
    if (s.empty()) return false;
  }
  return !out.empty();
}

}  // namespace

bool ParseSwitchLine(std::string_view line, const std::string& baseDir, SwitchConfig& out,
                     std::string& error) {
  std::vector<std::string> f;
  std::istringstream in{std::string(line)};
  for (std::string w; in >> w;) f.push_back(w);
  if (f.size() < 4) {
    error = "expected: address model read-community write-community [options]";
    return false;
  }
  out = SwitchConfig{};
  out.address = f[0];
  snmp::Endpoint e;
  if (out.address.find(':') != std::string::npos || !snmp::ParseEndpoint(out.address, 0, e) ||
      (e.addr >> 24) != 127) {
    error = "address '" + f[0] + "' is not a loopback address 127.x.y.z";
    return false;
  }
  out.model = f[1];
  out.readCommunity = f[2];
  out.writeCommunity = f[3] == "-" ? "" : f[3];
  for (size_t i = 4; i < f.size(); ++i) {
    std::string_view o = f[i];
    size_t eq = o.find('=');
    std::string_view key = o.substr(0, eq);
    std::string_view val = eq == std::string_view::npos ? std::string_view() : o.substr(eq + 1);
    uint64_t n = 0;
    if (key == "silent" && eq == std::string_view::npos) {
      out.faults.silent = true;
    } else if (key == "readonly-as-nosuchname" && eq == std::string_view::npos) {
      out.faults.readOnlyAsNoSuchName = true;
    } else if (key == "delay" && ParseNumber(val, 600000, n)) {
      out.faults.delayMs = static_cast<int>(n);
    } else if (key == "port" && ParseNumber(val, 65535, n) && n > 0) {
      out.port = static_cast<uint16_t>(n);
    } else if (key == "refuse-set" && ParseList(val, out.faults.refuseSets)) {
    } else if (key == "drop-set" && ParseList(val, out.faults.dropSets)) {
    } else if (key == "drop-get" && ParseList(val, out.faults.dropGets)) {
    } else if (key == "refuse-status") {
      if (val == "genErr") out.faults.refuseStatus = snmp::kGenErr;
      else if (val == "badValue") out.faults.refuseStatus = snmp::kBadValue;
      else if (val == "noSuchName") out.faults.refuseStatus = snmp::kNoSuchName;
      else if (val == "readOnly") out.faults.refuseStatus = snmp::kReadOnly;
      else {
        error = "refuse-status must be genErr, badValue, noSuchName or readOnly";
        return false;
      }
    } else if (key == "dump" && !val.empty()) {
      std::string path(val);
      if (path[0] != '/' && !baseDir.empty()) path = baseDir + "/" + path;
      out.dumpFiles.push_back(path);
    } else {
      error = "unknown option '" + std::string(o) + "'";
      return false;
    }
  }
  return true;
}

bool ParseFleet(std::string_view text, const std::string& baseDir, std::vector<SwitchConfig>& out,
                std::string& error) {
  size_t lineNo = 0;
  size_t pos = 0;
  while (pos <= text.size()) {
    size_t end = text.find('\n', pos);
    if (end == std::string_view::npos) end = text.size();
    std::string_view line = text.substr(pos, end - pos);
    pos = end + 1;
    ++lineNo;
    size_t hash = line.find('#');
    if (hash != std::string_view::npos) line = line.substr(0, hash);
    if (line.find_first_not_of(" \t\r") == std::string_view::npos) continue;
    SwitchConfig c;
    std::string e;
    if (!ParseSwitchLine(line, baseDir, c, e)) {
      error = "line " + std::to_string(lineNo) + ": " + e;
      return false;
    }
    for (const SwitchConfig& other : out) {
      if (other.address == c.address && other.port == c.port) {
        error = "line " + std::to_string(lineNo) + ": address " + c.address + " used twice";
        return false;
      }
    }
    out.push_back(std::move(c));
  }
  return true;
}

bool LoadFleetFile(const std::string& path, std::vector<SwitchConfig>& out, std::string& error) {
  std::ifstream in(path);
  if (!in) {
    error = "cannot open fleet file '" + path + "'";
    return false;
  }
  std::stringstream ss;
  ss << in.rdbuf();
  size_t slash = path.rfind('/');
  std::string dir = slash == std::string::npos ? "." : path.substr(0, slash);
  std::string e;
  if (!ParseFleet(ss.str(), dir, out, e)) {
    error = path + ": " + e;
    return false;
  }
  return true;
}

}  // namespace sim
