#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <type_traits>
#include <utility>

namespace korvel::db {

/// Called periodically on the waiting thread while a worker runs. False asks for the work's end.
using WaitCallback = std::function<bool()>;

/// How a thread waits for work.
struct WaitTiming {
  std::chrono::milliseconds interval{20};  ///< from one call of the onWait to the next
  std::chrono::milliseconds grace{100};    ///< for the end of a stopped worker, before it is abandoned
};

/// Runs `work` on another thread, waits for it and, meanwhile, calls `onWait`, if there is one. False: the work was
/// asked to end and has not ended within its grace period. It is then abandoned, and must own all that it uses, because
/// it may go on for long. What the work throws is thrown here. What the onWait throws ends the work like a false, and
/// is thrown then. Throws Error where no thread is to be had.
[[nodiscard]] bool waitForWorker(std::function<void(const std::stop_token&)> work, const WaitCallback& onWait,
                                 const WaitTiming& pace);

/// Runs what may block on something external (driver, name service, login service, network folder) on a worker thread
/// and waits for its result; see waitForWorker(). Nothing where the worker was abandoned.
template <typename Work>
auto runOnWorker(Work work, const WaitCallback& onWait, const WaitTiming& pace = {})
    -> std::optional<std::invoke_result_t<Work&, const std::stop_token&>> {
  using Result = std::invoke_result_t<Work&, const std::stop_token&>;
  auto result = std::make_shared<std::optional<Result>>();
  auto own = std::make_shared<Work>(std::move(work));
  const bool ended = waitForWorker(
      [result, own = std::move(own)](const std::stop_token& stop) { result->emplace((*own)(stop)); }, onWait, pace);
  return ended ? std::move(*result) : std::optional<Result>();
}

/// Whether an abandoned worker still runs.
[[nodiscard]] bool hasAbandonedWorkers() noexcept;
/// Waits for the end of all abandoned workers, at most `atMost`, before the program ends.
void waitForAbandonedWorkers(std::chrono::milliseconds atMost);

}  // namespace korvel::db
