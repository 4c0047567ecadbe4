#pragma once

#include <functional>

namespace korvel::db::net {

/// Waits for the end of a thread, once. Whoever drops it unused leaves the thread behind.
using ThreadEnd = std::function<void()>;

/// Starts a thread that can be waited for, or left behind. `work` throws nothing. Throws Error where no thread is to be
/// had.
[[nodiscard]] ThreadEnd startThread(std::function<void()> work);

/// Starts a thread for which nobody ever waits.
void startLooseThread(std::function<void()> work);

}  // namespace korvel::db::net
