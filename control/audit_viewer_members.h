#pragma once

#include <vector>

#include "control/activity_commands.h"
#include "control/answer_status.h"
#include "control/audit_queries.h"
#include "control/commands/command_item.h"
#include "control/control_lock.h"
#include "control/custom_page.h"
#include "control/database_selection.h"
#include "control/find_and_filter.h"
#include "control/list_commands.h"
#include "control/list_outputs.h"
#include "control/message_boxes.h"
#include "control/property_bag.h"
#include "control/review_commands.h"
#include "control/review_rule_commands.h"
#include "control/side_tools.h"
#include "control/snapshot_commands.h"
#include "control/surface.h"
#include "control/viewer_commands.h"
#include "control/viewer_help.h"
#include "korvel/AuditViewer.h"

namespace korvel {

/// The parts of one instance of the control: its four stored properties, its surface, and one object for each of its
/// jobs. Wires them and holds the steps that concern several of them. Members may throw; AuditViewer traps.
class Q_DECL_HIDDEN AuditViewer::Members {
 public:
  explicit Members(AuditViewer& viewer);
  ~Members();
  Members(const Members&) = delete;
  Members& operator=(const Members&) = delete;

  void Initialize();
  void Show();
  void BuildMisc();

  // Each is used by those below it.
  control::StoredProperties properties;
  query::ResultLists lists;
  query::FilterTree filterTree;
  control::CommandItems menuItems;
  control::CommandItems toolbarItems;
  control::Surface surface;
  control::MessageBoxes messages;
  control::AnswerStatus answers;
  control::AuditQueries queries;
  control::CustomPage customPage;
  control::ControlLock lock;
  control::DatabaseSelection selection;
  control::SnapshotCommands snapshots;
  control::SideTools sideTools;
  control::FindAndFilter findAndFilter;
  control::ActivityCommands activity;
  control::ReviewCommands review;
  control::ReviewRuleCommands exceptions;
  control::ListCommands listCommands;
  control::ListOutputs outputs;
  control::ViewerHelp help;
  control::ViewerCommands commands;

 private:
  /// All instances. Used from the user-interface thread only.
  static std::vector<Members*>& instances() {
    static std::vector<Members*> all;
    return all;
  }
  /// All instances share the selected database.
  static void followSelectionEverywhere();
  /// All instances share the date range: none may go on showing another one than its next query sends.
  static void followDateRangeEverywhere();

  /// What a new control gets of what is remembered.
  void restoreRemembered();
  void SSTab1_Click();
};

}  // namespace korvel
