#pragma once

#include <QRectF>
#include <QWidget>
#include <optional>
#include <vector>

namespace korvel::control {

/// A change of a number: when, from what, to what. Without a number where there was no value.
struct PlotChange {
  double at = 0;
  std::optional<double> before;
  std::optional<double> after;
  bool continues = true;  ///< from the change before
};

/// Shows how a number went from change to change as a line of steps with a mark at each change. A change that does not
/// continue from the one before is an open mark, and the line to it is broken. Marks that have no room beside each
/// other are left out; of those of changes that do not continue, only such that would lie on another one. The pointer
/// and the arrow keys go from change to change, whether or not it has a mark.
class ValuePlot final : public QWidget {
  Q_OBJECT

 public:
  explicit ValuePlot(QWidget* parent = nullptr);

  /// What stands beside the axes.
  struct Labels {
    QString highest;
    QString lowest;
    QString first;
    QString last;
  };
  /// Replaces the changes, which are in the order of `at`; none is current then.
  void setChanges(std::vector<PlotChange> changes, Labels labels);
  /// The change that was chosen last; -1 for none.
  [[nodiscard]] int current() const { return current_; }
  void setCurrent(int change);
  /// What is said of the change under the pointer, or else of the current one.
  void setReadout(const QString& text);
  [[nodiscard]] QString readout() const { return readout_; }
  /// Where a change's mark is.
  [[nodiscard]] QPointF markOf(int change) const;
  /// The changes that have a mark, with the current one and that under the pointer.
  [[nodiscard]] std::vector<int> marked() const;

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override;

 Q_SIGNALS:
  void currentChanged(int change);
  /// The readout is wanted of this change; -1 for none.
  void readoutWanted(int change);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;

 private:
  /// Where moments and values are. Of the labels' size, which takes long to measure.
  struct Scale {
    QRectF area;  ///< of the lines and marks; the labels stand around it
    qreal left = 0;
    qreal right = 0;
    double first = 0;
    double last = 0;
    double lowest = 0;
    double highest = 0;
    [[nodiscard]] qreal x(double at) const;
    [[nodiscard]] qreal y(double value) const;
    [[nodiscard]] QPointF mark(const PlotChange& change) const;
  };
  [[nodiscard]] Scale scale() const;
  [[nodiscard]] int nearest(QPointF place) const;
  [[nodiscard]] int countOf() const { return static_cast<int>(changes_.size()); }
  void paintAxes(QPainter& painter, const Scale& scale) const;
  void paintLine(QPainter& painter, const Scale& scale) const;
  void paintMarks(QPainter& painter, const Scale& scale) const;
  [[nodiscard]] std::vector<int> markedIn(const Scale& scale) const;
  void setHovered(int change);

  std::vector<PlotChange> changes_;
  Labels labels_;
  double lowest_ = 0;
  double highest_ = 0;
  int current_ = -1;
  int hovered_ = -1;
  QString readout_;
};

}  // namespace korvel::control
