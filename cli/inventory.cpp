#include "cli/inventory.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

#include "cli/json_fields.h"

namespace {

struct Communities {
  std::string readEnv, writeEnv, secretsFile;
};

bool ReadCommunitySource(const Json& j, const std::string& path, Communities& c, std::string& error) {
  if (!j.is_object()) {
    error = path + ": expected an object with read_env and write_env, or secrets";
    return false;
  }
  for (const auto& item : j.items()) {
    std::string* field = item.key() == "read_env"  ? &c.readEnv
                         : item.key() == "write_env" ? &c.writeEnv
                         : item.key() == "secrets"   ? &c.secretsFile
                                                     : nullptr;
    if (field == nullptr) {
      error = path + "." + item.key() + ": unknown field (read_env, write_env, secrets)";
      return false;
    }
    if (!item.value().is_string()) {
      error = path + "." + item.key() + ": expected a text";
      return false;
    }
    *field = item.value().get<std::string>();
  }
  return true;
}

// The secrets file: {"<switch or group name, or default>": {"read": "...", "write": "..."}}.
bool LoadSecrets(const std::string& file, Json& out, std::string& error) {
  if (!LoadJsonFile(file, out, error)) return false;
  if (!out.is_object()) {
    error = file + ": $: expected an object of names";
    return false;
  }
  return true;
}

// Reads the communities a command needs from the environment variables named.
bool CommunitiesFromEnvironment(const std::string& readEnv, const std::string& writeEnv, CommunityNeed need,
                                AclTarget& target, std::string& error) {
  if (need == CommunityNeed::kNone) return true;
  for (auto [var, dest] : {std::pair{&readEnv, &target.readCommunity}, std::pair{&writeEnv, &target.writeCommunity}}) {
    const char* v = std::getenv(var->c_str());
    if ((v == nullptr || *v == '\0') && (dest == &target.readCommunity || need == CommunityNeed::kReadWrite)) {
      error = "the environment variable " + *var + " (a community) is not set";
      return false;
    }
    if (v != nullptr) *dest = v;
  }
  return true;
}

bool CheckAddressAndModel(SwitchEntry& e, const std::string& addressAt, const std::string& modelAt,
                          std::string& error) {
  snmp::Endpoint ep;
  if (e.target.ip.empty())
    error = addressAt + ": missing";
  else if (!snmp::ParseEndpoint(e.target.ip, 161, ep))
    error = addressAt + ": expected a dotted IPv4 address, optionally with :port";
  else if ((e.model = LookupModel(e.target.typeText)) == nullptr)
    error = modelAt + ": unknown model \"" + e.target.typeText + "\"";
  else if (!e.model->supported)
    error = modelAt + ": Havent't developed the ACL function for the device!";
  return error.empty();
}

// Two entries for one address would be two applies on one switch at once: their requests
// would interleave and the closing requests would close each other's work.
const SwitchEntry* SameAddress(const Inventory& inv, const std::string& address) {
  snmp::Endpoint a, b;
  if (!snmp::ParseEndpoint(address, 161, a)) return nullptr;
  for (const SwitchEntry& s : inv.switches)
    if (snmp::ParseEndpoint(s.target.ip, 161, b) && a == b) return &s;
  return nullptr;
}

std::string LineColumn(const std::string& text, size_t offset) {
  size_t line = 1, column = 1;
  for (size_t i = 0; i < offset && i < text.size(); ++i) {
    if (text[i] == '\n') {
      ++line;
      column = 1;
    } else {
      ++column;
    }
  }
  return "line " + std::to_string(line) + ", column " + std::to_string(column);
}

}  // namespace

bool LoadJsonFile(const std::string& path, Json& out, std::string& error) {
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    error = path + ": cannot be read";
    return false;
  }
  std::ostringstream s;
  s << in.rdbuf();
  return ParseJsonText(path, s.str(), out, error);
}

bool ParseJsonText(const std::string& name, const std::string& text, Json& out, std::string& error) {
  try {
    out = Json::parse(text);
  } catch (const Json::parse_error& e) {
    error = name + ": $: not valid JSON at " + LineColumn(text, e.byte > 0 ? e.byte - 1 : 0);
    return false;
  }
  return true;
}

const SwitchEntry* Inventory::find(const std::string& name) const {
  for (const SwitchEntry& s : switches)
    if (s.name == name) return &s;
  return nullptr;
}

bool LoadInventory(const std::string& path, CommunityNeed need, Inventory& out, std::string& error) {
  out.path = path;
  Json j;
  if (!LoadJsonFile(path, j, error)) return false;
  auto fail = [&](const std::string& where, const std::string& what) {
    error = path + ": " + where + ": " + what;
    return false;
  };
  if (!j.is_object()) return fail("$", "expected an object with \"switches\"");
  for (const auto& item : j.items())
    if (item.key() != "switches" && item.key() != "communities")
      return fail("$." + item.key(), "unknown field (switches, communities)");
  Communities defaults;
  std::string sub;
  if (j.contains("communities") && !ReadCommunitySource(j["communities"], "$.communities", defaults, sub)) {
    error = path + ": " + sub;
    return false;
  }
  if (!j.contains("switches") || !j["switches"].is_object() || j["switches"].empty())
    return fail("$.switches", "expected an object naming at least one switch");
  const std::filesystem::path base = std::filesystem::path(path).parent_path();
  std::map<std::string, Json> secretsCache;
  for (const auto& item : j["switches"].items()) {
    const std::string at = "$.switches." + item.key();
    const Json& s = item.value();
    if (!s.is_object()) return fail(at, "expected an object with address and model");
    SwitchEntry e;
    e.name = item.key();
    Communities c = defaults;
    for (const auto& f : s.items()) {
      const std::string& k = f.key();
      if (k == "address" || k == "model") {
        if (!f.value().is_string()) return fail(at + "." + k, "expected a text");
        (k == "address" ? e.target.ip : e.target.typeText) = f.value().get<std::string>();
      } else if (k == "groups") {
        if (!f.value().is_array()) return fail(at + ".groups", "expected a list of group names");
        for (const Json& g : f.value()) {
          if (!g.is_string()) return fail(at + ".groups", "expected a list of group names");
          e.groups.push_back(g.get<std::string>());
        }
      } else if (k == "communities") {
        Communities own;
        if (!ReadCommunitySource(f.value(), at + ".communities", own, sub)) {
          error = path + ": " + sub;
          return false;
        }
        if (!own.secretsFile.empty() || !own.readEnv.empty() || !own.writeEnv.empty()) c = own;
      } else {
        return fail(at + "." + k, "unknown field (address, model, groups, communities)");
      }
    }
    if (!CheckAddressAndModel(e, at + ".address", at + ".model", sub)) {
      error = path + ": " + sub;
      return false;
    }
    if (const SwitchEntry* twin = SameAddress(out, e.target.ip))
      return fail(at + ".address", "the address of " + twin->name + " too: one switch, one entry");
    // Communities: a secrets file (by switch name, then its groups, then "default"), or two
    // environment variables.
    if (!c.secretsFile.empty()) {
      std::filesystem::path file = c.secretsFile;
      if (file.is_relative()) file = base / file;
      const std::string key = file.string();
      if (!secretsCache.count(key)) {
        Json secrets;
        if (!LoadSecrets(key, secrets, error)) return false;
        secretsCache[key] = secrets;
      }
      const Json& secrets = secretsCache[key];
      std::vector<std::string> names{e.name};
      names.insert(names.end(), e.groups.begin(), e.groups.end());
      names.push_back("default");
      const Json* entry = nullptr;
      for (const std::string& n : names)
        if (!entry && secrets.contains(n)) entry = &secrets[n];
      auto text = [&](const char* k) { return entry && entry->is_object() && entry->contains(k) && (*entry)[k].is_string(); };
      if (need != CommunityNeed::kNone && (!text("read") || (need == CommunityNeed::kReadWrite && !text("write")))) {
        error = key + ": no \"read\"" + (need == CommunityNeed::kReadWrite ? " and \"write\" texts" : " text") +
                " for " + e.name + " (by its name, a group or \"default\")";
        return false;
      }
      if (text("read")) e.target.readCommunity = (*entry)["read"].get<std::string>();
      if (text("write")) e.target.writeCommunity = (*entry)["write"].get<std::string>();
    } else {
      if (need != CommunityNeed::kNone && (c.readEnv.empty() || c.writeEnv.empty()))
        return fail(at, "no communities: give \"communities\" with read_env and write_env, or secrets");
      if (!CommunitiesFromEnvironment(c.readEnv, c.writeEnv, need, e.target, sub)) return fail(at, sub);
    }
    out.switches.push_back(std::move(e));
  }
  return true;
}

bool SelectSwitches(const Inventory& inventory, const std::vector<std::string>& limit,
                    std::vector<const SwitchEntry*>& out, std::string& error) {
  out.clear();
  for (const std::string& name : limit) {
    bool known = inventory.find(name) != nullptr;
    for (const SwitchEntry& s : inventory.switches)
      for (const std::string& g : s.groups) known = known || g == name;
    if (!known) {
      error = "--limit: no switch or group named \"" + name + "\" in " + inventory.path;
      return false;
    }
  }
  for (const SwitchEntry& s : inventory.switches) {
    bool take = limit.empty();
    for (const std::string& name : limit) {
      take = take || s.name == name;
      for (const std::string& g : s.groups) take = take || g == name;
    }
    if (take) out.push_back(&s);
  }
  return true;
}

bool SingleSwitchInventory(const SingleSwitch& given, CommunityNeed need, Inventory& out, std::string& error) {
  out.path = "--switch";
  SwitchEntry e;
  e.name = given.name.empty() ? given.address : given.name;
  e.target.ip = given.address;
  e.target.typeText = given.model;
  if (!CheckAddressAndModel(e, "--switch", "--model", error)) return false;
  if (!CommunitiesFromEnvironment(given.readEnv, given.writeEnv, need, e.target, error)) return false;
  out.switches.push_back(std::move(e));
  return true;
}
