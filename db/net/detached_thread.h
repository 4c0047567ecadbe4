#pragma once

#include <functional>
#include <future>
#include <memory>
#include <type_traits>
#include <utility>

namespace korvel::db::net {

/// Waits for the end of a thread, once. Whoever drops it unused leaves the thread behind.
using JoinThread = std::function<void()>;

/// Starts a thread that can be waited for, or left behind. `work` throws nothing. Throws Error where no thread is to be
/// had.
[[nodiscard]] JoinThread startThread(std::function<void()> work);

/// Starts a thread for which nobody ever waits.
void startDetachedThread(std::function<void()> work);

/// Runs `work` on a thread of its own that can be left behind: for calls into the system that wait as long as they
/// like. Whatever the work uses must be its own, because it may go on after the caller has given it up. Throws Error
/// where no thread is to be had.
template <typename Work>
[[nodiscard]] std::future<std::invoke_result_t<Work>> runDetached(Work work) {
  const auto task = std::make_shared<std::packaged_task<std::invoke_result_t<Work>()>>(std::move(work));
  auto result = task->get_future();
  startDetachedThread([task] { (*task)(); });
  return result;
}

}  // namespace korvel::db::net
