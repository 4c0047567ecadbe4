#pragma once

#include <QDialog>
#include <memory>
#include <optional>
#include <string>

#include "control/latest_work.h"
#include "control/long_work.h"
#include "evidence/snapshot_comparison.h"

class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QRadioButton;

namespace korvel::control {

/// Compares a snapshot that the user chooses with the selected database, or with the one that it was taken of. Shows
/// how far it is, and stops. The window behind it can be used meanwhile.
class ComparisonForm final : public QDialog {
  Q_OBJECT

 public:
  using Compared = std::shared_ptr<const evidence::ComparedSnapshot>;
  /// What is selected; empty where nothing is.
  struct Selected {
    std::string server;
    std::string database;
    std::string connectionString;
  };

  explicit ComparisonForm(QWidget* owner);

  /// Offers a comparison, in the current language; goes on showing the one that is being made.
  void offer(Selected selected, query::Connector connect);
  [[nodiscard]] bool isComparing() const noexcept { return work_.isRunning(); }

 Q_SIGNALS:
  void compared(const Compared& result);

 private:
  void buildContent();
  void buildFoot();
  void setTexts();
  void browse();
  /// Reads what the chosen file is of, on a worker.
  void lookAtFile();
  void compare();
  void showState();
  void showProgress();
  void finish(LongWork::Ending ending, const Compared& result);
  void say(const QString& text);

  Selected selected_;
  query::Connector connect_;
  std::optional<evidence::SnapshotFacts> facts_;  ///< of the chosen file
  LatestWork look_{nullptr};
  LongWork work_{nullptr};

  QLabel* lblFile_ = nullptr;
  QLineEdit* txtFile_ = nullptr;
  QPushButton* btBrowse_ = nullptr;
  QLabel* lblFacts_ = nullptr;
  QRadioButton* optSelected_ = nullptr;
  QRadioButton* optOwn_ = nullptr;
  QProgressBar* progress_ = nullptr;
  QLabel* lblState_ = nullptr;
  QPushButton* btClose_ = nullptr;
  QPushButton* btStop_ = nullptr;
  QPushButton* btCompare_ = nullptr;
};

}  // namespace korvel::control
