#pragma once

#include <QtGlobal>
#include <vector>

#include "output/pages/cell_lines.h"

namespace korvel::output::pages {

/// Rounding must not break a word that just fits.
inline constexpr qreal wordSlack = 1.002;

/// What a column wants, measured at the sizes that fonts have before they are scaled.
struct ColumnWish {
  TextExtent header;
  TextExtent body;
};

/// How a section's columns stand on a page.
struct ColumnPlan {
  std::vector<qreal> widths;  ///< padding counted
  qreal bodyScale = 1;        ///< of the body's font
  qreal headerScale = 1;      ///< of the header's font
};

/// Whether all columns stand in `available` with every line whole.
[[nodiscard]] bool fitsUnbroken(const std::vector<ColumnWish>& wishes, qreal available, qreal padding);

/// Shares `available` among the columns. Fonts shrink by steps, to no less than `leastBodyScale`, as long as words do
/// not fit; then columns with long words give way. A column with long texts gets more of what is left.
[[nodiscard]] ColumnPlan planColumns(const std::vector<ColumnWish>& wishes, qreal available, qreal padding,
                                     qreal leastBodyScale, qreal leastHeaderScale);

}  // namespace korvel::output::pages
