#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "evidence/sha256.h"

namespace korvel::evidence {

/// One difference between the rows that were written and those that are there now. Rows count from 1; 0: none.
struct RowChange {
  enum class Kind {
    changed,   ///< `before` was written, `after` is there in its place
    removed,   ///< `before` is not there any more
    inserted,  ///< `after` was not written
    moved,     ///< `before` is there as `after`
    swapped    ///< `before` and `after` have changed places
  };

  Kind kind = Kind::changed;
  std::size_t before = 0;
  std::size_t after = 0;
  friend bool operator==(const RowChange&, const RowChange&) = default;
};

/// How the rows `after` differ from the rows `before`, in order; empty where they are the same. Where more than
/// `mostChanges` rows differ, each row is compared with the one of the same number.
[[nodiscard]] std::vector<RowChange> rowChanges(std::span<const Digest> before, std::span<const Digest> after,
                                                std::size_t mostChanges = 500);

/// "row 12 was changed".
[[nodiscard]] std::string textOf(const RowChange& change);

}  // namespace korvel::evidence
