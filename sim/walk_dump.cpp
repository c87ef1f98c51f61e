#include "sim/walk_dump.h"

#include <cctype>
#include <cstdio>
#include <fstream>
#include <sstream>

namespace sim {

namespace {

bool StartsWith(std::string_view s, std::string_view p) { return s.substr(0, p.size()) == p; }

std::string_view Trim(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t' || s.front() == '\r')) s.remove_prefix(1);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\r')) s.remove_suffix(1);
  return s;
}

bool ParseSigned(std::string_view s, int64_t& v) {
  s = Trim(s);
  // "up(1)": the number in parentheses (net-snmp with MIBs loaded).
  size_t open = s.find('(');
  if (open != std::string_view::npos && !s.empty() && s.back() == ')')
    s = s.substr(open + 1, s.size() - open - 2);
  bool neg = false;
  if (!s.empty() && s.front() == '-') {
    neg = true;
    s.remove_prefix(1);
  }
  if (s.empty() || s.size() > 20) return false;
  uint64_t x = 0;
  for (char c : s) {
    if (c < '0' || c > '9') return false;
    if (x > (UINT64_MAX - 9) / 10) return false;
    x = x * 10 + static_cast<uint64_t>(c - '0');
  }
  if (x > (neg ? 0x8000000000000000ull : 0x7FFFFFFFFFFFFFFFull)) return false;
  v = neg ? static_cast<int64_t>(0 - x) : static_cast<int64_t>(x);
  return true;
}

bool ParseUnsigned(std::string_view s, uint64_t max, uint64_t& v) {
  int64_t x = 0;
  s = Trim(s);
  if (s.size() >= 20) {  // Counter64 values beyond int64
    uint64_t u = 0;
    for (char c : s) {
      if (c < '0' || c > '9') return false;
      uint64_t d = static_cast<uint64_t>(c - '0');
      if (u > (UINT64_MAX - d) / 10) return false;
      u = u * 10 + d;
    }
    v = u;
    return u <= max;
  }
  if (!ParseSigned(s, x) || x < 0 || static_cast<uint64_t>(x) > max) return false;
  v = static_cast<uint64_t>(x);
  return true;
}

bool ParseHex(std::string_view s, std::string& out, bool colons = false) {
  out.clear();
  int nibble = -1;
  for (char c : s) {
    if (c == ' ' || c == '\n' || c == '\r' || c == '\t' || (colons && c == ':')) {
      if (nibble >= 0) return false;  // one hex digit alone
      continue;
    }
    int d = std::isdigit(static_cast<unsigned char>(c)) ? c - '0'
            : (c >= 'A' && c <= 'F')                    ? c - 'A' + 10
            : (c >= 'a' && c <= 'f')                    ? c - 'a' + 10
                                                        : -1;
    if (d < 0) return false;
    if (nibble < 0) {
      nibble = d;
    } else {
      out.push_back(static_cast<char>(nibble * 16 + d));
      nibble = -1;
    }
  }
  return nibble < 0;
}

// A quoted text with net-snmp's escapes (\" and \\); `s` includes both quotes.
bool ParseQuoted(std::string_view s, std::string& out) {
  if (s.size() < 2 || s.front() != '"' || s.back() != '"') return false;
  out.clear();
  for (size_t i = 1; i + 1 < s.size(); ++i) {
    if (s[i] == '\\' && i + 2 < s.size() && (s[i + 1] == '"' || s[i + 1] == '\\')) ++i;
    out.push_back(s[i]);
  }
  return true;
}

// True when a quoted value that starts in `s` (at its opening quote) is closed in `s`.
bool QuoteClosed(std::string_view s) {
  for (size_t i = 1; i < s.size(); ++i) {
    if (s[i] == '\\') {
      ++i;
      continue;
    }
    if (s[i] == '"') return true;
  }
  return false;
}

enum class ValueResult { kOk, kBad, kUnknown };

ValueResult ParseValue(std::string_view text, snmp::Value& v) {
  text = Trim(text);
  // "Wrong Type (should be INTEGER): Gauge32: 5" keeps the type that was sent.
  if (StartsWith(text, "Wrong Type")) {
    size_t p = text.find("): ");
    if (p == std::string_view::npos) return ValueResult::kBad;
    text = text.substr(p + 3);
  }
  auto after = [&](std::string_view prefix) { return text.substr(prefix.size()); };
  uint64_t u = 0;
  if (text == "\"\"") {
    v = snmp::Value::OctetString("");
  } else if (StartsWith(text, "STRING: ")) {
    std::string_view q = Trim(after("STRING: "));
    std::string s;
    if (!q.empty() && q.front() == '"') {
      if (!ParseQuoted(q, s)) return ValueResult::kBad;
    } else {
      s = std::string(q);
    }
    v = snmp::Value::OctetString(s);
  } else if (StartsWith(text, "Hex-STRING: ")) {
    std::string b;
    if (!ParseHex(after("Hex-STRING: "), b)) return ValueResult::kBad;
    v = snmp::Value::OctetString(b);
  } else if (StartsWith(text, "INTEGER: ")) {
    int64_t x = 0;
    if (!ParseSigned(after("INTEGER: "), x) || x < INT32_MIN || x > INT32_MAX) return ValueResult::kBad;
    v = snmp::Value::Integer(x);
  } else if (StartsWith(text, "OID: ")) {
    snmp::Oid o;
    if (!snmp::ParseOid(Trim(after("OID: ")), o)) return ValueResult::kBad;
    v = snmp::Value::ObjectId(o);
  } else if (StartsWith(text, "Timeticks: (")) {
    std::string_view t = after("Timeticks: (");
    size_t close = t.find(')');
    if (close == std::string_view::npos || !ParseUnsigned(t.substr(0, close), 0xFFFFFFFFu, u))
      return ValueResult::kBad;
    v = snmp::Value::Unsigned(snmp::kTagTimeTicks, static_cast<uint32_t>(u));
  } else if (StartsWith(text, "Counter32: ")) {
    if (!ParseUnsigned(after("Counter32: "), 0xFFFFFFFFu, u)) return ValueResult::kBad;
    v = snmp::Value::Unsigned(snmp::kTagCounter, static_cast<uint32_t>(u));
  } else if (StartsWith(text, "Gauge32: ") || StartsWith(text, "UInteger32: ")) {
    if (!ParseUnsigned(text.substr(text.find(' ') + 1), 0xFFFFFFFFu, u)) return ValueResult::kBad;
    v = snmp::Value::Unsigned(snmp::kTagGauge, static_cast<uint32_t>(u));
  } else if (StartsWith(text, "Counter64: ")) {
    if (!ParseUnsigned(after("Counter64: "), UINT64_MAX, u)) return ValueResult::kBad;
    v = snmp::Value{};
    v.tag = snmp::kTagCounter64;
    v.counter64 = u;
  } else if (StartsWith(text, "IpAddress: ")) {
    snmp::Endpoint e;
    std::string_view a = Trim(after("IpAddress: "));
    if (a.find(':') != std::string_view::npos || !snmp::ParseEndpoint(a, 0, e)) return ValueResult::kBad;
    v = snmp::Value::IpAddress(e.addr);
  } else if (StartsWith(text, "Network Address: ")) {
    std::string b;
    if (!ParseHex(after("Network Address: "), b, true) || b.size() != 4) return ValueResult::kBad;
    v = snmp::Value::OctetString(b);
    v.tag = snmp::kTagIpAddress;
  } else if (StartsWith(text, "Opaque: ")) {
    std::string b;
    if (!ParseHex(after("Opaque: "), b)) return ValueResult::kUnknown;  // "Opaque: Float: ..."
    v = snmp::Value::OctetString(b);
    v.tag = snmp::kTagOpaque;
  } else if (text == "NULL") {
    v = snmp::Value::Null();
  } else {
    return ValueResult::kUnknown;
  }
  return ValueResult::kOk;
}

// A line that starts an object: ".1.3.6..." or "1.3.6..." followed by " = ".
bool SplitObjectLine(std::string_view line, std::string_view& oid, std::string_view& value) {
  if (line.empty() || !(line.front() == '.' || std::isdigit(static_cast<unsigned char>(line.front()))))
    return false;
  size_t eq = line.find(" = ");
  if (eq == std::string_view::npos) return false;
  oid = line.substr(0, eq);
  for (char c : oid)
    if (c != '.' && !std::isdigit(static_cast<unsigned char>(c))) return false;
  value = line.substr(eq + 3);
  return true;
}

}  // namespace

bool ParseWalkDump(std::string_view text, std::vector<snmp::VarBind>& out, std::string& error,
                   size_t* skipped) {
  size_t skippedLines = 0;
  size_t lineNo = 0;
  size_t pos = 0;
  while (pos < text.size()) {
    size_t end = text.find('\n', pos);
    if (end == std::string_view::npos) end = text.size();
    std::string_view line = text.substr(pos, end - pos);
    pos = end + 1;
    ++lineNo;
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    std::string_view oidText, valueText;
    if (!SplitObjectLine(line, oidText, valueText)) continue;  // comments, blank, "End of MIB"
    size_t startLine = lineNo;
    std::string value(valueText);
    // A quoted string that is not closed on its line goes on over the next lines.
    size_t q = value.find('"');
    if ((StartsWith(value, "STRING: \"") || StartsWith(value, "Wrong Type")) && q != std::string::npos) {
      while (!QuoteClosed(std::string_view(value).substr(q)) && pos < text.size()) {
        size_t e2 = text.find('\n', pos);
        if (e2 == std::string_view::npos) e2 = text.size();
        value += '\n';
        value.append(text.substr(pos, e2 - pos));
        pos = e2 + 1;
        ++lineNo;
      }
      if (!value.empty() && value.back() == '\r') value.pop_back();
    }
    // A Hex-STRING may wrap onto lines of hex pairs.
    if (StartsWith(value, "Hex-STRING: ")) {
      while (pos < text.size()) {
        size_t e2 = text.find('\n', pos);
        if (e2 == std::string_view::npos) e2 = text.size();
        std::string_view next = Trim(text.substr(pos, e2 - pos));
        std::string bytes;
        if (next.empty() || !ParseHex(next, bytes)) break;
        std::string_view o2, v2;
        if (SplitObjectLine(next, o2, v2)) break;
        value += ' ';
        value.append(next);
        pos = e2 + 1;
        ++lineNo;
      }
    }
    snmp::VarBind vb;
    if (!snmp::ParseOid(oidText, vb.name)) {
      error = "line " + std::to_string(startLine) + ": bad OID";
      return false;
    }
    ValueResult r = ParseValue(value, vb.value);
    if (r == ValueResult::kUnknown) {
      ++skippedLines;
      continue;
    }
    if (r == ValueResult::kBad) {
      error = "line " + std::to_string(startLine) + ": cannot read value '" + value.substr(0, 60) + "'";
      return false;
    }
    out.push_back(std::move(vb));
  }
  if (skipped) *skipped = skippedLines;
  return true;
}

bool LoadWalkDumpFile(const std::string& path, std::vector<snmp::VarBind>& out, std::string& error) {
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    error = "cannot open walk dump '" + path + "'";
    return false;
  }
  std::stringstream ss;
  ss << in.rdbuf();
  std::string e;
  if (!ParseWalkDump(ss.str(), out, e)) {
    error = path + ": " + e;
    return false;
  }
  return true;
}

std::string FormatNetSnmpValue(const snmp::Value& v) {
  char buf[96];
  switch (v.tag) {
    case snmp::kTagInteger:
      std::snprintf(buf, sizeof buf, "INTEGER: %lld", static_cast<long long>(v.integer));
      return buf;
    case snmp::kTagOctetString: {
      if (v.bytes.empty()) return "\"\"";
      bool text = true;
      for (unsigned char c : v.bytes)
        if (!std::isprint(c) && !std::isspace(c)) text = false;
      std::string s;
      if (text) {
        s = "STRING: \"";
        for (char c : v.bytes) {
          if (c == '"' || c == '\\') s.push_back('\\');
          s.push_back(c);
        }
        s.push_back('"');
        return s;
      }
      s = "Hex-STRING: ";
      for (unsigned char c : v.bytes) {
        std::snprintf(buf, sizeof buf, "%02X ", c);
        s += buf;
      }
      return s;
    }
    case snmp::kTagNull: return "NULL";
    case snmp::kTagOid: return "OID: ." + snmp::FormatOid(v.oid);
    case snmp::kTagIpAddress: return "IpAddress: " + snmp::RenderValue(v);
    case snmp::kTagCounter: return "Counter32: " + snmp::RenderValue(v);
    case snmp::kTagGauge: return "Gauge32: " + snmp::RenderValue(v);
    case snmp::kTagCounter64: return "Counter64: " + snmp::RenderValue(v);
    case snmp::kTagTimeTicks: {
      unsigned long long t = static_cast<unsigned long long>(v.integer);
      unsigned long long days = t / 8640000, h = t / 360000 % 24, m = t / 6000 % 60, sec = t / 100 % 60, cs = t % 100;
      if (days)
        std::snprintf(buf, sizeof buf, "Timeticks: (%llu) %llu day%s, %llu:%02llu:%02llu.%02llu", t, days,
                      days == 1 ? "" : "s", h, m, sec, cs);
      else
        std::snprintf(buf, sizeof buf, "Timeticks: (%llu) %llu:%02llu:%02llu.%02llu", t, h, m, sec, cs);
      return buf;
    }
    case snmp::kTagOpaque: return "Opaque: " + snmp::RenderValue(v);
  }
  return "NULL";
}

std::string FormatWalkLine(const snmp::VarBind& vb) {
  // Built by appending: GCC 12 at -O2 warns falsely (-Wrestrict) on "." + std::string.
  std::string line(1, '.');
  line.append(snmp::FormatOid(vb.name));
  line.append(" = ");
  line.append(FormatNetSnmpValue(vb.value));
  return line;
}

}  // namespace sim
