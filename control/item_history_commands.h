#pragma once

#include <QPointer>

#include "control/forms/history_view.h"

namespace korvel {
class AuditViewer;
}

namespace korvel::control {

class CommandPopup;
class MessageBoxes;
class Surface;

/// Shows the history of the item that the current record of a list is about, by Ctrl+H and from the context menu.
class ItemHistoryCommands {
 public:
  /// All must outlive the commands.
  ItemHistoryCommands(AuditViewer& viewer, const MessageBoxes& messages, Surface& surface);
  ItemHistoryCommands(const ItemHistoryCommands&) = delete;
  ItemHistoryCommands& operator=(const ItemHistoryCommands&) = delete;

  /// Adds the command to the context menu that was asked for on a record of the list.
  void addEntry(CommandPopup& menu, ResultListView& list, const QModelIndex& cell);

 private:
  void show(ResultListView& list, int row);

  AuditViewer& viewer_;
  const MessageBoxes& messages_;
  /// Made when a history is looked at for the first time; keeps its size from then on.
  QPointer<HistoryView> historyView_;
};

}  // namespace korvel::control
