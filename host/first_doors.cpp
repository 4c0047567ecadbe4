#include "host/first_doors.h"

#include <QDir>
#include <QEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <array>

namespace korvel::host {

namespace {

const QString embeddedServer = QStringLiteral("(embedded)");

constexpr int inside = 8;
constexpr qsizetype mostRecent = 3;
/// Of the name on a button, in characters; its tool tip has all of it.
constexpr qsizetype longestName = 40;
/// Of a button whose name is shortened further, in pixels.
constexpr int leastDoor = 120;

/// As the control names a selected database.
QString nameOf(const RecentDatabase& database) {
  return database.server + QStringLiteral(" - [") + database.database + QLatin1Char(']');
}

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
  // Large text must not make the window wider than its screen: the heading takes another line, names are shortened.
  heading_->setWordWrap(true);
  auto* const column = new QVBoxLayout(this);
  column->setContentsMargins(2 * inside, inside, 2 * inside, inside);
  column->setSpacing(inside);
  auto* const row = new QHBoxLayout;
  row->setSpacing(inside);
  column->addLayout(row);
  row->addWidget(heading_, 1);
  for (QPushButton* const door : {demo_, server_, folder_}) {
    door->setAutoDefault(false);
    row->addWidget(door);
  }
  row->addStretch(1);
  addRecent(*column);
  connect(demo_, &QPushButton::clicked, this, &FirstDoors::openDemoTrail);
  connect(server_, &QPushButton::clicked, &viewer_, &AuditViewer::SelectDatabase);
  connect(folder_, &QPushButton::clicked, this, &FirstDoors::chooseFolder);
  connect(&viewer_, &AuditViewer::DatabaseSelected, this, &QWidget::hide);
  connect(&viewer_, &AuditViewer::LanguageChanged, this, [this] { setLanguage(ViewerLanguage::current()); });
  setLanguage(ViewerLanguage::current());
}

void FirstDoors::addRecent(QBoxLayout& column) {
  const QList<RecentDatabase> databases = recentDatabases().mid(0, mostRecent);
  if (databases.isEmpty()) return;
  auto* const row = new QHBoxLayout;
  row->setSpacing(inside);
  recent_ = new QLabel;
  recent_->setTextFormat(Qt::PlainText);
  row->addWidget(recent_);
  for (const RecentDatabase& each : databases) {
    const QString name = nameOf(each);
    // Servers' names begin alike, and folders as well; databases differ at the end.
    const qsizetype half = longestName / 2;
    QString shown = name.size() > longestName ? name.left(half) + QStringLiteral("…") + name.right(half) : name;
    auto* const door = new QPushButton(shown.replace(u'&', QStringLiteral("&&")));
    door->setObjectName(QStringLiteral("doorRecent"));
    door->setAutoDefault(false);
    door->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    door->setMinimumWidth(leastDoor);
    door->setToolTip(name.toHtmlEscaped());
    door->setAccessibleName(name);
    connect(door, &QPushButton::clicked, this, [this, each] { viewer_.OpenDatabase(each.server, each.database); });
    row->addWidget(door);
  }
  row->addStretch(1);
  column.addLayout(row);
}

void FirstDoors::setLanguage(const ViewerLanguage& language) {
  heading_->setText(language.text("host.doors.heading"));
  fitHeading();
  demo_->setText(language.text("host.doors.demo"));
  demo_->setToolTip(language.text("host.doors.demoHint"));
  server_->setText(language.text("host.doors.server"));
  server_->setToolTip(language.text("host.doors.serverHint"));
  folder_->setText(language.text("host.doors.folder"));
  folder_->setToolTip(language.text("host.doors.folderHint"));
  if (recent_ != nullptr) recent_->setText(language.text("host.doors.recent"));
}

void FirstDoors::changeEvent(QEvent* event) {
  QFrame::changeEvent(event);
  if (event->type() == QEvent::FontChange) fitHeading();
}

void FirstDoors::fitHeading() {
  // A label that may take several lines would otherwise take more room than it needs.
  heading_->setMaximumWidth(heading_->fontMetrics().horizontalAdvance(heading_->text()) + inside);
}

void FirstDoors::openDemoTrail() {
  const QString failure = provideDemoTrail();
  if (failure.isEmpty())
    open(embeddedServer);
  else
    showWarning(this, window()->windowTitle(), failure);
}

void FirstDoors::chooseFolder() {
  const QList<RecentDatabase> databases = recentDatabases();
  const auto used = std::find_if(databases.begin(), databases.end(),
                                 [](const RecentDatabase& each) { return QFileInfo(each.server).isAbsolute(); });
  const QString folder =
      QFileDialog::getExistingDirectory(this, folder_->toolTip(), used == databases.end() ? QString() : used->server);
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
