#pragma once

#include <QAbstractScrollArea>
#include <functional>
#include <optional>
#include <utility>

#include "output/pictures/activity_picture.h"
#include "query/activity.h"

namespace korvel::control {

/// The bars of activity over time, stacked by kind, under one line of a grid. No two bars share a dot: where not all
/// fit, the bars are scrolled. The arrow keys go from bar to bar and with Shift select; Enter or a drag chooses the
/// span of the selected bars. It counts nothing itself.
class ActivityBars final : public QAbstractScrollArea {
  Q_OBJECT

 public:
  explicit ActivityBars(QWidget* parent = nullptr);

  /// Replaces the bars. The current bar is then the one at the same time; no others are selected.
  void setActivity(query::Activity activity);
  [[nodiscard]] const query::Activity& activity() const noexcept { return activity_; }
  /// What stands where the bars would be while there are none.
  void setMessage(const QString& text);
  /// The span that the list is filtered by: what is outside is pale.
  void setMarked(std::optional<query::ActivitySpan> span);
  [[nodiscard]] const std::optional<query::ActivitySpan>& marked() const noexcept { return marked_; }
  /// What the tooltip of a bar says.
  void setToolTips(std::function<QString(int bar)> texts);

  /// How many bars fit side by side.
  [[nodiscard]] std::size_t room() const;
  /// The bars that are in sight, the first and the last.
  [[nodiscard]] std::pair<int, int> inSight() const;
  /// The bar at the cursor; -1 for none.
  [[nodiscard]] int current() const noexcept { return current_; }
  void setCurrent(int bar, bool extends = false);
  /// The bars that are spoken of: those that are selected, else the one under the pointer, else the current one.
  [[nodiscard]] std::optional<std::pair<int, int>> spokenOf() const;
  [[nodiscard]] bool isSelecting() const noexcept { return anchor_ >= 0; }
  /// The place of a bar in the viewport, from the grid's zero to its top; of its whole column with `whole`.
  [[nodiscard]] QRectF barPlace(int bar, bool whole = false) const;
  [[nodiscard]] query::ActivitySpan spanOfBars(std::pair<int, int> bars) const;

  /// The colours of the kinds, in the theme of the widget.
  [[nodiscard]] output::pictures::ActivityColors colors() const;

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override;

 Q_SIGNALS:
  /// Other bars are spoken of.
  void spokenOfChanged();
  /// Other bars are in sight, or there is room for more or fewer.
  void sightChanged();
  /// The rows of this span are wanted.
  void spanChosen(const korvel::query::ActivitySpan& span);
  /// The rows of all times are wanted.
  void spanDropped();
  /// Longer periods are wanted (1) or shorter ones (-1).
  void stepWanted(int direction);
  /// The keyboard is to go back to the list.
  void leaveWanted();

 protected:
  bool viewportEvent(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void changeEvent(QEvent* event) override;
  void scrollContentsBy(int dx, int dy) override;

 private:
  [[nodiscard]] int barCount() const { return static_cast<int>(activity_.bars.size()); }
  [[nodiscard]] QRect measuredPlot() const;
  [[nodiscard]] bool isOnBars(int x) const;
  void moveTo(int bar, bool extends);
  [[nodiscard]] int leastPitch() const;
  [[nodiscard]] int xOf(int bar) const;
  [[nodiscard]] qreal yOf(std::size_t count) const;
  /// The bar at a place, the nearest one where it lies beside them; -1 while there are none.
  [[nodiscard]] int barAt(int x) const;
  void setHovered(int bar);
  void showBar(int bar);
  /// Follows the size, the font and the bars.
  void measure();
  void choose();
  void dropSelection();
  void zoom(int direction, int bar);
  void paintGrid(QPainter& painter) const;
  void paintSelection(QPainter& painter) const;
  void paintBar(QPainter& painter, int bar, const std::vector<QColor>& inside,
                const std::vector<QColor>& outside) const;
  void paintMark(QPainter& painter) const;
  void paintDates(QPainter& painter) const;

  query::Activity activity_;
  QRect plot_;            ///< of the bars; the labels stand around it
  std::size_t most_ = 0;  ///< rows of the highest bar
  QString message_;
  std::optional<query::ActivitySpan> marked_;
  std::function<QString(int)> toolTips_;
  int current_ = -1;
  int anchor_ = -1;  ///< where the selection begins, which ends at the current bar; -1 while there is none
  int hovered_ = -1;
  bool dragging_ = false;
  int wheelTurn_ = 0;
  /// After a change of the step this time stays at this place.
  std::optional<std::pair<query::ActivityHour, int>> kept_;
};

}  // namespace korvel::control
