#pragma once

#include <future>
#include <memory>
#include <type_traits>
#include <utility>

#include "db/net/loose_thread.h"

namespace korvel::db::net {

/// Runs `work` on a thread of its own that can be left behind: for calls into the system that wait as long as they
/// like. Whatever the work uses must be its own, because it may go on after the caller has given it up. Throws Error
/// where no thread is to be had.
template <typename Work>
[[nodiscard]] std::future<std::invoke_result_t<Work>> runBeside(Work work) {
  const auto task = std::make_shared<std::packaged_task<std::invoke_result_t<Work>()>>(std::move(work));
  auto result = task->get_future();
  startLooseThread([task] { (*task)(); });
  return result;
}

}  // namespace korvel::db::net
