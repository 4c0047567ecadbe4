#pragma once

#include <QStyledItemDelegate>
#include <functional>
#include <vector>

namespace korvel::ui {

/// Characters of a cell's shown text that are marked, because they are what was searched for.
struct TextMark {
  qsizetype from = 0;
  qsizetype length = 0;
  bool isCurrent = false;  ///< the hit that the search stands on
};

/// Paints the cells of a list: one line, ellipsis at the right, no vertical lines, selection as a tint that keeps the
/// text's colour; the current row is framed while the list has the focus. Asks the model for nothing but DisplayRole.
class RowDelegate : public QStyledItemDelegate {
  Q_OBJECT

 public:
  /// More characters than a cell can show on any screen. Measuring megabytes to elide them would make scrolling stall.
  static constexpr qsizetype shownCharacters = 1000;

  /// The marks of a cell whose value is shown as `shown`.
  using MarkSource = std::function<std::vector<TextMark>(const QModelIndex& index, const QString& shown)>;

  explicit RowDelegate(QObject* parent = nullptr);

  /// Cells are asked for their marks when they are painted; an empty source marks nothing and costs nothing.
  void setMarks(MarkSource source) { marks_ = std::move(source); }

  /// What a cell paints of a value: one line, direction controls made visible, an ellipsis after the shown characters.
  [[nodiscard]] static QString shownText(const QString& value);
  /// Width of a cell that shows a text of that width uncut.
  [[nodiscard]] static int cellWidth(const QWidget* widget, qreal textWidth);

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  /// A cell whose text is cut shows all of it as its tooltip, unless the model has a tooltip of its own.
  bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                 const QModelIndex& index) override;

 private:
  MarkSource marks_;
};

/// Height of the rows of a list in the widget's font.
[[nodiscard]] int listRowHeight(const QWidget& widget);

}  // namespace korvel::ui
