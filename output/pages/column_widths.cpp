#include "output/pages/column_widths.h"

#include <algorithm>
#include <numeric>

namespace korvel::output::pages {

namespace {

constexpr qreal step = 0.95;
constexpr qreal widestColumnPart = 0.4;  ///< of the page, before room is left over
constexpr qreal longestWordPart = 0.12;  ///< of the page: longer words are broken

struct Needs {
  std::vector<qreal> least;   ///< no word is broken
  std::vector<qreal> wanted;  ///< no line is broken, unless the column would exceed its part
  std::vector<qreal> whole;   ///< no line is broken
};

Needs needsAt(const std::vector<ColumnWish>& wishes, qreal available, qreal padding, const ColumnPlan& plan) {
  Needs needs;
  for (const ColumnWish& wish : wishes) {
    const qreal word = std::max(wish.header.word * plan.headerScale,
                                std::min(wish.body.word * plan.bodyScale, available * longestWordPart));
    const qreal line = std::max(wish.header.word * plan.headerScale, wish.body.line * plan.bodyScale);
    needs.least.push_back(word * wordSlack + padding);
    needs.wanted.push_back(std::max(word, std::min(line, available * widestColumnPart)) * wordSlack + padding);
    needs.whole.push_back(std::max(word, line) * wordSlack + padding);
  }
  return needs;
}

qreal sum(const std::vector<qreal>& widths) {
  return std::accumulate(widths.begin(), widths.end(), qreal{0});
}

/// Widths between `from` and `to`, all at the same fraction, so that their sum is `available`.
std::vector<qreal> between(const std::vector<qreal>& from, const std::vector<qreal>& to, qreal available) {
  const qreal part = (available - sum(from)) / (sum(to) - sum(from));
  std::vector<qreal> widths;
  for (std::size_t i = 0; i < from.size(); ++i) widths.push_back(from[i] + part * (to[i] - from[i]));
  return widths;
}

/// Limits the widest columns to one width, so that the sum of all is `available`.
std::vector<qreal> cutDown(std::vector<qreal> widths, qreal available) {
  std::vector<qreal> sorted = widths;
  std::sort(sorted.begin(), sorted.end());
  qreal rest = available;
  qreal limit = sorted.empty() ? 0 : sorted.back();
  for (std::size_t i = 0; i < sorted.size(); ++i) {
    const qreal share = rest / static_cast<qreal>(sorted.size() - i);
    if (sorted[i] > share) {
      limit = share;
      break;
    }
    rest -= sorted[i];
  }
  for (qreal& width : widths) width = std::min(width, limit);
  return widths;
}

/// Widths in these proportions, none below `least`. Together they take `available`, or less where no line of a `whole`
/// column has to be broken then.
std::vector<qreal> inProportion(const std::vector<qreal>& proportions, const std::vector<qreal>& least,
                                const std::vector<qreal>& whole, qreal available) {
  qreal enough = 0;
  for (std::size_t i = 0; i < least.size(); ++i) enough = std::max(enough, whole[i] / proportions[i]);
  std::vector<bool> isLeast(least.size(), false);
  for (;;) {
    qreal room = available;
    qreal shares = 0;
    for (std::size_t i = 0; i < least.size(); ++i)
      if (isLeast[i])
        room -= least[i];
      else
        shares += proportions[i];
    const qreal unit = shares > 0 ? std::min(enough, room / shares) : 0;
    bool changed = false;
    std::vector<qreal> widths = least;
    for (std::size_t i = 0; i < least.size(); ++i) {
      if (isLeast[i]) continue;
      widths[i] = unit * proportions[i];
      if (widths[i] < least[i]) isLeast[i] = changed = true;
    }
    if (!changed) return widths;
  }
}

}  // namespace

bool fitsUnbroken(const std::vector<ColumnWish>& wishes, qreal available, qreal padding) {
  return sum(needsAt(wishes, available, padding, {}).whole) <= available;
}

ColumnPlan planColumns(const std::vector<ColumnWish>& wishes, qreal available, qreal padding, qreal leastBodyScale,
                       qreal leastHeaderScale, const std::vector<qreal>& proportions) {
  ColumnPlan plan;
  Needs needs = needsAt(wishes, available, padding, plan);
  while (sum(needs.least) > available) {
    if (plan.bodyScale <= leastBodyScale && plan.headerScale <= leastHeaderScale) break;
    plan.bodyScale = std::max(plan.bodyScale * step, leastBodyScale);
    plan.headerScale = std::max(plan.headerScale * step, leastHeaderScale);
    needs = needsAt(wishes, available, padding, plan);
  }
  if (sum(needs.least) > available)
    plan.widths = cutDown(needs.least, available);
  else if (!proportions.empty())
    plan.widths = inProportion(proportions, needs.least, needs.whole, available);
  else if (sum(needs.wanted) > available)
    plan.widths = between(needs.least, needs.wanted, available);
  else if (sum(needs.whole) > available)
    plan.widths = between(needs.wanted, needs.whole, available);
  else
    plan.widths = needs.whole;
  return plan;
}

}  // namespace korvel::output::pages
