// Ctrl-C and SIGTERM (Ctrl-Break or closing the console on Windows) while switches are being
// written: the first asks the apply to stop cleanly (no new record, the request in flight
// finished, the closing requests of what landed sent, the recap printed); a second ends the
// process at once with exit status 130.
#pragma once

class InterruptGuard {
 public:
  InterruptGuard();   // installs the handlers, forgetting any earlier request
  ~InterruptGuard();  // puts the previous handlers back
  InterruptGuard(const InterruptGuard&) = delete;
  InterruptGuard& operator=(const InterruptGuard&) = delete;
  static bool Requested();
};

constexpr int kExitInterrupted = 130;  // as a shell reports a command ended by SIGINT
