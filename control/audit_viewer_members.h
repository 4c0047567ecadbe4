#pragma once

#include <QDateTime>
#include <QPointer>
#include <exception>
#include <functional>
#include <string_view>
#include <vector>

#include "control/library_state.h"
#include "control/stored_properties.h"
#include "control/surface.h"
#include "korvel/AuditViewer.h"

namespace korvel {

/// What one instance of the control is made of: its four stored properties, its surface, and the handlers of its
/// buttons. Members may throw; the public face traps.
class Q_DECL_HIDDEN AuditViewer::Members {
 public:
  explicit Members(AuditViewer& viewer);
  ~Members();
  Members(const Members&) = delete;
  Members& operator=(const Members&) = delete;

  /// Runs `operation`. A failure shows the box of that operation's error trap.
  void trapped(std::string_view operationName, const std::function<void()>& operation);

  void Initialize();
  void Show();

  void ChangeFont();
  void DisplayNoOfRecords();
  void TriggerQuery();
  void setLocked(bool locked);
  void ViewTools(bool visable);
  void ShowKeyField(bool vis);
  void ListViewColSetup();
  void BuildMisc();
  void OpenDefaultSQLServer();
  void SelectDatabase();

  void btQuery_Click();
  void btClear_Click();
  void btSelectDB_Click();
  void btDBInfo_Click();
  void btDateRangeFilter_Click();
  void btClearDateRange_Click();
  void SSTab1_Click();

  control::StoredProperties properties;

  /// Why the last query failed; empty where it did not.
  struct LastFailure {
    int number = 0;
    QString text;
    QDateTime time;
  };
  LastFailure lastFailure;

  query::ResultLists lists;
  query::FilterTree filterTree;
  control::Surface surface;

 private:
  /// An element that needs a database, and what else it needs.
  struct LockedElement {
    QWidget* element;
    std::function<bool()> available;
  };

  /// The instances that live. Used from the user-interface thread only.
  static std::vector<Members*>& instances() {
    static std::vector<Members*> all;
    return all;
  }

  void connectHandlers();
  void fillLockTable();
  void enableElements();
  void nameForAssistance();
  void showDateRange();
  /// The range is everybody's: no instance may go on showing another one than its next query sends.
  static void showDateRangeEverywhere();
  void clearAllLists();
  void announceSelection();
  void setLastFailure(LastFailure failure);
  void showRowLimit();
  [[nodiscard]] control::ResultListView& currentList();
  void message(control::MessageIcon icon, const QString& title, const QString& text);

  AuditViewer& viewer_;
  std::vector<LockedElement> lockTable_;
  bool locked_ = false;
  bool rowLimitReached_ = false;
};

}  // namespace korvel
