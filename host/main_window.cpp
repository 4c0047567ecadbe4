#include "host/main_window.h"

#include <QCloseEvent>
#include <QMessageBox>
#include <QVBoxLayout>

#include "host/host_texts.h"

namespace korvel::host {
namespace {

void warn(QWidget* owner, const QString& text) {
  QMessageBox box(QMessageBox::Warning, productName, text, QMessageBox::Ok, owner);
  // File names may hold anything; they are shown to the letter.
  box.setTextFormat(Qt::PlainText);
  box.exec();
}

}  // namespace

MainWindow::MainWindow(const Options& options, const settings::LanguageOffset& language)
    : language_(language),
      form_(options.formFile.value_or(FormFile::standardPath())),
      // A window that is only rendered is nobody's form.
      keepsForm_(!options.shotFile),
      viewer_(new AuditViewer),
      failureBar_(new FailureBar) {
  setWindowTitle(productName);
  auto* content = new QWidget;
  auto* column = new QVBoxLayout(content);
  column->setContentsMargins({});
  column->setSpacing(0);
  column->addWidget(failureBar_);
  column->addWidget(viewer_, 1);
  setCentralWidget(content);
  connect(viewer_, &AuditViewer::DatabaseSelected, this,
          [this](const QString& database) { setWindowTitle(database + QStringLiteral(" - ") + productName); });
  connect(viewer_, &AuditViewer::LastFailureChanged, this, [this] { showLastFailure(); });
  connect(viewer_, &AuditViewer::ExitApp, this, &QWidget::close);

  loadForm();
  if (options.server) viewer_->setDefaultSQLServer(*options.server);
  if (options.databaseType) viewer_->setDatabaseType(*options.databaseType);
  resize(options.size.value_or(QSize(1280, 800)));
}

void MainWindow::loadForm() {
  QString failure = form_.load(language_);
  if (failure.isEmpty() && !form_.isNew()) failure = viewer_->ReadProperties(form_.properties());
  if (failure.isEmpty() && !form_.isNew()) return;
  viewer_->InitProperties();
  if (failure.isEmpty()) return;
  form_.leaveAsItIs();
  warn(this, hostText("host.formUnreadable", language_, form_.path(), failure) + QLatin1Char('\n') +
                 hostText("host.formKept", language_));
}

void MainWindow::showLastFailure() {
  if (!viewer_->LastFailureTime().isValid()) {
    failureBar_->hide();
    return;
  }
  // The language may have been switched since the window was made.
  failureBar_->showFailure(viewer_->LastFailureNumber(), viewer_->LastFailureText(), viewer_->LastFailureTime(),
                           currentLanguage());
}

void MainWindow::closeEvent(QCloseEvent* event) {
  if (keepsForm_) {
    const QString failure = form_.save(viewer_->WriteProperties().toMap());
    if (!failure.isEmpty()) warn(this, hostText("host.formUnwritable", language_, form_.path(), failure));
  }
  QMainWindow::closeEvent(event);
}

}  // namespace korvel::host
