#pragma once

#include <QtGlobal>
#include <vector>

#include "output/pages/cell_lines.h"

namespace korvel::output::pages {

/// Rounding must not break a word that just fits.
inline constexpr qreal wordSlack = 1.002;

/// The widths that a column needs, measured before fonts are scaled.
struct ColumnWish {
  TextExtent header;
  TextExtent body;
};

/// The widths of a section's columns on a page.
struct ColumnPlan {
  std::vector<qreal> widths;  ///< including the padding
  qreal bodyScale = 1;        ///< of the body's font
  qreal headerScale = 1;      ///< of the header's font
};

/// Whether all columns fit into `available` without breaking a line.
[[nodiscard]] bool fitsUnbroken(const std::vector<ColumnWish>& wishes, qreal available, qreal padding);

/// Shares `available` among the columns. While words do not fit, fonts shrink by steps down to `leastBodyScale`; then
/// columns with long words become narrower. Columns with long texts get more of the remaining room; with `proportions`,
/// one for each column, columns are so wide compared with each other instead, as far as their words fit.
[[nodiscard]] ColumnPlan planColumns(const std::vector<ColumnWish>& wishes, qreal available, qreal padding,
                                     qreal leastBodyScale, qreal leastHeaderScale,
                                     const std::vector<qreal>& proportions = {});

}  // namespace korvel::output::pages
