#include "cli/tool_parser.h"

#include <string>

#include "cli/messages.h"
#include "cli/platform.h"

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

}  // namespace

ToolApp::ToolApp() : CLI::App(about, "korvel-audit") {
  set_version_flag("--version", std::string("korvel-audit ") + KORVEL_VERSION, "Show the version");
  set_help_flag("-h,--help", "Show this help");
  get_formatter()->column_width(28);
}

ToolParser::ToolParser()
    : demo(addDemoCommand(app, demoOptions)),
      query(addQueryCommand(app, queryOptions)),
      history(addHistoryCommand(app, historyOptions)),
      review(addReviewCommand(app, reviewOptions)),
      marks(addMarksCommand(app, marksOptions)),
      chart(addChartCommand(app, chartOptions)),
      sql(addSqlCommand(app, sqlOptions)),
      verify(addVerifyCommand(app, verifyOptions)),
      snapshot(addSnapshotCommand(app, snapshotOptions)),
      compare(addCompareCommand(app, compareOptions)),
      selftest(addSelftestCommand(app, selftestOptions)) {
  app.footer(std::string(footer) + exitStatusHelp + environmentHeading + environmentHelp);
  app.require_subcommand(1);
  for (const ServerCommand* command : {&serversCommand, &databasesCommand, &installCommand, &checkCommand})
    serverCommands.emplace_back(command, command->add(app, serverOptions));
  for (CLI::App* command : app.get_subcommands({})) {
    const std::string before = command->get_footer();
    command->footer(before + (before.empty() ? "" : "\n") + exitStatusHelp);
  }
}

}  // namespace korvel::cli
