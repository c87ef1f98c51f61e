// The one JSON document `plan --json` and `apply --json` print for scripts and automation
// engines (its schema: cli/schema/plan-result.schema.json).
#pragma once

#include <vector>

#include "cli/engine.h"

// `applied`: the plans were carried out (results, read-back verdicts, the state read back);
// otherwise they are plans and "after" is the state each one means.
Json PlanResultJson(bool applied, StateMode mode, const std::vector<SwitchPlan>& plans);

// "merged", "replaced", "overridden".
const char* StateModeName(StateMode mode);
