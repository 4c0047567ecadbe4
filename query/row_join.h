#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "db/connection.h"
#include "query/audit_record.h"
#include "query/buffered_rows.h"
#include "query/date_slices.h"
#include "results/memory_watch.h"
#include "results/row_store.h"

namespace korvel::query {

/// Joins result sets into the rows of lists 0..4. Rows that are the same in all columns are stored once, and listed as
/// often as the procedure without its limit would give them: once for each category that they belong to.
class RowJoin {
 public:
  explicit RowJoin(const results::MemoryGauge& memory);

  /// The result sets of another category follow. Those of the alarms have rows of other times than asked for.
  void beginCategory(bool hasRowsOfOtherTimes);
  /// Another answer of this category follows, in as many parts as its reader likes. Rows of a slice that may come with
  /// other slices as well, those of other times and of the moment between two slices, are counted once: as often as the
  /// slice gives them that has most of them. Without a slice it is the only answer of this category.
  void beginAnswer(const std::optional<TimeSlice>& slice);
  /// The rows of the answer come once more, from the first one on. Those that have come are not counted again.
  void repeatAnswer();
  void add(const BufferedRows& rows);

  /// Rows of list 0.
  [[nodiscard]] std::size_t rowCount() const noexcept { return lists_[0].size(); }
  /// Entry numbers that came with different values, the first ones of them, and how many there are.
  [[nodiscard]] const std::vector<std::string>& changedEntries() const noexcept { return changedEntries_; }
  [[nodiscard]] std::size_t changedEntryCount() const noexcept { return changedEntryCount_; }

  [[nodiscard]] std::shared_ptr<const results::RowStore> store() const { return store_; }
  /// The rows of list 0..4, in the order in which they came; handed over.
  [[nodiscard]] std::vector<results::RowId> takeList(std::size_t list) { return std::move(lists_.at(list)); }

 private:
  /// Numbers of stored rows by a hash of theirs.
  class Index {
   public:
    /// The first row of this hash that `matches`.
    template <typename Matches>
    [[nodiscard]] std::optional<results::RowId> find(std::uint32_t hash, const Matches& matches) const {
      if (slots_.empty()) return std::nullopt;
      const std::size_t mask = slots_.size() - 1;
      for (std::size_t at = hash & mask; slots_[at].row != 0; at = (at + 1) & mask)
        if (slots_[at].hash == hash && matches(results::RowId{slots_[at].row - 1}))
          return results::RowId{slots_[at].row - 1};
      return std::nullopt;
    }
    void insert(std::uint32_t hash, results::RowId row);

   private:
    struct Slot {
      std::uint32_t hash = 0;
      std::uint32_t row = 0;  ///< its number plus one; 0 for an empty slot
    };
    static void place(std::vector<Slot>& slots, const Slot& slot) noexcept;

    std::vector<Slot> slots_;
    std::size_t used_ = 0;
  };

  /// How often a row that may come again has been listed, and how often it came in the answer that is being added.
  struct Count {
    std::size_t listed = 0;
    std::size_t inAnswer = 0;
    std::size_t answer = 0;
  };

  /// Whether the row, which comes with no other answer, came before this one was repeated.
  [[nodiscard]] bool cameBefore(results::RowId row) noexcept;
  void beginResult(const std::vector<db::Field>& fields);
  [[nodiscard]] results::RowId idOf(std::span<const db::Cell> cells);
  /// Whether an alarm row is one of those that a date range limits.
  [[nodiscard]] bool isLimitedByDates(std::span<const db::Cell> cells) const noexcept;
  [[nodiscard]] bool isSame(results::RowId row, std::span<const db::Cell> cells) const noexcept;
  /// Whether an entry number comes for the first time.
  [[nodiscard]] bool isNewEntry(results::RowId row, std::string_view number);
  void noteEntry(results::RowId row, std::span<const db::Cell> cells);

  std::shared_ptr<results::RowStore> store_ = std::make_shared<results::RowStore>();
  results::MemoryWatch memory_;
  std::vector<db::Field> fields_;
  std::optional<std::size_t> auditType_;
  std::size_t entryNumber_ = 0;
  std::optional<std::size_t> dateTime_;
  std::optional<std::size_t> tableName_;
  bool hasRowsOfOtherTimes_ = false;
  Index rows_;
  Index entries_;
  std::vector<bool> plainEntries_;  ///< which of the numbers without signs and leading zeros have come
  std::unordered_map<std::uint32_t, Count> counts_;
  std::size_t answerNumber_ = 0;
  std::optional<TimeSlice> slice_;     ///< of the answer that is being added
  std::size_t answerBegin_ = 0;        ///< its first row in list 0
  std::vector<std::uint32_t> before_;  ///< of a repeated answer: how often each stored row came the first time
  std::array<std::vector<results::RowId>, standardListCount> lists_;
  std::vector<std::string> changedEntries_;
  std::size_t changedEntryCount_ = 0;
};

}  // namespace korvel::query
