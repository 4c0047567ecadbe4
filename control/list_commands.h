#pragma once

#include <QPointer>
#include <QString>
#include <optional>

#include "control/commands/command_item.h"
#include "control/forms/record_view.h"
#include "control/item_history_commands.h"
#include "control/result_list_view.h"
#include "control/summary_commands.h"

namespace korvel {
class AuditViewer;
}

namespace korvel::control {

class ActivityCommands;
class AnswerStatus;
class ReviewRuleCommands;
class FindAndFilter;
class MessageBoxes;
class ReviewCommands;
class Surface;

/// Commands on the lists themselves: sorting, columns, the font, the context menus of lists and headers, and the
/// windows of one record, of the history of its item and of the summary.
class ListCommands {
 public:
  /// All must outlive the commands. `menu` has the check mark of the key column.
  ListCommands(AuditViewer& viewer, const MessageBoxes& messages, Surface& surface, AnswerStatus& answers,
               FindAndFilter& findAndFilter, ActivityCommands& activity, ReviewCommands& review,
               ReviewRuleCommands& exceptions, CommandItems& menu);
  ListCommands(const ListCommands&) = delete;
  ListCommands& operator=(const ListCommands&) = delete;

  void ListViewColSetup();
  void ShowKeyField(bool vis);
  /// Sizes the columns of the current list, where it has rows.
  void adjustColumns();
  void ChangeFont();
  void BuildPopup(const QString& PopupItem);

 private:
  void connectList(ResultListView& list);
  void connectContextMenus(ResultListView& list);
  void lvListView_DblClick(ResultListView& list, int row);
  /// Sizes one column, or all of them, to their contents; the key columns then are as the menu has them.
  void AutoSizeColumns(ResultListView& list, std::optional<int> column = {});
  /// `cell` is what the menu was asked for, if any.
  void showFontMenu(ResultListView& list, const QModelIndex& cell, const QPoint& place);
  /// What double click and the key for copying do.
  void addRecordEntries(ResultListView& list, const QModelIndex& cell);
  /// Adds what is not among the given entries.
  void addOwnEntries(ResultListView& list, const QModelIndex& cell);
  void showColumnMenu(ResultListView& list, const QPoint& place);
  void SmartPopup_Click(const CommandItem& item);
  void mnupopupitem_Click(int index);
  void showColumns(ResultListView& list, const QString& caption, bool shown);
  /// Gives the list the columns that it had at first.
  void resetList(ResultListView& list);

  AuditViewer& viewer_;
  const MessageBoxes& messages_;
  Surface& surface_;
  AnswerStatus& answers_;
  FindAndFilter& findAndFilter_;
  ActivityCommands& activity_;
  ReviewCommands& review_;
  ReviewRuleCommands& exceptions_;
  CommandItems& menu_;
  CommandItems popupItems_;
  /// The list whose columns the context menu is about.
  QPointer<ResultListView> popupList_;
  /// Made when a record is looked at for the first time; keeps its size from then on.
  QPointer<RecordView> recordView_;
  ItemHistoryCommands itemHistory_;
  SummaryCommands summary_;
};

}  // namespace korvel::control
