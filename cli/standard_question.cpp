#include "cli/standard_question.h"

#include <CLI/CLI.hpp>
#include <chrono>
#include <ostream>

#include "base/text.h"
#include "cli/common_options.h"
#include "cli/interruption.h"
#include "cli/manifest_option.h"
#include "cli/messages.h"
#include "cli/output_target.h"
#include "db/connection_string.h"
#include "db/procedure/audit_conditions.h"
#include "evidence/answer_record.h"
#include "query/audit_record.h"
#include "query/complete_query.h"
#include "query/limit_reached.h"
#include "query/query_failure.h"
#include "settings/string_table.h"

namespace korvel::cli {

namespace {

constexpr settings::TextId noCriteriaText{10060};
constexpr settings::TextId noRecordsText{10061};

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

CLI::Option* addDay(CLI::App& command, const OptionHelp& help, query::DateRange& range,
                    std::chrono::year_month_day& day) {
  return command
      .add_option_function<std::string>(
          help.name,
          [&day, &range](const std::string& text) {
            day = query::parseDay(text).value();
            range.DateRangeActive = true;
          },
          help.text)
      ->option_text(help.value)
      ->check(dayProblem);
}

std::optional<std::size_t> standardListNumbered(const std::string& text) {
  if (text.size() != 1 || text[0] < '0' || text[0] >= '0' + static_cast<char>(query::standardListCount))
    return std::nullopt;
  return static_cast<std::size_t>(text[0] - '0');
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
  if (const std::size_t count = report.fullResults.size(); count > 0) {
    std::string reached;
    for (const std::string& caption : query::limitReached(tree.flags(), report))
      reached.append(reached.empty() ? "" : ", ").append(caption);
    err << "note: " << count << (count == 1 ? " answer holds " : " answers hold ") << db::rowLimitPerResult
        << " records, the most that the procedure returns (" << reached
        << "); there may be more, which --complete reads.\n";
  }
}

query::FilterTree treeOf(const StandardQuestion& question) {
  query::FilterTree tree;
  if (question.categories.empty()) tree.selectAll();
  for (const query::NodeIndex node : question.categories) tree.setChecked(node, true);
  return tree;
}

Answered answered(const StandardQuestion& question, const query::FilterTree& tree, const query::QueryReport& report,
                  const query::ResultLists& lists, std::ostream& err) {
  using query::QueryOutcome;
  if (report.outcome == QueryOutcome::stopped) return {stopped(err)};
  if (report.failure) {
    say(err, "database error " + errorText(*report.failure));
    return {exitDatabase};
  }
  if (report.outcome == QueryOutcome::noCriteria)
    return {refused(err, settings::loadText(noCriteriaText, settings::LanguageOffset{}))};
  if (report.outcome == QueryOutcome::noRecords) {
    say(err, settings::loadText(noRecordsText, settings::LanguageOffset{}));
    return {exitNoRecords};
  }
  if (!question.quiet) sayCounts(lists, err);
  sayNotes(tree, question.range, report, err);
  // The pages of the other audit types hold no alarm rows.
  const bool showsAlarms = question.list <= 1 && query::alarmsComeFromAllDates(tree.flags(), question.range);
  Answered answer{.status = exitDone, .hasRows = true};
  if (showsAlarms) addSentence(answer.remark, settings::ownText(query::alarmsOfAllDatesText, {}));
  answer.pageRemark = answer.remark;
  if (!report.fullResults.empty()) addSentence(answer.remark, settings::ownText(query::rowLimitText, {}));
  recordAnswer(answer.manifest, tree.flags(), report, lists);
  if (lists[question.list].rowCount() > 0) return answer;
  say(err, listText(question.list) + " is empty; nothing was written");
  return {exitNoRecords};
}

/// Asks, fills the lists, and says on `err` how it came out.
Answered askQuestion(const StandardQuestion& question, const query::Connector& connect, query::ResultLists& lists,
                     std::ostream& err) {
  const query::FilterTree tree = treeOf(question);
  const std::string connectionString = db::buildConnectionString(question.server, question.database);
  const query::StandardQueryRequest request{tree, question.range, connectionString};
  const auto shouldContinue = [] { return !Interruption::requested(); };
  if (!question.complete)
    return answered(question, tree, query::runStandardQuery(request, connect, lists, question.list, shouldContinue),
                    lists, err);

  query::CompleteAnswer whole = query::completeStandardQuery(
      request, connect, [&](const query::CompletionProgress& /*progress*/) { return shouldContinue(); });
  // A file holds the answer or stays as it was: what had come when it was stopped is not written.
  if (whole.report().outcome == query::QueryOutcome::stopped) return {stopped(err)};
  const query::CompletionReport report = whole.fill(lists, question.list);
  Answered answer = answered(question, tree, {report.outcome, report.failure}, lists, err);
  if (report.outcome != query::QueryOutcome::filled) return answer;
  const std::vector<std::string> texts =
      query::completionTexts(report, lists[0].rowCount(), settings::LanguageOffset{}, groupedNumber);
  for (const std::string& text : texts) err << text << '\n';
  // A list without rows says nothing where rows are missing.
  if (answer.status == exitNoRecords && !report.isComplete()) return {exitIncomplete};
  if (answer.status != exitDone) return answer;
  addSentence(answer.remark, texts.front());
  recordAnswer(answer.manifest, report, lists);
  answer.manifest.notes.assign(texts.begin() + 1, texts.end());
  if (!report.isComplete()) answer.status = exitIncomplete;
  return answer;
}

/// Completes `begun` by the question, its answer, and what was written of it.
evidence::Manifest manifestOf(const StandardQuestion& question, const Answered& answer,
                              const db::ServerIdentity& server, const evidence::Manifest& begun) {
  evidence::Manifest manifest = answer.manifest;
  manifest.program = begun.program;
  manifest.programVersion = begun.programVersion;
  manifest.user = begun.user;
  manifest.computer = begun.computer;
  manifest.begun = begun.begun;
  manifest.source = begun.source;
  recordQuestion(manifest, treeOf(question).flags(), question.range, question.complete);
  manifest.question.list = query::pageCaptions[question.list];
  if (!answer.remark.empty()) manifest.notes.insert(manifest.notes.begin(), answer.remark);
  endRecord(manifest, server);
  return manifest;
}

/// Thrown to abandon an output.
struct NothingToWrite {};

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

void addDays(CLI::App& command, query::DateRange& range) {
  CLI::Option* from =
      addDay(command, {"--from", "YYYY-MM-DD", "First day, whole; together with --to"}, range, range.RangeFromDate);
  CLI::Option* to =
      addDay(command, {"--to", "YYYY-MM-DD", "Last day, whole; together with --from"}, range, range.RangeToDate);
  from->needs(to);
  to->needs(from);
}

void addQuestion(CLI::App& command, StandardQuestion& question) {
  addConnection(command, question.server, question.database);
  command
      .add_option_function<std::vector<std::string>>(
          "--category",
          [&question](const std::vector<std::string>& keys) {
            for (const std::string& key : keys) question.categories.push_back(categoryNamed(key).value());
          },
          "Category of audits, may be repeated (default: all)")
      ->option_text("KEY")
      ->delimiter(',')
      ->check(categoryProblem);
  addDays(command, question.range);
}

void addComplete(CLI::App& command, StandardQuestion& question) {
  command.add_flag("--complete", question.complete, "Go beyond the 5000 records that an answer holds at most");
}

void addList(CLI::App& command, StandardQuestion& question) {
  addReadOption(command, {"--list", "0..4", "Result list to write (default: 0, all audits)"}, standardListNumbered,
                "no list from 0 to 4", [&question](std::size_t list) { question.list = list; });
}

void addQuiet(CLI::App& command, StandardQuestion& question) {
  command.add_flag("--quiet", question.quiet, "Leave out the row counts on standard error");
}

std::optional<std::string> daysProblem(const query::DateRange& range) {
  if (range.DateRangeActive && !query::isInOrder(range)) return "the day of --to lies before the day of --from";
  return std::nullopt;
}

std::optional<std::string> questionProblem(const StandardQuestion& question) {
  return daysProblem(question.range);
}

int writeAnswer(const StandardQuestion& question, const query::Connector& connect, const std::string& target,
                std::ostream& out, std::ostream& err, const AnswerWriter& write) {
  const Interruption interruption;
  query::ResultLists lists = query::makeResultLists();
  int status = exitDone;
  const evidence::AnsweringServer server;
  // Who the user is may be asked of a directory in the network.
  const evidence::Manifest begun = question.manifest ? begunManifest(question.server, question.database)
                                                     : evidence::begunRecord(question.server, question.database);
  Answered answer;
  const auto manifest = [&] { return manifestOf(question, answer, server.identity(), begun); };
  const auto failure = query::failureOf([&] {
    try {
      // The target is opened before the query runs: one that cannot be written fails at once.
      writeTo(
          target, out,
          [&](const output::ByteSink& sink) {
            answer = askQuestion(question, server.remembering(connect), lists, err);
            status = answer.status;
            // Leaves a file as it was.
            if (!answer.hasRows) throw NothingToWrite{};
            answer.described = manifest;
            if (const auto ended = write(lists[question.list], answer, untilInterrupted(sink))) {
              // Where rows are missing, "no records" is not said.
              if (*ended != exitNoRecords || answer.status != exitIncomplete) status = *ended;
              throw NothingToWrite{};
            }
          },
          question.manifest ? ManifestMaker(manifest) : ManifestMaker());
    } catch (const NothingToWrite&) {  // NOLINT(bugprone-empty-catch): said already
    } catch (const Stopped&) {
      status = stopped(err);
    }
  });
  return failure ? outputFailed(err, *failure) : status;
}

void addSentence(std::string& remark, std::string_view sentence) {
  remark.append(remark.empty() ? "" : ". ").append(sentence);
}

std::string groupedNumber(std::uint64_t number) {
  std::string text = std::to_string(number);
  for (std::size_t at = text.size(); at > 3;) text.insert(at -= 3, ",");
  return text;
}

}  // namespace korvel::cli
