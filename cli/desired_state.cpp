#include "cli/desired_state.h"

#include <istream>
#include <iterator>
#include <map>

#include "acl/acl_fields.h"
#include "acl/page_logic.h"

namespace {

AclOwner OwnerAt(size_t i) { return i == 1 ? AclOwner::kCpu : AclOwner::kAcl; }
const char* const kOwnerKeys[] = {"acl", "cpu_acl"};

struct Context {
  const std::string& file;
  const SwitchEntry& sw;
  bool fromGroup;
  std::vector<std::string>& errors;
  void add(const std::string& path, const std::string& message) const {
    std::string e = file + ": " + path + ": " + message;
    if (fromGroup) e += " (switch " + sw.name + ", " + sw.target.typeText + ")";
    errors.push_back(e);
  }
  void add(const std::vector<FieldError>& list) const {
    for (const FieldError& f : list) add(f.path, f.message);
  }
};

// The fields given that the model never sends to the switch (it has no column for them, or
// its writer leaves the cell out): dropped in silence, the switch would never hold what the
// file says and every later plan would find it different. `sent` is the record as built,
// read as the file writes it.
void UnsentFields(const Json& given, const Json& sent, const std::string& path, const ModelEntry& model,
                  std::vector<FieldError>& errors) {
  auto unset = [](const Json& v) {
    return (v.is_boolean() && !v.get<bool>()) || ((v.is_object() || v.is_string() || v.is_array()) && v.empty());
  };
  for (const auto& item : given.items()) {
    if (item.key() == "rules" || unset(item.value())) continue;
    if (!sent.contains(item.key()) || unset(sent[item.key()]))
      errors.push_back({path + "." + item.key(), std::string(model.typeText) + " never sends this field to the switch"});
  }
}

// An ID as decimal text (JSON number or text), or "" with an error.
std::string ReadId(const Json& j, const char* key, const std::string& path, const Context& ctx) {
  if (!j.contains(key)) {
    ctx.add(path, std::string("missing \"") + key + "\"");
    return {};
  }
  const Json& v = j.at(key);
  std::string text = v.is_number_unsigned() ? std::to_string(v.get<unsigned long long>())
                     : v.is_string()         ? v.get<std::string>()
                                             : std::string();
  if (!IsIndexText(text)) {
    ctx.add(path + "." + key, "expected a whole number");
    return {};
  }
  return text;
}

void ReadRules(const Json& j, const std::string& path, AclOwner owner, DesiredProfile& p,
               const Context& ctx) {
  if (!j.contains("rules")) return;
  const Json& rules = j.at("rules");
  if (!rules.is_array()) {
    ctx.add(path + ".rules", "expected a list of rules");
    return;
  }
  const ModelEntry& model = *ctx.sw.model;
  if (!rules.empty() && !model.offersRuleType(owner, p.type)) {
    ctx.add(path + ".rules", std::string(ctx.sw.target.typeText) + " has no " + TypeName(p.type) + " rules in the " +
                                 (owner == AclOwner::kCpu ? "CPU ACL" : "ordinary ACL"));
    return;
  }
  std::map<std::string, bool> seen;
  for (size_t i = 0; i < rules.size(); ++i) {
    const std::string at = path + ".rules[" + std::to_string(i) + "]";
    if (!rules[i].is_object()) {
      ctx.add(at, "expected an object");
      continue;
    }
    RuleFields f;
    f.profileId = p.record[0];
    f.accessId = ReadId(rules[i], "access_id", at, ctx);
    if (f.accessId.empty()) continue;
    std::vector<FieldError> errors;
    RuleFromJson(rules[i], at, p.type, owner, model, p.protocol, f, errors);
    if (errors.empty()) CheckRuleFields(rules[i], at, p.type, owner, model, f, errors);
    if (seen[f.accessId]) errors.push_back({at + ".access_id", "named twice in this profile"});
    seen[f.accessId] = true;
    if (errors.empty()) {
      AclRecord rule = BuildRule(p.type, owner, model, f);
      UnsentFields(rules[i], RuleJson(ctx.sw, owner, p.type, rule, p.protocol), at, model, errors);
      if (errors.empty()) p.rules.push_back({std::move(rule)});
    }
    ctx.add(errors);
  }
}

void ReadProfiles(const Json& list, const std::string& path, AclOwner owner,
                  std::vector<DesiredProfile>& out, const Context& ctx) {
  if (!list.is_array()) {
    ctx.add(path, "expected a list of profiles");
    return;
  }
  const ModelEntry& model = *ctx.sw.model;
  acl::pages::AddProfileModelRow row;
  acl::pages::AddProfileModelTable(model.typeText, owner == AclOwner::kCpu ? 2 : 1, row);
  std::map<std::string, bool> seen;
  for (size_t i = 0; i < list.size(); ++i) {
    const std::string at = path + "[" + std::to_string(i) + "]";
    const Json& j = list[i];
    if (!j.is_object()) {
      ctx.add(at, "expected an object");
      continue;
    }
    DesiredProfile p;
    std::string typeText = j.contains("type") && j["type"].is_string() ? j["type"].get<std::string>() : "";
    if (!ParseTypeName(typeText, p.type)) {
      ctx.add(at + ".type", "expected ethernet, ipv4, ipv6 or packet_content");
      continue;
    }
    if (!model.offersProfileType(owner, p.type)) {
      ctx.add(at + ".type", std::string(model.typeText) + " has no " + typeText + " profiles in the " +
                                (owner == AclOwner::kCpu ? "CPU ACL" : "ordinary ACL"));
      continue;
    }
    ProfileFields f;
    f.profileId = ReadId(j, "id", at, ctx);
    if (f.profileId.empty()) continue;
    std::vector<FieldError> errors;
    ProfileFromJson(j, at, p.type, owner, model, f, errors);
    using acl::pages::AddProfileVerdict;
    const AddProfileVerdict v = acl::pages::CheckAddProfile(model.typeText, owner == AclOwner::kCpu ? 2 : 1,
                                                            f.profileName, f.profileId);
    if (v == AddProfileVerdict::kNoProfileName) errors.push_back({at + ".name", "Please input Profilename!"});
    const long id = ParseLeadingDecimal(f.profileId);
    if (row.nProfileIds > 0 && (id < 1 || id > row.nProfileIds))
      errors.push_back({at + ".id", "a profile ID on " + std::string(model.typeText) + " is 1 to " +
                                        std::to_string(row.nProfileIds)});
    if (seen[f.profileId]) errors.push_back({at + ".id", "profile " + f.profileId + " is named twice"});
    seen[f.profileId] = true;
    p.record = BuildProfile(p.type, owner, model, f);
    if (errors.empty()) UnsentFields(j, ProfileJson(ctx.sw, owner, p.type, p.record), at, model, errors);
    ctx.add(errors);
    // The rules are checked even under a faulty profile: every fault of the file is told at once.
    p.protocol = ProfileProtocolCode(f);
    ReadRules(j, at, owner, p, ctx);
    if (!errors.empty()) continue;
    // A later section's profile replaces an earlier one with the same ID.
    bool replaced = false;
    for (DesiredProfile& q : out)
      if (q.record[0] == p.record[0]) {
        q = p;
        replaced = true;
      }
    if (!replaced) out.push_back(std::move(p));
  }
}

void ReadSection(const Json& section, const std::string& path, DesiredSwitch& d, const Context& ctx) {
  if (!section.is_object()) {
    ctx.add(path, "expected an object with \"acl\" and/or \"cpu_acl\"");
    return;
  }
  for (const auto& item : section.items()) {
    size_t o = 2;
    for (size_t k = 0; k < 2; ++k)
      if (item.key() == kOwnerKeys[k]) o = k;
    if (o == 2) {
      ctx.add(path + "." + item.key(), "unknown field (acl, cpu_acl)");
      continue;
    }
    d.named[o] = true;
    ReadProfiles(item.value(), path + "." + item.key(), OwnerAt(o), d.profiles[o], ctx);
  }
}

}  // namespace

bool DesiredStateFile::Load(const std::string& path, std::istream& input, const Inventory& inventory, std::vector<std::string>& errors) {
  path_ = path;
  const size_t before = errors.size();
  Json& j = json_;
  std::string error;
  if (path == "-" ? !ParseJsonText("stdin", std::string(std::istreambuf_iterator<char>(input), {}), j, error)
                  : !LoadJsonFile(path, j, error)) {
    errors.push_back(error);
    return false;
  }
  if (!j.is_object()) {
    errors.push_back(path + ": $: expected an object with \"switches\" and/or \"groups\"");
    return false;
  }
  for (const auto& item : j.items()) {
    if (item.key() != "switches" && item.key() != "groups") {
      errors.push_back(path + ": $." + item.key() + ": unknown field (switches, groups)");
      continue;
    }
    if (!item.value().is_object()) {
      errors.push_back(path + ": $." + item.key() + ": expected an object of names");
      continue;
    }
    for (const auto& named : item.value().items()) {
      bool known = item.key() == "switches" && inventory.find(named.key()) != nullptr;
      for (const SwitchEntry& s : inventory.switches)
        for (const std::string& g : s.groups) known = known || (item.key() == "groups" && g == named.key());
      if (!known)
        errors.push_back(path + ": $." + item.key() + "." + named.key() + ": no " +
                         (item.key() == "switches" ? "switch" : "group") + " of that name in " + inventory.path);
    }
  }
  return errors.size() == before;
}

DesiredSwitch DesiredStateFile::For(const SwitchEntry& sw, std::vector<std::string>& errors) const {
  // Only const access: the parsed file is shared by the threads that build switches' parts.
  const Json& j = json_;
  DesiredSwitch d;
  d.sw = &sw;
  const Json* groups = j.contains("groups") ? &j.at("groups") : nullptr;
  for (const std::string& g : sw.groups)
    if (groups != nullptr && groups->contains(g))
      ReadSection(groups->at(g), "$.groups." + g, d, Context{path_, sw, true, errors});
  if (j.contains("switches") && j.at("switches").contains(sw.name))
    ReadSection(j.at("switches").at(sw.name), "$.switches." + sw.name, d, Context{path_, sw, false, errors});
  return d;
}

std::string ProtocolOfProfile(AclType type, const AclRecord& profile) {
  if (type != AclType::kIPv4 || profile.size() < 7) return "1";
  return profile[6];
}

namespace {

// A record read from the switch without the cells this model never writes (no column, or left
// out by its writer): what they read back means nothing, and a file must not ask for it.
AclRecord WrittenCells(const SwitchEntry& sw, AclOwner owner, AclKind kind, AclType type, AclRecord r) {
  if (auto table = TableLayout(*sw.model, owner, kind, type))
    for (size_t k = 0; k < r.size() && k < table->columns.size(); ++k)
      if (k >= 2 && (table->columns[k] == 0 || table->leftOut[k])) r[k].clear();
  return r;
}

}  // namespace

Json ProfileJson(const SwitchEntry& sw, AclOwner owner, AclType type, const AclRecord& profileRead) {
  const AclRecord profile = WrittenCells(sw, owner, AclKind::kProfiles, type, profileRead);
  Json j = Json::object();
  j["id"] = std::stoull(profile[0]);
  j["type"] = TypeName(type);
  const ProfileFields f = ProfileFieldsFromRecord(type, owner, *sw.model, profile);
  const Json fields = ProfileToJson(type, owner, *sw.model, f);
  for (const auto& item : fields.items()) j[item.key()] = item.value();
  return j;
}

Json RuleJson(const SwitchEntry& sw, AclOwner owner, AclType type, const AclRecord& ruleRead,
              const std::string& protocol) {
  const AclRecord rule = WrittenCells(sw, owner, AclKind::kRules, type, ruleRead);
  Json j = Json::object();
  j["access_id"] = std::stoull(rule[1]);
  RuleFields f = RuleFieldsFromRecord(type, owner, *sw.model, rule, protocol);
  // An Rx Rate of 0 is the switch's "none" where 0 is not a rate the model takes.
  const auto rx = sw.model->rxRange();
  if (f.rxRate == "0" && (owner == AclOwner::kCpu || !rx || !rx->zeroAllowed)) f.rxRate.clear();
  const Json fields = RuleToJson(type, owner, *sw.model, protocol, f);
  for (const auto& item : fields.items()) j[item.key()] = item.value();
  return j;
}

std::vector<std::string> RulesWithoutProfile(const SwitchHoldings& h) {
  std::vector<std::string> out;
  for (size_t o = 0; o < 2; ++o)
    for (AclType type : {AclType::kEthernet, AclType::kIPv4, AclType::kIPv6, AclType::kPacketContent}) {
      const size_t t = static_cast<size_t>(type);
      for (const AclRecord& r : h.acls[o].rules[t]) {
        if (r.size() < 2) continue;
        bool held = false;
        for (const AclRecord& p : h.acls[o].profiles[t]) held = held || (!p.empty() && p[0] == r[0]);
        if (!held)
          out.push_back(std::string(kOwnerKeys[o]) + " rule " + r[0] + "/" + r[1] + " (" + TypeName(type) + ") has no " +
                        TypeName(type) + " profile " + r[0]);
      }
    }
  return out;
}

Json SwitchJson(const SwitchEntry& sw, const SwitchHoldings& h) {
  Json s = Json::object();
  for (size_t o = 0; o < 2; ++o) {
    if (!h.read[o]) continue;
    const AclOwner owner = OwnerAt(o);
    Json list = Json::array();
    for (AclType type : {AclType::kEthernet, AclType::kIPv4, AclType::kIPv6, AclType::kPacketContent})
      for (const AclRecord& p : h.acls[o].profiles[static_cast<size_t>(type)]) {
        if (p.empty() || !IsIndexText(p[0])) continue;
        Json pj = ProfileJson(sw, owner, type, p);
        Json rules = Json::array();
        for (const AclRecord& r : h.acls[o].rules[static_cast<size_t>(type)])
          if (r.size() > 1 && r[0] == p[0] && IsIndexText(r[1]))
            rules.push_back(RuleJson(sw, owner, type, r, ProtocolOfProfile(type, p)));
        if (!rules.empty()) pj["rules"] = rules;
        list.push_back(pj);
      }
    s[kOwnerKeys[o]] = list;
  }
  return s;
}

Json HoldingsJson(const std::vector<std::pair<const SwitchEntry*, SwitchHoldings>>& switches) {
  Json all = Json::object();
  for (const auto& [sw, h] : switches)
    if (h.reached) all[sw->name] = SwitchJson(*sw, h);
  return Json{{"switches", all}};
}
