#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <type_traits>
#include <utility>

namespace korvel::db {

/// Called again and again, on the thread that waits, while work goes on elsewhere. False asks for the work's end.
using WaitCallback = std::function<bool()>;

/// How a thread waits for work.
struct WaitTiming {
  std::chrono::milliseconds interval{20};  ///< from one call of the onWait to the next
  std::chrono::milliseconds grace{100};    ///< for work to end that was asked to, before it is left behind
};

/// Runs `work` on another thread, waits for it and, meanwhile, calls `onWait`, if there is one. False: the work was
/// asked to end and has not ended within its grace. It is then left behind: whatever it uses must be its own, for it
/// may go on for long. What the work throws is thrown here. What the onWait throws ends the work like a false, and
/// is thrown then. Throws Error where no thread is to be had.
[[nodiscard]] bool waitForWorker(std::function<void(const std::stop_token&)> work, const WaitCallback& onWait,
                              const WaitTiming& pace);

/// Runs what may wait for somebody else (driver, name service, login service, network folder) apart from the thread
/// that needs its result; see waitForWorker(). Nothing where the work was left behind.
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

/// Whether work that was left behind still goes on.
[[nodiscard]] bool hasAbandonedWorkers() noexcept;
/// Waits until it has ended, for a program that is about to end, but not longer than `atMost`.
void waitForAbandonedWorkers(std::chrono::milliseconds atMost);

}  // namespace korvel::db
