#include "korvel/AuditViewer.h"

#include <QCoreApplication>
#include <QEvent>
#include <QPointer>
#include <QResizeEvent>
#include <QShowEvent>
#include <chrono>

#include "base/error.h"
#include "control/audit_viewer_members.h"
#include "control/library_state.h"
#include "db/worker.h"
#include "ui/style/viewer_style.h"

namespace korvel {

namespace {

/// A stopped query may still run on its worker until its connection is closed two seconds later. The program waits for
/// it before it unloads what the query uses.
void awaitStoppedQueries() {
  constexpr std::chrono::milliseconds untilGivenUp{2500};
  db::waitForAbandonedWorkers(untilGivenUp);
}

/// What each application object of the process is told once: a container may make and end several.
void joinApplication() {
  static QPointer<QCoreApplication> joined;
  QCoreApplication* const application = QCoreApplication::instance();
  if (application == nullptr || joined == application) return;
  joined = application;
  qAddPostRoutine(awaitStoppedQueries);
  control::endStateWith(*application);
}

}  // namespace

AuditViewer::AuditViewer(QWidget* parent) : QWidget(parent) {
  joinApplication();
  ui::applyStyle(*this);
  control::provideHelpKey();
  members_ = std::make_unique<Members>(*this);
  members_->messages.trapped("Initialize", [this] { members_->Initialize(); });
}

// Children use the members: they are deleted here, because ~QWidget would delete them after the members.
AuditViewer::~AuditViewer() {
  const auto elements = findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
  for (QWidget* element : elements) {
    element->disconnect(this);
    delete element;
  }
}

int AuditViewer::DatabaseType() const {
  return members_->properties.DatabaseType;
}

void AuditViewer::setDatabaseType(int value) {
  members_->properties.DatabaseType = value;
  Q_EMIT PropertyChanged(QStringLiteral("DatabaseType"));
}

bool AuditViewer::ViewSideTools() const {
  return members_->properties.ViewSideTools;
}

void AuditViewer::setViewSideTools(bool value) {
  const QPointer<AuditViewer> alive(this);
  members_->properties.ViewSideTools = value;
  Q_EMIT PropertyChanged(QStringLiteral("ViewSideTools"));
  if (!alive) return;
  members_->sideTools.setApplied(value);
  ViewTools(value);
}

bool AuditViewer::ViewToolBar() const {
  return members_->properties.ViewToolBar;
}

void AuditViewer::setViewToolBar(bool value) {
  const QPointer<AuditViewer> alive(this);
  members_->properties.ViewToolBar = value;
  Q_EMIT PropertyChanged(QStringLiteral("ViewToolBar"));
  if (!alive) return;
  members_->surface.SmartToolbar->setVisible(value);
  // The elements below take the space of a hidden toolbar.
  members_->sideTools.arrange();
  updateGeometry();
}

QString AuditViewer::DefaultSQLServer() const {
  return members_->properties.DefaultSQLServer;
}

void AuditViewer::setDefaultSQLServer(const QString& value) {
  members_->properties.DefaultSQLServer = value;
  Q_EMIT PropertyChanged(QStringLiteral("DefaultSQLServer"));
}

void AuditViewer::InitProperties() {
  members_->properties = control::StoredProperties();
}

QString AuditViewer::ReadProperties(const QVariant& bag) {
  try {
    control::readProperties(control::toBag(bag), members_->properties);
    return {};
  } catch (const Error& error) {
    return QString::number(error.number()) + QLatin1Char(':') + QString::fromStdString(error.description());
  }
}

QVariant AuditViewer::WriteProperties() const {
  control::PropertyBag bag;
  control::writeProperties(members_->properties, bag);
  return bag.values();
}

int AuditViewer::LastFailureNumber() const {
  return members_->queries.lastFailure().number;
}
QString AuditViewer::LastFailureText() const {
  return members_->queries.lastFailure().text;
}
QDateTime AuditViewer::LastFailureTime() const {
  return members_->queries.lastFailure().time;
}
QString AuditViewer::SnapshotText() const {
  return control::SelectedSnapshot::text();
}

QSize AuditViewer::sizeHint() const {
  return members_->surface.preferredSize();
}
QSize AuditViewer::minimumSizeHint() const {
  return members_->surface.minimumSize(members_->sideTools.applied());
}

void AuditViewer::SelectALL() {
  members_->surface.tvTreeView->checkAll();
}
void AuditViewer::UnselectALL() {
  members_->surface.tvTreeView->uncheckAll();
}

void AuditViewer::ExportNotepad() {
  members_->outputs.ExportNotepad();
}
void AuditViewer::ExportExcel() {
  members_->outputs.ExportExcel();
}

QString AuditViewer::GetExportPath(const QString& dialogtext, int files) {
  QString path;
  members_->messages.trapped("GetExportPath", [&] { path = members_->outputs.GetExportPath(dialogtext, files); });
  return path;
}

void AuditViewer::ChangeFont() {
  members_->messages.trapped("ChangeFont", [this] { members_->listCommands.ChangeFont(); });
}

void AuditViewer::DisplayNoOfRecords() {
  members_->messages.trapped("DisplayNoOfRecords", [this] { members_->queries.DisplayNoOfRecords(); });
}

void AuditViewer::TriggerQuery() {
  members_->messages.trapped("TriggerQuery", [this] { members_->queries.TriggerQuery(); });
}

void AuditViewer::ExpandAll() {
  members_->surface.tvTreeView->expandNodes();
}
void AuditViewer::SelectDatabase() {
  members_->messages.trapped("SelectDatabase", [this] { members_->selection.SelectDatabase(); });
}
void AuditViewer::UnlockControls() {
  members_->messages.trapped("UnlockControls", [this] { members_->lock.UnlockControls(); });
}
void AuditViewer::LockControls() {
  members_->messages.trapped("LockControls", [this] { members_->lock.LockControls(); });
}
void AuditViewer::ViewTools(bool visable) {
  members_->sideTools.ViewTools(visable);
}
void AuditViewer::BuildMenu() {
  members_->commands.BuildMenu();
}
void AuditViewer::BuildToolbar() {
  members_->commands.BuildToolbar();
}
void AuditViewer::ShowKeyField(bool vis) {
  members_->listCommands.ShowKeyField(vis);
}

void AuditViewer::ListViewColSetup() {
  members_->messages.trapped("ListViewColSetup", [this] { members_->listCommands.ListViewColSetup(); });
}

void AuditViewer::BuildPopup(const QString& PopupItem) {
  members_->listCommands.BuildPopup(PopupItem);
}

void AuditViewer::TriggerAdvancedQuery(const QString& QueryString) {
  // A copy: the caller's text may be destroyed while the query loads.
  members_->messages.trapped("TriggerAdvancedQuery",
                             [this, text = QueryString] { members_->queries.TriggerAdvancedQuery(text); });
}

void AuditViewer::SwitchLanguage() {
  members_->messages.trapped("SwitchLanguage", [this] { members_->commands.SwitchLanguage(); });
}

void AuditViewer::BuildMisc() {
  members_->BuildMisc();
}

void AuditViewer::OpenDefaultSQLServer() {
  members_->messages.trapped("OpenDefaultSQLServer",
                             [this] { members_->selection.OpenDefaultSQLServer(members_->properties); });
}

void AuditViewer::HelpContents() {
  members_->messages.trapped("HelpContents", [this] { members_->help.HelpContents(); });
}
void AuditViewer::HelpOnFocus() {
  members_->messages.trapped("HelpOnFocus", [this] { members_->help.HelpOnFocus(); });
}
void AuditViewer::HelpSearch() {
  members_->messages.trapped("HelpSearch", [this] { members_->help.HelpSearch(); });
}
void AuditViewer::ShowAbout() {
  members_->messages.trapped("ShowAbout", [this] { members_->help.ShowAbout(); });
}
void AuditViewer::PrintReport() {
  if (members_->surface.btPrint->isEnabled())
    members_->messages.trapped("PrintReport", [this] { members_->outputs.btPrint_Click(); });
}
void AuditViewer::PreviewReport() {
  if (members_->surface.btPrint->isEnabled())
    members_->messages.trapped("PreviewReport", [this] { members_->outputs.PreviewReport(); });
}

void AuditViewer::TakeSnapshot() {
  members_->messages.trapped("TakeSnapshot", [this] { members_->snapshots.TakeSnapshot(); });
}
void AuditViewer::CompareWithSnapshot() {
  members_->messages.trapped("CompareWithSnapshot", [this] { members_->snapshots.CompareWithSnapshot(); });
}

void AuditViewer::OpenQueryFile(const QString& path) {
  members_->messages.trapped("OpenQueryFile", [&] { members_->customPage.openQueryFile(path.toStdString()); });
}

void AuditViewer::OpenDatabase(const QString& server, const QString& database) {
  members_->messages.trapped("OpenDatabase",
                             [&] { members_->selection.OpenDatabase(server.toStdString(), database.toStdString()); });
}

void AuditViewer::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  // The window system's own events (a window restored from the task bar) are spontaneous: the control was not hidden.
  if (!event->spontaneous()) members_->messages.trapped("Show", [this] { members_->Show(); });
}

void AuditViewer::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  members_->sideTools.arrange();
}

void AuditViewer::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::FontChange && members_) members_->sideTools.arrange();
}

}  // namespace korvel
