#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>

#include "db/odbc/driver_sockets.h"

namespace korvel::db::odbc {

/// Ends what a driver waits for when the server has said nothing for too long, from a thread of its own, for as long as
/// the object lives.
class DriverWatch {
 public:
  /// `sockets` stay as they are while they are watched. `patience` is the time without a word after which the driver's
  /// connections are shut down; nothing: never.
  DriverWatch(const DriverSockets& sockets, std::optional<std::chrono::milliseconds> patience);
  ~DriverWatch();
  DriverWatch(const DriverWatch&) = delete;
  DriverWatch& operator=(const DriverWatch&) = delete;

  /// The server has said something: patience begins anew.
  void heard() noexcept { lastWord_.store(now(), std::memory_order_relaxed); }
  /// Whether the driver's connections had to be shut down.
  [[nodiscard]] bool expired() const noexcept { return expired_.load(); }

 private:
  using Clock = std::chrono::steady_clock;

  static Clock::rep now() noexcept { return Clock::now().time_since_epoch().count(); }
  [[nodiscard]] Clock::time_point lastWord() const noexcept {
    return Clock::time_point(Clock::duration(lastWord_.load(std::memory_order_relaxed)));
  }
  void watch(std::chrono::milliseconds patience);

  const DriverSockets& sockets_;
  std::atomic<Clock::rep> lastWord_;
  std::atomic<bool> expired_{false};
  std::mutex mutex_;
  std::condition_variable over_;
  bool done_ = false;
  std::thread thread_;  // last: it uses all of the above
};

}  // namespace korvel::db::odbc
