#include "cli/interruption.h"

#include <array>
#include <atomic>
#include <csignal>
#include <cstddef>

namespace korvel::cli {

namespace {

// The last one comes when the terminal is closed.
constexpr std::array signals = {SIGINT, SIGTERM, SIGHUP};

/// The flag that the signal handler sets: initialised at compile time and lock-free.
std::atomic<bool>& noted() noexcept {
  static constinit std::atomic<bool> flag{false};
  static_assert(std::atomic<bool>::is_always_lock_free);
  return flag;
}

extern "C" void note(int signal) {
  noted().store(true, std::memory_order_relaxed);
  static_cast<void>(std::signal(signal, SIG_DFL));
}

}  // namespace

struct Interruption::Before {
  std::array<void (*)(int), signals.size()> handlers{};
};

Interruption::Interruption() : before_(std::make_unique<Before>()) {
  noted() = false;
  for (std::size_t i = 0; i < signals.size(); ++i) {
    before_->handlers.at(i) = std::signal(signals.at(i), note);
    if (before_->handlers.at(i) == SIG_IGN) static_cast<void>(std::signal(signals.at(i), SIG_IGN));
  }
}

Interruption::~Interruption() {
  for (std::size_t i = 0; i < signals.size(); ++i)
    if (before_->handlers.at(i) != SIG_ERR) static_cast<void>(std::signal(signals.at(i), before_->handlers.at(i)));
}

bool Interruption::requested() noexcept {
  return noted().load(std::memory_order_relaxed);
}

}  // namespace korvel::cli
