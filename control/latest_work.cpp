#include "control/latest_work.h"

#include <utility>

namespace korvel::control {

LatestWork::LatestWork(QObject* parent) : QObject(parent) {}

LatestWork::~LatestWork() {
  stop();
  {
    const std::lock_guard lock(mutex_);
    ends_ = true;
    next_.reset();
  }
  changed_.notify_one();
  if (thread_.joinable()) thread_.join();
}

void LatestWork::start(Work work, std::function<void()> done) {
  stop();
  done_ = std::move(done);
  stop_ = {};
  {
    const std::lock_guard lock(mutex_);
    next_ = Order{std::move(work), stop_, number_};
  }
  if (!thread_.joinable()) thread_ = std::thread([this] { run(); });
  changed_.notify_one();
}

void LatestWork::stop() {
  stop_.request_stop();
  ++number_;
  done_ = nullptr;
}

void LatestWork::run() {
  for (;;) {
    Order order;
    {
      std::unique_lock lock(mutex_);
      changed_.wait(lock, [this] { return next_ || ends_; });
      if (ends_) return;
      order = std::move(*next_);
      next_.reset();
    }
    order.work(order.stop.get_token());
    QMetaObject::invokeMethod(
        this, [this, number = order.number] { finish(number); }, Qt::QueuedConnection);
  }
}

void LatestWork::finish(std::uint64_t number) {
  // It was stopped behind its last look at the token.
  if (number != number_ || !done_) return;
  // It may start another piece of work.
  std::exchange(done_, nullptr)();
}

}  // namespace korvel::control
