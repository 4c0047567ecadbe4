#pragma once

#include <QObject>
#include <algorithm>
#include <chrono>
#include <stop_token>
#include <thread>

namespace korvel::bench {

/// How long the window's thread takes at the most to come to what is asked of it: a call every few milliseconds. Lives
/// in that thread.
class WindowGaps final : public QObject {
 public:
  using Clock = std::chrono::steady_clock;

  explicit WindowGaps(std::chrono::milliseconds pace = std::chrono::milliseconds{10})
      : person_([this, pace](const std::stop_token& stop) {
          while (!stop.stop_requested()) {
            QMetaObject::invokeMethod(
                this, [this] { answered(); }, Qt::QueuedConnection);
            std::this_thread::sleep_for(pace);
          }
        }) {}
  void restart() {
    last_ = Clock::now();
    longest_ = 0;
  }
  [[nodiscard]] double longestMilliseconds() {
    answered();
    return longest_;
  }

 private:
  void answered() {
    longest_ = std::max(longest_, std::chrono::duration<double, std::milli>(Clock::now() - last_).count());
    last_ = Clock::now();
  }

  Clock::time_point last_ = Clock::now();
  double longest_ = 0;
  std::jthread person_;
};

}  // namespace korvel::bench
