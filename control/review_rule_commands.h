#pragma once

#include <QPointer>
#include <memory>

#include "control/list_exceptions.h"

class QMenu;

namespace korvel {
class AuditViewer;
}

namespace korvel::control {

class AnswerStatus;
class FindAndFilter;
class MessageBoxes;
class Surface;

/// Opens the window for a review by exception of the list in front, by Ctrl+Shift+R and from the context menu. It
/// follows the page in front while it is open.
class ReviewRuleCommands {
 public:
  /// All must outlive the commands.
  ReviewRuleCommands(AuditViewer& viewer, const MessageBoxes& messages, Surface& surface, AnswerStatus& answers,
                     FindAndFilter& findAndFilter);
  ReviewRuleCommands(const ReviewRuleCommands&) = delete;
  ReviewRuleCommands& operator=(const ReviewRuleCommands&) = delete;

  /// Puts the command above the entries of the menu "Review" of a list: it needs no review file.
  void addEntry(QMenu& review);
  /// Texts in the current language.
  void showTexts();

 private:
  void open();
  void make();
  void followPage();

  AuditViewer& viewer_;
  const MessageBoxes& messages_;
  Surface& surface_;
  AnswerStatus& answers_;
  FindAndFilter& findAndFilter_;
  /// Made when it is asked for for the first time; keeps its size from then on.
  QPointer<ExceptionView> view_;
  std::unique_ptr<ListExceptions> exceptions_;  ///< of the view
};

}  // namespace korvel::control
