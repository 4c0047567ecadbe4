#include "output/pages/column_strips.h"

#include <algorithm>

namespace korvel::output::pages {

std::vector<ColumnStrip> shareColumns(const std::vector<ColumnWish>& wishes, qreal available, qreal padding,
                                      const ColumnLimits& limits) {
  const auto least = [&](std::size_t column) {
    const ColumnWish& wish = wishes[column];
    const qreal word = std::max(wish.header.word * limits.leastHeaderScale, wish.body.word * limits.leastBodyScale);
    return std::min(word * wordSlack, limits.text) + padding;
  };
  std::vector<ColumnStrip> strips(1);
  qreal used = 0;
  for (std::size_t column = 0; column < wishes.size(); ++column) {
    const qreal width = least(column);
    if (used + width > available && !strips.back().empty()) {
      strips.emplace_back();
      used = 0;
      if (least(0) + width <= available) {
        strips.back().push_back(0);
        used = least(0);
      }
    }
    strips.back().push_back(column);
    used += width;
  }
  return strips;
}

}  // namespace korvel::output::pages
