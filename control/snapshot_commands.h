#pragma once

#include <QPointer>

#include "control/forms/comparison_form.h"
#include "control/forms/comparison_view.h"
#include "control/forms/snapshot_form.h"

namespace korvel {
class AuditViewer;
}

namespace korvel::control {

class AnswerStatus;
class CommandPopup;
class DatabaseSelection;
class MessageBoxes;

/// Takes snapshots of the selected audit trail, compares it with one, and writes what was found into files.
class SnapshotCommands {
 public:
  /// All must outlive the commands.
  SnapshotCommands(AuditViewer& viewer, const MessageBoxes& messages, AnswerStatus& answers,
                   DatabaseSelection& selection);
  SnapshotCommands(const SnapshotCommands&) = delete;
  SnapshotCommands& operator=(const SnapshotCommands&) = delete;

  void TakeSnapshot();
  void CompareWithSnapshot();

 private:
  void show(const ComparisonForm::Compared& compared);
  void saveReport();

  AuditViewer& viewer_;
  const MessageBoxes& messages_;
  AnswerStatus& answers_;
  DatabaseSelection& selection_;
  // Made when they are used for the first time.
  QPointer<SnapshotForm> snapshotForm_;
  QPointer<ComparisonForm> comparisonForm_;
  QPointer<ComparisonView> comparisonView_;
};

/// Adds both commands to the context menu of a list.
void addSnapshotEntries(CommandPopup& menu, AuditViewer& viewer);

}  // namespace korvel::control
