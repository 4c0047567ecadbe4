#pragma once

#include <QObject>
#include <QPointer>
#include <array>
#include <cstddef>
#include <optional>

#include "control/forms/exception_view.h"
#include "control/latest_work.h"
#include "control/result_list_view.h"
#include "evidence/exceptions.h"

namespace korvel::control {

class AnswerStatus;
class FindAndFilter;
class MessageBoxes;

/// What a window for a review by exception shows of one list: judges all its rows on a worker, counts what the list's
/// other filters let pass, and filters by the records of a rule. Judges anew when the list changes, while it is
/// followed; a count that is not of the rows shown is never shown.
class ListExceptions final : public QObject {
 public:
  /// All must outlive it.
  ListExceptions(ExceptionView& view, const MessageBoxes& messages, const AnswerStatus& answers,
                 FindAndFilter& findAndFilter);

  /// Follows a list, counted from 0, in the place of another.
  void follow(ResultListView& list, std::size_t page);
  /// Follows none.
  void leave();
  /// Texts in the current language.
  void showTexts();

 private:
  struct Count;

  /// The list has other rows, other filters or none.
  void followRows();
  /// Rows and filters of one operation are counted once.
  void countLater();
  void count();
  void finish(const Count& count);
  /// Nothing is known: says why.
  void showMessage(const char* key, const QString& detail = {});
  void show();
  void toggle(std::size_t chosen);
  [[nodiscard]] bool isShown(std::size_t rule) const;
  /// Whether all entry numbers of the trail are in the list: nothing was left out by the question or the limit.
  [[nodiscard]] bool hasAllNumbers() const;

  ExceptionView& view_;
  const MessageBoxes& messages_;
  const AnswerStatus& answers_;
  FindAndFilter& findAndFilter_;
  QPointer<ResultListView> list_;
  std::size_t page_ = 0;
  QMetaObject::Connection listChange_;
  bool isWaiting_ = false;  ///< a count is to begin
  bool isFiltering_ = false;
  /// What was found in the rows as they are; nothing while that is not known.
  std::optional<evidence::FoundExceptions> found_;
  std::array<std::size_t, evidence::exceptionRuleCount> counts_{};
  bool hasOtherFilters_ = false;
  const char* message_ = nullptr;  ///< why nothing is known
  QString detail_;
  LatestWork work_;
};

}  // namespace korvel::control
