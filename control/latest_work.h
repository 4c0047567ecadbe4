#pragma once

#include <QObject>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <stop_token>
#include <thread>

namespace korvel::control {

/// Work that would hold the window up, done on a thread of its own. Only the latest piece counts: a newer one, or a
/// call of stop(), stops the one before, whose end nobody waits for. The destructor waits for it.
class LatestWork final : public QObject {
 public:
  using Work = std::function<void(const std::stop_token& stop)>;

  explicit LatestWork(QObject* parent);
  ~LatestWork() override;

  /// Calls `work` on the other thread, then `done` on the thread of the caller, unless it was stopped meanwhile. `work`
  /// owns all that it uses, throws nothing, and ends soon once a stop is requested.
  void start(Work work, std::function<void()> done);
  void stop();
  [[nodiscard]] bool isRunning() const noexcept { return static_cast<bool>(done_); }

 private:
  struct Order {
    Work work;
    std::stop_source stop;
    std::uint64_t number = 0;
  };
  void run();
  void finish(std::uint64_t number);

  std::function<void()> done_;  ///< of the latest piece; empty while none is under way
  std::stop_source stop_;
  std::uint64_t number_ = 0;

  std::mutex mutex_;  ///< guards the members below
  std::condition_variable changed_;
  std::optional<Order> next_;
  bool ends_ = false;
  std::thread thread_;  ///< started by the first piece of work
};

}  // namespace korvel::control
