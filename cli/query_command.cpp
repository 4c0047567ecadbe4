#include "cli/query_command.h"

#include <CLI/CLI.hpp>
#include <chrono>
#include <ostream>

#include "base/text.h"
#include "cli/common_options.h"
#include "cli/interruption.h"
#include "cli/messages.h"
#include "cli/output_target.h"
#include "db/connection_state.h"
#include "db/connection_string.h"
#include "db/open_connection.h"
#include "query/complete_query.h"
#include "query/query_failure.h"
#include "query/standard_query.h"
#include "settings/string_table.h"

namespace korvel::cli {

namespace {

constexpr settings::TextId noCriteriaText{10060};
constexpr settings::TextId noRecordsText{10061};

constexpr const char* footer =
    "Categories (--category takes the key, the name or the viewer's caption; a group's key or\n"
    "caption stands for all of the group):\n"
    "  A  Configuration       C1 KorvelExplorer  C2 Alarms    C3 TagLogging  C4 UAcs\n"
    "  B  Runtime             R1 CustomActions   R2 UArt\n"
    "  C  Document Control    D1 CheckIN         D2 CheckOUT  D3 Rollback    D4 Restore\n"
    "A record that belongs to two of the categories comes twice. With all ten (the default) the\n"
    "answer also holds the audit system's own entries. An answer holds 5000 records at most, of\n"
    "each category or, with all ten, altogether. --complete goes beyond: it asks again for shorter\n"
    "and shorter times until nothing is cut, joins the answers, and says on standard error whether\n"
    "the result is complete, and if it is not, what is missing.\n"
    "\n"
    "Lists (--list):\n"
    "  0 ALL Audits   1 Configuration   2 Runtime   3 Document Control   4 KorvelAudit\n"
    "\n"
    "Formats (--format), in UTF-8 but for html:\n"
    "  table      the list as the viewer displays it, aligned for a terminal; control characters\n"
    "             in values show as \\n, \\x1B and so on\n"
    "  text       the list as displayed, in the layout of the viewer's text export: commas,\n"
    "             nothing quoted\n"
    "  exchange   the list as displayed, in the layout of the spreadsheet's exchange file: |\n"
    "  csv        full copy: every column, values as stored, after RFC 4180; null is an empty\n"
    "             field, an empty text is \"\"\n"
    "  json       full copy: an array of objects keyed by column name; all values are strings,\n"
    "             null is null; bytes that are no text become U+FFFD and are counted\n"
    "  html       the list as displayed, as the viewer's report file: in windows-1252, values as\n"
    "             they stand, also where they look like markup\n"
    "  pdf        the list as displayed, on pages\n"
    "  xlsx       full copy as a spreadsheet: numbers, dates and booleans where nothing is lost\n"
    "pdf and xlsx go to a file or a pipe, not to a terminal.\n"
    "As displayed means: outer blanks removed, Comments and Summer Time left empty. Only csv, json\n"
    "and xlsx carry these two.\n"
    "\n"
    "Row counts of all lists go to standard error (not with --quiet), and notes on what the answer\n"
    "holds beyond the question or may lack: with dates, alarm rows of the vel_Alg tables come from\n"
    "all dates, unless all ten categories are asked for. Where the list that was asked for is empty,\n"
    "nothing is written and the exit status is 1.\n"
    "\n"
    "Examples:\n"
    "  korvel-audit query --category Alarms --list 1\n"
    "  korvel-audit query --from 2024-03-01 --to 2024-03-07 --sort \"Date Time\" --descending\n"
    "  korvel-audit query --category D1 --category D2 --format csv --output checks.csv\n"
    "  korvel-audit query --server /srv/audit --database Korvel_Audit_MU --format json | jq .\n";

/// Thrown to abandon an output.
struct NothingToWrite {};

/// The first year that a server's dates have.
constexpr std::chrono::year firstYear{1753};

/// "C1 KorvelExplorer", or "A Configuration" for a group.
std::string categoryText(const query::FilterNode& node) {
  return std::string(node.key) + " " +
         std::string(node.argument == 0 ? node.caption : db::categoryConditions()[node.argument - 1].parameter);
}

/// Why a text is not a category; empty where it is one.
std::string categoryProblem(const std::string& text) {
  if (categoryNamed(text)) return {};
  std::string sharing;
  std::string known;
  for (const query::FilterNode& node : query::filterNodes()) {
    known.append(known.empty() ? "" : ", ") += categoryText(node);
    if (equalsIgnoringAsciiCase(text, node.caption))
      sharing.append(sharing.empty() ? "" : " and ") += categoryText(node);
  }
  const std::string quoted = "'" + output::terminalText(text) + "' is ";
  return quoted + (sharing.empty() ? "no category; there are " + known : "the caption of " + sharing);
}

/// Why a text is not a valid day; empty where it is one.
std::string dayProblem(const std::string& text) {
  const auto day = query::parseDay(text);
  const std::string quoted = "'" + output::terminalText(text) + "' is ";
  if (!day) return quoted + "no day of the calendar in the form YYYY-MM-DD";
  if (day->year() < firstYear)
    return quoted + "too early: dates begin in " + std::to_string(static_cast<int>(firstYear));
  return {};
}

CLI::Option* addDay(CLI::App& command, const OptionHelp& help, std::chrono::year_month_day& day) {
  return command
      .add_option_function<std::string>(
          help.name, [&day](const std::string& text) { day = query::parseDay(text).value(); }, help.text)
      ->option_text(help.value)
      ->check(dayProblem);
}

std::optional<std::size_t> standardListNumbered(const std::string& text) {
  if (text.size() != 1 || text[0] < '0' || text[0] >= '0' + static_cast<char>(query::standardListCount))
    return std::nullopt;
  return static_cast<std::size_t>(text[0] - '0');
}

void addFilters(CLI::App& command, QueryOptions& options) {
  command
      .add_option_function<std::vector<std::string>>(
          "--category",
          [&options](const std::vector<std::string>& keys) {
            for (const std::string& key : keys) options.categories.push_back(categoryNamed(key).value());
          },
          "Category of audits, may be repeated (default: all)")
      ->option_text("KEY")
      ->delimiter(',')
      ->check(categoryProblem);
  CLI::Option* from =
      addDay(command, {"--from", "YYYY-MM-DD", "First day, whole; together with --to"}, options.range.RangeFromDate);
  CLI::Option* to =
      addDay(command, {"--to", "YYYY-MM-DD", "Last day, whole; together with --from"}, options.range.RangeToDate);
  from->needs(to);
  to->needs(from);
  command.add_flag("--complete", options.complete, "Go beyond the 5000 records that an answer holds at most");
}

void addOutput(CLI::App& command, QueryOptions& options) {
  addReadOption(command, {"--list", "0..4", "Result list to write (default: 0, all audits)"}, standardListNumbered,
                "no list from 0 to 4", [&options](std::size_t list) { options.list = list; });
  addReadOption(
      command,
      {"--sort", "COLUMN", "Column to sort by: caption, column name, or number\ncounted from 1 (default: Entry ID)"},
      columnNamed, "no column", [&options](results::ColumnIndex column) { options.sort = column; });
  command.add_flag("--descending", options.descending, "Sort from the last to the first");
  addTarget(command, options.format, options.output);
  command.add_flag("--quiet", options.quiet, "Leave out the row counts on standard error");
}

std::string recordsText(std::size_t count) {
  return std::to_string(count) + (count == 1 ? " record" : " records");
}

std::string listText(std::size_t list) {
  return "list " + std::to_string(list) + " (" + std::string(query::pageCaptions[list]) + ")";
}

void sayCounts(const query::ResultLists& lists, std::ostream& err) {
  for (std::size_t i = 0; i < query::standardListCount; ++i)
    err << listText(i) << ": " << recordsText(lists[i].rowCount()) << '\n';
}

/// Notes on what a reader of the answer would not expect.
void sayNotes(const query::FilterTree& tree, const query::DateRange& range, const query::QueryReport& report,
              std::ostream& err) {
  if (query::alarmsComeFromAllDates(tree.flags(), range))
    err << "note: " << settings::ownText(query::alarmsOfAllDatesText, settings::LanguageOffset{}) << ".\n";
  if (report.fullResults > 0)
    err << "note: " << report.fullResults << (report.fullResults == 1 ? " answer holds " : " answers hold ")
        << db::rowLimitPerResult
        << " records, the most that the procedure returns; there may be more, which --complete reads.\n";
}

query::FilterTree treeOf(const QueryOptions& options) {
  query::FilterTree tree;
  if (options.categories.empty()) tree.selectAll();
  for (const query::NodeIndex node : options.categories) tree.setChecked(node, true);
  return tree;
}

/// "48,213".
std::string grouped(std::size_t number) {
  std::string text = std::to_string(number);
  for (std::size_t at = text.size(); at > 3;) text.insert(at -= 3, ",");
  return text;
}

/// What came of a query: the exit status, and what is said of the rows.
struct Answered {
  int status = exitDone;
  std::string remark;
};

Answered answered(const QueryOptions& options, const query::FilterTree& tree, const query::QueryReport& report,
                  const query::ResultLists& lists, std::ostream& err) {
  using query::QueryOutcome;
  if (report.outcome == QueryOutcome::stopped) return {stopped(err), {}};
  if (report.failure) {
    say(err, "database error " + errorText(*report.failure));
    return {exitDatabase, {}};
  }
  if (report.outcome == QueryOutcome::noCriteria)
    return {refused(err, settings::loadText(noCriteriaText, settings::LanguageOffset{})), {}};
  if (report.outcome == QueryOutcome::noRecords) {
    say(err, settings::loadText(noRecordsText, settings::LanguageOffset{}));
    return {exitNoRecords, {}};
  }
  if (!options.quiet) sayCounts(lists, err);
  sayNotes(tree, options.range, report, err);
  // The pages of the other audit types hold no alarm rows.
  const bool showsAlarms = options.list <= 1 && query::alarmsComeFromAllDates(tree.flags(), options.range);
  Answered answer{exitDone,
                  std::string(showsAlarms ? settings::ownText(query::alarmsOfAllDatesText, settings::LanguageOffset{})
                                          : std::string_view{})};
  if (lists[options.list].rowCount() > 0) return answer;
  say(err, listText(options.list) + " is empty; nothing was written");
  return {exitNoRecords, {}};
}

/// Runs the query and says how it came out.
Answered fillLists(const QueryOptions& options, const query::Connector& connect, query::ResultLists& lists,
                   std::ostream& err) {
  const query::FilterTree tree = treeOf(options);
  const std::string connectionString = db::buildConnectionString(options.server, options.database);
  const query::StandardQueryRequest question{tree, options.range, connectionString};
  const auto shouldContinue = [] { return !Interruption::requested(); };
  if (!options.complete)
    return answered(options, tree, query::runStandardQuery(question, connect, lists, options.list, shouldContinue),
                    lists, err);

  query::CompleteAnswer whole = query::completeStandardQuery(
      question, connect, [&](const query::CompletionProgress& /*progress*/) { return shouldContinue(); });
  // A file holds the answer or stays as it was: what had come when it was stopped is not written.
  if (whole.report().outcome == query::QueryOutcome::stopped) return {stopped(err), {}};
  const query::CompletionReport report = whole.fill(lists, options.list);
  Answered answer = answered(options, tree, {report.outcome, report.failure, 0}, lists, err);
  if (report.outcome != query::QueryOutcome::filled) return answer;
  const std::vector<std::string> texts =
      query::completionTexts(report, lists[0].rowCount(), settings::LanguageOffset{}, grouped);
  for (const std::string& text : texts) err << text << '\n';
  // A list without rows says nothing where rows are missing.
  if (answer.status == exitNoRecords && !report.isComplete()) return {exitIncomplete, {}};
  if (answer.status != exitDone) return answer;
  answer.remark.append(answer.remark.empty() ? "" : ". ").append(texts.front());
  if (!report.isComplete()) answer.status = exitIncomplete;
  return answer;
}

void writeList(const QueryOptions& options, results::ResultList& list, const output::ByteSink& sink,
               const std::string& remark, std::ostream& err) {
  if (options.sort || options.descending)
    list.sortBy(options.sort.value_or(list.sortKey()),
                options.descending ? results::SortOrder::descending : results::SortOrder::ascending);
  options.format->write({list, query::pageCaptions[options.list], remark}, sink, err);
}

}  // namespace

std::optional<query::NodeIndex> categoryNamed(std::string_view key) {
  const auto& nodes = query::filterNodes();
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    const query::FilterNode& node = nodes[i];
    const bool named =
        node.argument != 0 && equalsIgnoringAsciiCase(key, db::categoryConditions()[node.argument - 1].parameter);
    if (named || equalsIgnoringAsciiCase(key, node.key)) return query::NodeIndex{i + 1};
  }
  std::optional<query::NodeIndex> captioned;
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    if (!equalsIgnoringAsciiCase(key, nodes[i].caption)) continue;
    if (captioned) return std::nullopt;  // ambiguous
    captioned = query::NodeIndex{i + 1};
  }
  return captioned;
}

std::optional<results::ColumnIndex> columnNamed(std::string_view column) {
  const auto& columns = query::auditColumns();
  for (std::size_t i = 0; i < columns.size(); ++i)
    if (equalsIgnoringAsciiCase(column, columns[i].caption) || equalsIgnoringAsciiCase(column, columns[i].name) ||
        column == std::to_string(i + 1))
      return results::ColumnIndex{i};
  return std::nullopt;
}

CLI::App* addQueryCommand(CLI::App& app, QueryOptions& options) {
  CLI::App* command = app.add_subcommand("query", "Run the standard query and write one of its result lists");
  addConnection(*command, options.server, options.database);
  addFilters(*command, options);
  addOutput(*command, options);
  command->callback([command, &options] { options.range.DateRangeActive = command->count("--from") > 0; });
  command->footer(footer);
  return command;
}

int runQuery(const QueryOptions& options, const query::Connector& connect, std::ostream& out, std::ostream& err) {
  if (options.range.DateRangeActive && !query::isInOrder(options.range))
    return refused(err, "the day of --to lies before the day of --from");
  if (const auto problem = targetProblem(*options.format, options.output, out)) return refused(err, *problem);

  const Interruption interruption;
  query::ResultLists lists = query::makeResultLists();
  int status = exitDone;
  const auto failure = query::failureOf([&] {
    try {
      // The target is opened before the query runs: one that cannot be written fails at once.
      writeTo(options.output, out, [&](const output::ByteSink& sink) {
        const Answered answer = fillLists(options, connect, lists, err);
        status = answer.status;
        // Leaves a file as it was.
        if (lists[options.list].rowCount() == 0 || (status != exitDone && status != exitIncomplete))
          throw NothingToWrite{};
        writeList(options, lists[options.list], untilInterrupted(sink), answer.remark, err);
      });
    } catch (const NothingToWrite&) {  // NOLINT(bugprone-empty-catch): said already
    } catch (const Stopped&) {
      status = stopped(err);
    }
  });
  return failure ? outputFailed(err, *failure) : status;
}

}  // namespace korvel::cli
