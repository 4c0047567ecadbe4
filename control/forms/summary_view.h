#pragma once

#include <QDialog>
#include <QPointer>
#include <vector>

#include "control/result_list_model.h"
#include "control/result_list_view.h"
#include "results/row_groups.h"

class QComboBox;
class QLabel;
class QPushButton;

namespace korvel::control {

/// Shows how many of a list's rows have each value of one or two columns, dates by year, month, day or hour. The groups
/// are a list themselves: it is sorted and copied as the others are.
class SummaryView final : public QDialog {
  Q_OBJECT

 public:
  explicit SummaryView(QWidget* owner);

  /// Counts the rows that `list` shows, by the column of its current cell at first, in the current language. Closes by
  /// itself when the list gets other rows. Throws Error when memory runs out.
  void showSummary(ResultListView& list);
  /// The groups with their count in the last column, in the order in which they are shown.
  [[nodiscard]] results::ResultList shownGroups() const;
  /// That rows are hidden, which the groups do not count; empty where none are.
  [[nodiscard]] const QString& filterRemark() const noexcept { return filterRemark_; }
  [[nodiscard]] ResultListView& table() const { return *table_; }

 Q_SIGNALS:
  /// The rows of this group are wanted: those that meet all of these conditions.
  void groupRequested(ResultListView* list, const std::vector<results::ColumnCondition>& group);
  /// The groups are wanted as a file.
  void exportRequested();
  /// Counting failed, or a command was refused; `text` says why.
  void refused(const QString& text);

 private:
  /// What rows can be grouped by.
  struct Choice {
    QString caption;
    results::GroupKey key;
  };

  void buildContent();
  void buildFoot();
  void setTexts();
  void follow(ResultListView& list);
  void offerColumns();
  void count();
  void requestGroup(int row);
  [[nodiscard]] std::vector<const Choice*> chosen() const;

  QPointer<ResultListView> list_;
  QMetaObject::Connection listChange_;
  std::vector<Choice> choices_;
  std::vector<results::GroupKey> keys_;  ///< of the groups that are shown
  std::vector<QString> captions_;        ///< of the columns that are shown, without the count
  std::vector<results::RowGroup> groups_;
  QString filterRemark_;
  results::ResultList shown_{results::RowFilling::whole};
  ResultListModel model_{shown_};

  QLabel* lblFirst_ = nullptr;
  QLabel* lblSecond_ = nullptr;
  QComboBox* cmbFirst_ = nullptr;
  QComboBox* cmbSecond_ = nullptr;
  ResultListView* table_ = nullptr;
  QLabel* lblTotal_ = nullptr;
  QPushButton* btExport_ = nullptr;
  QPushButton* btCopy_ = nullptr;
  QPushButton* btClose_ = nullptr;
};

}  // namespace korvel::control
