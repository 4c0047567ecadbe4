#include "host/main_window.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QProxyStyle>
#include <QScreen>
#include <QShortcut>
#include <QStyle>
#include <QVBoxLayout>

#include "host/first_doors.h"

namespace korvel::host {
namespace {

/// What the property of the control is where no server is named.
const QString noServer = QStringLiteral("(None)");

/// A style without animations: the toolkit makes one even for a window that is not animated, as a child of what it
/// places, and puts it away in the next event loop.
class StillStyle final : public QProxyStyle {
 public:
  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* returned) const override {
    if (hint == SH_Widget_Animation_Duration) return 0;
    return QProxyStyle::styleHint(hint, option, widget, returned);
  }
};

}  // namespace

MainWindow::MainWindow(const Options& options, const ViewerLanguage& language)
    : form_(options.formFile.value_or(FormFile::standardPath())),
      // A window that is only rendered must not change the user's form file.
      keepsForm_(!options.shotFile),
      queryFile_(options.queryFile),
      viewer_(new AuditViewer) {
  setWindowTitle(productName);
  // A message box may run while the window is being shown, and the toolkit's animations do not survive that: they go
  // while the window still goes through its children.
  setAnimated(false);
  auto* content = new QWidget;
  auto* still = new StillStyle;
  still->setParent(content);
  content->setStyle(still);
  auto* column = new QVBoxLayout(content);
  column->setContentsMargins({});
  column->setSpacing(0);
  auto* failureBar = new FailureBar;
  auto* doors = new FirstDoors(*viewer_);
  column->addWidget(doors);
  column->addWidget(failureBar);
  column->addWidget(viewer_, 1);
  setCentralWidget(content);
  connect(viewer_, &AuditViewer::DatabaseSelected, this, [this](const QString& database) {
    database_ = database;
    showTitle();
  });
  connect(viewer_, &AuditViewer::SnapshotTextChanged, this, &MainWindow::showTitle);
  connect(viewer_, &AuditViewer::LanguageChanged, this, &MainWindow::showTitle);
  failureBar->follow(*viewer_);
  connect(viewer_, &AuditViewer::ExitApp, this, &QWidget::close);
  const auto onKey = [this](const QKeySequence& key, void (AuditViewer::*member)()) {
    connect(new QShortcut(key, this), &QShortcut::activated, viewer_, member);
  };
  onKey(Qt::Key_F1, &AuditViewer::HelpOnFocus);
  // Neither menu nor toolbar has a place for the text export and the preview.
  onKey(Qt::CTRL | Qt::Key_P, &AuditViewer::PrintReport);
  onKey(Qt::CTRL | Qt::SHIFT | Qt::Key_P, &AuditViewer::PreviewReport);
  onKey(Qt::CTRL | Qt::SHIFT | Qt::Key_T, &AuditViewer::ExportNotepad);
  onKey(Qt::CTRL | Qt::SHIFT | Qt::Key_E, &AuditViewer::ExportExcel);
  onKey(Qt::CTRL | Qt::SHIFT | Qt::Key_S, &AuditViewer::TakeSnapshot);
  onKey(Qt::CTRL | Qt::SHIFT | Qt::Key_D, &AuditViewer::CompareWithSnapshot);

  loadForm(language);
  if (options.server) viewer_->setDefaultSQLServer(*options.server);
  if (options.databaseType) viewer_->setDatabaseType(*options.databaseType);
  // A server that is named is selected when the control is shown.
  const QString server = viewer_->DefaultSQLServer();
  doors->setVisible(server.isEmpty() || server == noServer);
  placeWindow(options.size);
}

/// Whoever looks at a snapshot must not take it for the plant's database.
void MainWindow::showTitle() {
  if (database_.isEmpty()) return;
  const QString snapshot = viewer_->SnapshotText();
  const QString stated = snapshot.isEmpty() ? database_ : database_ + QStringLiteral(" (%1)").arg(snapshot);
  setWindowTitle(stated + QStringLiteral(" - ") + productName);
}

void MainWindow::placeWindow(const std::optional<QSize>& size) {
  const QSize usual(1280, 800);
  // A window that is only rendered is as large as it is told to be, whatever the screen.
  if (size || !keepsForm_) {
    resize(size.value_or(usual));
    return;
  }
  QList<QRect> screens;
  for (const QScreen* screen : QGuiApplication::screens()) screens.append(screen->availableGeometry());
  const int titleBar = style()->pixelMetric(QStyle::PM_TitleBarHeight);
  const auto stored = storedPlacement(form_);
  if (!stored) {
    // Where a new window stands is the window system's choice.
    resize(placedOn(screens.mid(0, 1), QRect(QPoint(0, titleBar), usual), titleBar).size());
    return;
  }
  setGeometry(placedOn(screens, stored->normal, titleBar));
  maximized_ = stored->maximized;
}

WindowPlacement MainWindow::placement() const {
  const bool plain = !(windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen | Qt::WindowMinimized));
  const QRect normal = plain || !normalGeometry().isValid() ? geometry() : normalGeometry();
  return {normal, isMaximized()};
}

void MainWindow::present() {
  if (maximized_)
    showMaximized();
  else
    show();
  openAskedFile();
}

bool MainWindow::openAskedFile() {
  if (queryFile_) viewer_->OpenQueryFile(*queryFile_);
  return queryFile_.has_value();
}

void MainWindow::loadForm(const ViewerLanguage& language) {
  QString failure = form_.load(language);
  if (failure.isEmpty() && !form_.isNew()) failure = viewer_->ReadProperties(form_.properties());
  if (failure.isEmpty() && !form_.isNew()) return;
  viewer_->InitProperties();
  if (failure.isEmpty()) return;
  form_.leaveAsItIs();
  showWarning(
      this, productName,
      language.text("host.formUnreadable", form_.path(), failure) + QLatin1Char('\n') + language.text("host.formKept"));
}

void MainWindow::closeEvent(QCloseEvent* event) {
  if (keepsForm_) {
    const QString failure = form_.save(viewer_->WriteProperties().toMap());
    // A window that was never shown stands nowhere.
    if (isVisible()) storePlacement(form_, placement());
    if (!failure.isEmpty())
      showWarning(this, productName, ViewerLanguage::current().text("host.formUnwritable", form_.path(), failure));
  }
  QMainWindow::closeEvent(event);
}

}  // namespace korvel::host
