#include "db/odbc/login_ticket.h"

namespace korvel::db::odbc {

std::string servicePrincipalOf(const std::string& fullHostName, std::uint16_t port) {
  return "MSSQLSvc/" + fullHostName + ":" + std::to_string(port);
}

}  // namespace korvel::db::odbc
