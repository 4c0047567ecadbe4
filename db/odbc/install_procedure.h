#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "db/connection.h"
#include "db/odbc/server_connector.h"

namespace korvel::db {

/// The batches of a script: what stands between lines that say GO and nothing else. Empty batches are left out.
[[nodiscard]] std::vector<std::string> scriptBatches(std::string_view script);

/// Runs queryAuditsScript() batch by batch in one transaction: the old procedure is dropped, the new one created, or
/// all stays as it was. Permissions on the old one go with it. Throws Error, also for a database without the table of
/// the audit trail, which is looked for first.
void installQueryAudits(Connection& connection);

/// The same on a server of that name, under the running user's own login, who must be allowed to create procedures
/// there. Throws Error, also for the embedded engine: it answers QueryAudits itself.
void installQueryAudits(const std::string& server, const std::string& database, const odbc::ServerAccess& access);

}  // namespace korvel::db
