#include "db/odbc/server_check.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <string_view>
#include <system_error>
#include <utility>

#include "base/files.h"
#include "base/paths.h"
#include "base/system_errors.h"
#include "base/text.h"
#include "db/connection_state.h"
#include "db/discovery/network_directory.h"
#include "db/embedded/embedded_connection.h"
#include "db/embedded/embedded_folder.h"
#include "db/odbc/odbc_failures.h"
#include "db/open_connection.h"
#include "db/procedure/audit_conditions.h"
#include "settings/string_table.h"

namespace korvel::db {

namespace {

/// Failures inside a database that the server names by its number alone, and our sentences with their remedies.
struct Remedy {
  std::int32_t number;
  const char* sentence;
};
constexpr Remedy tableMissing{nameUnknownNumber, "failure.tableMissing"};
constexpr Remedy tableDenied{rightMissingNumber, "failure.tableDenied"};
constexpr Remedy procedureMissing{2812, "failure.procedureMissing"};
constexpr Remedy procedureDenied{rightMissingNumber, "failure.procedureDenied"};

/// What a step found, to be said where it went well.
struct Found {
  std::string key;
  std::vector<std::string> arguments;
  bool endsHere = false;  ///< there is nothing that the steps behind could look at
};

struct Step {
  const char* key;
  std::function<Found()> run;
  /// An earlier step without which this one has nothing to look at, beside those that bar the way.
  const char* needs = nullptr;
  /// Whether a failure leaves the way to later steps open.
  bool (*leavesWayOpen)(const Error& error) = nullptr;
};

bool wentWell(const std::vector<CheckStep>& checked, std::string_view key) {
  return std::any_of(checked.begin(), checked.end(),
                     [&](const CheckStep& step) { return step.key == key && step.outcome == CheckOutcome::ok; });
}

std::vector<CheckStep> runAll(const std::vector<Step>& steps) {
  std::vector<CheckStep> checked;
  bool reached = true;
  for (const Step& step : steps) {
    const bool hasGround = reached && (step.needs == nullptr || wentWell(checked, step.needs));
    CheckStep& result = checked.emplace_back();
    result.key = step.key;
    if (!hasGround) continue;
    try {
      Found found = step.run();
      result.outcome = CheckOutcome::ok;
      result.detailKey = std::move(found.key);
      result.detailArguments = std::move(found.arguments);
      if (found.endsHere) break;
    } catch (const Error& error) {
      result.outcome = CheckOutcome::failed;
      result.failure = error;
      reached = step.leavesWayOpen != nullptr && step.leavesWayOpen(error);
    }
  }
  return checked;
}

/// Keeps the number of columns and the first value of an answer.
class FirstValueSink final : public ResultSink {
 public:
  void beginResult(std::span<const Field> fields) override { columns = fields.size(); }
  bool row(std::span<const Cell> cells) override {
    if (value.empty() && !cells.empty()) value = cells.front().text;
    return true;
  }
  void endResult() override {}

  std::size_t columns = 0;
  std::string value;
};

FirstValueSink answerOf(Connection& connection, std::string_view command) {
  FirstValueSink sink;
  connection.execute(command, sink);
  return sink;
}

/// A call of the procedure that asks for no category: it answers with no result set and reads no row.
std::string emptyCall() {
  std::string text = "QueryAudits ";
  for (std::size_t i = 0; i < procedureParameterCount; ++i) text += i == 0 ? "'False'" : ",'False'";
  return text;
}

/// What the embedded engine says of a table that is not there, behind the number that it has for most failures.
bool tellsOfMissingTable(const Error& error) {
  return error.textKey().empty() && error.description().starts_with("no such table");
}

/// The answer to a command; a failure that has a remedy becomes its sentence.
FirstValueSink explainedAnswer(Connection& connection, std::string_view command, std::span<const Remedy> remedies) {
  try {
    return answerOf(connection, command);
  } catch (const Error& error) {
    if (tellsOfMissingTable(error)) throw settings::localizedError(error.number(), tableMissing.sentence);
    for (const Remedy& remedy : remedies)
      if (error.number() == remedy.number) throw settings::localizedError(remedy.number, remedy.sentence);
    throw;
  }
}

FirstValueSink askTable(Connection& connection, std::string_view command) {
  return explainedAnswer(connection, command, std::array{tableMissing, tableDenied});
}

/// A user without the right to read the table may have the right to call the procedure, which suffices for standard
/// queries.
bool isDenial(const Error& error) {
  return error.textKey() == tableDenied.sentence;
}

/// The steps inside a database, the same for every engine.
void addDatabaseSteps(std::vector<Step>& steps, std::unique_ptr<Connection>& connection) {
  steps.push_back({"table",
                   [&] {
                     const auto answer = askTable(*connection, auditTableProbe);
                     return Found{"check.table.found", {std::to_string(answer.columns)}};
                   },
                   nullptr, isDenial});
  steps.push_back(
      {"procedure", [&] {
         explainedAnswer(*connection, emptyCall(), std::array{tableMissing, procedureMissing, procedureDenied});
         return Found{"check.procedure.found", {}};
       }});
  steps.push_back({"rows",
                   [&] {
                     const auto answer = askTable(*connection, "SELECT COUNT(*) AS n FROM Korvel_Audit_Trails");
                     return Found{"check.rows.found", {answer.value}};
                   },
                   "table"});
}

/// Where no database is named: what the server lists, and the one of it that `database` then names. Preferred is the
/// one that queries take unless told otherwise; any other must be named like it.
Found chooseDatabase(const std::vector<DatabaseInfo>& listed, std::string& database) {
  const std::string usual(databaseName(static_cast<int>(DatabaseTypeEnum::Korvel_Audit)));
  std::size_t count = 0;
  for (const DatabaseInfo& each : listed) {
    if (each.isSystem) continue;
    ++count;
    const bool isUsual = equalsIgnoringAsciiCase(each.name, usual);
    if (isUsual || (database.empty() && caseFolded(each.name).find(caseFolded(usual)) != std::string::npos))
      database = each.name;
  }
  if (database.empty()) return {"check.databases.noneChosen", {std::to_string(count)}, true};
  return {"check.databases.found", {std::to_string(count), database}};
}

std::vector<CheckStep> checkEmbedded(const std::string& server, std::string database) {
  const std::filesystem::path folder = embeddedFolderOf(server);
  std::unique_ptr<Connection> connection;
  std::vector<Step> steps;
  steps.push_back({"name", [&] {
                     std::error_code error;
                     const auto status = files::status(folder, error);
                     if (std::filesystem::exists(status) && !std::filesystem::is_directory(status))
                       throw folderFailure(folder, systemErrorNumber(std::errc::not_a_directory));
                     if (error) throw folderFailure(folder, systemErrorNumber(error));
                     return Found{"check.name.embedded", {utf8FromPath(folder)}};
                   }});
  if (database.empty())
    steps.push_back({"databases", [&] { return chooseDatabase(embeddedDatabases(folder), database); }});
  steps.push_back({"database", [&] {
                     connection = openEmbedded(folder, database);
                     return Found{"check.database.found", {database}};
                   }});
  addDatabaseSteps(steps, connection);
  return runAll(steps);
}

Found encryptionFound(const odbc::ServerConnector& connector, const ConnectionOptions& options) {
  if (connector.handshake()) return {"check.encryption.found", {connector.handshake()->protocol}};
  return {options.encrypt ? "check.encryption.unchecked" : "check.encryption.optional", {}};
}

std::vector<CheckStep> checkNetworkServer(const std::string& server, std::string database,
                                          const odbc::ServerAccess& access) {
  odbc::ServerConnector connector(server, access);
  std::unique_ptr<Connection> connection;
  std::vector<Step> steps;
  steps.push_back({"name", [&] {
                     connector.resolveServer();
                     return Found{"check.name.found", {odbc::shownAddress(connector.address())}};
                   }});
  steps.push_back({"port", [&] {
                     connector.connectPort();
                     return Found{"check.port.found", {std::to_string(connector.address().port)}};
                   }});
  steps.push_back({"protocol", [&] {
                     connector.exchangePreLogin();
                     return Found{"check.protocol.found", {connector.preLoginAnswer().version}};
                   }});
  steps.push_back({"encryption", [&] {
                     connector.checkEncryption();
                     return encryptionFound(connector, access.options);
                   }});
  steps.push_back({"ticket", [&] {
                     if (connector.acquireTicket().state == odbc::TicketState::leftToSystem)
                       return Found{"check.ticket.leftToSystem", {}};
                     return Found{"check.ticket.found", {connector.servicePrincipal()}};
                   }});
  steps.push_back({"login", [&] {
                     connection = connector.logIn({});
                     return Found{"check.login.found", {}};
                   }});
  if (database.empty())
    steps.push_back({"databases", [&] { return chooseDatabase(serverDatabases(*connection), database); }});
  steps.push_back({"database", [&] {
                     connector.restartTimeout();
                     connection = connector.logIn(database);
                     return Found{"check.database.found", {database}};
                   }});
  addDatabaseSteps(steps, connection);
  return runAll(steps);
}

}  // namespace

std::string checkTitle(const CheckStep& step, const settings::LanguageOffset& offset) {
  return std::string(settings::ownText("check." + step.key, offset));
}

std::string checkDetail(const CheckStep& step, const settings::LanguageOffset& offset) {
  if (step.failure) return std::to_string(step.failure->number()) + ": " + settings::describe(*step.failure, offset);
  if (step.outcome == CheckOutcome::notReached) return std::string(settings::ownText("check.notReached", offset));
  return settings::describe(settings::localizedError(0, step.detailKey, step.detailArguments), offset);
}

std::vector<CheckStep> checkServer(const std::string& server, const std::string& database,
                                   const odbc::ServerAccess& access) {
  return isEmbeddedServer(server) ? checkEmbedded(server, database) : checkNetworkServer(server, database, access);
}

}  // namespace korvel::db
