#include "cli/tool.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <exception>
#include <optional>
#include <ostream>

#include "cli/chart_command.h"
#include "cli/common_options.h"
#include "cli/compare_command.h"
#include "cli/demo_command.h"
#include "cli/first_steps.h"
#include "cli/history_command.h"
#include "cli/marks_command.h"
#include "cli/messages.h"
#include "cli/platform.h"
#include "cli/query_command.h"
#include "cli/review_command.h"
#include "cli/selftest_command.h"
#include "cli/server_commands.h"
#include "cli/server_path.h"
#include "cli/snapshot_command.h"
#include "cli/sql_command.h"
#include "cli/verify_command.h"

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
    "  korvel-audit history --item TIC-1901      what happened to one item\n"
    "  korvel-audit chart --output activity.svg  draw how many records each day has\n"
    "  korvel-audit sql \"select count(*) from Korvel_Audit_Trails\"\n"
    "                                            run a query of your own\n"
    "  korvel-audit verify batch.csv             whether an output is as it was written\n"
    "  korvel-audit review                       what a reviewer should look at\n"
    "  korvel-audit marks batch.review           what reviewers said of it\n"
    "  korvel-audit snapshot --output FOLDER     copy a trail, to compare it later\n"
    "  korvel-audit compare FOLDER               what was changed in the trail since\n"
    "  korvel-audit servers --all                find servers\n"
    "  korvel-audit check --server S             why a server cannot be reached, and what to do\n"
    "  korvel-audit selftest                     whether this installation is as it was delivered\n"
    "\n";
constexpr const char* environmentHeading = "\nEnvironment:\n";

constexpr std::array serverCommands = {&serversCommand, &databasesCommand, &installCommand, &checkCommand};

std::string commandNames(const CLI::App& app) {
  std::string names;
  for (const CLI::App* command : app.get_subcommands({}))
    names.append(names.empty() ? "" : ", ") += command->get_name();
  return names;
}

/// Names the word that is not a command; the parser would only report a missing command.
std::optional<std::string> commandProblem(const CLI::App& app, const std::vector<std::string>& arguments) {
  const std::string& first = arguments.front();
  if (first.starts_with('-')) {
    if (app.get_option_no_throw(first) != nullptr) return std::nullopt;
    return "'" + first + "' is no option here, and comes before a command; there are " + commandNames(app);
  }
  const auto commands = app.get_subcommands({});
  const bool known = std::any_of(commands.begin(), commands.end(),
                                 [&](const CLI::App* command) { return command->get_name() == first; });
  if (known) return std::nullopt;
  return "'" + first + "' is no command; there are " + commandNames(app);
}

/// Runs a command that names a server, which may be a path.
template <typename Options, typename Run>
int runOnServer(Options& options, const CLI::App& command, std::ostream& err, const Run& run) {
  const CLI::Option* const database = command.get_option_no_throw("--database");
  std::string* const named = database == nullptr ? nullptr : &options.database;
  if (const auto problem = resolveServerPath(options.server, named, database != nullptr && database->count() > 0))
    return refused(err, *problem);
  const int status = run();
  if (status == exitDatabase)
    if (const auto note = folderNote(options.server)) say(err, *note);
  return status;
}

int parseAndRun(std::vector<std::string> arguments, std::ostream& out, std::ostream& err,
                const query::Connector& connect) {
  CLI::App app(about, "korvel-audit");
  app.set_version_flag("--version", std::string("korvel-audit ") + KORVEL_VERSION, "Show the version");
  app.set_help_flag("-h,--help", "Show this help");
  app.get_formatter()->column_width(28);
  app.footer(std::string(footer) + exitStatusHelp + environmentHeading + environmentHelp);
  app.require_subcommand(1);
  DemoOptions demoOptions;
  QueryOptions queryOptions;
  const CLI::App* demo = addDemoCommand(app, demoOptions);
  const CLI::App* query = addQueryCommand(app, queryOptions);
  HistoryOptions historyOptions;
  const CLI::App* history = addHistoryCommand(app, historyOptions);
  ReviewOptions reviewOptions;
  const CLI::App* review = addReviewCommand(app, reviewOptions);
  MarksOptions marksOptions;
  const CLI::App* marks = addMarksCommand(app, marksOptions);
  ChartOptions chartOptions;
  const CLI::App* chart = addChartCommand(app, chartOptions);
  SqlOptions sqlOptions;
  const CLI::App* sql = addSqlCommand(app, sqlOptions);
  VerifyOptions verifyOptions;
  const CLI::App* verify = addVerifyCommand(app, verifyOptions);
  SnapshotOptions snapshotOptions;
  const CLI::App* snapshot = addSnapshotCommand(app, snapshotOptions);
  CompareOptions compareOptions;
  const CLI::App* compare = addCompareCommand(app, compareOptions);
  SelftestOptions selftestOptions;
  const CLI::App* selftest = addSelftestCommand(app, selftestOptions);
  ServerOptions serverOptions;
  std::array<const CLI::App*, serverCommands.size()> added{};
  for (std::size_t i = 0; i < added.size(); ++i) added.at(i) = serverCommands.at(i)->add(app, serverOptions);

  for (CLI::App* command : app.get_subcommands({})) {
    const std::string before = command->get_footer();
    command->footer(before + (before.empty() ? "" : "\n") + exitStatusHelp);
  }

  if (arguments.empty()) {
    say(err, "no command was given");
    err << '\n' << firstSteps(readableHere()) << "\nkorvel-audit --help names all commands.\n";
    return exitWrongUsage;
  }
  if (const auto problem = commandProblem(app, arguments)) return refused(err, *problem);
  std::reverse(arguments.begin(), arguments.end());  // the order in which the parser takes them off
  try {
    app.parse(std::move(arguments));
  } catch (const CLI::ParseError& stop) {
    const bool asked = app.exit(stop, out, err) == static_cast<int>(CLI::ExitCodes::Success);
    return asked ? exitDone : exitWrongUsage;
  }
  for (std::size_t i = 0; i < added.size(); ++i)
    if (added.at(i)->parsed())
      return runOnServer(serverOptions, *added.at(i), err,
                         [&] { return serverCommands.at(i)->run(serverOptions, out, err); });
  if (sql->parsed()) return runOnServer(sqlOptions, *sql, err, [&] { return runSql(sqlOptions, connect, out, err); });
  if (history->parsed())
    return runOnServer(historyOptions, *history, err, [&] { return runHistory(historyOptions, connect, out, err); });
  if (review->parsed())
    return runOnServer(reviewOptions, *review, err, [&] { return runReview(reviewOptions, connect, out, err); });
  if (marks->parsed())
    return runOnServer(marksOptions, *marks, err, [&] { return runMarks(marksOptions, connect, out, err); });
  if (chart->parsed())
    return runOnServer(chartOptions, *chart, err, [&] { return runChart(chartOptions, connect, out, err); });
  if (snapshot->parsed())
    return runOnServer(snapshotOptions, *snapshot, err,
                       [&] { return runSnapshot(snapshotOptions, connect, out, err); });
  if (compare->parsed())
    return runOnServer(compareOptions, *compare, err, [&] { return runCompare(compareOptions, connect, out, err); });
  if (verify->parsed()) return runVerify(verifyOptions, out, err);
  if (selftest->parsed()) return runSelftest(selftestOptions, connect, out, err);
  if (demo->parsed()) return runDemo(demoOptions, out, err);
  return runOnServer(queryOptions, *query, err, [&] { return runQuery(queryOptions, connect, out, err); });
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
