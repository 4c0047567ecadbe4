#pragma once

#include <cstddef>
#include <memory>
#include <span>

#include "db/connection.h"
#include "results/memory_watch.h"
#include "results/row_store.h"

namespace korvel::results {

class BackgroundAppender;

/// Fills a RowStore with an answer as it arrives. A long answer is appended by a second thread while the next rows are
/// read, so a row that cannot be stored may be reported late, at the latest by finish(). Loading ends before the
/// machine has no memory left. Every failure is an Error.
class StoreFiller {
 public:
  explicit StoreFiller(MemoryGauge gauge = memoryState);
  ~StoreFiller();
  StoreFiller(const StoreFiller&) = delete;
  StoreFiller& operator=(const StoreFiller&) = delete;

  /// Starts a result set of these fields.
  void beginResult(std::span<const db::Field> fields);
  /// Takes a copy of the row and returns the number that it has or will have in the store.
  RowId append(std::span<const db::Cell> cells);
  /// Waits until every row is in the store.
  void finish();
  /// The memory that loading takes; engines may take some of their own.
  [[nodiscard]] MemoryWatch& memory() noexcept { return memory_; }

  [[nodiscard]] std::size_t rowCount() const noexcept { return rowCount_; }
  /// Hands the store over with all of its rows; the filler is empty afterwards and takes another answer.
  [[nodiscard]] std::shared_ptr<const RowStore> takeStore();

 private:
  void startAppender();

  std::shared_ptr<RowStore> store_;
  std::size_t rowCount_ = 0;
  MemoryWatch memory_;
  std::unique_ptr<BackgroundAppender> appender_;  // ends before the store does
};

}  // namespace korvel::results
