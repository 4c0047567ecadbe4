#pragma once

#include <QDialog>
#include <QPointer>
#include <functional>
#include <vector>

#include "control/result_list_model.h"
#include "control/result_list_view.h"
#include "results/group_list.h"

class QComboBox;
class QLabel;
class QPushButton;

namespace korvel::control {

/// Shows how many of a list's rows have each value of one or two columns, dates by year, month, day or hour. The groups
/// are a list themselves: it is sorted and copied as the others are. It has the largest groups, and says so, where
/// there are more than anybody reads.
class SummaryView final : public QDialog {
  Q_OBJECT

 public:
  explicit SummaryView(QWidget* owner);

  /// The table has at most so many groups.
  static constexpr std::size_t mostGroups = 10'000;

  /// Counts the rows that `list` shows, in the current language: by its events at first, or by the column of its
  /// current cell where it has none. Counts on a worker; Esc closes, then too. Closes by itself when the list gets
  /// other rows. Throws Error when memory runs out.
  void showSummary(ResultListView& list);
  /// Makes all groups with their count in the last column, sorted as those that are shown; on any thread, also when the
  /// list has other rows by then. Only while a summary is shown.
  [[nodiscard]] std::function<results::ResultList()> allGroups() const;
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
  /// False where Esc was pressed, or the list got other rows.
  bool count();
  void countAgain();
  void showTotal(const results::ResultList& rows);
  void requestGroup(int row);
  [[nodiscard]] std::vector<const Choice*> chosen() const;

  QPointer<ResultListView> list_;
  QMetaObject::Connection listChange_;
  std::vector<Choice> choices_;
  results::GroupList shown_;
  ResultListModel model_{shown_.list};
  QString filterRemark_;

  QLabel* lblFirst_ = nullptr;
  QLabel* lblSecond_ = nullptr;
  QComboBox* cmbFirst_ = nullptr;
  QComboBox* cmbSecond_ = nullptr;
  ResultListView* table_ = nullptr;
  QLabel* lblCut_ = nullptr;  ///< says that there are more groups
  QLabel* lblTotal_ = nullptr;
  QPushButton* btExport_ = nullptr;
  QPushButton* btCopy_ = nullptr;
  QPushButton* btClose_ = nullptr;
};

}  // namespace korvel::control
