#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "results/row_store.h"
#include "results/text_matcher.h"

namespace korvel::results {

class ResultList;

/// What a cell shows, where null and an empty text are two things.
struct ShownValue {
  std::string text;
  bool isNull = false;
  friend bool operator==(const ShownValue&, const ShownValue&) = default;
};

/// Texts that order, byte by byte, from `from` on and before `before`; an empty `before` is no bound. Dates as lists
/// show them order by time.
struct TextRange {
  std::string from;
  std::string before;
  /// Whether a text lies in it. A "T" between a day and its time is a blank here, so that both forms are one order.
  [[nodiscard]] bool contains(std::string_view text) const noexcept;
  friend bool operator==(const TextRange&, const TextRange&) = default;
};

/// A condition on the texts of one column. A text meets it if it is one of `values`, begins with one of `beginnings`
/// (the years, months or days of a column of dates) or lies in `range`; with `excludes`, if it does none of these.
struct ColumnCondition {
  ColumnIndex column{};
  bool excludes = false;
  std::vector<ShownValue> values{};
  std::vector<std::string> beginnings{};
  std::optional<TextRange> range{};
  friend bool operator==(const ColumnCondition&, const ColumnCondition&) = default;
};

/// The values of a condition on entry numbers as lists show them that are sorted by these. Throws std::bad_alloc.
void removeLeadingZeros(ColumnCondition& condition);

/// Which of a store's records match, one byte a record, 0 or 1.
struct MatchingRecords {
  std::weak_ptr<const RowStore> store;
  std::vector<std::uint8_t> records;
};

/// A condition that some cell of these columns matches.
struct TextCondition {
  TextMatcher matcher;
  std::vector<ColumnIndex> columns;
  /// What is known for the rows of a list; with others it means nothing.
  std::shared_ptr<const MatchingRecords> known{};

  [[nodiscard]] bool isKnownFor(const ResultList& list) const noexcept;
};

/// No record matches yet: for a condition that is evaluated elsewhere. Throws std::bad_alloc.
[[nodiscard]] std::shared_ptr<const MatchingRecords> noneMatching(const ResultList& list);
/// Evaluates a condition on a text, unless the result is known. Throws std::bad_alloc or Error.
[[nodiscard]] std::shared_ptr<const MatchingRecords> matchingRecords(const ResultList& list,
                                                                     const TextCondition& condition);

/// A condition that a record is one of these. No record of another store meets it.
struct RecordCondition {
  std::string name;  ///< which records they are; a filter has one condition of a name
  std::shared_ptr<const MatchingRecords> records;

  /// Whether these are records of what the list shows, with nothing added since.
  [[nodiscard]] bool isKnownFor(const ResultList& list) const noexcept;
};
/// These of the list's records. Throws std::bad_alloc.
[[nodiscard]] std::shared_ptr<const MatchingRecords> matchingOnly(const ResultList& list,
                                                                  std::span<const RowId> records);

/// What rows must be like to be shown: all conditions are met. Without conditions all rows pass.
struct RowFilter {
  std::vector<ColumnCondition> columns{};
  std::vector<TextCondition> texts{};
  std::vector<RecordCondition> records{};
  [[nodiscard]] bool isEmpty() const noexcept { return columns.empty() && texts.empty() && records.empty(); }
};

/// For every record of the list's rows, shown or hidden, 1 if it meets all conditions
/// but those on `except`, else 0. Throws Error when memory runs out.
[[nodiscard]] std::vector<std::uint8_t> passingRecords(const ResultList& list, const RowFilter& filter,
                                                       std::optional<ColumnIndex> except = {});

}  // namespace korvel::results
