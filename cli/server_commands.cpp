#include "cli/server_commands.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <ostream>
#include <sstream>

#include "base/error.h"
#include "cli/common_options.h"
#include "cli/messages.h"
#include "cli/server_path.h"
#include "db/discovery/network_directory.h"
#include "db/odbc/install_procedure.h"
#include "db/odbc/server_check.h"
#include "db/procedure/query_audits_script.h"

namespace korvel::cli {

namespace {

const settings::LanguageOffset english;

/// What lets others call the procedure.
constexpr std::string_view grant = "GRANT EXECUTE ON dbo.QueryAudits TO [DOMAIN\\group]";

void addServer(CLI::App& command, std::string& server) {
  command
      .add_option("--server", server, "A host, host\\instance or host,port,\n\"(embedded)\", or the path of a folder")
      ->option_text("S")
      ->required()
      ->check(readableBy(connectionName, "no name of a server"));
}

CLI::Option* addDatabase(CLI::App& command, std::string& database) {
  return command.add_option("--database", database, "The audit database")
      ->option_text("D")
      ->check(readableBy(connectionName, "no name of a database"));
}

/// Runs `work`, which fills a text and gives the exit status, and writes the text; what the database reports goes to
/// standard error.
template <typename Work>
int reporting(std::ostream& out, std::ostream& err, const Work& work) {
  try {
    std::ostringstream text;
    const int status = work(text);
    return writeText(out, err, text.str(), status);
  } catch (const Error& error) {
    say(err, "error " + errorText(error));
    return exitDatabase;
  } catch (const std::exception& exception) {
    say(err, exception.what());
    return exitDatabase;
  }
}

CLI::App* addServers(CLI::App& app, ServerOptions& options) {
  CLI::App* command = app.add_subcommand("servers", "List the servers of this computer");
  command->add_flag("--all", options.all, "Those of the network and the configuration too\n(a few seconds)");
  return command;
}

int runServers(const ServerOptions& options, std::ostream& out, std::ostream& err) {
  return reporting(out, err, [&](std::ostream& text) {
    const auto directory = db::makeServerDirectory();
    const auto names = options.all ? directory->networkServers() : directory->localServers();
    for (const auto& name : names) text << output::terminalText(name) << '\n';
    return names.empty() ? exitNoRecords : exitDone;
  });
}

CLI::App* addDatabases(CLI::App& app, ServerOptions& options) {
  CLI::App* command = app.add_subcommand("databases", "List the databases of a server with their paths");
  addServer(*command, options.server);
  return command;
}

int runDatabases(const ServerOptions& options, std::ostream& out, std::ostream& err) {
  return reporting(out, err, [&](std::ostream& text) {
    int status = exitNoRecords;
    const auto directory = db::makeServerDirectory();
    for (const auto& database : directory->databases(options.server, db::browserOptions(false))) {
      if (database.isSystem) continue;
      text << output::terminalText(database.name) << '\t' << output::terminalText(database.path) << '\n';
      status = exitDone;
    }
    return status;
  });
}

CLI::App* addInstall(CLI::App& app, ServerOptions& options) {
  CLI::App* command = app.add_subcommand("install-procedure", "Install what the standard query calls on a server");
  command->add_flag("--print", options.print, "Show the script instead of running it");
  command->add_option("--server", options.server, "A host, host\\instance or host,port")
      ->option_text("S")
      ->check(readableBy(connectionName, "no name of a server"));
  addDatabase(*command, options.database);
  command->footer(
      "Your own login must be allowed to create procedures there.\nThe audit trail itself is not touched; a database "
      "without one is refused.\n"
      "\n"
      "Other people may run queries once an administrator allows it (again after each\ninstallation):\n"
      "  " +
      std::string(grant) +
      "\n"
      "\n"
      "Examples:\n"
      "  korvel-audit install-procedure --print > QueryAudits.sql\n"
      "  korvel-audit install-procedure --server AUDITSRV --database Korvel_Audit\n");
  return command;
}

int runInstall(const ServerOptions& options, std::ostream& out, std::ostream& err) {
  if (!options.print && (options.server.empty() || options.database.empty())) {
    say(err, "install-procedure needs --server and --database, or --print");
    return exitWrongUsage;
  }
  return reporting(out, err, [&](std::ostream& text) {
    if (options.print) {
      text << db::queryAuditsScript();
    } else {
      db::installQueryAudits(options.server, options.database, db::odbc::userAccess());
      text << "dbo.QueryAudits is installed in " << output::terminalText(options.database)
           << ". Permissions on an earlier one are gone; give those who run queries theirs:\n  " << grant << '\n';
    }
    return exitDone;
  });
}

CLI::App* addCheck(CLI::App& app, ServerOptions& options) {
  CLI::App* command = app.add_subcommand("check", "Say step by step how far the way to a server leads");
  addServer(*command, options.server);
  addDatabase(*command, options.database);
  command->footer(
      "Without --database it goes on with one that the server lists and that is named like\n"
      "an audit database. Custom queries (sql) need the right to read the table, SELECT;\n"
      "standard queries (query) only the right to call the procedure, EXECUTE.\n");
  return command;
}

std::string_view outcomeText(db::CheckOutcome outcome) {
  switch (outcome) {
    case db::CheckOutcome::ok:
      return "ok";
    case db::CheckOutcome::failed:
      return "failed";
    case db::CheckOutcome::notReached:
      break;
  }
  return "-";
}

int runCheck(const ServerOptions& options, std::ostream& out, std::ostream& err) {
  return reporting(out, err, [&](std::ostream& text) {
    const auto steps = db::checkServer(options.server, options.database, db::odbc::userAccess());
    std::size_t width = 0;
    for (const auto& step : steps) width = std::max(width, db::checkTitle(step, english).size());
    for (const auto& step : steps) {
      std::string title = db::checkTitle(step, english);
      title.resize(width, ' ');
      std::string outcome(outcomeText(step.outcome));
      outcome.resize(6, ' ');
      text << title << "  " << outcome << "  " << output::terminalText(db::checkDetail(step, english)) << '\n';
    }
    const bool reached =
        std::all_of(steps.begin(), steps.end(), [](const auto& step) { return step.outcome == db::CheckOutcome::ok; });
    return reached ? exitDone : exitDatabase;
  });
}

}  // namespace

const ServerCommand serversCommand{addServers, runServers};
const ServerCommand databasesCommand{addDatabases, runDatabases};
const ServerCommand installCommand{addInstall, runInstall};
const ServerCommand checkCommand{addCheck, runCheck};

}  // namespace korvel::cli
