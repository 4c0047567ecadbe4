#include "db/odbc/install_procedure.h"

#include <cerrno>

#include "db/embedded/embedded_folder.h"
#include "db/open_connection.h"
#include "db/procedure/audit_conditions.h"
#include "db/procedure/query_audits_script.h"
#include "settings/string_table.h"

namespace korvel::db {

namespace {

class IgnoringSink final : public ResultSink {
 public:
  void beginResult(std::span<const Field>) override {}
  bool row(std::span<const Cell>) override { return true; }
  void endResult() override {}
};

/// Takes the transaction back, where the server has not done so itself.
template <typename Run>
void undo(const Run& run) {
  try {
    run("IF @@TRANCOUNT > 0 ROLLBACK TRANSACTION");
  } catch (const Error&) {  // NOLINT(bugprone-empty-catch): with the connection goes what was not committed
  }
}

/// Throws Error for a database without an audit trail. The right to create procedures does not include the right to
/// read the table.
template <typename Run>
void requireAuditTable(const Run& run) {
  try {
    run(auditTableProbe);
  } catch (const Error& error) {
    if (error.number() == nameUnknownNumber) throw settings::localizedError(error.number(), "failure.tableMissing");
    if (error.number() != rightMissingNumber) throw;
  }
}

}  // namespace

void installQueryAudits(Connection& connection) {
  IgnoringSink sink;
  const auto run = [&](std::string_view batch) { connection.execute(batch, sink); };
  requireAuditTable(run);
  // The old procedure stays where the new one cannot be created.
  run("BEGIN TRANSACTION");
  try {
    for (const std::string& batch : scriptBatches(queryAuditsScript())) run(batch);
    run("COMMIT TRANSACTION");
  } catch (...) {
    undo(run);
    throw;
  }
}

void installQueryAudits(const std::string& server, const std::string& database, const odbc::ServerAccess& access) {
  if (isEmbeddedServer(server)) throw settings::localizedError(ENOTSUP, "failure.procedureBuiltIn");
  installQueryAudits(*odbc::openServer(server, database, access));
}

}  // namespace korvel::db
