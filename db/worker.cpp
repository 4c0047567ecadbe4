#include "db/worker.h"

#include <condition_variable>
#include <exception>
#include <mutex>

#include "db/net/detached_thread.h"

namespace korvel::db {

namespace {

/// Counts the abandoned workers that still run.
class AbandonedWorkers {
 public:
  void add() {
    const std::lock_guard lock(mutex_);
    ++count_;
  }
  void remove() {
    const std::lock_guard lock(mutex_);
    --count_;
    changed_.notify_all();
  }
  [[nodiscard]] bool isAny() {
    const std::lock_guard lock(mutex_);
    return count_ > 0;
  }
  void awaitEnd(std::chrono::milliseconds atMost) {
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, atMost, [this] { return count_ == 0; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  int count_ = 0;
};

/// Never destroyed: an abandoned worker may outlive everything else.
AbandonedWorkers& abandonedWorkers() {
  // NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): it locks itself
  static auto* const only = new AbandonedWorkers;
  return *only;
}

/// What the two threads share.
class Task {
 public:
  /// On the working thread.
  void run(std::function<void(const std::stop_token&)> work) noexcept {
    std::exception_ptr thrown;
    try {
      work(stop_.get_token());
    } catch (...) {
      thrown = std::current_exception();
    }
    // The waiting thread may destroy what the work refers to as soon as this has ended.
    work = nullptr;
    const std::lock_guard lock(mutex_);
    thrown_ = std::move(thrown);
    ended_ = true;
    if (isAbandoned_) abandonedWorkers().remove();
    changed_.notify_all();
  }

  [[nodiscard]] bool endsWithin(std::chrono::milliseconds time) {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, time, [this] { return ended_; });
  }
  void waitForEnd() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return ended_; });
  }

  void requestStop() { stop_.request_stop(); }
  /// False where the work has ended after all.
  [[nodiscard]] bool abandon() {
    const std::lock_guard lock(mutex_);
    if (ended_) return false;
    isAbandoned_ = true;
    abandonedWorkers().add();
    return true;
  }
  void rethrow() const {
    if (thrown_) std::rethrow_exception(thrown_);
  }

 private:
  std::stop_source stop_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::exception_ptr thrown_;
  bool ended_ = false;
  bool isAbandoned_ = false;
};

/// Waits until the work has ended, or is not wanted any more; true for the former.
bool awaitEnd(Task& task, const WaitCallback& onWait, std::chrono::milliseconds interval) {
  if (!onWait) {
    task.waitForEnd();
    return true;
  }
  while (!task.endsWithin(interval))
    if (!onWait()) return false;
  return true;
}

}  // namespace

bool waitForWorker(std::function<void(const std::stop_token&)> work, const WaitCallback& onWait,
                   const WaitTiming& pace) {
  const auto task = std::make_shared<Task>();
  const net::JoinThread join =
      net::startThread([task, work = std::move(work)]() mutable { task->run(std::move(work)); });
  bool ended = false;
  std::exception_ptr callbackFailed;
  try {
    ended = awaitEnd(*task, onWait, pace.interval);
  } catch (...) {
    callbackFailed = std::current_exception();
  }
  if (!ended) {
    task->requestStop();
    ended = task->endsWithin(pace.grace) || !task->abandon();
  }
  // Also its last steps: the program may end next.
  if (ended) join();
  if (callbackFailed) std::rethrow_exception(callbackFailed);
  if (ended) task->rethrow();
  return ended;
}

bool hasAbandonedWorkers() noexcept {
  return abandonedWorkers().isAny();
}

void waitForAbandonedWorkers(std::chrono::milliseconds atMost) {
  abandonedWorkers().awaitEnd(atMost);
}

}  // namespace korvel::db
