#include "control/long_work.h"

#include <chrono>
#include <utility>

#include "db/worker.h"
#include "query/query_failure.h"

namespace korvel::control {

LongWork::LongWork(QObject* parent) : QObject(parent), work_(nullptr) {
  constexpr std::chrono::milliseconds interval{100};
  clock_.setInterval(interval);
  connect(&clock_, &QTimer::timeout, this, [this] {
    if (isRunning() && onProgress_) onProgress_();
  });
}

void LongWork::tell(Watch& watch, int stage, std::uint64_t done, std::uint64_t expected) {
  watch.stage = stage;
  watch.done = done;
  watch.expected = expected;
  if (watch.stops || watch.left.stop_requested()) throw Stopped{};
}

void LongWork::start(std::function<void(Watch& watch)> work, std::function<void()> onProgress,
                     std::function<void(Ending ending)> onEnd) {
  run_ = std::make_shared<Run>();
  onProgress_ = std::move(onProgress);
  onEnd_ = std::move(onEnd);
  clock_.start();
  work_.start(
      [run = run_, work = std::move(work)](const std::stop_token& stop) {
        const auto end = [run, work](const std::stop_token& left) {
          run->left = left;
          run->failure = query::failureOf([&] {
            try {
              work(*run);
            } catch (const Stopped&) {
              run->wasStopped = true;
            }
          });
          return true;
        };
        const auto failure =
            query::failureOf([&] { (void)db::runOnWorker(end, [&] { return !stop.stop_requested(); }); });
        if (failure && !stop.stop_requested()) run->failure = failure;
      },
      [this] { finish(); });
}

void LongWork::requestStop() {
  run_->stops = true;
}

void LongWork::finish() {
  clock_.stop();
  const Ending ending = run_->wasStopped ? Ending::stopped : run_->failure ? Ending::failed : Ending::done;
  // It may start the next one.
  if (const auto onEnd = std::exchange(onEnd_, nullptr)) onEnd(ending);
}

}  // namespace korvel::control
