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

// Loads and checks the inventory and resolves every switch's communities. On failure `error`
// names the file, the JSON path and what is wrong (never a community).
bool LoadInventory(const std::string& path, Inventory& out, std::string& error);

// The switches that `limit` names (switch or group names; empty: all), in inventory order.
// An unknown name is an error.
bool SelectSwitches(const Inventory& inventory, const std::vector<std::string>& limit,
                    std::vector<const SwitchEntry*>& out, std::string& error);

// Reads and parses a JSON file; false with "FILE: cannot be read" or "FILE: $: not valid JSON at
// line L, column C" (a position only: the text around it may be a community).
bool LoadJsonFile(const std::string& path, Json& out, std::string& error);
