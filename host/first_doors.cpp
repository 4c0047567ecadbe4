#include "host/first_doors.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <array>

namespace korvel::host {

namespace {

const QString embeddedServer = QStringLiteral("(embedded)");

/// The file of an audit database, by DatabaseTypeEnum.
constexpr std::array<const char*, 2> databaseFiles = {"Korvel_Audit.db", "Korvel_Audit_MU.db"};

}  // namespace

FirstDoors::FirstDoors(AuditViewer& viewer, QWidget* parent)
    : QFrame(parent),
      viewer_(viewer),
      heading_(new QLabel),
      demo_(new QPushButton),
      server_(new QPushButton),
      folder_(new QPushButton) {
  applyViewerStyle(*this);
  setObjectName(QStringLiteral("firstDoors"));
  demo_->setObjectName(QStringLiteral("doorDemo"));
  server_->setObjectName(QStringLiteral("doorServer"));
  folder_->setObjectName(QStringLiteral("doorFolder"));
  heading_->setTextFormat(Qt::PlainText);
  auto* const row = new QHBoxLayout(this);
  constexpr int inside = 8;
  row->setContentsMargins(2 * inside, inside, 2 * inside, inside);
  row->setSpacing(inside);
  row->addWidget(heading_);
  for (QPushButton* const door : {demo_, server_, folder_}) {
    door->setAutoDefault(false);
    row->addWidget(door);
  }
  row->addStretch(1);
  connect(demo_, &QPushButton::clicked, this, &FirstDoors::openDemoTrail);
  connect(server_, &QPushButton::clicked, &viewer_, &AuditViewer::SelectDatabase);
  connect(folder_, &QPushButton::clicked, this, &FirstDoors::chooseFolder);
  connect(&viewer_, &AuditViewer::DatabaseSelected, this, &QWidget::hide);
  connect(&viewer_, &AuditViewer::LanguageChanged, this, [this] { setLanguage(ViewerLanguage::current()); });
  setLanguage(ViewerLanguage::current());
}

void FirstDoors::setLanguage(const ViewerLanguage& language) {
  heading_->setText(language.text("host.doors.heading"));
  demo_->setText(language.text("host.doors.demo"));
  demo_->setToolTip(language.text("host.doors.demoHint"));
  server_->setText(language.text("host.doors.server"));
  server_->setToolTip(language.text("host.doors.serverHint"));
  folder_->setText(language.text("host.doors.folder"));
  folder_->setToolTip(language.text("host.doors.folderHint"));
}

void FirstDoors::openDemoTrail() {
  const QString failure = provideDemoTrail();
  if (failure.isEmpty())
    open(embeddedServer);
  else
    showWarning(this, window()->windowTitle(), failure);
}

void FirstDoors::chooseFolder() {
  const QString folder = QFileDialog::getExistingDirectory(this, folder_->toolTip());
  if (folder.isEmpty()) return;
  if (const QString failure = openFolder(folder); !failure.isEmpty())
    showWarning(this, window()->windowTitle(), failure);
}

QString FirstDoors::openFolder(const QString& folder) {
  const QString path = QDir::toNativeSeparators(QFileInfo(folder).absoluteFilePath());
  const int wanted = viewer_.DatabaseType() == AuditViewer::Korvel_Audit ? 0 : 1;
  for (const int type : {wanted, 1 - wanted}) {
    if (!QFileInfo(QDir(folder).filePath(QLatin1String(databaseFiles.at(static_cast<std::size_t>(type))))).isFile())
      continue;
    viewer_.setDatabaseType(type);
    open(path);
    return {};
  }
  return ViewerLanguage::current().text("host.doors.noTrail", path);
}

void FirstDoors::open(const QString& server) {
  viewer_.setDefaultSQLServer(server);
  viewer_.OpenDefaultSQLServer();
}

}  // namespace korvel::host
