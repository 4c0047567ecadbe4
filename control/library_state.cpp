#include "control/library_state.h"

#include <QObject>

#include "control/qt_control_services.h"
#include "db/discovery/network_directory.h"
#include "db/open_connection.h"
#include "settings/registry.h"

namespace korvel::control {

LibraryState& libraryState() {
  static LibraryState state;
  return state;
}

void endStateWith(QObject& application) {
  // It goes before the values do, where the application object is destroyed after them.
  static const QObject whileTheyExist;
  QObject::connect(&application, &QObject::destroyed, &whileTheyExist, [] { libraryState() = LibraryState(); });
}

Platform& platform() {
  static Platform real{std::make_shared<QtControlServices>(),
                       &settings::platformBackend,
                       &db::openConnection,
                       &db::makeServerDirectory,
                       {},
                       true};
  return real;
}

}  // namespace korvel::control
