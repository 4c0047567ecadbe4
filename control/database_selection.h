#pragma once

#include <string>

#include "control/selected_snapshot.h"

namespace korvel {
class AuditViewer;
}

namespace korvel::control {

class AnswerStatus;
class AuditQueries;
class ControlLock;
class MessageBoxes;
class Surface;
struct StoredProperties;

/// Selects the database that all controls of the program query, by the server browser or by the stored properties, and
/// shows which one is selected.
class DatabaseSelection {
 public:
  /// What a selection changes in the control that made it.
  struct Affected {
    ControlLock& lock;
    AuditQueries& queries;
    AnswerStatus& answers;
  };

  /// All must outlive the selection. `followEverywhere` tells every control that the selected database may be another
  /// one.
  DatabaseSelection(AuditViewer& viewer, const MessageBoxes& messages, const Surface& surface, Affected affected,
                    void (*followEverywhere)());
  DatabaseSelection(const DatabaseSelection&) = delete;
  DatabaseSelection& operator=(const DatabaseSelection&) = delete;

  void SelectDatabase();
  void OpenDefaultSQLServer(const StoredProperties& properties);
  /// Selects a database by its names, without trying the connection.
  void OpenDatabase(const std::string& server, const std::string& database);
  void btSelectDB_Click();
  void btDBInfo_Click();

 private:
  void announceSelection();

  AuditViewer& viewer_;
  const MessageBoxes& messages_;
  Affected affected_;
  void (*followEverywhere_)();
  SelectedSnapshot snapshot_;
};

}  // namespace korvel::control
