// How bars of activity are painted.
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <vector>

#include "control/activity_bars.h"
#include "control/activity_words.h"
#include "control/texts.h"
#include "ui/dialogs.h"
#include "ui/style/system_appearance.h"
#include "ui/style/theme.h"

namespace korvel::control {
namespace {

using query::ActivityBar;

constexpr int markThickness = 2;

/// The next number of hours by which a day, or days, can be divided evenly.
int evenHours(int hours) {
  for (const int even : {1, 2, 3, 4, 6, 8, 12, 24})
    if (hours <= even) return even;
  constexpr int day = 24;
  return (hours + day - 1) / day * day;
}

}  // namespace

output::pictures::ActivityColors ActivityBars::colors() const {
  const ui::Theme& theme = ui::Theme::of(*this);
  using output::pictures::ActivityColors;
  ActivityColors colors = theme.dark ? ActivityColors::dark() : ActivityColors::light();
  colors.ground = theme.surface;
  colors.text = theme.text;
  colors.muted = theme.muted;
  colors.grid = theme.border;
  if (ui::systemAppearance().highContrast) colors.bar = theme.text;
  return colors;
}

void ActivityBars::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(viewport());
  const ui::Theme& theme = ui::Theme::of(*this);
  painter.fillRect(viewport()->rect(), theme.surface);
  if (activity_.bars.empty()) {
    painter.end();
    if (!message_.isEmpty()) ui::paintEmptyMessage(*this, message_);
    return;
  }
  paintGrid(painter);
  const auto shown = colors();
  std::vector<QColor> inside;
  std::vector<QColor> outside;
  for (std::size_t kind = 0; kind < activity_.kindCount(); ++kind) {
    constexpr double paleness = 0.6;
    inside.push_back(output::pictures::kindColor(shown, kind, activity_.kindCount()));
    outside.push_back(ui::mixed(inside.back(), theme.surface, paleness));
  }
  painter.save();
  painter.setClipRect(plot_.adjusted(0, 0, 0, 1 + ui::px(this, markThickness)));
  paintSelection(painter);
  const int first = barAt(plot_.left());
  const int last = barAt(plot_.right());
  for (int bar = first; bar <= last; ++bar) paintBar(painter, bar, inside, outside);
  paintMark(painter);
  painter.restore();
  paintDates(painter);
}

void ActivityBars::paintGrid(QPainter& painter) const {
  const ui::Theme& theme = ui::Theme::of(*this);
  const QFontMetrics metrics(font());
  const QRect& place = plot_;
  const int gap = ui::px(this, ui::space::inside);
  const auto line = [&](std::size_t value, const QColor& color) {
    const int y = static_cast<int>(std::lround(yOf(value)));
    painter.fillRect(place.left(), y, place.width(), 1, color);
    const QRect label(0, y - metrics.height() / 2, place.left() - gap, metrics.height());
    painter.setPen(theme.muted);
    painter.drawText(label, Qt::AlignRight | Qt::AlignVCenter, countText(value));
  };
  if (most_ > 0) line(output::pictures::gridValue(most_), theme.border);
  line(0, theme.control);
}

void ActivityBars::paintSelection(QPainter& painter) const {
  const ui::Theme& theme = ui::Theme::of(*this);
  const auto bars = spokenOf();
  if (!bars) return;
  const QRectF place(barPlace(bars->first, true).topLeft(), barPlace(bars->second, true).bottomRight());
  const qreal line = ui::px(this, 1);
  painter.fillRect(place, anchor_ >= 0 ? theme.selection : theme.hover);
  if (anchor_ < 0 && !hasFocus()) return;
  painter.setPen(QPen(theme.accent, line));
  painter.setBrush(Qt::NoBrush);
  painter.drawRect(place.adjusted(line / 2, line / 2, -line / 2, -line / 2));
}

void ActivityBars::paintBar(QPainter& painter, int bar, const std::vector<QColor>& inside,
                            const std::vector<QColor>& outside) const {
  const ActivityBar& shown = activity_.bars[static_cast<std::size_t>(bar)];
  const bool isInside =
      !marked_ || (shown.begin < marked_->before && query::nextPeriod(shown.begin, activity_.step) > marked_->from);
  const QRectF place = barPlace(bar);
  const std::size_t rows = shown.total();
  std::size_t below = 0;
  qreal bottom = place.bottom();
  for (std::size_t kind = 0; kind < shown.counts.size(); ++kind) {
    if (shown.counts[kind] == 0) continue;
    below += shown.counts[kind];
    const qreal top = std::min(bottom, std::round(below == rows ? place.top() : yOf(below)));
    painter.fillRect(QRectF(QPointF(place.left(), top), QPointF(place.right(), bottom)),
                     (isInside ? inside : outside)[kind]);
    bottom = top;
  }
}

void ActivityBars::paintMark(QPainter& painter) const {
  if (!marked_) return;
  const auto isOutside = [this](const ActivityBar& bar) {
    return query::nextPeriod(bar.begin, activity_.step) <= marked_->from;
  };
  const auto isBefore = [this](const ActivityBar& bar) { return bar.begin < marked_->before; };
  const auto begin = activity_.bars.begin();
  const auto first = static_cast<int>(std::partition_point(begin, activity_.bars.end(), isOutside) - begin);
  const auto end = static_cast<int>(std::partition_point(begin, activity_.bars.end(), isBefore) - begin);
  if (first >= end) return;
  // A line under the bars, with an upright at both ends: paleness alone does not tell.
  const QColor& color = ui::Theme::of(*this).accent;
  const int thick = ui::px(this, markThickness);
  const QRect& place = plot_;
  const int left = xOf(first) - (first > 0 ? 1 : 0);
  const int right = xOf(end) - 1;
  painter.fillRect(left, place.bottom() + 2, right - left + 1, thick, color);
  painter.fillRect(left, place.top(), 1, place.height(), color);
  painter.fillRect(right, place.top(), 1, place.height(), color);
}

void ActivityBars::paintDates(QPainter& painter) const {
  const QFontMetrics metrics(font());
  const QRect& place = plot_;
  const auto nameOf = [this](int bar) {
    return beginName(activity_.bars[static_cast<std::size_t>(bar)].begin, activity_.step);
  };
  const int width = metrics.horizontalAdvance(nameOf(0));
  const int pitch = std::max(1, xOf(1) - xOf(0));
  // Every so many bars, so that dates move with their bars: from the first one, or at even hours.
  int apart = std::max(1, (width + 3 * ui::px(this, ui::space::inside) + pitch - 1) / pitch);
  int ahead = 0;
  if (activity_.step == query::ActivityStep::hour) {
    apart = evenHours(apart);
    ahead = static_cast<int>(activity_.bars.front().begin.time_since_epoch().count() % apart);
  }
  const int top = place.bottom() + 1 + ui::px(this, ui::space::inGroup);
  painter.setPen(ui::Theme::of(*this).muted);
  const int first = barAt(place.left());
  for (int bar = (first + ahead + apart - 1) / apart * apart - ahead; bar < barCount(); bar += apart) {
    const int left = xOf(bar);
    if (left + width > viewport()->width()) break;
    if (left >= place.left())
      painter.drawText(QRect(left, top, width + 1, metrics.height()), Qt::AlignLeft, nameOf(bar));
  }
}

}  // namespace korvel::control
