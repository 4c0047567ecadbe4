#pragma once

#include <QtGlobal>
#include <cstddef>
#include <vector>

#include "output/pages/column_widths.h"

namespace korvel::output::pages {

/// The columns of one sheet, by their positions in the record.
using ColumnStrip = std::vector<std::size_t>;

/// Lower limits for columns.
struct ColumnLimits {
  qreal text;              ///< width of every column's text, unless it needs less
  qreal leastBodyScale;    ///< of the body's font
  qreal leastHeaderScale;  ///< of the header's font
};

/// Shares the columns among as many sheets as they need, side by side: one sheet where all fit into `available`. Each
/// further sheet repeats the first column, where there is room for it, so that a row can be found on all sheets.
[[nodiscard]] std::vector<ColumnStrip> shareColumns(const std::vector<ColumnWish>& wishes, qreal available,
                                                    qreal padding, const ColumnLimits& limits);

}  // namespace korvel::output::pages
