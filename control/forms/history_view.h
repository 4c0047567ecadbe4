#pragma once

#include <QDialog>
#include <QPointer>
#include <vector>

#include "control/forms/change_table.h"
#include "control/result_list_view.h"

class QLabel;
class QPushButton;

namespace korvel::ui {
class ResultTable;
}

namespace korvel::control {

class ValuePlot;

/// Shows what a list knows about one item: its changes in the order of time, and where the values are numbers, a plot
/// of them.
class HistoryView final : public QDialog {
  Q_OBJECT

 public:
  explicit HistoryView(QWidget* owner);

  /// Shows the history of the item that the record in a row of `list` is about, in the current language; nothing where
  /// the list has no such row. Closes by itself when the list gets other rows. Throws Error when memory runs out.
  void showHistory(ResultListView& list, const query::ItemColumns& columns, int row);
  [[nodiscard]] const ChangeTable& changes() const { return changes_; }
  /// Copies all changes to the clipboard, as lists copy rows. Refuses where memory does not suffice.
  void copyHistory();
  /// Closes, and makes the record of the current change the list's current one, if the list shows it.
  void goToRecord();

 Q_SIGNALS:
  /// A command was refused; `text` says why.
  void refused(const QString& text);

 private:
  void buildContent();
  void buildFoot();
  void setTexts();
  void fillHead();
  void fillPlot();
  void fitColumns();
  void follow(ResultListView& list);
  void setCurrent(int change);
  [[nodiscard]] QString readoutOf(int change) const;

  QPointer<ResultListView> list_;
  QMetaObject::Connection listChange_;
  ChangeTable changes_;

  QLabel* lblItem_ = nullptr;
  QLabel* lblPlace_ = nullptr;
  ValuePlot* plot_ = nullptr;
  ui::ResultTable* table_ = nullptr;
  QLabel* lblSummary_ = nullptr;
  QPushButton* btCopy_ = nullptr;
  QPushButton* btGoTo_ = nullptr;
  QPushButton* btClose_ = nullptr;
};

}  // namespace korvel::control
