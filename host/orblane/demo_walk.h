// The demo's scripted walk (DESIGN.md section 4): orblane.exe --walk <name> runs the plug-in
// command of --run while the GUI tests' wizard driver (host/wizard_driver/wizard_driver.h), on
// a second thread of this process, goes through the wizard like a person: by control IDs,
// one function per page, a screenshot of the sheet on every page. In-process because the
// list views' messages carry pointers.
#pragma once
#include <functional>
#include <string>
#include <vector>

namespace orblane {

struct WalkSettings {
    std::string name;         // a name of WalkNames()
    std::string shotsFolder;  // Windows path; the PNGs are numbered in the order taken
    std::string hostDevice;   // the host's selected device, which the wizard checks
};

struct WalkOutcome {
    bool ok = false;
    // The report, one line per step; the last is "result ok" or "result FAILED ...". Lines
    // "switch <ip> <model>", "profile <type> <id> <kind>", "rule <type> <profile id> <access
    // id>", "applied <profiles|rules> <ip> <word>", "deleted rule ..." and "deleted profile
    // ..." are for the demo script, which reads them back from the switches.
    std::vector<std::string> lines;
};

// The walks there are, e.g. "profiles-and-rules".
std::vector<std::string> WalkNames();
bool IsWalkName(const std::string& name);

// Runs `runCommand` (it shows the wizard modally and returns when it closes) on the calling
// thread and the walk on a driver thread; whatever happens, the wizard is closed at the end.
WalkOutcome RunWalk(const WalkSettings& settings, const std::function<void()>& runCommand);

}  // namespace orblane
