#include "cli/tool.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <exception>
#include <ostream>

#include "cli/demo_command.h"
#include "cli/exit_status.h"
#include "cli/messages.h"
#include "cli/platform_help.h"
#include "cli/query_command.h"
#include "cli/server_commands.h"
#include "cli/sql_command.h"

namespace korvel::cli {

namespace {

constexpr const char* about =
    "Reads audit trails without a screen: the same queries as the viewer, through the same engine.\n"
    "A query only reads; it never changes an audit database.\n";

constexpr const char* footer =
    "First steps:\n"
    "  korvel-audit demo                         write two databases to try things with\n"
    "  korvel-audit query                        show all audits as a table\n"
    "  korvel-audit query --help                 categories, dates, lists, formats\n"
    "  korvel-audit sql \"select count(*) from Korvel_Audit_Trails\"\n"
    "                                            run a query of your own\n"
    "  korvel-audit servers --all                find servers\n"
    "  korvel-audit check --server S             why a server cannot be reached, and what to do\n"
    "\n"
    "Exit status:\n"
    "  0  done, rows were written\n"
    "  1  no records; nothing was written\n"
    "  2  wrong usage\n"
    "  3  the database failed; number and text on standard error\n"
    "  4  the output could not be written\n"
    "  130  stopped by Ctrl+C; no file was written\n"
    "\n"
    "Environment:\n";

constexpr std::array serverCommands = {&serversCommand, &databasesCommand, &installCommand, &checkCommand};

int parseAndRun(std::vector<std::string> arguments, std::ostream& out, std::ostream& err,
                const query::Connector& connect) {
  CLI::App app(about, "korvel-audit");
  app.set_version_flag("--version", std::string("korvel-audit ") + KORVEL_VERSION, "Show the version");
  app.set_help_flag("-h,--help", "Show this help");
  app.get_formatter()->column_width(28);
  app.footer(std::string(footer) + environmentHelp);
  app.require_subcommand(1);
  DemoOptions demoOptions;
  QueryOptions queryOptions;
  const CLI::App* demo = addDemoCommand(app, demoOptions);
  addQueryCommand(app, queryOptions);
  SqlOptions sqlOptions;
  const CLI::App* sql = addSqlCommand(app, sqlOptions);
  ServerOptions serverOptions;
  std::array<const CLI::App*, serverCommands.size()> added{};
  for (std::size_t i = 0; i < added.size(); ++i) added.at(i) = serverCommands.at(i)->add(app, serverOptions);

  std::reverse(arguments.begin(), arguments.end());  // the order in which the parser takes them off
  try {
    app.parse(std::move(arguments));
  } catch (const CLI::ParseError& stop) {
    const bool asked = app.exit(stop, out, err) == static_cast<int>(CLI::ExitCodes::Success);
    return asked ? exitDone : exitWrongUsage;
  }
  for (std::size_t i = 0; i < added.size(); ++i)
    if (added.at(i)->parsed()) return serverCommands.at(i)->run(serverOptions, out, err);
  if (sql->parsed()) return runSql(sqlOptions, connect, out, err);
  return demo->parsed() ? runDemo(demoOptions, out, err) : runQuery(queryOptions, connect, out, err);
}

}  // namespace

int runTool(std::vector<std::string> arguments, std::ostream& out, std::ostream& err, const query::Connector& connect) {
  try {
    return parseAndRun(std::move(arguments), out, err, connect);
  } catch (const std::exception& exception) {
    say(err, exception.what());
    return exitOutput;
  }
}

}  // namespace korvel::cli
