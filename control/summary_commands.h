#pragma once

#include <QPointer>

#include "control/forms/summary_view.h"

namespace korvel {
class AuditViewer;
}

namespace korvel::control {

class AnswerStatus;
class CommandPopup;
class FindAndFilter;
class MessageBoxes;
class Surface;

/// Shows the summary of a list, by Ctrl+G and from the context menu, writes it as a file, and filters
/// the list by one of its groups.
class SummaryCommands {
 public:
  /// All must outlive the commands.
  SummaryCommands(AuditViewer& viewer, const MessageBoxes& messages, Surface& surface, AnswerStatus& answers,
                  FindAndFilter& findAndFilter);
  SummaryCommands(const SummaryCommands&) = delete;
  SummaryCommands& operator=(const SummaryCommands&) = delete;

  /// Adds the command to the context menu of the list.
  void addEntry(CommandPopup& menu, ResultListView& list);

 private:
  void show(ResultListView& list);
  void exportGroups();

  AuditViewer& viewer_;
  const MessageBoxes& messages_;
  AnswerStatus& answers_;
  FindAndFilter& findAndFilter_;
  /// Made when a summary is looked at for the first time; keeps its size from then on.
  QPointer<SummaryView> summaryView_;
};

}  // namespace korvel::control
