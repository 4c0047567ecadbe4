#include "cli/tool.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <optional>
#include <ostream>

#include "cli/common_options.h"
#include "cli/first_steps.h"
#include "cli/messages.h"
#include "cli/server_path.h"
#include "cli/tool_parser.h"

namespace korvel::cli {

namespace {

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
  ToolParser parser;
  CLI::App& app = parser.app;
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
  for (const auto& [command, added] : parser.serverCommands)
    if (added->parsed()) {
      const auto run = command->run;
      return runOnServer(parser.serverOptions, *added, err,
                         [&parser, &out, &err, run] { return run(parser.serverOptions, out, err); });
    }
  if (parser.sql->parsed())
    return runOnServer(parser.sqlOptions, *parser.sql, err,
                       [&] { return runSql(parser.sqlOptions, connect, out, err); });
  if (parser.history->parsed())
    return runOnServer(parser.historyOptions, *parser.history, err,
                       [&] { return runHistory(parser.historyOptions, connect, out, err); });
  if (parser.review->parsed())
    return runOnServer(parser.reviewOptions, *parser.review, err,
                       [&] { return runReview(parser.reviewOptions, connect, out, err); });
  if (parser.marks->parsed())
    return runOnServer(parser.marksOptions, *parser.marks, err,
                       [&] { return runMarks(parser.marksOptions, connect, out, err); });
  if (parser.chart->parsed())
    return runOnServer(parser.chartOptions, *parser.chart, err,
                       [&] { return runChart(parser.chartOptions, connect, out, err); });
  if (parser.snapshot->parsed())
    return runOnServer(parser.snapshotOptions, *parser.snapshot, err,
                       [&] { return runSnapshot(parser.snapshotOptions, connect, out, err); });
  if (parser.compare->parsed())
    return runOnServer(parser.compareOptions, *parser.compare, err,
                       [&] { return runCompare(parser.compareOptions, connect, out, err); });
  if (parser.verify->parsed()) return runVerify(parser.verifyOptions, out, err);
  if (parser.selftest->parsed()) return runSelftest(parser.selftestOptions, connect, out, err);
  if (parser.demo->parsed()) return runDemo(parser.demoOptions, out, err);
  return runOnServer(parser.queryOptions, *parser.query, err,
                     [&] { return runQuery(parser.queryOptions, connect, out, err); });
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
