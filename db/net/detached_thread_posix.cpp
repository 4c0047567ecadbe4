#include <memory>
#include <system_error>
#include <thread>
#include <utility>

#include "base/error.h"
#include "base/system_errors.h"
#include "db/net/detached_thread.h"

namespace korvel::db::net {

namespace {

struct LettingGo {
  void operator()(std::thread* thread) const {
    if (thread->joinable()) thread->detach();
    delete thread;  // NOLINT(cppcoreguidelines-owning-memory): what a deleter does
  }
};

}  // namespace

JoinThread startThread(std::function<void()> work) {
  try {
    const std::shared_ptr<std::thread> thread(new std::thread(std::move(work)), LettingGo());
    return [thread] { thread->join(); };
  } catch (const std::system_error& error) {
    throw systemError(error.code().value(), "cannot start a thread");
  }
}

void startDetachedThread(std::function<void()> work) {
  static_cast<void>(startThread(std::move(work)));
}

}  // namespace korvel::db::net
