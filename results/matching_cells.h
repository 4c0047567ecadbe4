#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <stop_token>
#include <vector>

#include "results/result_list.h"
#include "results/text_matcher.h"

namespace korvel::results {

/// The cells of all records of a list that match what is looked for, whatever rows the list shows and in which order:
/// sorting and filtering the list do not change them. Does not refer to the list; it may be made on another thread.
class MatchingCells {
 public:
  /// Searches these columns of all records of the list. Throws Error when memory runs out. Once a stop is requested,
  /// nothing more is found, and it soon ends.
  MatchingCells(const ResultList& list, const TextMatcher& matcher, std::span<const ColumnIndex> columns,
                const std::stop_token& stop = {});

  /// Whether a record's cell matches. `place` is the column's place among those that were searched.
  [[nodiscard]] bool contains(RowId row, std::size_t place) const noexcept {
    const std::vector<std::uint64_t>& bits = rowsOf_[place];
    const std::size_t word = row.value / wordBits;
    return word < bits.size() && (bits[word] >> row.value % wordBits & 1U) != 0;
  }
  /// Number of a record's cells that match.
  [[nodiscard]] std::size_t hitsIn(RowId row) const noexcept {
    return hitsOfRecord_.empty() ? 0 : hitsOfRecord_[row.value];
  }
  [[nodiscard]] bool isEmpty() const noexcept { return hitsOfRecord_.empty(); }
  [[nodiscard]] std::span<const ColumnIndex> columns() const noexcept { return columns_; }
  /// Whether they are those of the list's records, as it shows them now.
  [[nodiscard]] bool areOf(const ResultList& list) const noexcept;
  /// Which records have a matching cell: one byte a record, 0 or 1.
  [[nodiscard]] std::vector<std::uint8_t> matchingRecords() const;

 private:
  static constexpr std::size_t wordBits = 64;

  void search(const ResultList& list, const TextMatcher& matcher, std::size_t place);

  std::vector<ColumnIndex> columns_;
  std::vector<std::vector<std::uint64_t>> rowsOf_;  ///< a bit a record for each column; empty where nothing matches
  std::vector<std::uint16_t> hitsOfRecord_;         ///< empty where nothing matches
  std::weak_ptr<const RowStore> store_;
  bool numbersRewritten_;
};

}  // namespace korvel::results
