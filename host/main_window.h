#pragma once

#include <QMainWindow>

#include "host/failure_bar.h"
#include "host/form_file.h"
#include "host/options.h"
#include "host/window_placement.h"
#include "korvel/AuditViewer.h"

namespace korvel::host {

/// The stand-alone viewer's window: the control, its form file, a title, and a bar for what the control keeps silent
/// about.
class MainWindow final : public QMainWindow {
  Q_OBJECT

 public:
  /// Loads the form, sets the control's properties from it and then from the options. Shows nothing but what is wrong
  /// with the form file.
  MainWindow(const Options& options, const settings::LanguageOffset& language);

  [[nodiscard]] AuditViewer& viewer() { return *viewer_; }

  /// Shows the window where and as it stood when it was closed last, unless the options gave it a size.
  void present();

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void loadForm(const settings::LanguageOffset& language);
  void showLastFailure();
  void placeWindow(const std::optional<QSize>& size);
  [[nodiscard]] WindowPlacement placement() const;

  FormFile form_;
  bool keepsForm_;
  bool maximized_ = false;
  AuditViewer* viewer_;
  FailureBar* failureBar_;
};

}  // namespace korvel::host
