#pragma once

#include <QHeaderView>
#include <QStyledItemDelegate>
#include <QTableView>

namespace korvel::ui {

/// The header of a list: tinted, semi-bold, one line with an ellipsis, sort arrow in the accent. Sections can be
/// moved, resized and clicked; the sort indicator shows what setSortIndicator() is told, a click alone changes
/// nothing unless the owner says so (`sectionClicked`).
class ResultHeader : public QHeaderView {
  Q_OBJECT

 public:
  explicit ResultHeader(QWidget* parent = nullptr);

  /// The arrow points up or down beside the column's caption; column -1 shows none.
  void showSort(int column, Qt::SortOrder order);

 protected:
  /// Captions are shown like values, and the sort arrow has the same direction in all styles.
  void initStyleOptionForIndex(QStyleOptionHeader* option, int logicalIndex) const override;
};

/// Paints the cells of a list: one line, ellipsis at the right, no vertical lines, selection as a tint that keeps the
/// text's colour; the current row is framed while the list has the focus. Asks the model for nothing but DisplayRole.
class RowDelegate : public QStyledItemDelegate {
  Q_OBJECT

 public:
  /// More characters than a cell can show on any screen. Measuring megabytes to elide them would make scrolling stall.
  static constexpr qsizetype shownCharacters = 1000;

  explicit RowDelegate(QObject* parent = nullptr);

  /// What a cell paints of a value: one line, direction controls made visible, an ellipsis after the shown characters.
  [[nodiscard]] static QString shownText(const QString& value);
  /// Width of a cell that shows a text of that width uncut.
  [[nodiscard]] static int cellWidth(const QWidget* widget, qreal textWidth);

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  /// A cell whose text is cut shows all of it as its tooltip, unless the model has a tooltip of its own.
  bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                 const QModelIndex& index) override;
};

/// A list of records: whole rows are selected, all rows have one height that follows the font, no grid, no row numbers,
/// tinted alternate rows, smooth horizontal scrolling. An empty list shows a grey text in its middle.
class ResultTable : public QTableView {
  Q_OBJECT

 public:
  explicit ResultTable(QWidget* parent = nullptr);

  [[nodiscard]] ResultHeader* header() const;
  /// The text of an empty list. It is only painted: it is no row and cannot be selected.
  void setEmptyText(const QString& text);
  [[nodiscard]] QString emptyText() const { return emptyText_; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void changeEvent(QEvent* event) override;
  void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;

 private:
  void measure();

  QString emptyText_;
};

}  // namespace korvel::ui
