#include <windows.h>

#include <atomic>
#include <condition_variable>
#include <mutex>

#include "cli/interruption.h"
#include "cli/interruption_windows.h"

namespace korvel::cli {

namespace {

std::atomic<bool>& noted() noexcept {
  static constinit std::atomic<bool> flag{false};
  return flag;
}

/// The end of the work that was to be ended in good order. A lock and not an atomic variable: the compiler's library
/// for Windows may lose the wake-up of a thread that is just beginning to wait for one.
class WorkEnd {
 public:
  void expect() {
    const std::lock_guard lock(mutex_);
    hasCome_ = false;
  }
  void announce() {
    const std::lock_guard lock(mutex_);
    hasCome_ = true;
    changed_.notify_all();
  }
  void wait() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return hasCome_; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool hasCome_ = false;
};

WorkEnd& workEnd() {
  static WorkEnd end;
  return end;
}

}  // namespace

BOOL WINAPI noteConsoleEvent(DWORD event) {
  const bool wasNoted = noted().exchange(true);
  if (event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT) return wasNoted ? FALSE : TRUE;
  // The window is closed, or the session: the process is gone as soon as this returns, or after a few seconds.
  workEnd().wait();
  return TRUE;
}

struct Interruption::Before {};

Interruption::Interruption() {
  noted() = false;
  workEnd().expect();
  SetConsoleCtrlHandler(noteConsoleEvent, TRUE);
}

Interruption::~Interruption() {
  // First: the system removes no handler while one runs, and this one waits for us.
  workEnd().announce();
  SetConsoleCtrlHandler(noteConsoleEvent, FALSE);
}

bool Interruption::requested() noexcept {
  return noted().load(std::memory_order_relaxed);
}

}  // namespace korvel::cli
