#pragma once

#include <QFrame>

#include "korvel/AuditViewer.h"
#include "korvel/ViewerApplication.h"

class QBoxLayout;
class QLabel;
class QPushButton;

namespace korvel::host {

/// Ways to a first audit trail, over a control that has no database: a demo trail, a server, a folder with database
/// files; below them the databases that were used last. Goes when a database is selected, by whichever way.
class FirstDoors final : public QFrame {
  Q_OBJECT

 public:
  /// `viewer` outlives the doors.
  explicit FirstDoors(AuditViewer& viewer, QWidget* parent = nullptr);

  /// Selects the database of a folder, the one that the control's property asks for first. Returns what is wrong with
  /// the folder, or an empty text.
  [[nodiscard]] QString openFolder(const QString& folder);

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void fitHeading();
  void setLanguage(const ViewerLanguage& language);
  void openDemoTrail();
  void chooseFolder();
  void open(const QString& server);
  /// Buttons of the databases that were used last, in a line of their own.
  void addRecent(QBoxLayout& column);

  AuditViewer& viewer_;
  QLabel* heading_;
  QLabel* recent_ = nullptr;  ///< only where there are such databases
  QPushButton* demo_;
  QPushButton* server_;
  QPushButton* folder_;
};

}  // namespace korvel::host
