#include "db/odbc/driver_watchdog.h"

#include <algorithm>
#include <utility>

namespace korvel::db::odbc {

namespace {

/// A driver may try the host's next address after its connection was shut down, and a statement that has not begun yet
/// cannot be cancelled: what ends it is done again until all is over.
constexpr std::chrono::milliseconds again{50};

/// A call of the driver that lasts longer waits for the server; shorter ones end by themselves.
constexpr std::chrono::milliseconds waiting{10};

/// How often a stop is looked for. A std::stop_callback would tell at once, but the end of one that is just being
/// called may wait forever where the standard library waits without the system's help, as it does on Windows.
constexpr std::chrono::milliseconds stopCheck{10};

}  // namespace

DriverWatchdog::DriverWatchdog(const DriverSockets& sockets, WatchdogTimeouts timeouts, const std::stop_token& stop)
    : sockets_(sockets), timeouts_(timeouts), stop_(stop), lastActivity_(now()), thread_([this] { watch(); }) {}

DriverWatchdog::~DriverWatchdog() {
  {
    const std::lock_guard lock(mutex_);
    done_ = true;
  }
  changed_.notify_all();
  thread_.join();
  if (canceller_.joinable()) canceller_.join();
}

void DriverWatchdog::discardRest() {
  decided_ = true;
  wake();
}

void DriverWatchdog::wake() {
  {
    const std::lock_guard lock(mutex_);
    woken_ = true;
  }
  changed_.notify_all();
}

void DriverWatchdog::setCancel(std::function<void()> cancel) {
  const std::lock_guard lock(cancelMutex_);
  cancel_ = std::move(cancel);
}

void DriverWatchdog::cancelUntilDone() {
  const auto isDone = [this] { return done_; };
  std::unique_lock lock(mutex_);
  while (!done_) {
    const std::uint64_t before = callBorders_;
    if (changed_.wait_for(lock, waiting, isDone)) return;
    lock.unlock();
    bool cancelled = false;
    {
      const std::lock_guard cancelling(cancelMutex_);
      cancelling_ = true;
      cancelled = cancel_ && before % 2 == 1 && callBorders_ == before;
      if (cancelled) cancel_();
      cancelling_ = false;
    }
    lock.lock();
    if (cancelled) changed_.wait_for(lock, again, isDone);
  }
}

void DriverWatchdog::watch() {
  std::unique_lock lock(mutex_);
  while (!done_) {
    woken_ = false;
    lock.unlock();
    const std::optional<Clock::time_point> next = act();
    lock.lock();
    const auto isDue = [this] { return done_ || woken_; };
    if (next)
      changed_.wait_until(lock, *next, isDue);
    else
      changed_.wait(lock, isDue);
  }
}

std::optional<DriverWatchdog::Clock::time_point> DriverWatchdog::act() {
  const Clock::time_point time = Clock::now();
  std::optional<Clock::time_point> next;
  const auto atTheLatest = [&next](Clock::time_point moment) { next = next ? std::min(*next, moment) : moment; };
  const bool stopped = stop_.stop_requested();
  if (stopped || decided_) {
    if (!ending_) ending_ = time + timeouts_.afterStop;
    if (time >= *ending_) {
      sockets_.shutDown();
    } else {
      if (stopped && !canceller_.joinable()) canceller_ = std::thread([this] { cancelUntilDone(); });
      atTheLatest(*ending_);
    }
    atTheLatest(time + again);
  }
  if (!stopped && stop_.stop_possible()) atTheLatest(time + stopCheck);
  if (timeouts_.silence && !decided_) {
    const Clock::time_point end = lastActivity() + *timeouts_.silence;
    if (expired_ || end <= time) {
      expired_ = true;
      sockets_.shutDown();
      atTheLatest(time + again);
    } else {
      atTheLatest(end);
    }
  }
  return next;
}

}  // namespace korvel::db::odbc
