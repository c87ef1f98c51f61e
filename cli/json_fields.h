// The fields of profiles and rules in the desired-state JSON: names an engineer reads
// ("src_ip_mask", "ports": "1-8,10", "action": "permit") to and from the core's ProfileFields
// and RuleFields, from which the core builds the records exactly as the wizard's pages do.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "acl/acl_record.h"

using Json = nlohmann::ordered_json;

struct FieldError {
  std::string path;     // JSON path, e.g. $.switches.core-sw1.acl[0].rules[1].ports
  std::string message;
};

// "ethernet", "ipv4", "ipv6", "packet_content"; false for another text.
bool ParseTypeName(std::string_view text, AclType& type);
const char* TypeName(AclType type);
// The IPv4 profile's protocol code ("UseProtoType": 1 none .. 6 protocol ID) of its fields.
std::string ProfileProtocolCode(const ProfileFields& f);

// Reads a profile object's fields (not "id", "type" or "rules", which the caller reads).
// Errors are appended; the fields are filled as far as they could be read.
void ProfileFromJson(const Json& j, const std::string& path, AclType type, AclOwner owner,
                     const ModelEntry& model, ProfileFields& f, std::vector<FieldError>& errors);
// A rule object's fields (not "access_id"); `protocol` is its profile's protocol code.
void RuleFromJson(const Json& j, const std::string& path, AclType type, AclOwner owner,
                  const ModelEntry& model, std::string_view protocol, RuleFields& f,
                  std::vector<FieldError>& errors);

// The core's rule checks on fields read by RuleFromJson: every fault at the path of its field.
void CheckRuleFields(const Json& j, const std::string& path, AclType type, AclOwner owner, const ModelEntry& model,
                     const RuleFields& f, std::vector<FieldError>& errors);

// The fields as JSON members, in a fixed order; what the switch left empty is left out.
Json ProfileToJson(AclType type, AclOwner owner, const ModelEntry& model, const ProfileFields& f);
Json RuleToJson(AclType type, AclOwner owner, const ModelEntry& model, std::string_view protocol,
                const RuleFields& f);

// "permit", "deny", "mirror" for the action codes 2, 1, 3; the code itself otherwise.
std::string ActionName(std::string_view code);
// The members of an object as "name=value" joined by ", " (true flags by name alone), for
// the one-line views of show and plan.
std::string FieldsSummary(const Json& fields);
