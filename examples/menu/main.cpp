// A host with a menu of its own, which drives the control's members, and a bar that says why a query failed.
//   menu [SERVER]
#include <korvel/AuditViewer.h>
#include <korvel/FailureBar.h>
#include <korvel/ViewerApplication.h>

#include <QApplication>
#include <QInputDialog>
#include <QMainWindow>
#include <QMenuBar>
#include <QStatusBar>
#include <QVBoxLayout>

namespace {

using korvel::AuditViewer;

class Window : public QMainWindow {
 public:
  explicit Window(const QString& server) {
    auto* content = new QWidget;
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 0, 0);
    auto* failures = new korvel::FailureBar;
    failures->follow(*viewer_);
    column->addWidget(failures);
    column->addWidget(viewer_, 1);
    setCentralWidget(content);

    viewer_->InitProperties();
    // This window has a menu of its own for what the toolbar does.
    viewer_->setViewToolBar(false);
    viewer_->setDefaultSQLServer(server);

    QMenu* trail = menuBar()->addMenu("&Trail");
    trail->addAction("&Database...", viewer_, &AuditViewer::SelectDatabase);
    needDatabase_ << trail->addAction("&Query", this, &Window::query);
    needDatabase_ << trail->addAction("&SQL...", this, &Window::sql);
    needDatabase_ << trail->addAction("&Print...", viewer_, &AuditViewer::PrintReport);
    needDatabase_ << trail->addAction("&Export...", viewer_, &AuditViewer::ExportExcel);
    trail->addSeparator();
    trail->addAction("&Close", this, &QWidget::close);
    QMenu* view = menuBar()->addMenu("&View");
    QAction* sideTools = view->addAction("&Categories");
    sideTools->setCheckable(true);
    sideTools->setChecked(viewer_->ViewSideTools());
    connect(sideTools, &QAction::toggled, viewer_, &AuditViewer::setViewSideTools);
    view->addAction("&All Categories", viewer_, &AuditViewer::SelectALL);
    view->addAction("&No Categories", viewer_, &AuditViewer::UnselectALL);

    for (QAction* action : needDatabase_) action->setEnabled(false);
    connect(viewer_, &AuditViewer::DatabaseSelected, this, [this](const QString& database) {
      setWindowTitle(database);
      for (QAction* action : needDatabase_) action->setEnabled(true);
    });
    connect(viewer_, &AuditViewer::ExitApp, this, &QWidget::close);
    // A failure is shown by the bar; the status bar keeps the last one.
    connect(viewer_, &AuditViewer::LastFailureChanged, this, [this] {
      if (viewer_->LastFailureNumber() == 0) return;
      statusBar()->showMessage(viewer_->LastFailureTime().toString(Qt::ISODate) + ' ' + viewer_->LastFailureText());
    });
  }

 private:
  // TriggerQuery leaves the count as it was: that is the host's part.
  void query() {
    viewer_->TriggerQuery();
    viewer_->DisplayNoOfRecords();
  }

  void sql() {
    const QString text = QInputDialog::getMultiLineText(this, "SQL", "Query:", "select * from Korvel_Audit_Trails");
    if (!text.isEmpty()) viewer_->TriggerAdvancedQuery(text);
  }

  AuditViewer* viewer_ = new AuditViewer;
  QList<QAction*> needDatabase_;
};

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  korvel::applyPreferredPalette(application);
  Window window(QApplication::arguments().value(1));
  window.resize(1280, 800);
  window.show();
  return QApplication::exec();
}
