#pragma once

#include <QObject>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "control/filter_condition.h"
#include "control/latest_work.h"
#include "control/list_area.h"
#include "results/column_values.h"
#include "results/matching_cells.h"
#include "ui/value_list.h"

namespace korvel::control {

/// The filters of one list: what the user has put on it, the chips that say so, and the list of values in which a
/// column is filtered. A new answer drops them unless they are pinned; more rows of the same answer do not, but those
/// on records, which are of one answer as it is, go in either case. Regular
/// expressions are evaluated for other rows on another thread; until then the list shows no rows.
class ListFilters final : public QObject {
 public:
  /// What the rest of the control does about filters.
  struct Hooks {
    /// Runs what may fail, under the handler's name.
    std::function<void(std::string_view handler, const std::function<void()>& operation)> trapped;
    /// Other rows are shown.
    std::function<void()> changed;
    /// A condition on a text is to be changed: the bar for finding shows it.
    std::function<void(const ui::FindRequest& request)> find;
  };
  /// `area` must outlive it.
  ListFilters(ListArea& area, Hooks hooks);

  /// Opens the list of a column's values under its header.
  void showValues(int column);
  /// Only rows that show what this cell shows, or those that show something else.
  void keepOnlyValue(const QModelIndex& cell);
  void leaveOutValue(const QModelIndex& cell);
  /// Only rows of a group, each column of which has one value or one beginning.
  void keepOnlyGroup(const std::vector<results::ColumnCondition>& group);
  /// Only rows with these cells, which match the request. Takes the place of the condition that is being changed.
  void keepOnlyText(const ui::FindRequest& request, const results::MatchingCells& cells);
  /// The condition on a text that was to be changed stays as it is.
  void endChange() { changed_.reset(); }
  /// Only rows in a range of a column, in place of another range there; without one rows in and out of it.
  void keepOnlyRange(const results::ColumnIndex& column, std::optional<results::TextRange> range);
  /// Only these records, one byte each by RowId, in place of others of that name, which is the name of a RecordFilter.
  void keepOnlyRecords(const std::string& name, std::vector<std::uint8_t> records);
  /// Takes the condition of this name away.
  void showAllRecords(const std::string& name);
  [[nodiscard]] bool keepsRecords(const std::string& name) const;
  void clear();

  [[nodiscard]] const std::vector<FilterCondition>& conditions() const noexcept { return conditions_; }
  /// Texts in the current language.
  void showTexts();

 private:
  struct Evaluation;

  [[nodiscard]] const results::ResultList& list() const { return area_.list.listModel().list(); }
  [[nodiscard]] std::string captionOf(results::ColumnIndex column) const;
  [[nodiscard]] results::ShownValue valueAt(const QModelIndex& cell) const;
  /// The values of `column_` for the list of values; with a search only those that contain it.
  [[nodiscard]] ui::ValueListContent offer(const QString& search);
  /// How many of the rows of a day of `column_` the filters on it let pass: all, some or none.
  [[nodiscard]] std::function<Qt::CheckState(const results::ValueCount&)> shownParts() const;
  void choose();
  /// Puts the conditions on the list. The list keeps what it shows where memory runs out.
  void apply(std::vector<FilterCondition> conditions);
  /// The list got other rows, or none.
  void followRows();
  /// The conditions with the values that the list shows now.
  [[nodiscard]] std::vector<FilterCondition> conditionsAsShown() const;
  /// Evaluates what is pending on the other thread.
  void evaluate();
  void take(const Evaluation& evaluation);
  void showState();

  ListArea& area_;
  Hooks hooks_;
  std::vector<FilterCondition> conditions_;
  ui::ValueList* values_;
  results::ColumnIndex column_;  ///< whose values are listed
  /// What the lines of the list of values stand for; nothing for groups.
  std::vector<std::optional<results::ShownValue>> offered_;
  bool areDates_ = false;
  bool applying_ = false;
  std::optional<ui::FindRequest> changed_;  ///< of the condition that the find bar shows to change it
  LatestWork work_;
};

}  // namespace korvel::control
