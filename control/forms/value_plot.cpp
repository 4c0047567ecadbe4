#include "control/forms/value_plot.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

#include "control/forms/step_line.h"
#include "ui/accessible_role.h"
#include "ui/style/theme.h"

namespace korvel::control {
namespace {

constexpr int preferredWidth = 520;
constexpr int preferredHeight = 180;
constexpr int smallestHeight = 120;
constexpr int stub = 20;  ///< of the line before the first change and behind the last one
constexpr qreal markRadius = 4;
constexpr qreal openMarkRadius = 5;

}  // namespace

ValuePlot::ValuePlot(QWidget* parent) : QWidget(parent) {
  ui::setAccessibleRole(*this, QAccessible::Chart);
  setFocusPolicy(Qt::StrongFocus);
  setMouseTracking(true);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize ValuePlot::sizeHint() const {
  return {ui::px(this, preferredWidth), ui::px(this, preferredHeight)};
}

QSize ValuePlot::minimumSizeHint() const {
  return {0, ui::px(this, smallestHeight)};
}

void ValuePlot::setChanges(std::vector<PlotChange> changes, Labels labels) {
  changes_ = std::move(changes);
  labels_ = std::move(labels);
  bool any = false;
  for (const PlotChange& change : changes_) {
    for (const auto& value : {change.before, change.after}) {
      if (!value) continue;
      lowest_ = any ? std::min(lowest_, *value) : *value;
      highest_ = any ? std::max(highest_, *value) : *value;
      any = true;
    }
  }
  current_ = -1;
  hovered_ = -1;
  update();
}

void ValuePlot::setCurrent(int change) {
  if (change < -1 || change >= countOf() || change == current_) return;
  current_ = change;
  update();
  Q_EMIT currentChanged(change);
  if (hovered_ < 0) Q_EMIT readoutWanted(change);
}

void ValuePlot::setReadout(const QString& text) {
  if (text == readout_) return;
  readout_ = text;
  setAccessibleDescription(text);
  QAccessibleEvent changed(this, QAccessible::DescriptionChanged);
  QAccessible::updateAccessibility(&changed);
  update();
}

ValuePlot::Scale ValuePlot::scale() const {
  const QFontMetrics metrics(font());
  const int inside = ui::px(this, ui::space::inside);
  const int label = std::max(metrics.horizontalAdvance(labels_.highest), metrics.horizontalAdvance(labels_.lowest));
  const int left = std::min(label + 2 * inside, width() / 3);
  const int top = metrics.height() + 2 * inside;
  Scale scale;
  scale.area = QRectF(rect()).adjusted(left, top, -inside, -(metrics.height() + 2 * inside));
  const int stubWidth = ui::px(this, stub);
  scale.left = scale.area.left() + stubWidth;
  scale.right = scale.area.right() - stubWidth;
  if (!changes_.empty()) {
    scale.first = changes_.front().at;
    scale.last = changes_.back().at;
  }
  scale.lowest = lowest_;
  scale.highest = highest_;
  return scale;
}

qreal ValuePlot::Scale::x(double at) const {
  return last > first ? left + (right - left) * (at - first) / (last - first) : (left + right) / 2;
}

qreal ValuePlot::Scale::y(double value) const {
  const double apart = highest - lowest;
  return apart > 0 ? area.bottom() - area.height() * ((value - lowest) / apart) : area.center().y();
}

QPointF ValuePlot::Scale::mark(const PlotChange& change) const {
  // Where nothing came after it, the change is marked at what was before.
  const auto value = change.after ? change.after : change.before;
  return {x(change.at), value ? y(*value) : area.bottom()};
}

QPointF ValuePlot::markOf(int change) const {
  return scale().mark(changes_.at(static_cast<std::size_t>(change)));
}

int ValuePlot::nearest(QPointF place) const {
  if (changes_.empty()) return -1;
  const Scale shown = scale();
  const auto distanceOf = [&](int change) {
    return QLineF(place, shown.mark(changes_[static_cast<std::size_t>(change)])).length();
  };
  // The marks lie from the left to the right; several may share a moment.
  const auto from = std::partition_point(changes_.begin(), changes_.end(),
                                         [&](const PlotChange& change) { return shown.x(change.at) < place.x(); });
  const auto firstAfter = static_cast<int>(from - changes_.begin());
  constexpr int neighbours = 8;
  int found = std::min(firstAfter, countOf() - 1);
  qreal least = distanceOf(found);
  for (int i = std::max(0, firstAfter - neighbours); i < std::min(countOf(), firstAfter + neighbours); ++i) {
    const qreal distance = distanceOf(i);
    if (distance < least) {
      least = distance;
      found = i;
    }
  }
  return found;
}

void ValuePlot::setHovered(int change) {
  if (change == hovered_) return;
  hovered_ = change;
  Q_EMIT readoutWanted(hovered_ >= 0 ? hovered_ : current_);
  update();
}

void ValuePlot::mouseMoveEvent(QMouseEvent* event) {
  setHovered(nearest(event->position()));
}

void ValuePlot::leaveEvent(QEvent* event) {
  setHovered(-1);
  QWidget::leaveEvent(event);
}

void ValuePlot::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) setCurrent(nearest(event->position()));
  QWidget::mousePressEvent(event);
}

void ValuePlot::focusInEvent(QFocusEvent* event) {
  if (current_ < 0 && !changes_.empty()) setCurrent(countOf() - 1);
  QWidget::focusInEvent(event);
}

void ValuePlot::keyPressEvent(QKeyEvent* event) {
  const int last = countOf() - 1;
  switch (event->key()) {
    case Qt::Key_Left:
      return setCurrent(std::max(current_ - 1, 0));
    case Qt::Key_Right:
      return setCurrent(std::min(current_ + 1, last));
    case Qt::Key_Home:
      return setCurrent(0);
    case Qt::Key_End:
      return setCurrent(last);
    default:
      QWidget::keyPressEvent(event);
  }
}

void ValuePlot::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const ui::Theme& theme = ui::Theme::of(*this);
  const qreal radius = ui::px(this, ui::space::radius);
  painter.setPen(hasFocus() ? theme.accent : theme.border);
  painter.setBrush(theme.surface);
  painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
  if (changes_.empty()) return;
  const Scale shown = scale();
  paintAxes(painter, shown);
  paintLine(painter, shown);
  paintMarks(painter, shown);
}

void ValuePlot::paintAxes(QPainter& painter, const Scale& scale) const {
  const ui::Theme& theme = ui::Theme::of(*this);
  const QFontMetrics metrics(font());
  const QRectF plot = scale.area;
  const qreal inside = ui::px(this, ui::space::inside);
  painter.setPen(theme.border);
  const qreal top = std::round(scale.y(highest_)) + 0.5;
  const qreal bottom = std::round(scale.y(lowest_)) + 0.5;
  painter.drawLine(QPointF(plot.left(), top), QPointF(plot.right(), top));
  painter.setPen(theme.muted);
  const auto label = [&](qreal y, const QString& text) {
    const QRectF place(inside, y - metrics.height() / 2.0, plot.left() - 2 * inside, metrics.height());
    painter.drawText(place, Qt::AlignRight | Qt::AlignVCenter,
                     metrics.elidedText(text, Qt::ElideRight, static_cast<int>(place.width())));
  };
  label(top, labels_.highest);
  if (bottom > top) label(bottom, labels_.lowest);
  const QRectF below(plot.left(), plot.bottom() + inside, plot.width(), metrics.height());
  painter.drawText(below, Qt::AlignLeft | Qt::AlignVCenter, labels_.first);
  if (labels_.last != labels_.first) painter.drawText(below, Qt::AlignRight | Qt::AlignVCenter, labels_.last);
  painter.setPen(theme.text);
  const QRectF above(inside, inside, width() - 2 * inside, metrics.height());
  painter.drawText(above, Qt::AlignRight | Qt::AlignVCenter,
                   metrics.elidedText(readout_, Qt::ElideRight, static_cast<int>(above.width())));
}

void ValuePlot::paintLine(QPainter& painter, const Scale& scale) const {
  const ui::Theme& theme = ui::Theme::of(*this);
  std::vector<StepPoint> points;
  points.reserve(changes_.size());
  const auto height = [&](const std::optional<double>& value) {
    return value ? std::optional(scale.y(*value)) : std::nullopt;
  };
  for (const PlotChange& change : changes_)
    points.push_back({scale.x(change.at), height(change.before), height(change.after), change.continues});
  const StepLine line = stepLineOf(points, scale.area.left(), scale.area.right(), ui::px(this, ui::space::inGroup));
  const qreal thickness = ui::px(this, 2);
  painter.setPen(QPen(theme.accent, thickness, Qt::SolidLine, Qt::FlatCap));
  painter.drawLines(line.solid.data(), static_cast<int>(line.solid.size()));
  painter.setPen(QPen(theme.accent, thickness, Qt::DotLine, Qt::FlatCap));
  painter.drawLines(line.broken.data(), static_cast<int>(line.broken.size()));
}

std::vector<int> ValuePlot::marked() const {
  return changes_.empty() ? std::vector<int>() : markedIn(scale());
}

std::vector<int> ValuePlot::markedIn(const Scale& scale) const {
  // Marks that would cover the line are left out, but those of changes that do not continue.
  const bool crowded = countOf() * 2 * markRadius > scale.area.width();
  std::vector<int> marked;
  // Places as large as half of a mark, from the left to the right: a mark in the same one would cover the other.
  std::set<std::pair<int, int>> taken;
  for (int i = 0; i < countOf(); ++i) {
    const PlotChange& change = changes_[static_cast<std::size_t>(i)];
    const bool chosen = i == current_ || i == hovered_;
    if (crowded && change.continues && !chosen) continue;
    const QPointF place = scale.mark(change) / openMarkRadius;
    const bool isFree =
        taken.emplace(static_cast<int>(std::floor(place.x())), static_cast<int>(std::floor(place.y()))).second;
    if (isFree || chosen || !crowded) marked.push_back(i);
  }
  return marked;
}

void ValuePlot::paintMarks(QPainter& painter, const Scale& scale) const {
  const ui::Theme& theme = ui::Theme::of(*this);
  const qreal size = ui::px(this, 100) / 100.0;
  for (const int i : markedIn(scale)) {
    const PlotChange& change = changes_[static_cast<std::size_t>(i)];
    const QPointF place = scale.mark(change);
    painter.setPen(QPen(change.continues ? theme.accent : theme.removedLine, ui::px(this, 2)));
    painter.setBrush(change.continues ? theme.accent : theme.surface);
    const qreal radius = (change.continues ? markRadius : openMarkRadius) * size;
    painter.drawEllipse(place, radius, radius);
    if (i != current_ && i != hovered_) continue;
    painter.setPen(QPen(theme.text, 1));
    painter.setBrush(Qt::NoBrush);
    const qreal ring = radius + ui::px(this, 3);
    painter.drawEllipse(place, ring, ring);
  }
}

}  // namespace korvel::control
