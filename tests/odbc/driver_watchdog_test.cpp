// What a stop cancels, and when.

#include "db/odbc/driver_watchdog.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <optional>
#include <stop_token>
#include <thread>

namespace korvel::test {
namespace {

using namespace std::chrono_literals;
using db::odbc::DriverSockets;
using db::odbc::DriverWatchdog;

class Cancelling : public testing::Test {
 protected:
  DriverSockets sockets_;
  std::stop_source stop_;
  DriverWatchdog watch_{sockets_, {std::nullopt, 20s}, stop_.get_token()};
};

TEST_F(Cancelling, endsACallThatWaits) {
  std::atomic<bool> cancelled{false};
  const DriverWatchdog::Cancelling cancelling(watch_, [&] {
    cancelled = true;
    cancelled.notify_all();
  });
  stop_.request_stop();
  const int result = watch_.during([&] {
    cancelled.wait(false);
    return 7;
  });
  EXPECT_EQ(result, 7);
}

/// The driver's diagnostics are read by the one who cancels.
TEST_F(Cancelling, isOverBeforeTheCallReturns) {
  std::atomic<bool> begun{false};
  std::atomic<bool> left{false};
  std::atomic<bool> over{false};
  const DriverWatchdog::Cancelling cancelling(watch_, [&] {
    over = false;
    begun = true;
    begun.notify_all();
    left.wait(false);
    for (int i = 0; i < 1000; ++i) std::this_thread::yield();
    over = true;
  });
  stop_.request_stop();
  watch_.during([&] {
    begun.wait(false);
    left = true;
    left.notify_all();
    return 0;
  });
  EXPECT_TRUE(over);
}

/// Calls that end by themselves, with far more time between them than inside of them.
TEST_F(Cancelling, neverReachesADriverThatIsIdle) {
  std::atomic<bool> inside{false};
  std::atomic<int> idle{0};
  const DriverWatchdog::Cancelling cancelling(watch_, [&] {
    if (!inside) ++idle;
  });
  stop_.request_stop();
  for (int call = 0; call < 20000; ++call) {
    watch_.during([&] {
      inside = true;
      return 0;
    });
    inside = false;
    for (int i = 0; i < 50; ++i) std::this_thread::yield();
  }
  EXPECT_EQ(idle, 0);
}

}  // namespace
}  // namespace korvel::test
