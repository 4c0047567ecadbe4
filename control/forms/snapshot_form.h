#pragma once

#include <QDialog>
#include <memory>

#include "control/latest_work.h"
#include "control/long_work.h"
#include "evidence/snapshot.h"
#include "query/date_range.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QRadioButton;

namespace korvel::control {

/// Takes a snapshot of the selected audit trail into a folder: all of it or the current date range, as a bag or not.
/// Shows how far it is, stops, continues what an earlier run left, and offers to open what it took. The window behind
/// it can be used meanwhile, and a snapshot in the making goes on when the dialog is closed.
class SnapshotForm final : public QDialog {
  Q_OBJECT

 public:
  explicit SnapshotForm(QWidget* owner);

  /// Offers a snapshot of a trail, in the current language; goes on showing the one that is being taken. `order` lacks
  /// the folder and the range.
  void offer(evidence::SnapshotOrder order, const query::DateRange& range);
  [[nodiscard]] bool isTaking() const noexcept { return work_.isRunning(); }

 Q_SIGNALS:
  /// The user wants to look at what was taken.
  void openRequested(const QString& folder, const QString& database);

 private:
  void buildContent();
  void buildFoot();
  void setTexts();
  void browse();
  void take();
  void showState();
  void showProgress();
  void finish(LongWork::Ending ending);
  void sayUnfinished();
  void say(const QString& text);
  [[nodiscard]] evidence::SnapshotOrder wholeOrder() const;

  evidence::SnapshotOrder order_;
  query::DateRange range_;
  std::shared_ptr<evidence::TakenSnapshot> taken_;
  LatestWork look_{nullptr};
  LongWork work_{nullptr};

  QLabel* lblIntro_ = nullptr;
  QLabel* lblTrail_ = nullptr;
  QRadioButton* optWhole_ = nullptr;
  QRadioButton* optRange_ = nullptr;
  QLabel* lblFolder_ = nullptr;
  QLineEdit* txtFolder_ = nullptr;
  QPushButton* btBrowse_ = nullptr;
  QCheckBox* chkBag_ = nullptr;
  QProgressBar* progress_ = nullptr;
  QLabel* lblState_ = nullptr;
  QPushButton* btOpen_ = nullptr;
  QPushButton* btClose_ = nullptr;
  QPushButton* btStop_ = nullptr;
  QPushButton* btTake_ = nullptr;
};

}  // namespace korvel::control
