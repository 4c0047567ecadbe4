#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "evidence/manifest.h"
#include "query/completion_report.h"
#include "query/filter_tree.h"

namespace korvel::control {

class ResultListModel;
class Surface;

/// How the query ended whose answer a list shows. An empty list says it.
enum class AnswerState { notQueried, querying, filled, nothingFound, stopped, failed };

/// What is known of the answer that the lists of a page show.
struct ShownAnswer {
  AnswerState state = AnswerState::notQueried;
  /// Why it failed, in the language of that time.
  QString failure = {};
  /// What was asked, and where: the list is out of date once something else would be. The text is that of the standard
  /// query's call, and empty for custom queries.
  std::string question = {};
  std::string connectionString = {};
  /// Alarm rows of other dates than the range's are among the rows, or may be.
  bool alarmsOfAllDates = false;
  /// A result set came with as many rows as the procedure returns at most.
  bool rowLimitReached = false;
  /// How the loading of all records came out, and how many there are; nothing for any other answer.
  struct Completion {
    query::CompletionReport report;
    std::size_t records = 0;
  };
  std::optional<Completion> completion = {};
  /// What was asked, of whom and when, and how many rows came: for the heads of pages and manifests of outputs. Only an
  /// answer has it.
  std::optional<evidence::Manifest> record = {};

  /// Whether the lists show what was asked, also where that is nothing.
  [[nodiscard]] bool isAnswer() const noexcept {
    return state == AnswerState::filled || state == AnswerState::nothingFound;
  }
};

/// The lists that one query fills.
enum class AnswerLists { standard, custom };

/// What the control says of the answers that its lists show: the resting text of the status panel, the texts of empty
/// lists and the remark on a report. Keeps what is known of both answers, the notice that a list or an export gave
/// last, and how often a database was selected.
class AnswerStatus {
 public:
  /// Both must outlive the status.
  AnswerStatus(Surface& surface, const query::FilterTree& filterTree) : surface_(surface), filterTree_(filterTree) {}
  AnswerStatus(const AnswerStatus&) = delete;
  AnswerStatus& operator=(const AnswerStatus&) = delete;

  /// From now on these lists show `answer`.
  void setAnswer(AnswerLists lists, ShownAnswer answer);
  /// The query of these lists is over, also where a failure of the control itself kept its answer from being set.
  void endQuery(AnswerLists lists);

  /// An answer that was asked for before a database was selected is not shown afterwards.
  void countSelection() noexcept { ++selections_; }
  [[nodiscard]] int selections() const noexcept { return selections_; }

  /// Says `notice` until it is cleared: by the next query, a change of the page or the end of the rows it is about.
  /// It is a function, because the language of its text may change. Where it is about the rows that a list shows, it
  /// ends when the list shows others; see endNoticeOn().
  void showNotice(std::function<QString()> notice, const ResultListModel* rows = nullptr);
  void clearNotice() { notice_ = nullptr; }
  /// The list shows other rows from now on: what was said of them is not true any more.
  void endNoticeOn(const ResultListModel& rows);

  /// What is said of a review of the list in front; it comes first.
  void setReviewText(std::function<QString()> text) { reviewText_ = std::move(text); }

  /// What the status panel says while nothing goes on and no command is highlighted.
  void showRestingText();
  /// Brings the resting text up to date where the panel shows it, and offers to load all where an answer was cut.
  void followRestingText();
  /// What empty lists say in the place of records; captions of what the status bar offers.
  void showEmptyTexts();

  /// What the standard query would ask at present.
  [[nodiscard]] std::string standardQuestion() const;
  /// Says of the list in front that it shows alarm rows of all dates; empty where it does not.
  [[nodiscard]] QString alarmRemark() const;
  /// What is missing in the list in front, of which all was to be loaded; and what changed meanwhile.
  [[nodiscard]] QStringList incompleteTexts() const { return completionTexts().mid(1); }
  /// How often the standard lists got another answer, or none: what was asked for before is not shown afterwards.
  [[nodiscard]] int standardAnswers() const noexcept { return standardAnswers_; }
  /// What is known of the answer that the standard lists show.
  [[nodiscard]] const ShownAnswer& standardAnswer() const noexcept { return standardAnswer_; }
  /// Whether a list, counted from 0, shows alarm rows of all dates, or may.
  [[nodiscard]] bool showsAlarmsOfAllDates(std::size_t list) const noexcept;
  /// The record of the answer that a list shows, counted from 0; null where it shows none.
  [[nodiscard]] const evidence::Manifest* record(std::size_t list) const noexcept;

 private:
  [[nodiscard]] ShownAnswer& answerOf(AnswerLists lists) noexcept;
  /// Whether a database has been selected that this instance can query.
  [[nodiscard]] bool hasDatabase() const;
  /// Whether the current page shows the answer to another question than the present one.
  [[nodiscard]] bool isOutOfDate() const;
  /// Whether more records may be loaded into the list in front.
  [[nodiscard]] bool isAllOffered() const;
  /// Whether the list in front may lack records, because the procedure returns no more.
  [[nodiscard]] bool isCut() const;
  [[nodiscard]] QString restingText() const;
  /// What is said of an answer of which all was loaded: whether it is complete, of how many records, and then what is
  /// missing. Empty for any other answer, and on the custom page.
  [[nodiscard]] QStringList completionTexts() const;
  [[nodiscard]] QString emptyText(const ShownAnswer& answer, bool custom) const;

  Surface& surface_;
  const query::FilterTree& filterTree_;
  ShownAnswer standardAnswer_;
  ShownAnswer customAnswer_;
  std::function<QString()> reviewText_;
  std::function<QString()> notice_;
  const ResultListModel* noticedRows_ = nullptr;  ///< whose shown rows the notice is about; null for any other notice
  QString shownRestingText_;
  int selections_ = 0;
  int standardAnswers_ = 0;
};

}  // namespace korvel::control
