#pragma once

#include <QMainWindow>

#include "host/form_file.h"
#include "host/options.h"
#include "host/window_placement.h"
#include "korvel/AuditViewer.h"
#include "korvel/FailureBar.h"

namespace korvel::host {

/// The product's name, the same in every language.
inline const QString productName = QStringLiteral("Korvel Audit Viewer");

/// The stand-alone viewer's window: the control, its form file, a title, and a bar for what the control keeps silent
/// about.
class MainWindow final : public QMainWindow {
  Q_OBJECT

 public:
  /// Loads the form, sets the control's properties from it and then from the options. Shows nothing but what is wrong
  /// with the form file.
  MainWindow(const Options& options, const ViewerLanguage& language);

  [[nodiscard]] AuditViewer& viewer() { return *viewer_; }

  /// Opens the query file that the options name, if any, and returns whether they name one. To be called when the
  /// window is shown: the control says what is wrong with the file.
  bool openAskedFile();

  /// Shows the window where and as it stood when it was closed last, unless the options gave it a size; then opens the
  /// query file that they name.
  void present();

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void showTitle();
  void loadForm(const ViewerLanguage& language);
  void placeWindow(const std::optional<QSize>& size);
  [[nodiscard]] WindowPlacement placement() const;

  FormFile form_;
  bool keepsForm_;
  std::optional<QString> queryFile_;
  bool maximized_ = false;
  AuditViewer* viewer_;
  QString database_;  ///< that is selected, as the control names it
};

}  // namespace korvel::host
