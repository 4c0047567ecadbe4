#include "db/odbc/driver_watch.h"

namespace korvel::db::odbc {

DriverWatch::DriverWatch(const DriverSockets& sockets, std::optional<std::chrono::milliseconds> patience)
    : sockets_(sockets), lastWord_(now()) {
  if (patience) thread_ = std::thread([this, limit = *patience] { watch(limit); });
}

DriverWatch::~DriverWatch() {
  if (!thread_.joinable()) return;
  {
    const std::lock_guard lock(mutex_);
    done_ = true;
  }
  over_.notify_all();
  thread_.join();
}

void DriverWatch::watch(std::chrono::milliseconds patience) {
  // A driver may try the host's next address after one was closed under it: shut down again until all is over.
  constexpr std::chrono::milliseconds again{50};
  std::unique_lock lock(mutex_);
  for (Clock::time_point end = lastWord() + patience; !over_.wait_until(lock, end, [this] { return done_; });) {
    const Clock::time_point latest = lastWord() + patience;
    if (!expired_ && latest > Clock::now()) {
      end = latest;
      continue;
    }
    expired_ = true;
    sockets_.shutDown();
    end = Clock::now() + again;
  }
}

}  // namespace korvel::db::odbc
