#pragma once

#include <functional>
#include <future>
#include <memory>
#include <type_traits>
#include <utility>

namespace korvel::db::net {

/// Joins a thread; called at most once. The thread is detached when this is destroyed uncalled.
using JoinThread = std::function<void()>;

/// Starts a thread that can be joined or detached. `work` throws nothing. Throws Error where no thread is to be had.
[[nodiscard]] JoinThread startThread(std::function<void()> work);

/// Starts a detached thread.
void startDetachedThread(std::function<void()> work);

/// Runs `work` on a detached thread, for system calls that cannot be given a timeout. The work must own all that it
/// uses, because it may go on after the caller has stopped waiting. Throws Error where no thread is to be had.
template <typename Work>
[[nodiscard]] std::future<std::invoke_result_t<Work>> runDetached(Work work) {
  const auto task = std::make_shared<std::packaged_task<std::invoke_result_t<Work>()>>(std::move(work));
  auto result = task->get_future();
  startDetachedThread([task] { (*task)(); });
  return result;
}

}  // namespace korvel::db::net
