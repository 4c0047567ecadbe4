#include "control/database_selection.h"

#include <QPointer>
#include <memory>
#include <utility>

#include "control/answer_status.h"
#include "control/audit_queries.h"
#include "control/control_lock.h"
#include "control/library_state.h"
#include "control/message_boxes.h"
#include "control/property_bag.h"
#include "control/surface.h"
#include "control/texts.h"
#include "db/connection_state.h"
#include "korvel/AuditViewer.h"

namespace korvel::control {

DatabaseSelection::DatabaseSelection(AuditViewer& viewer, const MessageBoxes& messages, const Surface& surface,
                                     Affected affected, void (*followEverywhere)())
    : viewer_(viewer),
      messages_(messages),
      affected_(affected),
      followEverywhere_(followEverywhere),
      snapshot_(viewer, followEverywhere) {
  messages_.onClick(surface.btSelectDB, "btSelectDB_Click", [this] { btSelectDB_Click(); });
  messages_.onClick(surface.btDBInfo, "btDBInfo_Click", [this] { btDBInfo_Click(); });
}

void DatabaseSelection::SelectDatabase() {
  const std::shared_ptr<ControlServices> services = platform().services;
  const QPointer<AuditViewer> alive(&viewer_);
  services->showForm(&viewer_, form_name::serverBrowser);
  if (!alive) return;
  // Deliberately also after Cancel, where an earlier selection is announced once more and its lists are cleared.
  if (!libraryState().connection.ConnectionString.empty()) {
    announceSelection();
    return;
  }
  affected_.lock.LockControls();
  followEverywhere_();
}

void DatabaseSelection::OpenDefaultSQLServer(const StoredProperties& properties) {
  db::ConnectionState& connection = libraryState().connection;
  db::openDefaultServer(connection, properties.DefaultSQLServer.toStdString(), properties.DatabaseType);
  announceSelection();
}

void DatabaseSelection::OpenDatabase(const std::string& server, const std::string& database) {
  db::openDatabase(libraryState().connection, server, database);
  announceSelection();
}

void DatabaseSelection::announceSelection() {
  affected_.answers.countSelection();
  skipFailing([] {
    const LibraryState& state = libraryState();
    state.remembered.addDatabase(
        {fromUtf8(state.connection.CurrentServer), fromUtf8(state.connection.CurrentDatabase)});
  });
  const QPointer<AuditViewer> alive(&viewer_);
  Q_EMIT viewer_.DatabaseSelected(fromUtf8(db::selectionText(libraryState().connection)));
  if (!alive) return;
  affected_.lock.UnlockControls();
  affected_.queries.clearAllLists();
  affected_.queries.DisplayNoOfRecords();
  snapshot_.follow();
  followEverywhere_();
}

void DatabaseSelection::btSelectDB_Click() {
  viewer_.SelectDatabase();
}

void DatabaseSelection::btDBInfo_Click() {
  messages_.inform(fromUtf8(db::databaseInformationTitle),
                   fromUtf8(db::databaseInformation(libraryState().connection, libraryState().language)));
}

}  // namespace korvel::control
