#include "cli/sql_command.h"

#include <CLI/CLI.hpp>
#include <exception>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <ostream>
#include <utility>

#include "base/files.h"
#include "base/paths.h"
#include "cli/common_options.h"
#include "cli/interruption.h"
#include "cli/manifest_option.h"
#include "cli/messages.h"
#include "cli/output_target.h"
#include "cli/tool_page_head.h"
#include "db/connection_state.h"
#include "db/connection_string.h"
#include "db/worker.h"
#include "evidence/answer_record.h"
#include "evidence/recorded_rows.h"
#include "output/row_writer.h"
#include "query/audit_record.h"
#include "query/custom_query.h"
#include "query/query_failure.h"
#include "query/query_file.h"

namespace korvel::cli {

namespace {

constexpr const char* footer =
    "TEXT is sent to the server as it is. The first result set that has columns is written, and\n"
    "nothing of later ones. Databases of the embedded engine are only read: what would change one\n"
    "is refused. On a server TEXT runs in a transaction that is rolled back; a TEXT that commits by\n"
    "itself is beyond that. Only the rights of your login protect an audit trail from intent.\n"
    "\n"
    "Formats (--format), in UTF-8 but for html:\n"
    "  table      aligned for a terminal; control characters in values show as \\n, \\x1B and so on\n"
    "  text       the layout of the viewer's text export: commas, nothing quoted, outer blanks\n"
    "             removed\n"
    "  exchange   the layout of the spreadsheet's exchange file: |\n"
    "  csv        values as stored, after RFC 4180; null is an empty field, an empty text is \"\"\n"
    "  json       values as stored: an array of objects; all values are strings, null is null;\n"
    "             bytes that are no text become U+FFFD and are counted\n"
    "  html       a report file like the viewer's: in windows-1252, outer blanks removed, values as\n"
    "             they stand, also where they look like markup\n"
    "  pdf        the same on pages\n"
    "  xlsx       values as stored, as a spreadsheet: numbers, dates and booleans where nothing is\n"
    "             lost\n"
    "pdf and xlsx go to a file or a pipe, not to a terminal.\n"
    "\n"
    "text, exchange, csv, json and xlsx take the answer while it arrives, in little memory however\n"
    "long it is; the others, and --find, --where and --count-by, hold all of it. What went to\n"
    "standard output before a failure stays there: the exit status tells. A file is written whole\n"
    "or not at all, also when Ctrl+C ends the query.\n"
    "\n"
    "--where takes a caption or the number of a column. Values of one column are alternatives; of\n"
    "different columns all must hold. An empty value is null, too.\n"
    "\n"
    "With --manifest the file gets two more beside it: what was asked, of whom and when, with the\n"
    "SHA-256 of the file and of each record, and a file that \"sha256sum -c\" reads. See verify.\n"
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

/// Thrown to abandon an output.
struct NothingToWrite {};

std::string databaseText(const Error& error) {
  std::string text = "database error " + std::to_string(error.number());
  if (error.line()) text += " in line " + std::to_string(*error.line());
  return text + ": " + settings::describe(error, settings::LanguageOffset{});
}

/// Reports the outcome of a query, apart from failures to write; gives the exit status.
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

bool wanted() {
  return !Interruption::requested();
}

/// Writes an answer while it arrives, on the thread of the query, and watches the free memory meanwhile: a
/// server's rows take none, but the embedded engine sorts in it.
class WatchedStream final : public db::ResultSink {
 public:
  /// Once `close` was called, nothing of the caller's is used any more.
  WatchedStream(const OutputFormat& format, std::string_view caption, const output::ByteSink& target, std::ostream& err,
                bool records)
      : outlet_([this, &target](std::string_view bytes) {
          const std::lock_guard lock(mutex_);
          if (!closed_) target(bytes);
        }),
        recorder_(evidence::recordedForms(format.name)),
        stream_(writerOf(format, caption, err, records), wanted) {}

  void beginResult(std::span<const db::Field> fields) override { stream_.beginResult(fields); }
  /// A failure to write ends the answer in good order and is kept for throwUnwritten(): it is not an error of the
  /// database.
  bool row(std::span<const db::Cell> cells) override {
    try {
      return stream_.row(cells);
    } catch (...) {
      unwritten_ = std::current_exception();
      return false;
    }
  }
  void endResult() override { stream_.endResult(); }
  bool shouldContinue() override {
    if (unwritten_) return false;
    look_.look(memory_);
    return stream_.shouldContinue();
  }

  /// The query was detached, and keeps this stream: waits until a write in progress has ended.
  void close() {
    const std::lock_guard lock(mutex_);
    closed_ = true;
  }

  void throwUnwritten() const {
    if (unwritten_) std::rethrow_exception(unwritten_);
  }
  void finish() { stream_.finish(); }
  [[nodiscard]] std::size_t rowCount() const noexcept { return stream_.rowCount(); }
  [[nodiscard]] bool stopped() const noexcept { return stream_.stopped(); }
  [[nodiscard]] evidence::Manifest::Rows takeRecorded() { return recorder_.take(); }

 private:
  std::unique_ptr<output::RowWriter> writerOf(const OutputFormat& format, std::string_view caption, std::ostream& err,
                                              bool records) {
    auto writer = format.stream(caption, outlet_, err);
    if (!records) return writer;
    return std::make_unique<evidence::RecordingWriter>(std::move(writer), recorder_);
  }

  std::mutex mutex_;
  bool closed_ = false;
  output::ByteSink outlet_;
  evidence::RowRecorder recorder_;
  output::RecordStream stream_;
  query::PacedMemoryCheck look_{query::QueryEnvironment{}};
  results::MemoryWatch memory_;
  std::exception_ptr unwritten_;
};

/// One query whose answer goes to one target.
class SqlRun {
 public:
  SqlRun(const SqlOptions& options, const query::Connector& connect, std::string text, std::ostream& err)
      : format_(*options.format),
        choice_(options.choice),
        target_(options.output),
        connect_(connect),
        text_(std::move(text)),
        connectionString_(db::buildConnectionString(options.server, options.database)),
        err_(err),
        wantsManifest_(options.manifest),
        manifest_(options.manifest ? begunManifest(options.server, options.database)
                                   : evidence::begunRecord(options.server, options.database)) {}

  /// The target is opened before the query runs: one that cannot be written fails at once.
  int run(std::ostream& out) {
    query::CustomReport report;
    const auto failure = query::failureOf([&] {
      try {
        writeTo(
            target_, out,
            [&](const output::ByteSink& target) {
              const output::ByteSink sink = untilInterrupted(target);
              const RepeatedNotes notes(err_, manifest_);
              const bool streams = format_.stream != nullptr && choice_.takesAll() && choice_.countBy.empty();
              report = streams ? stream(sink, notes.stream()) : collect(sink, notes.stream());
              // Leaves a file as it was.
              if (report.outcome != CustomOutcome::filled || ended_) throw NothingToWrite{};
            },
            wantsManifest_ ? ManifestMaker([this] { return describedManifest(); }) : ManifestMaker());
      } catch (const NothingToWrite&) {
      } catch (const Stopped&) {
        report = {CustomOutcome::stopped, std::nullopt};
      }
    });
    if (failure) return outputFailed(err_, *failure);
    return ended_ ? *ended_ : ended(err_, report);
  }

 private:
  using CustomOutcome = query::CustomOutcome;

  /// Collects the whole answer, then writes it.
  query::CustomReport collect(const output::ByteSink& sink, std::ostream& notes) {
    results::ResultList list(results::RowFilling::whole);
    query::CustomReport report = query::runCustomQuery(text_, connectionString_, server_.remembering(connect_), list,
                                                       [](std::size_t) { return wanted(); });
    if (report.outcome != CustomOutcome::filled) return report;
    evidence::PrintedPart part{.caption = std::string(caption)};
    part.ofRows = list.rowCount();
    ended_ = applyRowChoice(choice_, list, part.remark, notes);
    if (ended_) return report;
    part.rows = list.rowCount();
    part.isCounted = !choice_.countBy.empty();
    format_.write({list, caption, part.remark, [&] { return toolPageHead(describedManifest(), part); }}, sink, notes);
    if (wantsManifest_) manifest_.rows = evidence::recordedRows(list, evidence::recordedForms(format_.name));
    return report;
  }

  /// Writes the answer while it arrives.
  query::CustomReport stream(const output::ByteSink& sink, std::ostream& notes) {
    const auto stream = std::make_shared<WatchedStream>(format_, caption, sink, notes, wantsManifest_);
    const auto work = [stream, connect = server_.remembering(connect_), text = text_,
                       connectionString = connectionString_](const std::stop_token& stop) {
      return query::failureOf([&] {
        const auto connection = connect(connectionString, stop);
        if (!connection) throw query::internalFailure();
        connection->executeRolledBack(text, *stream);
      });
    };
    const auto result = db::runOnWorker(work, wanted);
    if (!result) {
      stream->close();
      return {CustomOutcome::stopped, std::nullopt};
    }
    stream->throwUnwritten();
    if (!wanted() || stream->stopped()) return {CustomOutcome::stopped, std::nullopt};
    if (*result) return {CustomOutcome::failed, *result};
    if (stream->rowCount() == 0) return {CustomOutcome::noRecords, std::nullopt};
    stream->finish();
    if (wantsManifest_) manifest_.rows = stream->takeRecorded();
    return {CustomOutcome::filled, std::nullopt};
  }

  /// All that a manifest tells.
  evidence::Manifest describedManifest() {
    evidence::Manifest manifest = manifest_;
    manifest.question.text = text_;
    if (!choice_.takesAll()) manifest.question.filters.push_back(choiceText(choice_));
    manifest.output.format = format_.name;
    endRecord(manifest, server_.identity());
    return manifest;
  }

  /// That of the viewer's page for such queries.
  static constexpr std::string_view caption = query::pageCaptions[query::customList];

  const OutputFormat& format_;
  const RowChoice& choice_;
  /// With which status the command ends where no row is left, or a column of the choice is missing.
  std::optional<int> ended_;
  const std::string& target_;
  const query::Connector& connect_;
  std::string text_;
  std::string connectionString_;
  std::ostream& err_;
  bool wantsManifest_;
  evidence::AnsweringServer server_;
  evidence::Manifest manifest_;
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
  addRowChoice(*command, options.choice);
  addCountFormat(*command, options.choice, options.format);
  addManifest(*command, options.manifest);
  command->get_option("--count-by")->excludes(command->get_option("--manifest"));
  command->callback([command, text, &options] {
    options.fromFile = command->count("--file") > 0;
    if (!options.fromFile && text->count() == 0) throw CLI::RequiredError("TEXT or --file");
  });
  command->footer(footer);
  return command;
}

int runSql(const SqlOptions& options, const query::Connector& connect, std::ostream& out, std::ostream& err) {
  if (const auto problem = targetProblem(*options.format, options.output, out)) return refused(err, *problem);
  if (options.manifest)
    if (const auto problem = manifestProblem(options.output)) return refused(err, *problem);
  if (options.fromFile && files::equivalent(pathFromUtf8(options.file), pathFromUtf8(options.output)))
    return refused(err, options.output + " is the query file itself");
  std::string text = options.text;
  if (options.fromFile)
    if (const auto failure = query::failureOf([&] { text = query::loadQueryFile(pathFromUtf8(options.file)); }))
      return refused(err, failure->description());
  if (text.find_first_not_of(" \t\r\n") == std::string::npos)
    return refused(err, options.fromFile ? options.file + " holds no query" : "the query is empty");
  const Interruption interruption;
  return SqlRun(options, connect, std::move(text), err).run(out);
}

}  // namespace korvel::cli
