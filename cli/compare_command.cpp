#include "cli/compare_command.h"

#include <CLI/CLI.hpp>
#include <array>
#include <memory>
#include <ostream>
#include <vector>

#include "base/error.h"
#include "base/files.h"
#include "base/paths.h"
#include "cli/common_options.h"
#include "cli/interruption.h"
#include "cli/messages.h"
#include "cli/output_target.h"
#include "cli/server_path.h"
#include "cli/standard_question.h"
#include "db/connection_string.h"
#include "evidence/bag.h"
#include "evidence/snapshot_reader.h"
#include "evidence/trail_comparison.h"
#include "evidence/verification.h"
#include "query/query_failure.h"
#include "results/row_store.h"

namespace korvel::cli {

namespace fs = std::filesystem;

namespace {

using evidence::RowDifference;
using evidence::TrailComparison;
using evidence::TrailOddity;

constexpr const char* footer =
    "SNAPSHOT is the file that the command snapshot wrote, or its folder. It is compared with the\n"
    "trail that it was taken of, or with another one (--server, --database), row by row and by\n"
    "entry number, over the same days.\n"
    "\n"
    "What differs is written, a line for each value: rows that were changed, removed, inserted among\n"
    "others, renumbered or exchanged. Newer rows are no difference. Then comes what the trail shows\n"
    "by itself: missing and repeated entry numbers, and times that lie before those of the row\n"
    "before. Up to 1,000 of each kind are named; all are counted.\n"
    "\n"
    "The exit status is 0 where all rows of the snapshot are there unchanged and none came between\n"
    "them, else 5. A snapshot that was itself changed since it was taken is a difference, too.\n"
    "\n"
    "Examples:\n"
    "  korvel-audit compare /srv/snapshots/2024-03\n"
    "  korvel-audit compare /srv/snapshots/2024-03 --format pdf --output comparison.pdf\n";

/// The snapshot that a name means.
fs::path snapshotNamed(const std::string& name) {
  fs::path named = pathFromUtf8(name);
  std::error_code failure;
  if (!fs::is_directory(files::status(named, failure))) return named;
  std::vector<fs::path> found;
  for (const fs::path& folder : {named, named / evidence::payloadFolder}) {
    if (!fs::is_directory(files::status(folder, failure))) continue;
    for (const fs::path& file : files::listFolder(folder, failure))
      if (utf8FromPath(file.filename()).ends_with(".db") && isDatabaseFile(file)) found.push_back(file);
  }
  if (found.size() == 1) return found.front();
  throw Error(unspecifiedFailure, found.empty() ? "there is no snapshot in " + name
                                                : "there are several databases in " + name + ": name one of them");
}

// By the values of RowDifference::Kind and TrailOddity::Kind.
constexpr std::array<std::string_view, 5> differenceNames = {"changed", "removed", "inserted", "renumbered",
                                                             "exchanged"};
constexpr std::array<std::string_view, 3> oddityNames = {"numbers missing", "number repeated", "time goes back"};

/// The report: a list with a row for each value that differs, and one for each oddity.
class Report {
 public:
  Report() {
    std::vector<db::Field> fields;
    for (const char* caption : {"Finding", "Entry ID", "Column", "In the Snapshot", "Now"}) {
      fields.push_back({caption});
      headers_.push_back({caption, results::standardColumnWidth, 0});
    }
    store_->beginResult(fields);
  }

  void add(const RowDifference& difference) {
    std::string what(differenceNames.at(static_cast<std::size_t>(difference.kind)));
    if (difference.kind == RowDifference::Kind::exchanged && difference.otherNumber)
      what += " with " + std::to_string(*difference.otherNumber);
    const std::string number = difference.number ? std::to_string(*difference.number) : std::string();
    // Values that were empty on both sides say nothing.
    for (const evidence::ValueChange& value : difference.values)
      if (value.before.value_or("") != value.now.value_or("") || difference.kind == RowDifference::Kind::changed)
        add(what, number, value.column, value.before, value.now);
  }

  void add(const TrailOddity& oddity) {
    std::string number = std::to_string(oddity.number);
    if (oddity.last != oddity.number) number += " to " + std::to_string(oddity.last);
    const bool isTime = oddity.kind == TrailOddity::Kind::clockStep;
    add(std::string(oddityNames.at(static_cast<std::size_t>(oddity.kind))), number, isTime ? "DateTime" : "Nr",
        isTime ? Value("after " + oddity.before) : Value(), isTime ? Value(oddity.now) : Value());
  }

  [[nodiscard]] results::ResultList take() {
    results::ResultList list(results::RowFilling::whole);
    list.setColumns(std::move(headers_));
    list.setRows(store_, std::move(rows_));
    return list;
  }

 private:
  using Value = std::optional<std::string>;

  void add(const std::string& what, const std::string& number, const std::string& column, const Value& before,
           const Value& now) {
    const auto cell = [](const Value& value) { return value ? db::Cell{*value, false} : db::Cell{{}, true}; };
    const std::vector<db::Cell> cells = {{what, false}, {number, false}, {column, false}, cell(before), cell(now)};
    rows_.push_back(store_->append(cells));
  }

  std::shared_ptr<results::RowStore> store_ = std::make_shared<results::RowStore>();
  std::vector<results::ColumnHeader> headers_;
  std::vector<results::RowId> rows_;
};

void addCount(std::string& text, std::uint64_t count, std::string_view one, std::string_view several) {
  if (count == 0) return;
  text.append(text.empty() ? "" : ", ").append(groupedNumber(count)).append(" ").append(count == 1 ? one : several);
}

/// Sentences about all that was found, the conclusion first.
std::vector<std::string> sentencesOf(const TrailComparison& found, const std::vector<std::string>& snapshotFindings) {
  std::vector<std::string> sentences;
  std::string counts;
  addCount(counts, found.changed, "changed", "changed");
  addCount(counts, found.removed, "removed", "removed");
  addCount(counts, found.inserted, "inserted", "inserted");
  std::string rows;
  addCount(rows, found.rowsBefore, "row", "rows");
  if (rows.empty()) rows = "0 rows";
  sentences.push_back(counts.empty() ? "UNCHANGED: the snapshot's " + rows + " are in the trail as they were"
                                     : "DIFFERENT: " + counts + "; the snapshot has " + rows);
  std::string newer;
  addCount(newer, found.newer, "row is newer", "rows are newer");
  if (!newer.empty()) sentences.push_back(newer);
  for (const std::string& column : found.columnsGone)
    sentences.push_back("DIFFERENT: the trail has no column " + column + " any more");
  for (const std::string& column : found.columnsNew)
    sentences.push_back("DIFFERENT: the trail has a new column " + column);
  std::string oddities;
  addCount(oddities, found.missingNumbers, "entry number is missing", "entry numbers are missing");
  addCount(oddities, found.repeatedNumbers, "entry number stands more than once", "entry numbers stand more than once");
  addCount(oddities, found.clockSteps, "time lies before that of the row before",
           "times lie before those of the rows before");
  if (!oddities.empty()) sentences.push_back("In the trail by itself: " + oddities);
  for (const std::string& finding : snapshotFindings)
    sentences.push_back("DIFFERENT: the snapshot itself is not as it was taken: " + finding);
  return sentences;
}

struct Compared {
  TrailComparison found;
  std::vector<std::string> snapshotFindings;
  evidence::SnapshotFacts facts;

  [[nodiscard]] bool isUnchanged() const { return found.isUnchanged() && snapshotFindings.empty(); }
};

Compared compare(const CompareOptions& options, const query::Connector& connect) {
  const auto untilStopped = [](std::uint64_t /*done*/) {
    if (Interruption::requested()) throw Stopped{};
  };
  const fs::path file = snapshotNamed(options.snapshot);
  Compared compared;
  {
    const auto snapshot = evidence::openSnapshot(file);
    const auto facts = evidence::snapshotFactsOf(*snapshot);
    if (!facts) throw Error(unspecifiedFailure, utf8FromPath(file) + " is a database, and no snapshot");
    compared.facts = *facts;
  }
  compared.snapshotFindings = evidence::verifyOutput(file, untilStopped).findings;
  db::AuditSelection selection;
  selection.dates = db::AuditSelection::Dates::all;
  selection.numbers.emplace();
  evidence::RowStream before([file, selection](db::ResultSink& sink, const std::stop_token& /*stop*/) {
    evidence::openSnapshot(file)->select(selection, sink);
  });
  if (!compared.facts.source.from.empty()) {
    selection.dates = db::AuditSelection::Dates::within;
    selection.from = compared.facts.source.from;
    selection.to = compared.facts.source.to;
  }
  const std::string server = options.server.empty() ? compared.facts.source.server : options.server;
  const std::string database = options.database.empty() ? compared.facts.source.database : options.database;
  const std::string connectionString = db::buildConnectionString(server, database);
  evidence::RowStream now([&connect, connectionString, selection](db::ResultSink& sink, const std::stop_token& stop) {
    connect(connectionString, stop)->select(selection, sink);
  });
  compared.found = evidence::compareTrails(before, now, compared.facts.last, untilStopped);
  return compared;
}

int writeReport(const CompareOptions& options, const Compared& compared, std::ostream& out, std::ostream& err) {
  const std::vector<std::string> sentences = sentencesOf(compared.found, compared.snapshotFindings);
  std::string remark = "Snapshot of " + compared.facts.source.database + " on " + compared.facts.source.server +
                       ", taken " + compared.facts.begun;
  for (const std::string& sentence : sentences) {
    if (!options.quiet) say(err, sentence);
    addSentence(remark, sentence);
  }
  Report report;
  for (const RowDifference& difference : compared.found.differences) report.add(difference);
  for (const TrailOddity& oddity : compared.found.oddities) report.add(oddity);
  const results::ResultList list = report.take();
  const int status = compared.isUnchanged() ? exitDone : exitIncomplete;
  // On a terminal a table without rows says nothing.
  if (list.rowCount() == 0 && options.output == "-" && options.format->name == outputFormats().front().name)
    return status;
  writeTo(options.output, out, [&](const output::ByteSink& sink) {
    options.format->write({list, "Comparison", remark}, untilInterrupted(sink), err);
  });
  return status;
}

}  // namespace

CLI::App* addCompareCommand(CLI::App& app, CompareOptions& options) {
  CLI::App* command = app.add_subcommand("compare", "Compare a snapshot with the audit trail that it is of");
  command->add_option("snapshot", options.snapshot, "Snapshot, or its folder")->option_text("SNAPSHOT")->required();
  addConnection(*command, options.server, options.database);
  // Where they are not given, the snapshot says what it is of.
  options.server.clear();
  options.database.clear();
  addTarget(*command, options.format, options.output);
  command->add_flag("--quiet", options.quiet, "Leave out the sentences on standard error");
  command->footer(footer);
  return command;
}

int runCompare(const CompareOptions& options, const query::Connector& connect, std::ostream& out, std::ostream& err) {
  if (const auto problem = targetProblem(*options.format, options.output, out)) return refused(err, *problem);
  const Interruption interruption;
  Compared compared;
  int status = exitDone;
  auto failure = query::failureOf([&] {
    try {
      compared = compare(options, connect);
    } catch (const Stopped&) {
      status = stopped(err);
    }
  });
  if (failure) {
    say(err, "error " + errorText(*failure));
    return exitDatabase;
  }
  if (status != exitDone) return status;
  failure = query::failureOf([&] {
    try {
      status = writeReport(options, compared, out, err);
    } catch (const Stopped&) {
      status = stopped(err);
    }
  });
  return failure ? outputFailed(err, *failure) : status;
}

}  // namespace korvel::cli
