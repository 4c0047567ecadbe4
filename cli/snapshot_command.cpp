#include "cli/snapshot_command.h"

#include <CLI/CLI.hpp>
#include <ostream>

#include "base/paths.h"
#include "cli/common_options.h"
#include "cli/interruption.h"
#include "cli/messages.h"
#include "cli/output_target.h"
#include "cli/standard_question.h"
#include "db/connection_string.h"
#include "evidence/snapshot.h"
#include "query/query_failure.h"

namespace korvel::cli {

namespace {

constexpr const char* footer =
    "Copies the audit trail, or the rows of some days, into an embedded database in FOLDER, which\n"
    "every command and the viewer open as any other: --server FOLDER. Beside it stand its manifest\n"
    "and sums, see verify. The trail is only read, in the order of the entry numbers, up to the\n"
    "greatest one at the beginning; reading the table has to be allowed.\n"
    "\n"
    "The database appears when it is whole. Where the connection breaks, or the program is stopped,\n"
    "NAME.db.unfinished stays in the folder: run the same command again to continue. No file is\n"
    "replaced, and finished ones are read-only.\n"
    "\n"
    "With --bag FOLDER becomes a BagIt bag (RFC 8493), as archives take them; the database is in its\n"
    "folder data.\n"
    "\n"
    "Examples:\n"
    "  korvel-audit snapshot --server PLANT1 --output /srv/snapshots/2024-03\n"
    "  korvel-audit compare /srv/snapshots/2024-03\n";

/// How the end of a row count is told.
std::string rowsText(std::uint64_t rows) {
  return groupedNumber(rows) + (rows == 1 ? " row" : " rows");
}

}  // namespace

CLI::App* addSnapshotCommand(CLI::App& app, SnapshotOptions& options) {
  CLI::App* command = app.add_subcommand("snapshot", "Copy an audit trail into a database that can be compared");
  addConnection(*command, options.server, options.database);
  addDays(*command, options.range);
  command->add_option("--output", options.output, "Folder for the snapshot; made where it is not there")
      ->option_text("FOLDER")
      ->required();
  command->add_flag("--bag", options.bag, "Make the folder a BagIt bag");
  command->add_flag("--quiet", options.quiet, "Say nothing where all went well");
  command->footer(footer);
  return command;
}

int runSnapshot(const SnapshotOptions& options, const query::Connector& connect, std::ostream& out, std::ostream& err) {
  if (const auto problem = daysProblem(options.range)) return refused(err, *problem);
  if (options.output.empty()) return refused(err, "--output needs the name of a folder");
  const Interruption interruption;
  evidence::SnapshotOrder order;
  order.source = {options.server, options.database, {}, {}};
  if (options.range.DateRangeActive) {
    order.source.from = query::fromDateText(options.range);
    order.source.to = query::toDateText(options.range);
  }
  order.connectionString = db::buildConnectionString(options.server, options.database);
  order.connect = connect;
  order.folder = pathFromUtf8(options.output);
  order.asBag = options.bag;
  order.program = "korvel-audit";
  order.programVersion = KORVEL_VERSION;
  std::uint64_t kept = 0;
  const auto untilStopped = [&kept](std::uint64_t rows, std::uint64_t /*ofRows*/) {
    kept = rows;
    if (Interruption::requested()) throw Stopped{};
  };
  evidence::TakenSnapshot taken;
  const auto sayKept = [&] {
    if (kept > 0) say(err, rowsText(kept) + " are kept in " + options.output + "; run the same command to continue");
  };
  int status = exitDone;
  const auto failure = query::failureOf([&] {
    try {
      taken = evidence::takeSnapshot(order, untilStopped);
    } catch (const Stopped&) {
      status = stopped(err);
      sayKept();
    }
  });
  if (failure) {
    say(err, "error " + errorText(*failure));
    return exitDatabase;
  }
  if (status != exitDone || options.quiet) return status;
  std::string text = utf8FromPath(taken.file) + ": " + rowsText(taken.facts.rows);
  if (taken.continuedAt > 0) text += ", continued after " + rowsText(taken.continuedAt);
  return writeText(out, err, output::terminalText(text) + '\n', exitDone);
}

}  // namespace korvel::cli
