#include "control/audit_queries.h"

#include <QPointer>
#include <QScopeGuard>
#include <algorithm>
#include <array>
#include <memory>
#include <utility>

#include "control/answer_record.h"
#include "control/answer_status.h"
#include "control/column_memory.h"
#include "control/library_state.h"
#include "control/message_boxes.h"
#include "control/surface.h"
#include "control/texts.h"
#include "korvel/AuditViewer.h"
#include "query/custom_query.h"
#include "query/standard_query.h"
#include "ui/query_watch.h"

namespace korvel::control {

namespace {

const QString queryingText = QStringLiteral("Querying Database Please Wait....");
const QString noRecordsText = QStringLiteral("No Records Found for Query");

/// Sets the text of the status panel while it exists.
class StatusText {
 public:
  StatusText(StatusPanels& panels, const QString& text) : panels_(&panels) {
    panels_->setStatus(text);
    // The query blocks, so the panel must be painted before it begins.
    panels_->repaint();
  }
  ~StatusText() {
    if (panels_) panels_->setStatus({});
  }
  StatusText(const StatusText&) = delete;
  StatusText& operator=(const StatusText&) = delete;

 private:
  QPointer<StatusPanels> panels_;
};

/// While it exists, no control of the program starts a query: it would run nested in the current one, which could not
/// be stopped meanwhile.
class QueryRunning {
 public:
  QueryRunning() { libraryState().queryRunning = true; }
  ~QueryRunning() { libraryState().queryRunning = false; }
  QueryRunning(const QueryRunning&) = delete;
  QueryRunning& operator=(const QueryRunning&) = delete;
};

}  // namespace

AuditQueries::AuditQueries(AuditViewer& viewer, const MessageBoxes& messages, Surface& surface, AnswerStatus& answers,
                           query::ResultLists& lists, const query::FilterTree& filterTree)
    : viewer_(viewer),
      messages_(messages),
      surface_(surface),
      answers_(answers),
      lists_(lists),
      filterTree_(filterTree) {
  messages_.onClick(surface_.btQuery, "btQuery_Click", [this] { btQuery_Click(); });
  messages_.onClick(surface_.btClear, "btClear_Click", [this] { btClear_Click(); });
  messages_.onClick(surface_.StatusBar1->LoadAll, "LoadAll", [this] { LoadAll(); });
}

void AuditQueries::btQuery_Click() {
  if (libraryState().queryRunning) return;
  const std::shared_ptr<ControlServices> services = platform().services;
  const QPointer<AuditViewer> alive(&viewer_);
  {
    std::optional<ui::BusyPointer> busy(std::in_place, *services);
    const StatusText status(*surface_.StatusBar1, queryingText);
    if (surface_.currentTab() == query::customList) {
      const QString text = surface_.txtAdvancedQuery->queryText();
      skipFailing([&] { libraryState().remembered.addText(Remembered::Texts::queries, text); });
      viewer_.TriggerAdvancedQuery(text);
    } else {
      viewer_.TriggerQuery();
    }
    if (alive) DisplayNoOfRecords();
    // The pointer is reset before the status text.
    busy.reset();
  }
  if (alive) answers_.showRestingText();
}

void AuditQueries::runQueryByKey() {
  if (surface_.btQuery->isEnabled()) messages_.trapped("btQuery_Click", [this] { btQuery_Click(); });
}

void AuditQueries::btClear_Click() {
  clearAllLists();
  DisplayNoOfRecords();
}

void AuditQueries::TriggerQuery() {
  constexpr int noCriteria = 10060;
  constexpr int noRecords = 10061;
  // A call that was queued while a query runs would run nested in it.
  if (libraryState().queryRunning) return;
  const QPointer<AuditViewer> alive(&viewer_);
  setLastFailure({});
  if (!alive) return;
  answers_.clearNotice();
  answers_.setAnswer(AnswerLists::standard, {.state = AnswerState::querying});
  const auto atEnd = qScopeGuard([&] {
    if (alive) answers_.endQuery(AnswerLists::standard);
  });
  // Range and filter are copied, because the host may change them before the answer is shown.
  const query::DateRange range = libraryState().dateRange;
  const query::CategoryFlags flags = filterTree_.flags();
  ShownAnswer answer{.question = answers_.standardQuestion(),
                     .connectionString = libraryState().connection.ConnectionString};
  askedTree_ = filterTree_;
  askedRange_ = range;
  changeStandardLists([&] { query::clearStandardLists(lists_); });
  DisplayNoOfRecords();
  query::StandardQueryResult whole;
  const AnswerRecord record;
  const AnswerUse use = runWatched([&](const db::WaitCallback& goOn) {
    whole = query::executeStandardQuery({filterTree_, range, answer.connectionString}, record.connector(), goOn,
                                        platform().queryEnvironment);
  });
  if (use == AnswerUse::controlIsGone) return;
  if (use == AnswerUse::outdated) whole = query::StandardQueryResult::stopped();
  query::QueryReport report;
  // Asked only now, because a queued call may have chosen another page.
  const bool customPage = surface_.currentTab() == query::customList;
  // The custom list keeps its rows and its view: it is sorted below, as by a click on its header.
  const std::size_t sorted = customPage ? query::listCount : surface_.currentTab();
  changeStandardLists([&] { report = whole.fill(lists_, sorted); });
  if (customPage && report.outcome == query::QueryOutcome::filled)
    skipFailing([&] { surface_.models.at(query::customList)->sortRows(); });
  for (ResultListView* list : surface_.lvListView) list->showSortIcon();

  switch (report.outcome) {
    case query::QueryOutcome::noCriteria:
      answers_.setAnswer(AnswerLists::standard, {});
      messages_.inform(messageTitle(), loadText(noCriteria));
      break;
    case query::QueryOutcome::noRecords:
      answer.state = AnswerState::nothingFound;
      answer.record = record.standard(flags, range, report, lists_);
      answers_.setAnswer(AnswerLists::standard, std::move(answer));
      messages_.inform(noRecordsTitle(), loadText(noRecords));
      break;
    case query::QueryOutcome::stopped:
      answers_.setAnswer(AnswerLists::standard, {.state = AnswerState::stopped});
      answers_.showNotice([] { return ownText("custom.stopped"); });
      break;
    case query::QueryOutcome::failed: {
      const Error failure = report.failure.value_or(Error(unspecifiedFailure, "unknown failure"));
      answers_.setAnswer(AnswerLists::standard, {.state = AnswerState::failed, .failure = failureText(failure)});
      queryFailed(failure);
      break;
    }
    case query::QueryOutcome::filled:
      answer.state = AnswerState::filled;
      answer.alarmsOfAllDates = query::alarmsComeFromAllDates(flags, range);
      answer.rowLimitReached = !report.fullResults.empty();
      answer.record = record.standard(flags, range, report, lists_);
      answers_.setAnswer(AnswerLists::standard, std::move(answer));
      break;
  }
}

void AuditQueries::LoadAll() {
  // The key works only while the button is visible.
  const bool isOffered = surface_.StatusBar1->LoadAll->isEnabled() && surface_.currentTab() != query::customList;
  if (libraryState().queryRunning || !isOffered) return;
  const QPointer<AuditViewer> alive(&viewer_);
  setLastFailure({});
  // The host is notified and may have deleted the control or selected another database.
  if (!alive || libraryState().queryRunning || !answers_.standardAnswer().rowLimitReached) return;
  answers_.clearNotice();
  const std::shared_ptr<ControlServices> services = platform().services;
  ShownAnswer answer = answers_.standardAnswer();
  const int answersBefore = answers_.standardAnswers();
  const query::FilterTree tree = askedTree_;
  const query::DateRange range = askedRange_;
  query::CompleteAnswer whole;
  const AnswerRecord record;
  AnswerUse use = AnswerUse::outdated;
  {
    const ui::BusyPointer busy(*services);
    use = runWatched([&](const db::WaitCallback& goOn) {
      const auto attendance = [&](const query::CompletionProgress& progress) {
        if (alive)
          surface_.StatusBar1->setStatus(
              ownText("complete.progress").arg(ui::countText(progress.rows), ui::countText(progress.slices)));
        return goOn();
      };
      whole = query::completeStandardQuery({tree, range, answer.connectionString}, record.connector(), attendance,
                                           platform().queryEnvironment);
    });
  }
  if (use == AnswerUse::controlIsGone) return;
  const auto atEnd = qScopeGuard([&] {
    if (alive) answers_.showRestingText();
  });
  if (use == AnswerUse::outdated) return;
  const bool isStopped = whole.report().outcome == query::QueryOutcome::stopped;
  if (isStopped && whole.rowCount() == 0) {
    answers_.showNotice([] { return ownText("complete.stopped"); });
    return;
  }
  if (isStopped &&
      !services->confirm(&viewer_, messageTitle(), ownText("complete.keep").arg(ui::countText(whole.rowCount()))))
    return;
  // Meanwhile, or while the question was open, the lists may have been cleared, or filled by another query.
  if (!alive || libraryState().queryRunning || answers_.standardAnswers() != answersBefore) return;
  const auto filling = std::make_shared<Filling>(Filling{std::move(whole), lists_, {}});
  use = fillWatched(filling);
  if (use == AnswerUse::controlIsGone) return;
  if (use == AnswerUse::outdated || answers_.standardAnswers() != answersBefore) return;
  const query::CompletionReport& report = filling->report;
  if (report.outcome == query::QueryOutcome::filled)
    changeStandardLists([&] {
      for (std::size_t i = 0; i < query::standardListCount; ++i) lists_.at(i) = std::move(filling->lists.at(i));
    });
  for (ResultListView* list : surface_.lvListView) list->showSortIcon();
  DisplayNoOfRecords();
  if (report.outcome == query::QueryOutcome::filled) {
    // A stopped completion can be started again.
    answer.rowLimitReached = report.endedEarly;
    answer.completion = {report, lists_[0].wholeRowCount()};
    evidence::Manifest completed = record.completed(tree.flags(), range, report, lists_);
    // Which of the categories were finished before the stop nobody knows.
    if (report.endedEarly && answer.record) completed.limitReached = answer.record->limitReached;
    answer.record = std::move(completed);
    answers_.setAnswer(AnswerLists::standard, std::move(answer));
    return;
  }
  if (report.outcome == query::QueryOutcome::noRecords) {
    // The trail has been emptied meanwhile.
    changeStandardLists([&] { query::clearStandardLists(lists_); });
    DisplayNoOfRecords();
    answer.state = AnswerState::nothingFound;
    answer.rowLimitReached = false;
    answer.completion.reset();
    answer.record = record.completed(tree.flags(), range, report, lists_);
    answers_.setAnswer(AnswerLists::standard, std::move(answer));
    return;
  }
  const Error failure = report.failure.value_or(Error(unspecifiedFailure, "unknown failure"));
  answers_.showNotice([failure] { return ownText("complete.failed").arg(failureText(failure)); });
  queryFailed(failure);
}

AuditQueries::AnswerUse AuditQueries::fillWatched(const std::shared_ptr<Filling>& filling) {
  const QPointer<AuditViewer> alive(&viewer_);
  const ui::BusyPointer busy(*platform().services);
  const bool customPage = surface_.currentTab() == query::customList;
  const std::size_t sorted = customPage ? query::listCount : surface_.currentTab();
  return runWatched([&](const db::WaitCallback& goOn) {
    const auto fill = [filling, sorted](const std::stop_token& /*stop*/) {
      filling->report = filling->whole.fill(filling->lists, sorted);
      return true;
    };
    const db::WaitCallback attendance = [&] {
      // Sorting has no end but its own; only without the control nobody waits for it.
      static_cast<void>(goOn());
      return !alive.isNull();
    };
    static_cast<void>(db::runOnWorker(fill, attendance, platform().queryEnvironment.pace));
  });
}

void AuditQueries::changeStandardLists(const std::function<void()>& change) {
  std::array<std::optional<ResultListModel::RowsChange>, query::standardListCount> changes;
  for (std::size_t i = 0; i < changes.size(); ++i) changes.at(i).emplace(*surface_.models.at(i));
  change();
}

void AuditQueries::TriggerAdvancedQuery(const QString& QueryString) {
  if (libraryState().queryRunning) return;
  const QPointer<AuditViewer> alive(&viewer_);
  setLastFailure({});
  if (!alive) return;
  surface_.txtAdvancedQuery->setErrorLine(std::nullopt);
  answers_.clearNotice();
  answers_.setAnswer(AnswerLists::custom, {.state = AnswerState::querying});
  const auto atEnd = qScopeGuard([&] {
    if (alive) answers_.endQuery(AnswerLists::custom);
  });
  ShownAnswer shown{.connectionString = libraryState().connection.AdvancedConnectionString};
  ResultListModel& model = *surface_.models.at(query::customList);
  model.clear();
  DisplayNoOfRecords();

  // Separate from the list that is shown, which is painted meanwhile.
  results::ResultList answer(results::RowFilling::whole);
  query::CustomReport report;
  const std::string text = QueryString.toStdString();
  const AnswerRecord record;
  const AnswerUse use = runWatched([&](const db::WaitCallback& goOn) {
    const query::QueryProgress progress = [&](std::size_t rows) {
      if (alive && rows > 0) surface_.StatusBar1->setStatus(ownText("custom.rowsSoFar").arg(ui::countText(rows)));
      return goOn();
    };
    report = query::runCustomQuery(text, shown.connectionString, record.connector(), answer, progress,
                                   platform().queryEnvironment);
  });
  if (use == AnswerUse::controlIsGone) return;
  if (use == AnswerUse::outdated) report = {query::CustomOutcome::stopped, std::nullopt};

  switch (report.outcome) {
    case query::CustomOutcome::filled:
      model.setColumns([&](results::ResultList& list) { list = std::move(answer); });
      surface_.lvListView[query::customList]->applyColumnWidths();
      skipFailing([this] { restoreColumnWidths(*surface_.lvListView[query::customList]); });
      surface_.lvListView[query::customList]->showSortIcon();
      DisplayNoOfRecords();
      shown.state = AnswerState::filled;
      shown.record = record.custom(text, model.list().wholeRowCount());
      answers_.setAnswer(AnswerLists::custom, std::move(shown));
      break;
    case query::CustomOutcome::noRecords:
      shown.state = AnswerState::nothingFound;
      shown.record = record.custom(text, 0);
      answers_.setAnswer(AnswerLists::custom, std::move(shown));
      messages_.inform(noRecordsTitle(), noRecordsText);
      break;
    case query::CustomOutcome::stopped:
      answers_.setAnswer(AnswerLists::custom, {.state = AnswerState::stopped});
      answers_.showNotice([] { return ownText("custom.stopped"); });
      break;
    case query::CustomOutcome::failed: {
      const Error failure = report.failure.value_or(Error(unspecifiedFailure, "unknown failure"));
      if (surface_.txtAdvancedQuery->queryText() == QueryString)
        surface_.txtAdvancedQuery->setErrorLine(failure.line());
      answers_.setAnswer(AnswerLists::custom, {.state = AnswerState::failed, .failure = failureText(failure)});
      // Before the message box, which may stay open for hours.
      queryFailed(failure);
      if (!alive) return;
      messages_.trapped("TriggerAdvancedQuery", [&failure] { throw Error(failure); });
      break;
    }
  }
}

AuditQueries::AnswerUse AuditQueries::runWatched(const std::function<void(const db::WaitCallback& goOn)>& ask) {
  const QPointer<AuditViewer> alive(&viewer_);
  // Queued calls of the host may select another database or delete this control: every use below checks `alive` first.
  const int selection = answers_.selections();
  const auto isStale = [&] { return !alive || answers_.selections() != selection; };
  const QString statusBefore = surface_.StatusBar1->status();
  const QueryRunning runs;
  {
    ui::QueryWatch watch;
    ask([&] { return !isStale() && watch.goOn() && !isStale(); });
    // Clicks and keys that are still queued were meant for this query: they are dropped, so that they start no other
    // one.
    static_cast<void>(watch.goOn());
  }
  if (!alive) return AnswerUse::controlIsGone;
  surface_.StatusBar1->setStatus(statusBefore);
  // Rows of a database that is not the selected one any more are not shown: the lists were cleared of them.
  return isStale() ? AnswerUse::outdated : AnswerUse::shown;
}

void AuditQueries::queryFailed(const Error& failure) {
  setLastFailure({failure.number(), failureText(failure), QDateTime::currentDateTime()});
}

void AuditQueries::setLastFailure(LastFailure failure) {
  const bool changed = failure.time != lastFailure_.time;
  lastFailure_ = std::move(failure);
  if (changed) Q_EMIT viewer_.LastFailureChanged();
}

void AuditQueries::DisplayNoOfRecords() {
  constexpr int recordsOnCurrentTab = 10054;
  const std::size_t count = surface_.currentList().listModel().list().rowCount();
  surface_.StatusBar1->setRecords(
      fromUtf8(results::recordCountText(count, loadText(recordsOnCurrentTab).toStdString())));
}

void AuditQueries::clearAllLists() {
  for (const auto& model : surface_.models) model->clear();
  answers_.clearNotice();
  answers_.setAnswer(AnswerLists::custom, {});
  answers_.setAnswer(AnswerLists::standard, {});
}

std::optional<std::chrono::year_month_day> AuditQueries::newestDayShown() const {
  std::optional<std::chrono::year_month_day> newest;
  // Unknown where memory has run out.
  skipFailing([&] {
    for (std::size_t i = 0; i < query::standardListCount; ++i)
      newest = std::max(newest, query::newestDay(lists_.at(i)));
  });
  return newest;
}

}  // namespace korvel::control
