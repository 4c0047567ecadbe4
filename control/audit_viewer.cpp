#include "korvel/AuditViewer.h"

#include <QCoreApplication>
#include <QEvent>
#include <QPointer>
#include <QResizeEvent>
#include <QShowEvent>
#include <chrono>

#include "base/error.h"
#include "control/audit_viewer_members.h"
#include "db/attended_work.h"
#include "ui/style/viewer_style.h"

namespace korvel {

namespace {

/// A query that was stopped may go on behind the window until its connection is given up, two seconds later: the
/// program does not take away under it what it uses.
void awaitStoppedQueries() {
  constexpr std::chrono::milliseconds untilGivenUp{2500};
  db::awaitWorkLeftBehind(untilGivenUp);
}

}  // namespace

AuditViewer::AuditViewer(QWidget* parent) : QWidget(parent) {
  [[maybe_unused]] static const bool awaited = (qAddPostRoutine(awaitStoppedQueries), true);
  ui::applyStyle(*this);
  members_ = std::make_unique<Members>(*this);
  members_->trapped("Initialize", [this] { members_->Initialize(); });
}

// Children are destroyed before the members that they look at: what is left to ~QWidget would find them gone.
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
  members_->appliedSideTools = value;
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
  // A toolbar that is hidden leaves its room to what lies below it.
  members_->arrange();
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
  return members_->lastFailure.number;
}
QString AuditViewer::LastFailureText() const {
  return members_->lastFailure.text;
}
QDateTime AuditViewer::LastFailureTime() const {
  return members_->lastFailure.time;
}

QSize AuditViewer::sizeHint() const {
  return members_->surface.preferredSize();
}
QSize AuditViewer::minimumSizeHint() const {
  return members_->surface.smallestSize(members_->appliedSideTools);
}

void AuditViewer::SelectALL() {
  members_->surface.tvTreeView->checkAll();
}
void AuditViewer::UnselectALL() {
  members_->surface.tvTreeView->uncheckAll();
}

void AuditViewer::ExportNotepad() {
  members_->ExportNotepad();
}
void AuditViewer::ExportExcel() {
  members_->ExportExcel();
}

QString AuditViewer::GetExportPath(const QString& dialogtext, int files) {
  QString path;
  members_->trapped("GetExportPath", [&] { path = members_->GetExportPath(dialogtext, files); });
  return path;
}

void AuditViewer::ChangeFont() {
  members_->trapped("ChangeFont", [this] { members_->ChangeFont(); });
}

void AuditViewer::DisplayNoOfRecords() {
  members_->trapped("DisplayNoOfRecords", [this] { members_->DisplayNoOfRecords(); });
}

void AuditViewer::TriggerQuery() {
  members_->trapped("TriggerQuery", [this] { members_->TriggerQuery(); });
}

void AuditViewer::ExpandAll() {
  members_->surface.tvTreeView->expandNodes();
}
void AuditViewer::SelectDatabase() {
  members_->trapped("SelectDatabase", [this] { members_->SelectDatabase(); });
}
void AuditViewer::UnlockControls() {
  members_->trapped("UnlockControls", [this] { members_->UnlockControls(); });
}
void AuditViewer::LockControls() {
  members_->trapped("LockControls", [this] { members_->LockControls(); });
}
void AuditViewer::ViewTools(bool visable) {
  members_->ViewTools(visable);
}
void AuditViewer::BuildMenu() {
  members_->BuildMenu();
}
void AuditViewer::BuildToolbar() {
  members_->BuildToolbar();
}
void AuditViewer::ShowKeyField(bool vis) {
  members_->ShowKeyField(vis);
}

void AuditViewer::ListViewColSetup() {
  members_->trapped("ListViewColSetup", [this] { members_->ListViewColSetup(); });
}

void AuditViewer::BuildPopup(const QString& PopupItem) {
  members_->BuildPopup(PopupItem);
}

void AuditViewer::TriggerAdvancedQuery(const QString& QueryString) {
  // A copy: what was handed over may die while the query loads.
  members_->trapped("TriggerAdvancedQuery", [this, text = QueryString] { members_->TriggerAdvancedQuery(text); });
}

void AuditViewer::SwitchLanguage() {
  members_->trapped("SwitchLanguage", [this] { members_->SwitchLanguage(); });
}

void AuditViewer::BuildMisc() {
  members_->BuildMisc();
}

void AuditViewer::OpenDefaultSQLServer() {
  members_->trapped("OpenDefaultSQLServer", [this] { members_->OpenDefaultSQLServer(); });
}

void AuditViewer::HelpContents() {
  members_->trapped("HelpContents", [this] { members_->HelpContents(); });
}
void AuditViewer::HelpSearch() {
  members_->trapped("HelpSearch", [this] { members_->HelpSearch(); });
}
void AuditViewer::ShowAbout() {
  members_->trapped("ShowAbout", [this] { members_->ShowAbout(); });
}
void AuditViewer::PrintReport() {
  if (members_->surface.btPrint->isEnabled()) members_->trapped("PrintReport", [this] { members_->btPrint_Click(); });
}
void AuditViewer::PreviewReport() {
  if (members_->surface.btPrint->isEnabled()) members_->trapped("PreviewReport", [this] { members_->PreviewReport(); });
}

void AuditViewer::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  // A spontaneous event is the window system's (a window that comes back from the task bar): the control was not
  // hidden.
  if (!event->spontaneous()) members_->trapped("Show", [this] { members_->Show(); });
}

void AuditViewer::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  members_->arrange();
}

void AuditViewer::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::FontChange && members_) members_->arrange();
}

}  // namespace korvel
