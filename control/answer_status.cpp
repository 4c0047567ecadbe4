#include "control/answer_status.h"

#include <utility>

#include "control/selected_snapshot.h"
#include "control/surface.h"
#include "control/texts.h"
#include "query/standard_query.h"

namespace korvel::control {

namespace {

/// Alarm rows are changes of the configuration: the other pages have none.
bool showsAlarms(std::size_t page) {
  constexpr std::size_t allAudits = 0;
  constexpr std::size_t configuration = 1;
  return page == allAudits || page == configuration;
}

}  // namespace

bool AnswerStatus::hasDatabase() const {
  return selections_ > 0 && !libraryState().connection.ConnectionString.empty();
}

std::string AnswerStatus::standardQuestion() const {
  return query::queryAuditsText(filterTree_.flags(), libraryState().dateRange);
}

bool AnswerStatus::isOutOfDate() const {
  const db::ConnectionState& connection = libraryState().connection;
  if (surface_.currentTab() == query::customList)
    return customAnswer_.isAnswer() && customAnswer_.connectionString != connection.AdvancedConnectionString;
  return standardAnswer_.isAnswer() && (standardAnswer_.connectionString != connection.ConnectionString ||
                                        standardAnswer_.question != standardQuestion());
}

bool AnswerStatus::showsAlarmsOfAllDates(std::size_t list) const noexcept {
  return standardAnswer_.alarmsOfAllDates && showsAlarms(list);
}

QString AnswerStatus::alarmRemark() const {
  return showsAlarmsOfAllDates(surface_.currentTab()) ? ownText(query::alarmsOfAllDatesText) : QString();
}

QStringList AnswerStatus::completionTexts() const {
  QStringList texts;
  if (!standardAnswer_.completion || surface_.currentTab() == query::customList) return texts;
  const auto& [report, records] = *standardAnswer_.completion;
  for (const std::string& text : query::completionTexts(
           report, records, libraryState().language, [](std::size_t count) { return countText(count).toStdString(); }))
    texts.append(fromUtf8(text));
  return texts;
}

/// An answer that was cut or is out of date cannot be recognised by its rows, so the status panel says so until the
/// next query.
QString AnswerStatus::restingText() const {
  QStringList sentences;
  const auto say = [&](const QString& sentence) {
    if (!sentence.isEmpty()) sentences.append(sentence);
  };
  if (reviewText_) say(reviewText_());
  if (notice_) say(notice_());
  if (hasDatabase()) say(SelectedSnapshot::text());
  if (isOutOfDate()) say(ownText("status.outOfDate"));
  say(alarmRemark());
  sentences.append(completionTexts());
  if (isCut()) say(ownText("status.rowLimit"));
  return sentences.join(QStringLiteral(". "));
}

void AnswerStatus::showRestingText() {
  shownRestingText_ = restingText();
  surface_.StatusBar1->setStatus(shownRestingText_);
}

void AnswerStatus::showNotice(std::function<QString()> notice, const ResultListModel* rows) {
  notice_ = std::move(notice);
  noticedRows_ = rows;
  showRestingText();
}

void AnswerStatus::endNoticeOn(const ResultListModel& rows) {
  if (!notice_ || noticedRows_ != &rows) return;
  clearNotice();
  followRestingText();
}

bool AnswerStatus::isAllOffered() const {
  return standardAnswer_.rowLimitReached && surface_.currentTab() != query::customList;
}

void AnswerStatus::followRestingText() {
  surface_.StatusBar1->offerLoadAll(isAllOffered());
  // The progress of a query and the help of a command stay until they end; the resting text is computed again then.
  if (surface_.StatusBar1->status() == shownRestingText_) showRestingText();
}

bool AnswerStatus::isCut() const {
  return isAllOffered() && !standardAnswer_.completion;
}

QString AnswerStatus::emptyText(const ShownAnswer& answer, bool custom) const {
  constexpr int selectDatabase = 10044;
  constexpr int runQuery = 10046;
  constexpr int noRecords = 10061;
  switch (answer.state) {
    case AnswerState::notQueried:
      if (!hasDatabase()) return ownText("list.noDatabase").arg(loadText(selectDatabase));
      return ownText(custom ? "list.customNotQueried" : "list.notQueried").arg(loadText(runQuery));
    case AnswerState::querying:
      return ownText("list.querying");
    case AnswerState::filled:
    case AnswerState::nothingFound:
      return custom ? ownText("list.nothingFound") : loadText(noRecords);
    case AnswerState::stopped:
      return ownText("custom.stopped");
    case AnswerState::failed:
      return ownText("list.failed").arg(answer.failure);
  }
  return {};
}

void AnswerStatus::showEmptyTexts() {
  surface_.StatusBar1->nameLoadAll();
  for (std::size_t page = 0; page < surface_.lvListView.size(); ++page) {
    const bool custom = page == query::customList;
    ResultListView& list = *surface_.lvListView.at(page);
    list.setEmptyText(surface_.areas.at(page)->filterState.isEvaluating ? ownText("filter.evaluating")
                      : list.listModel().list().isFiltered()
                          ? ownText("filter.nothing")
                          : emptyText(custom ? customAnswer_ : standardAnswer_, custom));
  }
}

const evidence::Manifest* AnswerStatus::record(std::size_t list) const noexcept {
  const ShownAnswer& answer = list == query::customList ? customAnswer_ : standardAnswer_;
  return answer.isAnswer() && answer.record ? &*answer.record : nullptr;
}

ShownAnswer& AnswerStatus::answerOf(AnswerLists lists) noexcept {
  return lists == AnswerLists::custom ? customAnswer_ : standardAnswer_;
}

void AnswerStatus::endQuery(AnswerLists lists) {
  if (answerOf(lists).state == AnswerState::querying) setAnswer(lists, {});
}

void AnswerStatus::setAnswer(AnswerLists lists, ShownAnswer answer) {
  answerOf(lists) = std::move(answer);
  if (lists == AnswerLists::standard) ++standardAnswers_;
  showEmptyTexts();
  followRestingText();
}

}  // namespace korvel::control
