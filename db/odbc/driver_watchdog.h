#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <stop_token>
#include <thread>

#include "db/odbc/driver_sockets.h"

namespace korvel::db::odbc {

/// When a driver's wait is ended from outside.
struct WatchdogTimeouts {
  /// Time without data from the server after which the driver's connections are shut down; nothing: never.
  std::optional<std::chrono::milliseconds> silence;
  /// Time after a stop until the connections are shut down; the statement is cancelled repeatedly meanwhile.
  std::chrono::milliseconds afterStop{0};
};

/// Ends a driver's wait when the server has sent nothing for too long, or after a stop. Works on a thread of its own,
/// for as long as the object exists.
class DriverWatchdog {
 public:
  /// `sockets` stay as they are while they are watched.
  DriverWatchdog(const DriverSockets& sockets, WatchdogTimeouts timeouts, const std::stop_token& stop);
  ~DriverWatchdog();
  DriverWatchdog(const DriverWatchdog&) = delete;
  DriverWatchdog& operator=(const DriverWatchdog&) = delete;

  /// The server has sent something: the silence is counted anew.
  void noteActivity() noexcept { lastActivity_.store(now(), std::memory_order_relaxed); }
  /// The rest of the answer is not needed; the driver may still wait for it when the statement is closed.
  void discardRest();
  /// Whether the driver's connections had to be shut down because the server was silent.
  [[nodiscard]] bool expired() const noexcept { return expired_.load(); }

  /// Whether the caller has asked for the stop.
  [[nodiscard]] bool stopped() const noexcept { return stop_.stop_requested(); }

  /// Makes a call of the driver that may wait for the server, and gives its result. A stop cancels such a call when it
  /// has lasted for a moment, and never anything else: in a driver that is idle, SQLCancel waits for the server itself,
  /// and when that fails the driver manager reads the driver's diagnostics while the next call deletes them.
  template <typename Call>
  auto during(const Call& call) {
    ++callBorders_;
    const auto result = call();
    ++callBorders_;
    // The call may have ended just before it was cancelled.
    if (cancelling_) const std::lock_guard untilCancelled(cancelMutex_);
    return result;
  }

  /// While it exists, a stop cancels the calls made by during() first, on another thread, because a driver may wait for
  /// the server in `cancel`.
  class Cancelling {
   public:
    Cancelling(DriverWatchdog& watch, std::function<void()> cancel) : watch_(watch) {
      watch_.setCancel(std::move(cancel));
    }
    ~Cancelling() { watch_.setCancel({}); }
    Cancelling(const Cancelling&) = delete;
    Cancelling& operator=(const Cancelling&) = delete;

   private:
    DriverWatchdog& watch_;
  };

 private:
  using Clock = std::chrono::steady_clock;
  static Clock::rep now() noexcept { return Clock::now().time_since_epoch().count(); }
  [[nodiscard]] Clock::time_point lastActivity() const noexcept {
    return Clock::time_point(Clock::duration(lastActivity_.load(std::memory_order_relaxed)));
  }
  void setCancel(std::function<void()> cancel);
  void cancelUntilDone();
  void wake();
  void watch();
  /// Does what is due and says when the next thing is; nothing: when wake() is called.
  std::optional<Clock::time_point> act();

  const DriverSockets& sockets_;
  const WatchdogTimeouts timeouts_;
  const std::stop_token stop_;
  std::atomic<Clock::rep> lastActivity_;
  std::atomic<bool> expired_{false};
  std::atomic<bool> decided_{false};
  std::optional<Clock::time_point> ending_;    // the watching thread's
  std::atomic<std::uint64_t> callBorders_{0};  // begun and ended calls: odd inside of a call
  std::atomic<bool> cancelling_{false};
  std::mutex cancelMutex_;
  std::function<void()> cancel_;
  std::mutex mutex_;
  std::condition_variable changed_;
  bool done_ = false;
  bool woken_ = false;
  std::thread canceller_;  // the watching thread starts it
  std::thread thread_;     // last: it uses all of the above
};

}  // namespace korvel::db::odbc
