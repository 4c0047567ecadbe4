#pragma once

#include <QElapsedTimer>
#include <QPointer>
#include <chrono>

class QProgressDialog;
class QWidget;

namespace korvel::control {

/// The window that says how far a report is on its way over its pages, and lets a person cancel it. It shows itself
/// only where the way takes longer than `delay`.
class PageProgressDialog {
 public:
  explicit PageProgressDialog(QWidget& owner, std::chrono::milliseconds delay = std::chrono::milliseconds{700});
  ~PageProgressDialog();
  PageProgressDialog(const PageProgressDialog&) = delete;
  PageProgressDialog& operator=(const PageProgressDialog&) = delete;

  /// Tells the page; 0 of 0 while pages are counted. False once it has been cancelled, or removed with its owner. Once
  /// the window is shown events are handled here: those of the cancel button and nobody else's, since it is modal.
  bool show(int page, int pages);

 private:
  QPointer<QProgressDialog> window_;
  std::chrono::milliseconds delay_;
  QElapsedTimer elapsed_;
};

}  // namespace korvel::control
