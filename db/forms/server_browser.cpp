#include "db/forms/server_browser.h"

#include <QEvent>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPointer>
#include <QRadioButton>
#include <QStatusBar>
#include <QToolButton>
#include <cstdint>
#include <exception>
#include <mutex>
#include <utility>
#include <vector>

#include "db/connection_string.h"
#include "db/embedded/embedded_folder.h"
#include "db/forms/event_echo.h"
#include "db/open_connection.h"
#include "db/worker.h"
#include "ui/query_watch.h"
#include "ui/result_table.h"
#include "ui/texts.h"

namespace korvel::db {
namespace {

using ui::BusyPointer;
using ui::MessageIcon;

constexpr std::size_t localServers = 0;
const QString auditName = QStringLiteral("Korvel_Audit");
const QString noDatabaseSelected = QStringLiteral("No Database Selected");

/// The item of the bar that names this server, -1 for none. Names of servers ignore case; paths of folders do not.
int itemOf(const SmartViewBar& bar, const QString& server) {
  const auto sensitivity = isEmbeddedServer(server.toStdString()) ? Qt::CaseSensitive : Qt::CaseInsensitive;
  for (int i = 0; i < bar.count(); ++i)
    if (bar.caption(i).compare(server, sensitivity) == 0) return i;
  return -1;
}

/// Runs a network request; returns its failure, whatever was thrown.
template <typename Work>
std::optional<Error> failureOf(const Work& work) {
  try {
    work();
    return std::nullopt;
  } catch (const Error& error) {
    return error;
  } catch (const std::exception& exception) {
    constexpr std::int32_t internalError = 51;
    return Error(internalError, exception.what());
  }
}

/// The result of a listing, handed over once by its worker.
template <typename Result>
struct Listed {
  Result result;
  std::optional<Error> failure;
};

/// Events of the connections of a listing, on their way to the user-interface thread.
class EventQueue {
 public:
  void push(const ServerEvent& event) {
    const std::lock_guard lock(mutex_);
    events_.push_back(event);
  }
  std::vector<ServerEvent> takeAll() {
    const std::lock_guard lock(mutex_);
    return std::exchange(events_, {});
  }

 private:
  std::mutex mutex_;
  std::vector<ServerEvent> events_;
};

}  // namespace

frmSQLServerBrowser::~frmSQLServerBrowser() = default;

void frmSQLServerBrowser::showEvent(QShowEvent* event) {
  QDialog::showEvent(event);
  Form_Resize();
  // Listing takes time: the window is painted before.
  if (!std::exchange(loaded_, true))
    QMetaObject::invokeMethod(
        this, [this] { Form_Load(); }, Qt::QueuedConnection);
}

void frmSQLServerBrowser::done(int result) {
  QDialog::done(result);
  Form_Unload();
}

void frmSQLServerBrowser::Form_Unload() {
  oSQLServer_.reset();
  loaded_ = false;
}

void frmSQLServerBrowser::Form_Load() {
  DisplayServers();
}

void frmSQLServerBrowser::openServerObject() {
  oSQLServer_ = openDirectory_();
}

template <typename Result>
frmSQLServerBrowser::Listing frmSQLServerBrowser::list(const std::function<Result(ServerDirectory&)>& ask,
                                                       Result& result, std::optional<Error>& failure) {
  const QPointer<frmSQLServerBrowser> alive(this);
  listing_ = true;
  ui::QueryWatch watch;
  bool wanted = true;
  failure = failureOf([&] {
    openServerObject();
    const auto events = std::make_shared<EventQueue>();
    oSQLServer_->onEvent = [events](const ServerEvent& event) { events->push(event); };
    const auto tellEvents = [&] {
      for (const ServerEvent& event : events->takeAll())
        if (alive) oSQLServer_Event(event);
    };
    const auto work = [directory = oSQLServer_, ask](const std::stop_token& stop) {
      directory->stop = stop;
      Listed<Result> listed;
      listed.failure = failureOf([&] { listed.result = ask(*directory); });
      return listed;
    };
    const WaitCallback attendance = [&] {
      tellEvents();
      return wanted = watch.goOn() && alive;
    };
    std::optional<Listed<Result>> listed = runOnWorker(work, attendance);
    tellEvents();
    // Clicks and keys that are still queued were meant for this listing: they are dropped, so that they start no other
    // one.
    static_cast<void>(watch.goOn());
    if (!listed || !wanted) return;
    if (listed->failure) throw Error(*listed->failure);
    result = std::move(listed->result);
  });
  if (alive) listing_ = false;
  if (!wanted || !alive) {
    failure.reset();
    return Listing::stopped;
  }
  return failure ? Listing::failed : Listing::done;
}

void frmSQLServerBrowser::DisplayServers() {
  // A queued call would run nested in a listing.
  if (listing_) return;
  const QPointer<frmSQLServerBrowser> alive(this);
  const std::shared_ptr<ui::DialogServices> services = services_;
  std::optional<Error> failure;
  {
    const BusyPointer busy(*services);
    SmartViewBar_->clear();
    SmartViewBar_->setEmptyText({});
    say(ownText("browser.findingServers"));
    switches.eventEcho = false;
    const bool local = ServerLocation_[localServers]->isChecked();
    std::vector<std::string> servers;
    const Listing listing = list<std::vector<std::string>>(
        [local](ServerDirectory& directory) { return local ? directory.localServers() : directory.networkServers(); },
        servers, failure);
    if (!alive) return;
    for (const std::string& server : servers) SmartViewBar_->addItem(ui::fromUtf8(server));
    SmartViewBar_->highlightItems();
    if (listing == Listing::done) SmartViewBar_->setEmptyText(ownText("browser.noServers"));
    say(listing == Listing::stopped ? ownText("browser.stopped")
                                    : ownText("browser.servers", QString::number(SmartViewBar_->count())));
  }
  if (failure) reportFailure(ownText("browser.serversFailed"), *failure);
}

void frmSQLServerBrowser::ServerLocation_Click() {
  clearDatabases();
  DisplayServers();
}

void frmSQLServerBrowser::SmartViewBar_SelectionMove() {
  // Databases are never shown beside the name of another server.
  clearDatabases();
}

void frmSQLServerBrowser::SmartViewBar_ItemClick() {
  const QString server = SmartViewBar_->selectedCaption();
  if (server.isEmpty() || listing_) return;
  const QPointer<frmSQLServerBrowser> alive(this);
  const std::shared_ptr<ui::DialogServices> services = services_;
  std::optional<Error> failure;
  {
    const BusyPointer busy(*services);
    clearDatabases();
    say(ownText("browser.asking", server));
    std::vector<DatabaseInfo> all;
    const Listing listing = list<std::vector<DatabaseInfo>>(
        [name = server.toStdString(), options = browserOptions(switches.connectionOption)](ServerDirectory& directory) {
          return directory.databases(name, options);
        },
        all, failure);
    if (!alive) return;
    for (const DatabaseInfo& database : all) {
      const QString name = ui::fromUtf8(database.name);
      if (database.isSystem || !name.contains(auditName, Qt::CaseInsensitive)) continue;
      databases_.appendRow({new QStandardItem(name), new QStandardItem(ui::fromUtf8(database.path))});
    }
    if (listing == Listing::done) {
      lvListView_->setEmptyText(ownText("browser.noDatabases", server));
      say(ownText("browser.databases", server, QString::number(databases_.rowCount())));
    } else {
      say(listing == Listing::stopped ? ownText("browser.stopped") : QString());
    }
  }
  if (failure) reportFailure(ownText("browser.databasesFailed", server), *failure);
}

void frmSQLServerBrowser::txtServer_Enter() {
  const QString server = txtServer_->text().trimmed();
  if (server.isEmpty()) return;
  // A semicolon would end the name in the middle of the connection string.
  if (!connectionStringRoundTrips(server.toStdString(), auditName.toStdString())) {
    services_->messageBox(this, MessageIcon::critical, windowTitle(), ownText("failure.notInConnection", server));
    return;
  }
  int item = itemOf(*SmartViewBar_, server);
  if (item < 0) {
    item = SmartViewBar_->count();
    SmartViewBar_->addItem(server);
    SmartViewBar_->highlightItems();
  }
  SmartViewBar_->select(item);
  SmartViewBar_ItemClick();
}

void frmSQLServerBrowser::cmdOK_Click() {
  const QModelIndexList rows = lvListView_->selectionModel()->selectedRows();
  const QString database = rows.isEmpty() ? QString() : rows.first().data().toString();
  if (database.isEmpty()) {
    // The connection state outlives the dialog; the dialog may be deleted while the message is shown.
    ConnectionState& connection = connection_;
    const std::shared_ptr<ui::DialogServices> services = services_;
    services->messageBox(this, MessageIcon::none, QGuiApplication::applicationDisplayName(), noDatabaseSelected);
    connection.ConnectionString.clear();
    connection.AdvancedConnectionString.clear();
    return;
  }
  const std::string server = SmartViewBar_->selectedCaption().toStdString();
  if (!connectionStringRoundTrips(server, database.toStdString())) {
    // A name that would end early in the connection string may lead to another server.
    const bool serverFits = connectionStringRoundTrips(server, auditName.toStdString());
    services_->messageBox(this, MessageIcon::critical, windowTitle(),
                          ownText("failure.notInConnection", serverFits ? database : ui::fromUtf8(server)));
    return;
  }
  connection_.ConnectionString = buildConnectionString(server, database.toStdString());
  connection_.AdvancedConnectionString = connection_.ConnectionString;
  connection_.CurrentServer = server;
  connection_.CurrentDatabase = database.toStdString();
  connection_.CurrentDatabaseLocation = rows.first().siblingAtColumn(1).data().toString().toStdString();
  accept();
}

/// As with OK, but that no server is asked: what is wrong with the database is said when it is queried.
void frmSQLServerBrowser::btRecent_Choice(const BrowserMemory::Database& database) {
  if (listing_) return;
  openDatabase(connection_, database.server.toStdString(), database.name.toStdString());
  accept();
}

void frmSQLServerBrowser::oSQLServer_Event(const ServerEvent& event) {
  if (!switches.eventEcho) return;
  services_->messageBox(this, MessageIcon::none, ui::fromUtf8(eventEchoTitle), ui::fromUtf8(eventEchoText(event)));
}

void frmSQLServerBrowser::clearDatabases() {
  databases_.removeRows(0, databases_.rowCount());
  lvListView_->setEmptyText(ownText("browser.pickServer"));
}

void frmSQLServerBrowser::reportFailure(const QString& sentence, const Error& error) {
  const std::shared_ptr<ui::DialogServices> services = services_;
  services->messageBox(this, MessageIcon::critical, windowTitle(),
                       sentence + QStringLiteral("\r\n") + QString::number(error.number()) + QLatin1Char(':') +
                           ui::describe(error, language_));
}

void frmSQLServerBrowser::say(const QString& text) {
  StatusBar1_->showMessage(text);
  if (isVisible()) repaint();
}

QString frmSQLServerBrowser::ownText(std::string_view key, const QString& first, const QString& second) const {
  return ui::fromUtf8(settings::filled(settings::ownText(key, language_), first.toStdString(), second.toStdString()));
}

bool frmSQLServerBrowser::eventFilter(QObject* watched, QEvent* event) {
  if ((watched == txtServer_ || watched == btServer_) && enterTyped(*event)) return true;
  if (watched == lvListView_ && startInList(*event)) return true;
  if (watched == imgSplitterV_) {
    const auto mouse = [event]() -> const QMouseEvent& { return static_cast<const QMouseEvent&>(*event); };
    switch (event->type()) {
      case QEvent::MouseButtonPress:
        if (mouse().button() == Qt::LeftButton) imgSplitterV_MouseDown();
        return true;
      case QEvent::MouseMove:
        imgSplitterV_MouseMove(mouse().position().toPoint().x());
        return true;
      case QEvent::MouseButtonRelease:
        if (mouse().button() == Qt::LeftButton) imgSplitterV_MouseUp();
        return true;
      default:
        break;
    }
  }
  return QDialog::eventFilter(watched, event);
}

bool frmSQLServerBrowser::enterTyped(const QEvent& event) {
  if (event.type() != QEvent::KeyPress) return false;
  const int key = static_cast<const QKeyEvent&>(event).key();
  if (key != Qt::Key_Return && key != Qt::Key_Enter) return false;
  txtServer_Enter();
  return true;
}

bool frmSQLServerBrowser::startInList(const QEvent& event) {
  if (event.type() != QEvent::KeyPress || lvListView_->selectionModel()->hasSelection()) return false;
  const int key = static_cast<const QKeyEvent&>(event).key();
  if (key != Qt::Key_Down && key != Qt::Key_Up) return false;
  lvListView_->selectRow(0);
  return true;
}

}  // namespace korvel::db
