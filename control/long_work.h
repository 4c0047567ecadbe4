#pragma once

#include <QObject>
#include <QTimer>
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>

#include "base/error.h"
#include "control/latest_work.h"

namespace korvel::control {

/// Work on a worker while its window can be used: the window shows how far it is, and can stop it. A worker that is
/// stuck when the window goes is left behind, and owns all that it uses.
class LongWork final : public QObject {
 public:
  /// Between the work and its window.
  struct Watch {
    std::atomic<std::uint64_t> done = 0;
    std::atomic<std::uint64_t> expected = 0;
    std::atomic<int> stage = 0;
    std::atomic<bool> stops = false;
    std::stop_token left;  ///< the window is gone
  };
  /// Ends the work in good order.
  struct Stopped {};
  enum class Ending { done, stopped, failed };

  explicit LongWork(QObject* parent);

  /// Runs `work` on a worker; what it throws is the failure. `onProgress` is called again and again meanwhile, then
  /// `onEnd`, both on this thread.
  void start(std::function<void(Watch& watch)> work, std::function<void()> onProgress,
             std::function<void(Ending ending)> onEnd);
  /// Asks the work to end; onEnd() follows.
  void requestStop();
  [[nodiscard]] bool isRunning() const noexcept { return work_.isRunning(); }
  [[nodiscard]] const Watch& watch() const { return *run_; }
  /// Of a work that failed.
  [[nodiscard]] const std::optional<Error>& failure() const { return run_->failure; }

  /// Called by the work: says how far it is. Throws Stopped where it is to end.
  static void tell(Watch& watch, int stage, std::uint64_t done, std::uint64_t expected);

 private:
  struct Run : Watch {
    std::optional<Error> failure;
    bool wasStopped = false;
  };
  void finish();

  std::shared_ptr<Run> run_ = std::make_shared<Run>();
  std::function<void()> onProgress_;
  std::function<void(Ending)> onEnd_;
  QTimer clock_;
  LatestWork work_;
};

}  // namespace korvel::control
