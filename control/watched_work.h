#pragma once

#include <functional>
#include <optional>
#include <stop_token>
#include <type_traits>

#include "db/worker.h"

namespace korvel::control {

/// Calls `run` with what a wait for a worker calls: windows are painted meanwhile, the pointer is an hourglass, and Esc
/// ends the wait. False where it was pressed.
bool whileWatched(const std::function<void(const db::WaitCallback& onWait)>& run);

/// Runs `work` on a worker, so that the window does not stand still. The work must own all that it uses: it goes on for
/// a while where Esc has been pressed, and nothing is returned then. Throws what the work throws. Queued calls run
/// meanwhile and may destroy the caller.
template <typename Work>
auto runWatched(Work work) -> std::optional<std::invoke_result_t<Work&, const std::stop_token&>> {
  std::optional<std::invoke_result_t<Work&, const std::stop_token&>> result;
  const bool wanted =
      whileWatched([&](const db::WaitCallback& onWait) { result = db::runOnWorker(std::move(work), onWait); });
  if (!wanted) result.reset();
  return result;
}

}  // namespace korvel::control
