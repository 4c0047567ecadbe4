#pragma once

#include <QtGlobal>
#include <cstddef>
#include <vector>

#include "output/pages/column_widths.h"

namespace korvel::output::pages {

/// The columns that stand on one sheet, by their places in the record.
using ColumnStrip = std::vector<std::size_t>;

/// How small columns can get.
struct ColumnLimits {
  qreal text;              ///< room that every column's text has, unless it needs less
  qreal leastBodyScale;    ///< of the body's font
  qreal leastHeaderScale;  ///< of the header's font
};

/// Shares the columns among as many sheets as they need, side by side: one, where all have their room in `available`.
/// Each further sheet begins with the first column again, where there is room for it, so that a row is found on all of
/// them.
[[nodiscard]] std::vector<ColumnStrip> shareColumns(const std::vector<ColumnWish>& wishes, qreal available,
                                                    qreal padding, const ColumnLimits& limits);

}  // namespace korvel::output::pages
