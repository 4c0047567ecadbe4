#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

#include "control/control_services.h"
#include "control/remembered.h"
#include "db/connection.h"
#include "db/connection_state.h"
#include "db/server_directory.h"
#include "evidence/exceptions.h"
#include "output/print_font.h"
#include "query/custom_query.h"
#include "query/date_range.h"
#include "query/query_choices.h"
#include "query/standard_query.h"
#include "settings/settings_backend.h"
#include "settings/string_table.h"

class QObject;

namespace korvel::control {

/// What happens to the report once the report viewer has taken it.
struct PendingReport {
  bool print = false;
  bool preview = false;
};

/// The values that all instances of the control share; they exist as long as the library is loaded, or as the
/// application object lives in a process where that ends before.
struct LibraryState {
  db::ConnectionState connection;
  /// What the selected database is a snapshot of, once that is known.
  std::optional<db::SnapshotOrigin> snapshot;
  query::DateRange dateRange;
  /// The last day with records in the viewer that opened the date range dialog; nothing where it shows none.
  std::optional<std::chrono::year_month_day> newestDay;
  query::QueryChoices queryChoices;
  settings::LanguageOffset language;
  output::PrintFont printFont;
  PendingReport pendingReport;
  /// Files that the user gets have a manifest beside them.
  bool writesManifests = false;
  /// What a review by exception takes for working hours.
  evidence::WorkingHours workingHours;
  /// What is offered again after the next start; nothing unless the program around the control names a file for it.
  Remembered remembered;
  /// A control waits for a database.
  bool queryRunning = false;
  /// Empty until the captions are built, and while the viewer's path is not set.
  QString helpFile;
};

/// The one instance. Only the control binds it; engine functions get what they need by reference.
[[nodiscard]] LibraryState& libraryState();

/// Lets the values begin anew when the application object is destroyed: a process may make another one afterwards, and
/// its viewers know nothing of the earlier ones.
void endStateWith(QObject& application);

/// What the control uses of the platform: dialogs, settings store, engines, network. Replaced as a whole by tests.
struct Platform {
  std::shared_ptr<ControlServices> services;
  std::function<std::unique_ptr<settings::SettingsBackend>()> openSettings;
  query::Connector connect;
  std::function<std::unique_ptr<db::ServerDirectory>()> openDirectory;
  /// Clock and memory that custom queries run by.
  query::QueryEnvironment queryEnvironment{};
  /// A control that is shown selects the database that its properties name.
  bool selectsDefaultServer = true;
};

/// Dialogs of Qt, the platform's settings store, the database engines, the servers of the network.
[[nodiscard]] Platform& platform();

}  // namespace korvel::control
