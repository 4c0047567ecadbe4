#pragma once

#include <array>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <mutex>
#include <optional>
#include <span>
#include <thread>
#include <vector>

#include "db/connection.h"
#include "results/text_arena.h"

namespace korvel::results {

class RowStore;

/// Appends rows to a store on a thread of its own, so that looking for repeats goes on while the database is read. The
/// store belongs to that thread from the first append until finish has returned.
class BackgroundAppender {
 public:
  /// Throws std::system_error when no thread can be started.
  explicit BackgroundAppender(RowStore& store);
  /// Rows that are not appended yet are dropped.
  ~BackgroundAppender();
  BackgroundAppender(const BackgroundAppender&) = delete;
  BackgroundAppender& operator=(const BackgroundAppender&) = delete;

  /// Starts a result set of these fields behind the rows that came before. Fails like append.
  void beginResult(std::span<const db::Field> fields);
  /// Takes a copy of the row, whose texts have `textBytes` together. Throws the Error that an earlier row failed with,
  /// or std::bad_alloc.
  void append(std::span<const db::Cell> cells, std::size_t textBytes);
  /// Waits until every row is in the store; throws the Error that one of them failed with.
  void finish();

 private:
  /// Rows on their way to the store.
  struct Batch {
    HeapBytes texts;
    std::size_t used = 0;
    std::optional<std::vector<db::Field>> begins;  ///< the result set that starts with the first row
    std::vector<db::Cell> cells;
    std::vector<std::size_t> rowEnds;  ///< for each row the number of cells up to its end
  };
  static constexpr std::size_t batchCount = 4;
  static constexpr std::size_t batchBytes = std::size_t{128} * 1024;
  static constexpr std::size_t batchRows = 1024;

  [[nodiscard]] Batch& current() noexcept { return batches_[handedOver_ % batchCount]; }
  void copyInto(Batch& batch, std::span<const db::Cell> cells);
  /// Hands the current batch over if there is anything in it, and waits until the next one is free.
  void handOver();
  void work();
  void appendAll(Batch& batch);

  RowStore& store_;
  std::array<Batch, batchCount> batches_;
  std::mutex mutex_;
  std::condition_variable changed_;
  // Shared under the mutex; handedOver_ is written by the caller's thread alone, appended_ by the other one alone.
  std::uint64_t handedOver_ = 0;
  std::uint64_t appended_ = 0;
  bool stopping_ = false;
  std::exception_ptr failure_;
  std::thread thread_;
};

}  // namespace korvel::results
