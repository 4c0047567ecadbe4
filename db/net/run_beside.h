#pragma once

#include <future>
#include <system_error>
#include <thread>
#include <type_traits>
#include <utility>

#include "base/error.h"

namespace korvel::db::net {

/// Runs `work` on a thread of its own that can be left behind: for calls into the system that wait as long as they
/// like. Whatever the work uses must be its own, because it may go on after the caller has given it up. Throws Error
/// where no thread is to be had.
template <typename Work>
[[nodiscard]] std::future<std::invoke_result_t<Work>> runBeside(Work work) {
  std::packaged_task<std::invoke_result_t<Work>()> task(std::move(work));
  auto result = task.get_future();
  try {
    std::thread(std::move(task)).detach();
  } catch (const std::system_error& error) {
    throw systemError(error.code().value(), "cannot start a thread");
  }
  return result;
}

}  // namespace korvel::db::net
