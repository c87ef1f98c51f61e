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
  const std::string text = s.str();
  try {
    out = Json::parse(text);
  } catch (const Json::parse_error& e) {
    error = path + ": $: not valid JSON at " + LineColumn(text, e.byte > 0 ? e.byte - 1 : 0);
    return false;
  }
  return true;
}

const SwitchEntry* Inventory::find(const std::string& name) const {
  for (const SwitchEntry& s : switches)
    if (s.name == name) return &s;
  return nullptr;
}

bool LoadInventory(const std::string& path, Inventory& out, std::string& error) {
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
    if (e.target.ip.empty()) return fail(at + ".address", "missing");
    snmp::Endpoint ep;
    if (!snmp::ParseEndpoint(e.target.ip, 161, ep))
      return fail(at + ".address", "expected a dotted IPv4 address, optionally with :port");
    e.model = LookupModel(e.target.typeText);
    if (e.model == nullptr) return fail(at + ".model", "unknown model \"" + e.target.typeText + "\"");
    if (!e.model->supported)
      return fail(at + ".model", "Havent't developed the ACL function for the device!");
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
      if (entry == nullptr || !entry->is_object() || !entry->contains("read") || !entry->contains("write") ||
          !(*entry)["read"].is_string() || !(*entry)["write"].is_string()) {
        error = key + ": no \"read\" and \"write\" texts for " + e.name + " (by its name, a group or \"default\")";
        return false;
      }
      e.target.readCommunity = (*entry)["read"].get<std::string>();
      e.target.writeCommunity = (*entry)["write"].get<std::string>();
    } else {
      if (c.readEnv.empty() || c.writeEnv.empty())
        return fail(at, "no communities: give \"communities\" with read_env and write_env, or secrets");
      for (auto [var, dest] : {std::pair{&c.readEnv, &e.target.readCommunity},
                               std::pair{&c.writeEnv, &e.target.writeCommunity}}) {
        const char* v = std::getenv(var->c_str());
        if (v == nullptr || *v == '\0')
          return fail(at, "the environment variable " + *var + " (a community) is not set");
        *dest = v;
      }
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
