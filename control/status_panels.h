#pragma once

#include <QStatusBar>

class QLabel;
class QProgressBar;
class QPushButton;

namespace korvel::control {

class ElidedLabel;

/// The status bar `StatusBar1` with its two named panels.
class StatusPanels final : public QStatusBar {
  Q_OBJECT

 public:
  explicit StatusPanels(QWidget* parent = nullptr);

  /// Panel "Status": the current activity.
  void setStatus(const QString& text);
  [[nodiscard]] QString status() const;
  /// Panel "Records": the row count.
  void setRecords(const QString& text);

  /// Offers to load what the procedure's limit has cut, or takes that back.
  void offerLoadAll(bool offered);
  /// Gives the offer its texts in the current language.
  void nameLoadAll();

  /// Paints the panels and the progress bar as they are now, without the event loop.
  void paintNow();

  /// The progress of an export. Hidden while there is none.
  QProgressBar* ProgressBar1;
  /// Beside the status text. Hidden while there is nothing to load.
  QPushButton* LoadAll;

 private:
  ElidedLabel* status_;
  QLabel* records_;
};

}  // namespace korvel::control
