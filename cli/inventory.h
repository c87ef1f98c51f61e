// The inventory: which switches exist, where they are, what model they are, which groups they
// belong to and where their communities come from. Communities are read from environment
// variables or a secrets file and are never printed, not even in an error.
#pragma once

#include <string>
#include <vector>

#include "acl/acl_device.h"
#include "cli/json_fields.h"

struct SwitchEntry {
  std::string name;
  std::vector<std::string> groups;
  AclTarget target;  // address, communities, model text
  const ModelEntry* model = nullptr;
};

struct Inventory {
  std::string path;
  std::vector<SwitchEntry> switches;
  const SwitchEntry* find(const std::string& name) const;
};

// The communities a command needs: none (a plan against switches taken to be empty), the read
// community (show, plan) or both (apply, delete).
enum class CommunityNeed { kNone, kRead, kReadWrite };

// Loads and checks the inventory and resolves every switch's communities. On failure `error`
// names the file, the JSON path and what is wrong (never a community).
bool LoadInventory(const std::string& path, CommunityNeed need, Inventory& out, std::string& error);

// One switch given on the command line, for tools that keep their own inventory: named `name`
// (or its address), in no group, with its communities from the environment variables named.
struct SingleSwitch {
  std::string address, model, name;
  std::string readEnv = "SENTREL_READ_COMMUNITY", writeEnv = "SENTREL_WRITE_COMMUNITY";
};
bool SingleSwitchInventory(const SingleSwitch& given, CommunityNeed need, Inventory& out, std::string& error);

// The switches that `limit` names (switch or group names; empty: all), in inventory order.
// An unknown name is an error.
bool SelectSwitches(const Inventory& inventory, const std::vector<std::string>& limit,
                    std::vector<const SwitchEntry*>& out, std::string& error);

// Reads and parses a JSON file; false with "FILE: cannot be read" or "FILE: $: not valid JSON at
// line L, column C" (a position only: the text around it may be a community).
bool LoadJsonFile(const std::string& path, Json& out, std::string& error);
// The same for text read elsewhere (standard input), named `name` in errors.
bool ParseJsonText(const std::string& name, const std::string& text, Json& out, std::string& error);
