#pragma once

#include <QElapsedTimer>
#include <QPointer>
#include <chrono>

class QProgressDialog;
class QWidget;

namespace korvel::control {

/// The progress of a report over its pages, with a cancel button. Shown only if the work takes longer than `delay`.
class PageProgressDialog {
 public:
  explicit PageProgressDialog(QWidget& owner, std::chrono::milliseconds delay = std::chrono::milliseconds{700});
  ~PageProgressDialog();
  PageProgressDialog(const PageProgressDialog&) = delete;
  PageProgressDialog& operator=(const PageProgressDialog&) = delete;

  /// Sets the page; 0 of 0 while pages are counted. False once it has been cancelled, or deleted with its owner. While
  /// the dialog is visible this processes events; since it is modal, only its own input arrives.
  bool show(int page, int pages);

 private:
  QPointer<QProgressDialog> window_;
  std::chrono::milliseconds delay_;
  QElapsedTimer elapsed_;
};

}  // namespace korvel::control
