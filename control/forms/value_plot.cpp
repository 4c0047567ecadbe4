#include "control/forms/value_plot.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <utility>

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

/// Of the lines and marks; the labels stand around it.
QRectF ValuePlot::area() const {
  const QFontMetrics metrics(font());
  const int inside = ui::px(this, ui::space::inside);
  const int label = std::max(metrics.horizontalAdvance(labels_.highest), metrics.horizontalAdvance(labels_.lowest));
  const int left = std::min(label + 2 * inside, width() / 3);
  const int top = metrics.height() + 2 * inside;
  return QRectF(rect()).adjusted(left, top, -inside, -(metrics.height() + 2 * inside));
}

qreal ValuePlot::xOf(double at) const {
  const int stubWidth = ui::px(this, stub);
  const QRectF inner = area().adjusted(stubWidth, 0, -stubWidth, 0);
  const double first = changes_.front().at;
  const double apart = changes_.back().at - first;
  return apart > 0 ? inner.left() + inner.width() * (at - first) / apart : inner.center().x();
}

qreal ValuePlot::yOf(double value) const {
  const QRectF inner = area();
  const double apart = highest_ - lowest_;
  return apart > 0 ? inner.bottom() - inner.height() * ((value - lowest_) / apart) : inner.center().y();
}

QPointF ValuePlot::markOf(int change) const {
  const PlotChange& shown = changes_.at(static_cast<std::size_t>(change));
  // Where nothing came after it, the change is marked at what was before.
  const auto value = shown.after ? shown.after : shown.before;
  return {xOf(shown.at), value ? yOf(*value) : area().bottom()};
}

int ValuePlot::nearest(QPointF place) const {
  if (changes_.empty()) return -1;
  // The marks lie from the left to the right; several may share a moment.
  const auto from = std::partition_point(changes_.begin(), changes_.end(),
                                         [&](const PlotChange& change) { return xOf(change.at) < place.x(); });
  const auto firstAfter = static_cast<int>(from - changes_.begin());
  constexpr int neighbours = 8;
  int found = std::min(firstAfter, countOf() - 1);
  qreal least = QLineF(place, markOf(found)).length();
  for (int i = std::max(0, firstAfter - neighbours); i < std::min(countOf(), firstAfter + neighbours); ++i) {
    const qreal distance = QLineF(place, markOf(i)).length();
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
  paintAxes(painter);
  paintLine(painter);
  paintMarks(painter);
}

void ValuePlot::paintAxes(QPainter& painter) const {
  const ui::Theme& theme = ui::Theme::of(*this);
  const QFontMetrics metrics(font());
  const QRectF plot = area();
  const qreal inside = ui::px(this, ui::space::inside);
  painter.setPen(theme.border);
  const qreal top = std::round(yOf(highest_)) + 0.5;
  const qreal bottom = std::round(yOf(lowest_)) + 0.5;
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

void ValuePlot::paintLine(QPainter& painter) const {
  const ui::Theme& theme = ui::Theme::of(*this);
  const QRectF plot = area();
  std::vector<QLineF> lines;
  std::vector<QLineF> broken;
  qreal from = plot.left();
  auto held = changes_.front().before;
  for (const PlotChange& change : changes_) {
    const qreal x = xOf(change.at);
    if (held) (change.continues ? lines : broken).emplace_back(from, yOf(*held), x, yOf(*held));
    if (change.before && change.after) lines.emplace_back(x, yOf(*change.before), x, yOf(*change.after));
    // Where the value was before a change that does not continue.
    const qreal tick = ui::px(this, ui::space::inGroup);
    if (!change.continues && change.before) lines.emplace_back(x - tick, yOf(*change.before), x, yOf(*change.before));
    from = x;
    held = change.after;
  }
  if (held) lines.emplace_back(from, yOf(*held), plot.right(), yOf(*held));
  const qreal thickness = ui::px(this, 2);
  painter.setPen(QPen(theme.accent, thickness, Qt::SolidLine, Qt::FlatCap));
  painter.drawLines(lines.data(), static_cast<int>(lines.size()));
  painter.setPen(QPen(theme.accent, thickness, Qt::DotLine, Qt::FlatCap));
  painter.drawLines(broken.data(), static_cast<int>(broken.size()));
}

void ValuePlot::paintMarks(QPainter& painter) const {
  const ui::Theme& theme = ui::Theme::of(*this);
  // Marks that would cover the line are left out, but those of changes that do not continue.
  const bool crowded = countOf() * 2 * markRadius > area().width();
  const qreal scale = ui::px(this, 100) / 100.0;
  for (int i = 0; i < countOf(); ++i) {
    const bool chosen = i == current_ || i == hovered_;
    const bool continues = changes_[static_cast<std::size_t>(i)].continues;
    if (crowded && continues && !chosen) continue;
    painter.setPen(QPen(continues ? theme.accent : theme.removedLine, ui::px(this, 2)));
    painter.setBrush(continues ? theme.accent : theme.surface);
    const qreal radius = (continues ? markRadius : openMarkRadius) * scale;
    painter.drawEllipse(markOf(i), radius, radius);
    if (!chosen) continue;
    painter.setPen(QPen(theme.text, 1));
    painter.setBrush(Qt::NoBrush);
    const qreal ring = radius + ui::px(this, 3);
    painter.drawEllipse(markOf(i), ring, ring);
  }
}

}  // namespace korvel::control
