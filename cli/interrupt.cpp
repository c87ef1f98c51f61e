#include "cli/interrupt.h"

#include <atomic>
#include <csignal>
#include <cstdlib>

#ifdef _WIN32
#include <windows.h>
#else
#include <unistd.h>
#endif

namespace {

std::atomic<int> g_signals{0};
static_assert(std::atomic<int>::is_always_lock_free, "touched from a signal handler");

void Note() {
  if (g_signals.fetch_add(1) >= 1) _exit(kExitInterrupted);
}

#ifdef _WIN32
BOOL WINAPI OnConsoleEvent(DWORD event) {
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT && event != CTRL_CLOSE_EVENT) return FALSE;
  Note();
  return TRUE;
}
#else
struct sigaction g_previous[2];
const int kSignals[2] = {SIGINT, SIGTERM};
void OnSignal(int) { Note(); }
#endif

}  // namespace

InterruptGuard::InterruptGuard() {
  g_signals = 0;
#ifdef _WIN32
  SetConsoleCtrlHandler(OnConsoleEvent, TRUE);
#else
  struct sigaction action {};
  action.sa_handler = OnSignal;
  sigemptyset(&action.sa_mask);
  action.sa_flags = SA_RESTART;  // a request in flight goes on waiting for its answer
  for (int k = 0; k < 2; ++k) sigaction(kSignals[k], &action, &g_previous[k]);
#endif
}

InterruptGuard::~InterruptGuard() {
#ifdef _WIN32
  SetConsoleCtrlHandler(OnConsoleEvent, FALSE);
#else
  for (int k = 0; k < 2; ++k) sigaction(kSignals[k], &g_previous[k], nullptr);
#endif
}

bool InterruptGuard::Requested() { return g_signals.load() > 0; }
