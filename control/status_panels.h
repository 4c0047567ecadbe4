#pragma once

#include <QStatusBar>

class QLabel;
class QProgressBar;

namespace korvel::control {

class ElidedLabel;

/// The status bar `StatusBar1` with its two named panels.
class StatusPanels final : public QStatusBar {
  Q_OBJECT

 public:
  explicit StatusPanels(QWidget* parent = nullptr);

  /// Panel "Status": what is going on.
  void setStatus(const QString& text);
  [[nodiscard]] QString status() const;
  /// Panel "Records": the row count.
  void setRecords(const QString& text);

  /// Paints the panels and the progress bar as they are now, without the event loop.
  void paintNow();

  /// How far an export is. Hidden while there is none.
  QProgressBar* ProgressBar1;

 private:
  ElidedLabel* status_;
  QLabel* records_;
};

}  // namespace korvel::control
