#pragma once

#include <QDateTime>
#include <QString>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>

#include "base/error.h"
#include "db/worker.h"
#include "query/complete_query.h"
#include "query/filter_tree.h"
#include "query/standard_query.h"

namespace korvel {
class AuditViewer;
}

namespace korvel::control {

class AnswerStatus;
class MessageBoxes;
class Surface;

/// Runs the standard and the custom query, one at a time in the whole program, and shows their answers and the number
/// of records. Knows why the last query failed. A failed standard query shows no message box.
class AuditQueries {
 public:
  /// Why the last query failed; empty where it did not.
  struct LastFailure {
    int number = 0;
    QString text;
    QDateTime time;
  };

  /// All must outlive the queries; `lists` and `filterTree` are those that the surface shows.
  AuditQueries(AuditViewer& viewer, const MessageBoxes& messages, Surface& surface, AnswerStatus& answers,
               query::ResultLists& lists, const query::FilterTree& filterTree);
  AuditQueries(const AuditQueries&) = delete;
  AuditQueries& operator=(const AuditQueries&) = delete;

  /// Both do nothing while a query runs.
  void TriggerQuery();
  void TriggerAdvancedQuery(const QString& QueryString);
  /// Loads what the procedure's limit has cut from the answer that the standard lists show. Nothing while that is
  /// whole, or a query runs. The lists keep their rows until all have come; Esc stops, and the user says whether to
  /// keep what has come.
  void LoadAll();
  void DisplayNoOfRecords();
  void btQuery_Click();
  void btClear_Click();
  /// The query of the page in front, as its button runs it; nothing while the button is disabled.
  void runQueryByKey();
  void clearAllLists();

  [[nodiscard]] const LastFailure& lastFailure() const noexcept { return lastFailure_; }
  /// The last day of which one of the standard lists shows a row.
  [[nodiscard]] std::optional<std::chrono::year_month_day> newestDayShown() const;

 private:
  /// What may be done with an answer.
  enum class AnswerUse {
    controlIsGone,  ///< the control was deleted: nothing of it may be used
    outdated,       ///< another database was selected meanwhile
    shown
  };
  /// Runs a query. Meanwhile windows are painted, Esc stops the query, and all other input is dropped. The control may
  /// have been deleted afterwards.
  [[nodiscard]] AnswerUse runWatched(const std::function<void(const db::WaitCallback& goOn)>& ask);
  /// A complete answer on its way into the lists; a thread that is left behind owns it.
  struct Filling {
    query::CompleteAnswer whole;
    query::ResultLists lists;  ///< copies of those that are shown
    query::CompletionReport report;
  };
  /// Spreads and sorts the rows, which takes long where there are millions; windows are painted meanwhile.
  [[nodiscard]] AnswerUse fillWatched(const std::shared_ptr<Filling>& filling);
  void setLastFailure(LastFailure failure);
  /// Runs `change`, which replaces rows of the standard lists, and updates their views.
  void changeStandardLists(const std::function<void()>& change);
  /// Tells the host of a query that failed; the control may be gone afterwards.
  void queryFailed(const Error& failure);

  AuditViewer& viewer_;
  const MessageBoxes& messages_;
  Surface& surface_;
  AnswerStatus& answers_;
  query::ResultLists& lists_;
  const query::FilterTree& filterTree_;
  LastFailure lastFailure_;
  /// What the standard lists show the answer to.
  query::FilterTree askedTree_;
  query::DateRange askedRange_;
};

}  // namespace korvel::control
