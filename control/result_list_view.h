#pragma once

#include <QElapsedTimer>
#include <span>
#include <vector>

#include "base/twips.h"
#include "control/result_list_model.h"
#include "control/row_copy.h"
#include "control/saved_selection.h"
#include "ui/result_table.h"

namespace korvel::control {

/// One of the six lists `lvListView` on the surface: a table over a ResultListModel whose columns are measured in
/// twips.
class ResultListView final : public ui::ResultTable {
  Q_OBJECT

 public:
  /// `model` must outlive the view.
  explicit ResultListView(ResultListModel& model, QWidget* parent = nullptr);

  [[nodiscard]] ResultListModel& listModel() const { return model_; }

  /// Gives every column the width that the list names for it, shows all of them, and puts them in the list's order.
  void applyColumnWidths();
  /// Width 0 hides the column.
  void setColumnTwips(int column, Twips width);
  /// Makes a column as wide as its widest entry, its caption with a sort arrow included. A hidden column stays hidden.
  /// Measures the column's different texts, not its rows.
  void autoSizeColumn(int column);
  /// A click on the header of a column: sorts, and keeps the current record visible if it was. Throws Error when memory
  /// runs out; the rows then stay as they were.
  void clickHeader(int column);
  /// Shows only the rows that pass. The current record and those that are selected stay so as far as they are shown.
  /// Throws Error when memory runs out; the list then shows what it showed before.
  void setFilter(results::RowFilter filter);
  /// Makes a cell the current one, selects its row alone and scrolls to it.
  void showCell(int row, int column);
  /// The columns that are shown, in the order in which they are.
  [[nodiscard]] std::vector<int> shownColumns() const;
  /// Shows sort key and direction of the list in the header.
  void showSortIcon();
  /// Takes name, size, bold and italic from `font`, nothing else.
  void setListFont(const QFont& font);

  /// Copies the selected rows to the clipboard: visible columns in their visible order, under their captions, as
  /// tab-separated lines and as a table. Refuses, and leaves the clipboard unchanged, where they are too many.
  void copySelection();
  /// Characters that both forms of a copy may have together; smaller in tests, which cannot fill the real limit.
  void setCopyLimit(qsizetype characters) { copyLimit_ = characters; }
  /// The selected rows, top to bottom.
  [[nodiscard]] std::vector<RowSpan> selectedSpans() const;
  /// Makes a row the current one and selects it, unless several rows are selected, which stay so then.
  void goToRow(int row);

  void keyboardSearch(const QString& typed) override;

 Q_SIGNALS:
  /// The user asked for the whole record in this row.
  void recordRequested(int row);
  /// The user double-clicked the edge of a column's header: the column becomes as wide as its widest entry.
  void fitRequested(int column);
  /// The user asked by keyboard for what a click on the header of this column does.
  void sortRequested(int column);
  /// The user asked by keyboard for the menu of the header; `place` is the lower left corner of this column's header on
  /// the screen.
  void columnMenuRequested(const QPoint& place);
  /// The user asked by keyboard for the values of this column.
  void filterRequested(int column);
  /// The user wants the rows that show what this cell shows, or those that do not.
  void onlyRequested(const QModelIndex& cell);
  void withoutRequested(const QModelIndex& cell);
  /// The user wants all rows again.
  void unfilterRequested();
  /// A command was refused; `text` says why.
  void refused(const QString& text);
  /// The rows that were selected, so many, lie too far apart after sorting to be selected again.
  void selectionScattered(std::size_t count);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
  [[nodiscard]] int sizeHintForColumn(int column) const override;

 private:
  /// The column of the current cell; the first visible one where that is hidden.
  [[nodiscard]] int cursorColumn() const;
  [[nodiscard]] int searchColumn() const;
  [[nodiscard]] int findRow(int column, const QString& beginning, int from) const;
  [[nodiscard]] bool isTyping() const;
  void goToNeighbourColumn(int step);
  /// Keys for filtering by the current cell. Returns whether the key was one of them.
  bool handleFilterKey(const QKeyEvent& event);
  /// Keys for what the mouse does on the header, which takes no focus. Returns whether the key was one of them.
  bool handleHeaderKey(const QKeyEvent& event);
  void saveSelection();
  [[nodiscard]] int rowOf(results::RowId record) const;
  /// The row of the first record or, where it is not shown, of one of the others; the last row where none is.
  [[nodiscard]] int firstRowOf(std::span<const results::RowId> records) const;
  void restoreSelection();

  ResultListModel& model_;
  SavedSelection saved_;
  QString typed_;
  QElapsedTimer sinceTyped_;
  // Some 100 MB; several times what spreadsheets take in good time.
  qsizetype copyLimit_ = qsizetype{50} << 20U;
};

}  // namespace korvel::control
