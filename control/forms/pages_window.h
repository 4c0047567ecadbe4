#pragma once

#include <QElapsedTimer>
#include <QPointer>
#include <chrono>

class QProgressDialog;
class QWidget;

namespace korvel::control {

/// The window that says how far a report is on its way over its pages, and lets a person cancel it. It shows itself
/// only where the way takes longer than `patience`.
class PagesWindow {
 public:
  explicit PagesWindow(QWidget& owner, std::chrono::milliseconds patience = std::chrono::milliseconds{700});
  ~PagesWindow();
  PagesWindow(const PagesWindow&) = delete;
  PagesWindow& operator=(const PagesWindow&) = delete;

  /// Tells the page; 0 of 0 while pages are counted. False once it has been cancelled, or removed with its owner. Once
  /// the window is shown events are handled here: those of the cancel button and nobody else's, since it is modal.
  bool show(int page, int pages);

 private:
  QPointer<QProgressDialog> window_;
  std::chrono::milliseconds patience_;
  QElapsedTimer begun_;
};

}  // namespace korvel::control
