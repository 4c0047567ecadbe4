#pragma once

#include <functional>

namespace korvel::db::net {

/// Starts a thread for which nobody ever waits. `work` throws nothing. Throws Error where no thread is to be had.
void startLooseThread(std::function<void()> work);

}  // namespace korvel::db::net
