#pragma once

#include <QFrame>

#include "korvel/AuditViewer.h"
#include "korvel/ViewerApplication.h"

class QLabel;
class QPushButton;

namespace korvel::host {

/// Ways to a first audit trail, over a control that has no database: a demo trail, a server, a folder with database
/// files. Goes when a database is selected, by whichever way.
class FirstDoors final : public QFrame {
  Q_OBJECT

 public:
  /// `viewer` outlives the doors.
  explicit FirstDoors(AuditViewer& viewer, QWidget* parent = nullptr);

  /// Selects the database of a folder, the one that the control's property asks for first. Returns what is wrong with
  /// the folder, or an empty text.
  [[nodiscard]] QString openFolder(const QString& folder);

 private:
  void setLanguage(const ViewerLanguage& language);
  void openDemoTrail();
  void chooseFolder();
  void open(const QString& server);

  AuditViewer& viewer_;
  QLabel* heading_;
  QPushButton* demo_;
  QPushButton* server_;
  QPushButton* folder_;
};

}  // namespace korvel::host
