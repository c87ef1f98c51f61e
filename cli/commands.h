// sentrel-acl's commands: argument parsing, output for people and for scripts, exit status.
#pragma once

#include <iosfwd>

// Exit statuses (also in --help).
enum ExitStatus : int {
  kExitOk = 0,          // done and verified, or nothing to do
  kExitUsage = 1,       // bad arguments, a file that cannot be read or is invalid, cancelled
  kExitFailed = 2,      // a switch did not answer, refused a request or did not verify
  kExitPending = 3,     // plan --detailed-exitcode: changes pending
};

// Runs one command line. `terminal`: the error stream is a terminal (progress lines are
// redrawn in place there; plain lines are written otherwise). `inputTerminal`: `in` is a
// terminal, where apply may ask before it deletes.
int RunCli(int argc, const char* const* argv, std::istream& in, std::ostream& out, std::ostream& err,
           bool terminal, bool inputTerminal = false);
