#include "control/library_state.h"

#include "control/qt_control_services.h"
#include "db/discovery/network_directory.h"
#include "db/open_connection.h"
#include "settings/registry.h"

namespace korvel::control {

LibraryState& libraryState() {
  static LibraryState state;
  return state;
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
