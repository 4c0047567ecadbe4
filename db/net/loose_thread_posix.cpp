#include <system_error>
#include <thread>
#include <utility>

#include "base/error.h"
#include "db/net/loose_thread.h"

namespace korvel::db::net {

void startLooseThread(std::function<void()> work) {
  try {
    std::thread(std::move(work)).detach();
  } catch (const std::system_error& error) {
    throw systemError(error.code().value(), "cannot start a thread");
  }
}

}  // namespace korvel::db::net
