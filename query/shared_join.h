#pragma once

#include <atomic>
#include <cstddef>
#include <mutex>

#include "query/completion_report.h"
#include "query/row_join.h"
#include "results/memory_watch.h"

namespace korvel::query {

/// The query was asked to stop.
struct Stopped {};

struct CompletionProgress {
  std::size_t rows = 0;
  std::size_t slices = 0;
};

/// What a worker has joined so far, and the thread that waits for it may take over at any moment.
class SharedJoin {
 public:
  explicit SharedJoin(const results::MemoryGauge& memory) : join_(memory) {}

  /// Changes the joined rows; throws Stopped where they have been taken over. take() waits meanwhile: a change is
  /// short, however large the answer.
  template <typename Work>
  void change(const Work& work) {
    const std::lock_guard lock(mutex_);
    if (taken_) throw Stopped{};
    work(join_, report_);
    rows_ = join_.rowCount();
    slices_ = report_.slices;
  }

  [[nodiscard]] CompletionProgress progress() const noexcept { return {rows_, slices_}; }

  /// From now on only the caller uses it.
  CompletionReport take() {
    const std::lock_guard lock(mutex_);
    taken_ = true;
    report_.changedEntries = join_.changedEntries();
    report_.changedEntryCount = join_.changedEntryCount();
    return report_;
  }

  /// After take().
  [[nodiscard]] RowJoin& join() noexcept { return join_; }

 private:
  std::mutex mutex_;
  RowJoin join_;
  CompletionReport report_;
  bool taken_ = false;
  std::atomic<std::size_t> rows_ = 0;
  std::atomic<std::size_t> slices_ = 0;
};

}  // namespace korvel::query
