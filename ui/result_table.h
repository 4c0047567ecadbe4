#pragma once

#include <QTableView>

#include "ui/result_header.h"
#include "ui/row_delegate.h"

namespace korvel::ui {

/// A list of records: whole rows are selected, all rows have one height that follows the font, no grid, no row numbers,
/// tinted alternate rows, smooth horizontal scrolling. An empty list shows a grey text in its middle.
class ResultTable : public QTableView {
  Q_OBJECT

 public:
  explicit ResultTable(QWidget* parent = nullptr);

  [[nodiscard]] ResultHeader* header() const;
  [[nodiscard]] RowDelegate* rowDelegate() const;
  /// Takes a header for the rows, hidden, with the height of the rows. The table owns it.
  void setRowHeader(QHeaderView* header);
  /// The text of an empty list. It is only painted: it is no row and cannot be selected.
  void setEmptyText(const QString& text);
  [[nodiscard]] QString emptyText() const { return emptyText_; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void changeEvent(QEvent* event) override;
  void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  /// The header shows the sign of the column that Alt+Down opens.
  void showKeyColumn();
  void measure();

  QString emptyText_;
};

}  // namespace korvel::ui
