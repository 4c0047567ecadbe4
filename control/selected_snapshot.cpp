#include "control/selected_snapshot.h"

#include <memory>
#include <optional>
#include <string>

#include "control/library_state.h"
#include "control/texts.h"
#include "db/embedded/embedded_folder.h"
#include "db/worker.h"
#include "korvel/AuditViewer.h"
#include "query/query_failure.h"

namespace korvel::control {

SelectedSnapshot::SelectedSnapshot(AuditViewer& viewer, void (*followEverywhere)())
    : viewer_(viewer), followEverywhere_(followEverywhere) {}

QString SelectedSnapshot::text() {
  const std::optional<db::SnapshotOrigin>& snapshot = libraryState().snapshot;
  if (!snapshot) return {};
  return ownText("snapshot.isOne")
      .arg(fromUtf8(snapshot->database), fromUtf8(snapshot->server), fromUtf8(snapshot->taken).replace(u'T', u' '));
}

void SelectedSnapshot::follow() {
  work_.stop();
  const bool wasOne = libraryState().snapshot.has_value();
  libraryState().snapshot.reset();
  if (wasOne) Q_EMIT viewer_.SnapshotTextChanged();
  const db::ConnectionState& connection = libraryState().connection;
  if (connection.ConnectionString.empty() || !db::isEmbeddedServer(connection.CurrentServer)) return;
  const auto found = std::make_shared<std::optional<db::SnapshotOrigin>>();
  const auto ask = [connect = platform().connect, text = connection.ConnectionString](const std::stop_token& stop) {
    std::optional<db::SnapshotOrigin> snapshot;
    // What is wrong with the database its queries say.
    skipFailing([&] { snapshot = connect(text, stop)->identity().snapshot; });
    return snapshot;
  };
  work_.start(
      [found, ask](const std::stop_token& stop) {
        // A folder in the network may not answer for long.
        skipFailing([&] {
          if (auto answer = db::runOnWorker(ask, [&] { return !stop.stop_requested(); })) *found = std::move(*answer);
        });
      },
      [this, found, text = connection.ConnectionString] {
        // Another control may have selected another database meanwhile.
        if (!*found || libraryState().connection.ConnectionString != text) return;
        libraryState().snapshot = std::move(*found);
        followEverywhere_();
        Q_EMIT viewer_.SnapshotTextChanged();
      });
}

}  // namespace korvel::control
