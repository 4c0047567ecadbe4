#pragma once

#include <QStatusBar>

class QLabel;

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
  [[nodiscard]] QString records() const;

 private:
  ElidedLabel* status_;
  QLabel* records_;
};

}  // namespace korvel::control
