#include "control/activity_bars.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QToolTip>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <utility>

#include "control/texts.h"
#include "ui/accessible_role.h"
#include "ui/shown_text.h"
#include "ui/style/theme.h"

namespace korvel::control {
namespace {

using query::ActivityBar;
using query::ActivityHour;
using query::ActivitySpan;

constexpr int preferredWidth = 520;
constexpr int preferredHeight = 92;
constexpr int smallestHeight = 56;
constexpr int narrowest = 5;  ///< of a bar and the gap after it
constexpr int widest = 48;
constexpr int wheelNotch = 120;

}  // namespace

ActivityBars::ActivityBars(QWidget* parent) : QAbstractScrollArea(parent) {
  setObjectName(QStringLiteral("ActivityBars"));
  ui::setAccessibleRole(*this, QAccessible::Chart);
  setFocusPolicy(Qt::StrongFocus);
  setFrameShape(QFrame::NoFrame);
  setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  viewport()->setMouseTracking(true);
  connect(horizontalScrollBar(), &QScrollBar::valueChanged, this, &ActivityBars::sightChanged);
}

QSize ActivityBars::sizeHint() const {
  return {ui::px(this, preferredWidth), ui::px(this, preferredHeight)};
}

QSize ActivityBars::minimumSizeHint() const {
  return {0, ui::px(this, smallestHeight)};
}

void ActivityBars::setActivity(query::Activity activity) {
  const bool hadCurrent = current_ >= 0 && current_ < barCount();
  const ActivityHour time = hadCurrent ? activity_.bars[static_cast<std::size_t>(current_)].begin : ActivityHour();
  activity_ = std::move(activity);
  most_ = 0;
  for (const ActivityBar& bar : activity_.bars) most_ = std::max(most_, bar.total());
  anchor_ = -1;
  hovered_ = -1;
  dragging_ = false;
  const auto barOf = [this](ActivityHour when) {
    const auto after = std::partition_point(activity_.bars.begin(), activity_.bars.end(),
                                            [&](const ActivityBar& bar) { return bar.begin <= when; });
    return std::max(0, static_cast<int>(after - activity_.bars.begin()) - 1);
  };
  current_ = !hadCurrent || activity_.bars.empty() ? -1 : barOf(time);
  if (current_ < 0 && hasFocus()) current_ = barCount() - 1;
  measure();
  const auto kept = std::exchange(kept_, std::nullopt);
  if (kept && !activity_.bars.empty())
    horizontalScrollBar()->setValue(horizontalScrollBar()->value() + xOf(barOf(kept->first)) - kept->second);
  else if (current_ >= 0)
    showBar(current_);
  else if (marked_ && !activity_.bars.empty())
    showBar(barOf(marked_->from));
  viewport()->update();
  Q_EMIT sightChanged();
  Q_EMIT spokenOfChanged();
}

void ActivityBars::setMessage(const QString& text) {
  message_ = text;
  viewport()->update();
}

void ActivityBars::setMarked(std::optional<ActivitySpan> span) {
  marked_ = span;
  viewport()->update();
}

void ActivityBars::setToolTips(std::function<QString(int)> texts) {
  toolTips_ = std::move(texts);
}

QRect ActivityBars::measuredPlot() const {
  const QFontMetrics metrics(font());
  const int inside = ui::px(this, ui::space::inside);
  const int label = metrics.horizontalAdvance(countText(output::pictures::gridValue(std::max<std::size_t>(most_, 1))));
  const int left = std::min(label + 2 * inside, viewport()->width() / 3);
  // Half a line above, for the label of a line at the top.
  return viewport()->rect().adjusted(left, metrics.height() / 2, -inside,
                                     -(metrics.height() + ui::px(this, ui::space::inGroup) + 1));
}

int ActivityBars::leastPitch() const {
  return ui::px(this, narrowest);
}

std::size_t ActivityBars::room() const {
  return static_cast<std::size_t>(std::max(1, plot_.width() / leastPitch()));
}

int ActivityBars::xOf(int bar) const {
  const QRect& place = plot_;
  if (static_cast<std::size_t>(barCount()) > room())
    return place.left() + bar * leastPitch() - horizontalScrollBar()->value();
  const qreal pitch =
      std::min<qreal>(static_cast<qreal>(place.width()) / std::max(1, barCount()), ui::px(this, widest));
  return place.left() + static_cast<int>(std::lround(pitch * bar));
}

qreal ActivityBars::yOf(std::size_t count) const {
  const QRect& place = plot_;
  return place.bottom() + 1 - place.height() * (static_cast<qreal>(count) / static_cast<qreal>(most_));
}

QRectF ActivityBars::barPlace(int bar, bool whole) const {
  const QRect& place = plot_;
  const int left = xOf(bar);
  const int width = xOf(bar + 1) - left - std::max(1, ui::px(this, 1));
  const std::size_t rows = activity_.bars.at(static_cast<std::size_t>(bar)).total();
  // A bar that has rows can be seen.
  const qreal top = whole       ? place.top()
                    : rows == 0 ? place.bottom() + 1
                                : std::min<qreal>(yOf(rows), place.bottom() + 1 - ui::px(this, 1));
  return {QPointF(left, top), QPointF(left + width, place.bottom() + 1)};
}

int ActivityBars::barAt(int x) const {
  if (activity_.bars.empty()) return -1;
  int low = 0;
  int high = barCount();
  while (high - low > 1) {
    const int middle = low + (high - low) / 2;
    (xOf(middle) <= x ? low : high) = middle;
  }
  return low;
}

bool ActivityBars::isOnBars(int x) const {
  return barCount() > 0 && x >= std::max(xOf(0), plot_.left()) && x < std::min(xOf(barCount()), plot_.right() + 1);
}

std::pair<int, int> ActivityBars::inSight() const {
  const QRect& place = plot_;
  // The last one as far as it lies there with its whole width.
  const int first = barAt(place.left() + leastPitch() - 1);
  return {first, std::max(first, barAt(place.right() + 2 - leastPitch()))};
}

ActivitySpan ActivityBars::spanOfBars(std::pair<int, int> bars) const {
  return {activity_.bars.at(static_cast<std::size_t>(bars.first)).begin,
          query::nextPeriod(activity_.bars.at(static_cast<std::size_t>(bars.second)).begin, activity_.step)};
}

std::optional<std::pair<int, int>> ActivityBars::spokenOf() const {
  if (anchor_ >= 0) return std::minmax(anchor_, current_);
  const int bar = hovered_ >= 0 ? hovered_ : hasFocus() ? current_ : -1;
  return bar < 0 ? std::nullopt : std::optional(std::pair(bar, bar));
}

void ActivityBars::setCurrent(int bar, bool extends) {
  if (bar < 0 || bar >= barCount()) return;
  showBar(bar);
  moveTo(bar, extends);
}

void ActivityBars::moveTo(int bar, bool extends) {
  anchor_ = !extends ? -1 : anchor_ < 0 ? std::max(current_, 0) : anchor_;
  current_ = bar;
  viewport()->update();
  Q_EMIT spokenOfChanged();
}

void ActivityBars::setHovered(int bar) {
  if (bar == hovered_) return;
  hovered_ = bar;
  viewport()->update();
  Q_EMIT spokenOfChanged();
}

void ActivityBars::showBar(int bar) {
  if (static_cast<std::size_t>(barCount()) <= room()) return;
  const QRect& place = plot_;
  QScrollBar& scroll = *horizontalScrollBar();
  const int beyond = xOf(bar + 1) - (place.right() + 1);
  if (beyond > 0) scroll.setValue(scroll.value() + beyond);
  if (const int before = place.left() - xOf(bar); before > 0) scroll.setValue(scroll.value() - before);
}

void ActivityBars::measure() {
  plot_ = measuredPlot();
  const bool scrolls = static_cast<std::size_t>(barCount()) > room();
  const int width = plot_.width();
  horizontalScrollBar()->setRange(0, scrolls ? std::max(0, barCount() * leastPitch() - width) : 0);
  horizontalScrollBar()->setPageStep(std::max(1, width));
  horizontalScrollBar()->setSingleStep(leastPitch());
}

void ActivityBars::choose() {
  if (current_ < 0) return;
  const ActivitySpan span = spanOfBars(std::minmax(anchor_ < 0 ? current_ : anchor_, current_));
  dropSelection();
  Q_EMIT spanChosen(span);
}

void ActivityBars::dropSelection() {
  anchor_ = -1;
  dragging_ = false;
  viewport()->update();
  Q_EMIT spokenOfChanged();
}

void ActivityBars::zoom(int direction, int bar) {
  if (bar >= 0 && bar < barCount()) kept_ = {activity_.bars[static_cast<std::size_t>(bar)].begin, xOf(bar)};
  Q_EMIT stepWanted(direction);
}

void ActivityBars::keyPressEvent(QKeyEvent* event) {
  const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeypadModifier;
  const bool extends = modifiers == Qt::ShiftModifier;
  const int last = barCount() - 1;
  const int page = static_cast<int>(room());
  // Zooming takes whatever keys a plus and a minus need.
  if (event->key() == Qt::Key_Plus || event->key() == Qt::Key_Minus)
    return zoom(event->key() == Qt::Key_Plus ? -1 : 1, current_);
  if (modifiers != Qt::NoModifier && !extends) return QAbstractScrollArea::keyPressEvent(event);
  switch (event->key()) {
    case Qt::Key_Left:
      return setCurrent(std::max(current_ - 1, 0), extends);
    case Qt::Key_Right:
      return setCurrent(std::min(current_ + 1, last), extends);
    case Qt::Key_PageUp:
      return setCurrent(std::max(current_ - page, 0), extends);
    case Qt::Key_PageDown:
      return setCurrent(std::min(current_ + page, last), extends);
    case Qt::Key_Home:
      return setCurrent(0, extends);
    case Qt::Key_End:
      return setCurrent(last, extends);
    case Qt::Key_Return:
    case Qt::Key_Enter:
      return choose();
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
      Q_EMIT spanDropped();
      return;
    case Qt::Key_Escape:
      if (anchor_ >= 0) return dropSelection();
      Q_EMIT leaveWanted();
      return;
    default:
      QAbstractScrollArea::keyPressEvent(event);
  }
}

void ActivityBars::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || activity_.bars.empty()) return;
  dragging_ = true;
  // Nothing is scrolled: the bar stays under the pointer.
  moveTo(barAt(event->position().toPoint().x()), false);
}

void ActivityBars::mouseMoveEvent(QMouseEvent* event) {
  const int x = event->position().toPoint().x();
  const int bar = barAt(x);
  if (!dragging_) return setHovered(isOnBars(x) ? bar : -1);
  if (bar != current_ || anchor_ >= 0) moveTo(bar, true);
  // Beyond an end the bars come along.
  if (x < plot_.left() || x > plot_.right()) showBar(bar);
}

void ActivityBars::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || !std::exchange(dragging_, false)) return;
  // A click makes a bar the current one.
  if (anchor_ >= 0 && anchor_ != current_)
    choose();
  else
    dropSelection();
}

void ActivityBars::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || activity_.bars.empty()) return;
  setCurrent(barAt(event->position().toPoint().x()));
  choose();
}

void ActivityBars::wheelEvent(QWheelEvent* event) {
  const QPoint turn = event->angleDelta();
  if (event->modifiers().testFlag(Qt::ControlModifier)) {
    wheelTurn_ += turn.y();
    const int notches = wheelTurn_ / wheelNotch;
    wheelTurn_ %= wheelNotch;
    if (notches != 0) zoom(notches > 0 ? -1 : 1, barAt(event->position().toPoint().x()));
  } else {
    const int notches = std::abs(turn.x()) > std::abs(turn.y()) ? turn.x() : turn.y();
    constexpr int barsOfNotch = 9;
    QScrollBar& scroll = *horizontalScrollBar();
    scroll.setValue(scroll.value() - notches * barsOfNotch * scroll.singleStep() / wheelNotch);
  }
  event->accept();
}

bool ActivityBars::viewportEvent(QEvent* event) {
  if (event->type() == QEvent::ToolTip) {
    const auto* help = static_cast<QHelpEvent*>(event);
    const int bar = barAt(help->pos().x());
    if (isOnBars(help->pos().x()) && toolTips_)
      QToolTip::showText(help->globalPos(), ui::plainToolTip(toolTips_(bar)), viewport(),
                         barPlace(bar, true).toAlignedRect());
    else
      QToolTip::hideText();
    return true;
  }
  if (event->type() == QEvent::Leave) setHovered(-1);
  return QAbstractScrollArea::viewportEvent(event);
}

void ActivityBars::focusInEvent(QFocusEvent* event) {
  // A click makes a bar the current one itself.
  if (current_ < 0 && event->reason() != Qt::MouseFocusReason) setCurrent(barCount() - 1);
  viewport()->update();
  Q_EMIT spokenOfChanged();
}

void ActivityBars::focusOutEvent(QFocusEvent* event) {
  Q_UNUSED(event)
  if (!dragging_) dropSelection();
}

void ActivityBars::changeEvent(QEvent* event) {
  QAbstractScrollArea::changeEvent(event);
  if (event->type() == QEvent::FontChange) measure();
  viewport()->update();
}

void ActivityBars::resizeEvent(QResizeEvent* event) {
  QAbstractScrollArea::resizeEvent(event);
  measure();
  Q_EMIT sightChanged();
}

void ActivityBars::scrollContentsBy(int /*dx*/, int /*dy*/) {
  viewport()->update();
}

}  // namespace korvel::control
