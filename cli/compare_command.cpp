#include "cli/compare_command.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <chrono>
#include <ostream>
#include <string_view>

#include "base/error.h"
#include "base/paths.h"
#include "cli/common_options.h"
#include "cli/interruption.h"
#include "cli/manifest_option.h"
#include "cli/messages.h"
#include "cli/output_target.h"
#include "cli/standard_question.h"
#include "db/connection_string.h"
#include "evidence/comparison_head.h"
#include "evidence/comparison_json.h"
#include "evidence/comparison_list.h"
#include "evidence/comparison_words.h"
#include "evidence/origin.h"
#include "evidence/snapshot_comparison.h"
#include "evidence/snapshot_reader.h"
#include "query/query_failure.h"

namespace korvel::cli {

namespace {

constexpr const char* footer =
    "SNAPSHOT is the file that the command snapshot wrote, or its folder. It is compared with the\n"
    "trail that it was taken of, or with another one (--server, --database), row by row and by\n"
    "entry number, over the same days.\n"
    "\n"
    "What differs is written: rows that were changed, removed, inserted among others, renumbered or\n"
    "exchanged. Newer rows are no difference. Then comes what the trail shows by itself: missing and\n"
    "repeated entry numbers, and times that lie before those of the row before. Up to 1,000 of each\n"
    "kind are named; all are counted.\n"
    "\n"
    "table, html and pdf have a line for a removed or inserted row, and one for each value that\n"
    "changed. The other formats have a line for each value, json the whole rows and both sides.\n"
    "\n"
    "The exit status is 0 where all rows of the snapshot are there unchanged and none came between\n"
    "them, else 5. A snapshot that was itself changed since it was taken is a difference, too.\n"
    "\n"
    "Examples:\n"
    "  korvel-audit compare /srv/snapshots/2024-03\n"
    "  korvel-audit compare /srv/snapshots/2024-03 --format pdf --output comparison.pdf\n";

evidence::ComparedSnapshot compare(const CompareOptions& options, const query::Connector& connect) {
  const auto untilStopped = [](const evidence::ComparisonState& /*state*/) {
    if (Interruption::requested()) throw Stopped{};
  };
  evidence::ComparisonOrder order;
  order.snapshot = evidence::snapshotNamed(pathFromUtf8(options.snapshot));
  const evidence::SnapshotSource source = evidence::factsOfSnapshot(order.snapshot).source;
  order.server = options.server.empty() ? source.server : options.server;
  order.database = options.database.empty() ? source.database : options.database;
  order.connectionString = db::buildConnectionString(order.server, order.database);
  order.connect = connect;
  return evidence::compareWithSnapshot(order, untilStopped);
}

/// People get a line for a removed row, programs all of its values.
bool isReadByPeople(const OutputFormat& format) {
  constexpr std::array<std::string_view, 3> names = {"table", "html", "pdf"};
  return std::find(names.begin(), names.end(), format.name) != names.end();
}

int writeReport(const CompareOptions& options, const evidence::ComparedSnapshot& compared, std::ostream& out,
                std::ostream& err) {
  const evidence::ComparisonLanguage english{{}, groupedNumber};
  std::string remark = "Snapshot of " + compared.snapshot.source.database + " on " + compared.snapshot.source.server +
                       ", taken " + compared.snapshot.begun;
  for (const std::string& sentence : evidence::comparisonSentences(compared, english)) {
    if (!options.quiet) say(err, sentence);
    addSentence(remark, sentence);
  }
  const int status = compared.isUnchanged() ? exitDone : exitIncomplete;
  const results::ResultList list = evidence::comparisonList(
      compared,
      isReadByPeople(*options.format) ? evidence::ComparisonRows::compact : evidence::ComparisonRows::complete,
      english);
  // On a terminal a table without rows says nothing.
  if (list.rowCount() == 0 && options.output == "-" && options.format->name == outputFormats().front().name)
    return status;
  const auto head = [&] {
    const evidence::Manifest begun = begunManifest({}, {});
    return evidence::comparisonHead(
        compared, english,
        {begun.program, begun.programVersion, evidence::localTimeText(std::chrono::system_clock::now())});
  };
  writeTo(options.output, out, [&](const output::ByteSink& sink) {
    const output::ByteSink untilStopped = untilInterrupted(sink);
    if (options.format->name == "json")
      untilStopped(evidence::comparisonJson(compared));
    else
      options.format->write({list, english.text("compare.caption"), remark, head}, untilStopped, err);
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
  evidence::ComparedSnapshot compared;
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
