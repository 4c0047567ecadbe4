#include "cli/sql_command.h"

#include <CLI/CLI.hpp>
#include <optional>
#include <ostream>

#include "cli/common_options.h"
#include "cli/exit_status.h"
#include "cli/interruption.h"
#include "cli/messages.h"
#include "cli/output_target.h"
#include "db/connection_state.h"
#include "output/record_stream.h"
#include "query/custom_query.h"
#include "query/query_failure.h"
#include "query/query_file.h"

namespace korvel::cli {

namespace {

constexpr const char* footer =
    "TEXT is sent to the server as it is. The first result set that has columns is written, and\n"
    "nothing of later ones. Databases of the embedded engine are only read: what would change one\n"
    "is refused.\n"
    "\n"
    "Formats (--format), all in UTF-8:\n"
    "  table      aligned for a terminal; control characters in values show as \\n, \\x1B and so on\n"
    "  text       the layout of the viewer's text export: commas, nothing quoted, outer blanks\n"
    "             removed\n"
    "  exchange   the layout of the spreadsheet's exchange file: |\n"
    "  csv        values as stored, after RFC 4180; null is an empty field, an empty text is \"\"\n"
    "  json       values as stored: an array of objects; all values are strings, null is null\n"
    "All but the table are written while the answer arrives, in little memory however long it is.\n"
    "So what went to standard output before a failure stays there: the exit status tells. A file is\n"
    "written whole or not at all, also when Ctrl+C ends the query.\n"
    "\n"
    "Query files (--file) are those of the viewer's custom page: text in the system's code page.\n"
    "\n"
    "Where the answer has no rows, nothing is written and the exit status is 1.\n"
    "\n"
    "Examples:\n"
    "  korvel-audit sql \"select EventType, count(*) as n from Korvel_Audit_Trails group by EventType\"\n"
    "  korvel-audit sql --file alarms.vqf --format csv --output alarms.csv\n"
    "  korvel-audit sql --server AUDITSRV \"select top 10 * from Korvel_Audit_Trails\" --format json\n";

constexpr std::string_view noRecordsText = "No Records Found for Query";

/// Ends the writing of an output that is not to be.
struct NothingToWrite {};

std::string databaseText(const Error& error) {
  std::string text = "database error " + std::to_string(error.number());
  if (error.line()) text += " in line " + std::to_string(*error.line());
  return text + ": " + error.description();
}

int outputFailed(std::ostream& err, const Error& error) {
  say(err, "error " + std::to_string(error.number()) + ": " + error.description());
  return exitOutput;
}

int stopped(std::ostream& err) {
  say(err, "stopped");
  return exitStopped;
}

/// How a query came out, apart from failures to write.
int ended(std::ostream& err, const query::CustomReport& report) {
  switch (report.outcome) {
    case query::CustomOutcome::stopped:
      return stopped(err);
    case query::CustomOutcome::noRecords:
      say(err, noRecordsText);
      return exitNoRecords;
    case query::CustomOutcome::failed:
      if (report.failure) say(err, databaseText(*report.failure));
      return exitDatabase;
    case query::CustomOutcome::filled:
      break;
  }
  return exitDone;
}

/// Looks after the machine's memory while a stream is filled: a server's rows take none, but the embedded engine sorts
/// in it.
class WatchedStream final : public db::ResultSink {
 public:
  explicit WatchedStream(output::RecordStream& stream) : stream_(stream), look_(noProgress_, surroundings_) {}

  void beginResult(std::span<const db::Field> fields) override { stream_.beginResult(fields); }
  bool row(std::span<const db::Cell> cells) override { return stream_.row(cells); }
  void endResult() override { stream_.endResult(); }
  bool goOn() override { return look_.look(stream_.rowCount(), memory_) && stream_.goOn(); }

 private:
  output::RecordStream& stream_;
  query::QueryProgress noProgress_;
  query::QuerySurroundings surroundings_;
  query::PacedLook look_;
  results::MemoryWatch memory_;
};

/// One query whose answer goes to one target.
class SqlRun {
 public:
  SqlRun(const SqlOptions& options, const query::Connector& connect, std::string text)
      : options_(options),
        connect_(connect),
        text_(std::move(text)),
        connectionString_(db::buildConnectionString(options.server, options.database)) {}

  /// Collects the whole answer, then writes it.
  int writeTable(std::ostream& out, std::ostream& err) {
    results::ResultList list(results::RowFilling::whole);
    const query::CustomReport report = query::runCustomQuery(text_, connectionString_, connect_, list,
                                                             [](std::size_t) { return !Interruption::requested(); });
    if (report.outcome != query::CustomOutcome::filled) return ended(err, report);
    if (Interruption::requested()) return stopped(err);
    const auto failure = query::failureOf([&] {
      writeTo(options_.output, out,
              [&](const output::ByteSink& sink) { output::writeList(options_.format, list, sink); });
    });
    return failure ? outputFailed(err, *failure) : exitDone;
  }

  /// Writes the answer while it arrives.
  int stream(std::ostream& out, std::ostream& err) {
    query::CustomReport report;
    std::optional<Error> unwritten;
    const auto failure = query::failureOf([&] {
      try {
        writeTo(options_.output, out, [&](const output::ByteSink& sink) {
          report = streamInto([&](std::string_view bytes) {
            unwritten = query::failureOf([&] { sink(bytes); });
            if (unwritten) throw Error(*unwritten);
          });
          if (unwritten) throw Error(*unwritten);
          // Leaves a file as it was.
          if (report.outcome != query::CustomOutcome::filled) throw NothingToWrite{};
        });
      } catch (const NothingToWrite&) {
      }
    });
    return failure ? outputFailed(err, *failure) : ended(err, report);
  }

 private:
  query::CustomReport streamInto(const output::ByteSink& sink) {
    using query::CustomOutcome;
    output::RecordStream stream(options_.format, sink, [] { return !Interruption::requested(); });
    const auto failure = query::failureOf([&] {
      const auto connection = connect_(connectionString_);
      if (!connection) throw query::internalFailure();
      WatchedStream watched(stream);
      connection->execute(text_, watched);
      if (!stream.stopped()) stream.finish();
    });
    if (stream.stopped()) return {CustomOutcome::stopped, std::nullopt};
    if (failure) return {CustomOutcome::failed, failure};
    return {stream.rowCount() == 0 ? CustomOutcome::noRecords : CustomOutcome::filled, std::nullopt};
  }

  const SqlOptions& options_;
  const query::Connector& connect_;
  std::string text_;
  std::string connectionString_;
};

}  // namespace

CLI::App* addSqlCommand(CLI::App& app, SqlOptions& options) {
  CLI::App* command = app.add_subcommand("sql", "Run a query of your own and write its answer");
  addConnection(*command, options.server, options.database);
  CLI::Option* text = command->add_option("text", options.text, "The query")->option_text("TEXT");
  CLI::Option* file =
      command->add_option("--file", options.file, "Query file (.vqf) to take the query from")->option_text("FILE");
  text->excludes(file);
  addTarget(*command, options.format, options.output);
  command->callback([command, text, &options] {
    options.fromFile = command->count("--file") > 0;
    if (!options.fromFile && text->count() == 0) throw CLI::RequiredError("TEXT or --file");
  });
  command->footer(footer);
  return command;
}

int runSql(const SqlOptions& options, const query::Connector& connect, std::ostream& out, std::ostream& err) {
  if (options.output != "-" && isDatabaseFile(options.output))
    return refused(err, options.output + " is a database; the tool does not replace it");
  std::string text = options.text;
  if (options.fromFile)
    if (const auto failure = query::failureOf([&] { text = query::loadQueryFile(options.file); }))
      return refused(err, failure->description());
  const Interruption interruption;
  SqlRun run(options, connect, std::move(text));
  return output::canStream(options.format) ? run.stream(out, err) : run.writeTable(out, err);
}

}  // namespace korvel::cli
