#pragma once

#include <string>

#include "base/text.h"
#include "db/odbc/server_connector.h"
#include "tests/tds_server/bare_odbc.h"

namespace korvel::test {

/// The product's access to a server without a login service: FreeTDS logs in with a name and a password.
inline db::odbc::ServerAccess accessWithoutDomain() {
  db::odbc::ServerAccess access;
  access.acquireTicket = [](const std::string&, const db::net::Deadline&) {
    return db::odbc::Ticket{db::odbc::TicketState::valid};
  };
  access.driverText = [](const db::odbc::LoginRequest& request) {
    return replaceAll(db::odbc::driverText(request), "Trusted_Connection={yes};", "UID={reader};PWD={secret};");
  };
  access.options.driver = installedFreeTds().value_or("");
  return access;
}

}  // namespace korvel::test
