#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "evidence/row_stream.h"

namespace korvel::evidence {

/// A value that is not the same in two trails; nothing stands for null.
struct ValueChange {
  std::string column;
  std::optional<std::string> before;
  std::optional<std::string> now;
};

/// A value of a row; nothing stands for null.
struct ColumnValue {
  std::string column;
  std::optional<std::string> value;
};

/// What happened to a row between an earlier trail and a later one.
struct RowDifference {
  enum class Kind {
    changed,     ///< the entry number is the same, other values are not
    removed,     ///< only the earlier trail has it
    inserted,    ///< only the later one has it, with a number that the earlier one had passed
    renumbered,  ///< it has another entry number and is the same otherwise
    exchanged    ///< it has the values of another row, which has its values
  };
  Kind kind = Kind::changed;
  std::optional<std::int64_t> number;       ///< in the trail that has it, the earlier one where both have it
  std::optional<std::int64_t> otherNumber;  ///< of a renumbered row now, of the row that it was exchanged with
  std::vector<ValueChange> values;          ///< that changed; all of a row that was removed or inserted
  std::vector<ColumnValue> row{};           ///< all values that the row had, of an inserted one those that it has
  bool isTaken = false;                     ///< part of another difference; never in a result
};

/// Something that the rows of the later trail show among themselves.
struct TrailOddity {
  enum class Kind {
    gap,       ///< numbers between these two are missing
    repeated,  ///< the number stands more than once
    clockStep  ///< the time lies before that of the row before
  };
  Kind kind = Kind::gap;
  std::int64_t number = 0;  ///< the first missing, the repeated one, that of the later row
  std::int64_t last = 0;    ///< the last missing; the same as `number` for the others
  std::string before;       ///< the two times of a step
  std::string now;
};

struct TrailComparison {
  /// How many differences, and how many oddities of a kind, are named one by one.
  static constexpr std::size_t mostNamed = 1000;

  std::uint64_t rowsBefore = 0;
  std::uint64_t rowsNow = 0;
  std::uint64_t same = 0;
  std::uint64_t newer = 0;  ///< rows with numbers beyond the last one of the earlier trail
  std::uint64_t changed = 0;
  std::uint64_t removed = 0;
  std::uint64_t inserted = 0;
  std::vector<RowDifference> differences;  ///< in the order of their numbers; the first ones
  std::uint64_t gaps = 0;
  std::uint64_t missingNumbers = 0;
  std::uint64_t repeatedNumbers = 0;
  std::uint64_t clockSteps = 0;
  std::vector<TrailOddity> oddities;  ///< the first ones of each kind
  std::vector<std::string> columnsGone;
  std::vector<std::string> columnsNew;

  /// Rows of the earlier trail are there unchanged, and none came between them.
  [[nodiscard]] bool isUnchanged() const noexcept {
    return changed + removed + inserted == 0 && columnsGone.empty() && columnsNew.empty();
  }
};

/// Called again and again with the rows of both trails so far; what it throws ends the work.
using ComparisonProgress = std::function<void(std::uint64_t rows)>;

/// Compares two trails, both in the order of their entry numbers, in one pass. `last` is the greatest number that the
/// earlier trail could have. Memory does not grow with the rows, but for those that share one number. Throws what the
/// streams throw, and Error where a number is none.
[[nodiscard]] TrailComparison compareTrails(RowStream& before, RowStream& now, std::optional<std::int64_t> last,
                                            const ComparisonProgress& progress = {});

}  // namespace korvel::evidence
