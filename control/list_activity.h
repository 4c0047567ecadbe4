#pragma once

#include <QObject>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "control/latest_work.h"
#include "control/list_area.h"
#include "query/activity.h"

namespace korvel::control {

/// Activity over time in one list: counts its rows on a worker when they have changed, and filters by the span that
/// the user chooses in the strip. The rows counted are those that all filters but that one leave, so that the span can
/// be seen among its surroundings and be changed.
class ListActivity final : public QObject {
 public:
  /// Filters the list by a range of a column, or by none.
  using Filter =
      std::function<void(const results::ColumnIndex& column, const std::optional<results::TextRange>& range)>;
  /// `area` must outlive it.
  ListActivity(ListArea& area, Filter filter);

  void setShown(bool shown);
  /// Texts in the current language.
  void showTexts();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  struct Count;

  [[nodiscard]] const results::ResultList& list() const { return area_.list.listModel().list(); }
  [[nodiscard]] ActivityStrip& strip() const { return *area_.activity; }
  void makeStrip();
  /// The list got other rows, or none, or another filter.
  void followRows();
  /// Counts as soon as the strip is in sight.
  void countLater();
  void count();
  void finish(const Count& count);
  void showMark();
  void showMessage(const char* key, const QString& detail = {});
  void filterBy(const std::optional<query::ActivitySpan>& span);
  /// Whether other bars would fit the strip better, while the step is not the user's.
  [[nodiscard]] bool fitsBadly() const;

  ListArea& area_;
  Filter filter_;
  std::optional<query::ActivityStep> asked_;  ///< the step that the user has chosen
  std::vector<results::ColumnIndex> kinds_;   ///< what can be stacked by
  bool isCounted_ = false;                    ///< the strip shows the rows as they are, or will
  bool isWaiting_ = false;                    ///< a count is to begin
  bool isFiltering_ = false;
  std::function<void()> showAgain_;  ///< the message that is shown, in another language
  LatestWork work_;
};

}  // namespace korvel::control
