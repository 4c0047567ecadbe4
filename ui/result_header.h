#pragma once

#include <QHeaderView>
#include <vector>

namespace korvel::ui {

/// The header of a list: tinted, semi-bold, one line with an ellipsis, sort arrow in the accent. Sections can be
/// moved, resized and clicked; the sort indicator shows what setSortIndicator() is told, a click alone changes
/// nothing unless the owner says so (`sectionClicked`). On request every section has a filter sign at its end, which
/// is a button of its own: a click on it is none on the section.
class ResultHeader : public QHeaderView {
  Q_OBJECT

 public:
  explicit ResultHeader(QWidget* parent = nullptr);

  /// The arrow points up or down beside the column's caption; column -1 shows none.
  void showSort(int column, Qt::SortOrder order);

  /// Whether sections have filter signs; `toolTip` says what they do. Without them by default.
  void setFilterSigns(bool shown, const QString& toolTip = {});
  /// The columns whose sign is filled: their rows are filtered.
  void setFilteredColumns(const std::vector<int>& columns);
  [[nodiscard]] bool isFiltered(int column) const;
  /// The column that keys mean, -1 for none.
  void setKeyColumn(int column);
  /// Where a click on this column's sign goes, in coordinates of the viewport; empty where there is none: a section
  /// that is narrow keeps its width for sorting and resizing.
  [[nodiscard]] QRect signPlace(int column) const;
  /// What the sign takes from the caption at present, in pixels. No caption is cut for its sign alone, but while the
  /// column is filtered, under the pointer, or the one that keys mean; until then such a section shows none.
  [[nodiscard]] int signRoom(int column) const;

 Q_SIGNALS:
  /// The sign of this column was clicked.
  void filterRequested(int column);
  /// The user has given this column another width, or has moved one, by mouse.
  void widthChosen(int column);
  void orderChosen();

 protected:
  /// Captions are shown like values, and the sort arrow has the same direction in all styles.
  void initStyleOptionForIndex(QStyleOptionHeader* option, int logicalIndex) const override;
  void paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const override;
  bool viewportEvent(QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;

 private:
  /// The column whose sign is at this place, -1 for none.
  [[nodiscard]] int signAt(const QPoint& place) const;
  void setHovered(int column);

  bool signs_ = false;
  QString signToolTip_;
  std::vector<bool> filtered_;
  int hovered_ = -1;    ///< the column under the pointer
  int pressed_ = -1;    ///< the column whose sign is held down
  bool held_ = false;   ///< a button is held down on a section or an edge
  int resized_ = -1;    ///< the column that was resized meanwhile
  bool moved_ = false;  ///< a column was moved meanwhile
  int keyColumn_ = -1;
};

}  // namespace korvel::ui
