#pragma once

#include <string>

#include "db/connection.h"
#include "db/odbc/server_connector.h"
#include "db/procedure/query_audits_script.h"

namespace korvel::db {

/// Runs queryAuditsScript() batch by batch in one transaction: the old procedure is dropped, the new one created, or
/// all stays as it was. Permissions on the old one go with it. Throws Error, also for a database without the table of
/// the audit trail, which is looked for first.
void installQueryAudits(Connection& connection);

/// The same on a server of that name, under the running user's own login, who must be allowed to create procedures
/// there. Throws Error, also for the embedded engine: it answers QueryAudits itself.
void installQueryAudits(const std::string& server, const std::string& database, const odbc::ServerAccess& access);

}  // namespace korvel::db
