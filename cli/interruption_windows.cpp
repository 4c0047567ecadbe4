#include <windows.h>

#include <atomic>

#include "cli/interruption.h"
#include "cli/interruption_windows.h"

namespace korvel::cli {

namespace {

std::atomic<bool>& noted() noexcept {
  static constinit std::atomic<bool> flag{false};
  return flag;
}

/// Whether the work that was to be ended in good order has ended.
std::atomic<bool>& ended() noexcept {
  static constinit std::atomic<bool> flag{false};
  return flag;
}

}  // namespace

BOOL WINAPI noteConsoleEvent(DWORD event) {
  const bool wasNoted = noted().exchange(true);
  if (event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT) return wasNoted ? FALSE : TRUE;
  // The window is closed, or the session: the process is gone as soon as this returns, or after a few seconds.
  ended().wait(false);
  return TRUE;
}

struct Interruption::Before {};

Interruption::Interruption() {
  noted() = false;
  ended() = false;
  SetConsoleCtrlHandler(noteConsoleEvent, TRUE);
}

Interruption::~Interruption() {
  // First: the system removes no handler while one runs, and this one waits for us.
  ended() = true;
  ended().notify_all();
  SetConsoleCtrlHandler(noteConsoleEvent, FALSE);
}

bool Interruption::requested() noexcept {
  return noted().load(std::memory_order_relaxed);
}

}  // namespace korvel::cli
