#include "cli/review_command.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <ostream>
#include <string_view>
#include <utility>

#include "base/numbers.h"
#include "base/text.h"
#include "cli/common_options.h"
#include "cli/messages.h"
#include "cli/tool_page_head.h"
#include "evidence/working_hours.h"
#include "query/audit_record.h"
#include "results/row_store.h"
#include "settings/string_table.h"

namespace korvel::cli {

namespace {

using evidence::ExceptionRule;
using evidence::ExceptionRuleInfo;
using evidence::FoundExceptions;
using results::ResultList;

constexpr const char* footer =
    "All records that were asked for are looked at, whatever the procedure's limit is (see query\n"
    "--complete). Rules:\n"
    "  no-comment        values were changed, and there is no comment\n"
    "  deletion          something was deleted\n"
    "  outside-hours     outside the working hours: --hours and --days, on the plant's clock\n"
    "  two-computers     the same user on another computer within a minute\n"
    "  discontinued      the old value is not the new one of the item's record before\n"
    "  numbers-missing   entry numbers are missing before it; only of a whole trail, without\n"
    "                    --category, --from and --list\n"
    "  number-repeated   its entry number is used twice\n"
    "  clock-step        its time lies before that of the record before\n"
    "  repeated-hour     in the hour that the clock shows twice when summer time ends\n"
    "  unusual-change    more than five times as far as the item's values usually change\n"
    "\n"
    "A record that several rules find is written for each of them. The counts of all rules go to\n"
    "standard error. Where nothing is found the exit status is 1.\n"
    "\n"
    "Examples:\n"
    "  korvel-audit review\n"
    "  korvel-audit review --rules deletion,outside-hours --hours 06:00-22:00 --days mon,tue,sat\n"
    "  korvel-audit review --from 2004-03-01 --to 2004-03-31 --format pdf --output march.pdf\n";

std::optional<ExceptionRule> ruleNamed(std::string_view name) {
  for (const ExceptionRuleInfo& info : evidence::exceptionRules())
    if (equalsIgnoringAsciiCase(info.name, name)) return info.rule;
  return std::nullopt;
}

std::string noRuleText() {
  std::string text = "no rule; there are";
  for (const ExceptionRuleInfo& info : evidence::exceptionRules()) text.append(" ").append(info.name);
  return text;
}

/// Hours that end when they begin are no hours.
std::optional<std::pair<std::chrono::minutes, std::chrono::minutes>> hoursOf(const std::string& text) {
  const auto hours = evidence::hoursOf(text);
  return hours && hours->first != hours->second ? hours : std::nullopt;
}

std::string textOf(ExceptionRule rule) {
  return std::string(settings::ownText(evidence::exceptionRules().at(static_cast<std::size_t>(rule)).textKey, {}));
}

/// The records of some rules, with what was found of them in front.
ResultList exceptionList(const ResultList& list, const FoundExceptions& found,
                         const std::vector<ExceptionRule>& rules) {
  std::vector<db::Field> fields = {{"Finding"}};
  std::vector<results::ColumnHeader> headers = {{"Finding", results::standardColumnWidth, 0}};
  for (const query::AuditColumn& column : query::auditColumns()) {
    fields.push_back({std::string(column.name)});
    headers.push_back({std::string(column.caption), results::standardColumnWidth, 0});
  }
  const auto store = std::make_shared<results::RowStore>();
  store->beginResult(fields);
  std::vector<results::RowId> rows;
  for (const ExceptionRule rule : rules) {
    const std::string text = textOf(rule);
    for (const results::RowId record : found.of(rule)) {
      std::vector<db::Cell> cells = {{text, false}};
      for (std::size_t i = 0; i < query::auditColumnCount; ++i) cells.push_back(list.store()->cell(record, {i}));
      rows.push_back(store->append(cells));
    }
  }
  ResultList made(results::RowFilling::whole);
  made.setColumns(std::move(headers));
  made.setRows(store, std::move(rows));
  return made;
}

std::vector<ExceptionRule> wantedRules(const ReviewOptions& options) {
  std::vector<ExceptionRule> rules;
  for (const ExceptionRuleInfo& info : evidence::exceptionRules())
    if (options.rules.empty() ||
        std::find(options.rules.begin(), options.rules.end(), info.rule) != options.rules.end())
      rules.push_back(info.rule);
  return rules;
}

}  // namespace

CLI::App* addReviewCommand(CLI::App& app, ReviewOptions& options) {
  CLI::App* command = app.add_subcommand("review", "Write the records that a reviewer should look at");
  addQuestion(*command, options);
  addList(*command, options);
  command
      ->add_option_function<std::vector<std::string>>(
          "--rules",
          [&options](const std::vector<std::string>& names) {
            for (const std::string& name : names) options.rules.push_back(ruleNamed(name).value());
          },
          "Rules to look by, several with commas (default: all)")
      ->option_text("RULE")
      ->delimiter(',')
      ->check(readableBy([](const std::string& name) { return ruleNamed(name).has_value(); }, noRuleText()));
  addReadOption(*command, {"--hours", "HH:MM-HH:MM", "Working hours (default: 06:00-18:00)"}, hoursOf,
                "no span of hours such as 06:00-18:00", [&options](const auto& hours) {
                  options.hours.from = hours.first;
                  options.hours.to = hours.second;
                });
  addReadOption(*command, {"--days", "DAYS", "Working days (default: mon,tue,wed,thu,fri)"}, evidence::daysOf,
                "no list of days such as mon,tue,wed", [&options](const auto& days) { options.hours.days = days; });
  addTarget(*command, options.format, options.output);
  addQuiet(*command, options);
  options.complete = true;
  command->footer(footer);
  return command;
}

int runReview(const ReviewOptions& options, const query::Connector& connect, std::ostream& out, std::ostream& err) {
  if (const auto problem = questionProblem(options)) return refused(err, *problem);
  if (const auto problem = targetProblem(*options.format, options.output, out)) return refused(err, *problem);
  return writeAnswer(
      options, connect, options.output, out, err,
      [&](ResultList& list, Answered& answer, const output::ByteSink& sink) -> std::optional<int> {
        // Other questions leave numbers out.
        const bool isWholeTrail = options.categories.empty() && !options.range.DateRangeActive && options.list == 0 &&
                                  answer.manifest.isComplete.value_or(false);
        const auto found = evidence::findExceptions(list, {options.hours, isWholeTrail});
        if (!found) {
          say(err, "the answer lacks columns of an audit trail; nothing was written");
          return exitNoRecords;
        }
        std::size_t count = 0;
        const std::vector<ExceptionRule> rules = wantedRules(options);
        std::string remark = groupedNumber(found->lookedAt) + (found->lookedAt == 1 ? " record" : " records");
        for (const ExceptionRule rule : rules) {
          const bool isJudged = rule != ExceptionRule::numbersMissing || found->numbersWereJudged;
          const std::string line =
              textOf(rule) + ": " +
              (isJudged ? groupedNumber(found->of(rule).size()) : std::string("not looked for, rows were chosen"));
          if (!options.quiet) err << line << '\n';
          addSentence(remark, line);
          count += found->of(rule).size();
        }
        if (count == 0) {
          say(err, "nothing was found; nothing was written");
          return exitNoRecords;
        }
        const results::ResultList exceptions = exceptionList(list, *found, rules);
        evidence::PrintedPart part{
            .caption = "Exceptions", .rows = exceptions.rowCount(), .ofRows = exceptions.rowCount()};
        part.notes = answer.manifest.notes;
        part.remark = remark;
        if (!answer.pageRemark.empty()) addSentence(part.remark, answer.pageRemark);
        if (!answer.remark.empty()) addSentence(remark, answer.remark);
        options.format->write(
            {exceptions, part.caption, remark, [&] { return toolPageHead(answer.described(), part); }}, sink, err);
        return std::nullopt;
      });
}

}  // namespace korvel::cli
