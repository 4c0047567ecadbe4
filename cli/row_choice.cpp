#include "cli/row_choice.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <atomic>
#include <memory>
#include <ostream>
#include <utility>

#include "base/text.h"
#include "cli/common_options.h"
#include "cli/messages.h"
#include "cli/standard_question.h"
#include "query/audit_record.h"
#include "results/row_groups.h"

namespace korvel::cli {

namespace {

using results::ColumnIndex;
using results::DatePart;
using results::ResultList;
using results::RowFilling;
using results::RowFilter;

struct NamedPart {
  std::string_view name;
  DatePart part;
};
constexpr std::array<NamedPart, 4> dateParts = {NamedPart{"year", DatePart::year}, NamedPart{"month", DatePart::month},
                                                NamedPart{"day", DatePart::day}, NamedPart{"hour", DatePart::hour}};

std::optional<WhereText> whereOf(const std::string& text) {
  const std::size_t equals = text.find('=');
  if (equals == std::string::npos || equals == 0) return std::nullopt;
  const bool excludes = text[equals - 1] == '!';
  const std::string column(trimBlanks(std::string_view(text).substr(0, excludes ? equals - 1 : equals)));
  if (column.empty()) return std::nullopt;
  return WhereText{column, excludes, std::string(trimBlanks(std::string_view(text).substr(equals + 1)))};
}

CountText countOf(std::string_view text) {
  for (const NamedPart& each : dateParts) {
    const std::size_t nameBegin = text.size() - std::min(text.size(), each.name.size());
    if (nameBegin > 1 && text[nameBegin - 1] == ':' && equalsIgnoringAsciiCase(text.substr(nameBegin), each.name))
      return {std::string(trimBlanks(text.substr(0, nameBegin - 1))), each.part};
  }
  return {std::string(trimBlanks(text)), DatePart::whole};
}

/// The column of a list that a text names: by its caption, by its name in an audit trail, or by its number from 1.
std::optional<ColumnIndex> columnIn(const ResultList& list, std::string_view name) {
  const auto& columns = list.columns();
  const auto captioned = [&](std::string_view caption) -> std::optional<ColumnIndex> {
    for (std::size_t i = 0; i < columns.size(); ++i)
      if (equalsIgnoringAsciiCase(columns[i].caption, caption)) return ColumnIndex{i};
    return std::nullopt;
  };
  if (const auto column = captioned(name)) return column;
  for (const query::AuditColumn& known : query::auditColumns()) {
    const bool meant = equalsIgnoringAsciiCase(known.name, name) || equalsIgnoringAsciiCase(known.caption, name);
    if (!meant) continue;
    for (const std::string_view other : {known.caption, known.name})
      if (const auto column = captioned(other)) return column;
  }
  for (std::size_t i = 0; i < columns.size(); ++i)
    if (name == std::to_string(i + 1)) return ColumnIndex{i};
  return std::nullopt;
}

std::string noColumnText(const ResultList& list, std::string_view name) {
  std::string known;
  for (const results::ColumnHeader& column : list.columns()) known.append(known.empty() ? "" : ", ") += column.caption;
  return "'" + std::string(name) + "' is no column of the answer; there are " + known;
}

}  // namespace

ResultList wholeRecords(const ResultList& list) {
  ResultList whole(RowFilling::whole);
  whole.setColumns(list.columns());
  if (list.store() == nullptr) return whole;
  whole.setRows(list.sharedStore(), {list.wholeRows().begin(), list.wholeRows().end()});
  return whole;
}

void addWhere(CLI::App& command, RowChoice& choice) {
  command
      .add_option_function<std::vector<std::string>>(
          "--where",
          [&choice](const std::vector<std::string>& texts) {
            for (const std::string& text : texts) choice.where.push_back(whereOf(text).value());
          },
          "Only rows with this value, or with != those\nwithout it; may be repeated")
      ->option_text("COLUMN=VALUE")
      ->allow_extra_args(false)
      ->check(readableBy(whereOf, "no condition in the form COLUMN=VALUE or COLUMN!=VALUE"));
}

void addFind(CLI::App& command, RowChoice& choice) {
  CLI::Option* find =
      command.add_option("--find", choice.find, "Only rows that have the text in some column")
          ->option_text("TEXT")
          ->check([](const std::string& text) { return std::string(text.empty() ? "the text to find is empty" : ""); });
  command.add_flag("--exact", choice.exactCase, "Capitals and small letters of --find differ")->needs(find);
  command.add_flag("--regex", choice.regex, "The text of --find is a regular expression")->needs(find);
}

void addRowChoice(CLI::App& command, RowChoice& choice) {
  addFind(command, choice);
  addWhere(command, choice);
  command
      .add_option_function<std::vector<std::string>>(
          "--count-by",
          [&choice](const std::vector<std::string>& texts) {
            for (const std::string& text : texts) choice.countBy.push_back(countOf(text));
          },
          "Write how many rows have each value of one or\nmore columns, as csv unless --format says\notherwise; dates "
          "by part: \"Date Time:day\",\n:hour, :month, :year")
      ->option_text("COLUMN[,COLUMN]")
      ->allow_extra_args(false)
      ->delimiter(',');
}

void addCountFormat(CLI::App& command, const RowChoice& choice, const OutputFormat*& format) {
  command.parse_complete_callback([&command, &choice, &format] {
    if (!choice.countBy.empty() && command.count("--format") == 0) format = outputFormatNamed("csv");
  });
}

std::variant<RowFilter, std::string> filterOf(const RowChoice& choice, const ResultList& list, results::GaveUp gaveUp) {
  RowFilter filter;
  for (const WhereText& where : choice.where) {
    const auto column = columnIn(list, where.column);
    if (!column) return noColumnText(list, where.column);
    auto condition = std::find_if(filter.columns.begin(), filter.columns.end(), [&](const auto& each) {
      return each.column == *column && each.excludes == where.excludes;
    });
    if (condition == filter.columns.end())
      condition = filter.columns.insert(condition, {.column = *column, .excludes = where.excludes});
    condition->values.push_back({where.value, false});
    if (where.value.empty()) condition->values.push_back({{}, true});
  }
  if (choice.find.empty()) return filter;
  std::vector<ColumnIndex> columns;
  for (std::size_t i = 0; i < list.columns().size(); ++i) columns.push_back({i});
  const results::TextMatcher::Options options{.exactCase = choice.exactCase};
  if (!choice.regex) {
    filter.texts.push_back({results::TextMatcher(choice.find, options), columns});
    return filter;
  }
  auto made = results::regexMatcher(choice.find, options, std::move(gaveUp));
  if (const auto* problem = std::get_if<results::PatternProblem>(&made))
    return "'" + choice.find + "' is no regular expression: " + problem->text + " at character " +
           std::to_string(problem->offset + 1);
  filter.texts.push_back({std::get<results::TextMatcher>(std::move(made)), columns});
  return filter;
}

std::optional<std::string> choiceProblem(const RowChoice& choice, const ResultList& list) {
  for (const CountText& text : choice.countBy)
    if (!columnIn(list, text.column)) return noColumnText(list, text.column);
  const auto filter = filterOf(choice, list);
  const auto* problem = std::get_if<std::string>(&filter);
  return problem == nullptr ? std::nullopt : std::optional(*problem);
}

void keepPassingRows(ResultList& list, const RowFilter& filter) {
  ResultList whole = wholeRecords(list);
  whole.setFilter(filter);
  std::vector<results::RowId> rows;
  rows.reserve(whole.rowCount());
  for (std::size_t row = 0; row < whole.rowCount(); ++row) rows.push_back(whole.rowId({row}));
  list.setRows(list.sharedStore(), std::move(rows));
}

ResultList countedRows(const ResultList& list, const std::vector<CountText>& countBy) {
  std::vector<results::GroupKey> keys;
  std::vector<db::Field> fields;
  for (const CountText& text : countBy) {
    const ColumnIndex column = columnIn(list, text.column).value();
    keys.push_back({column, text.part});
    fields.push_back({list.columns()[column.value].caption, db::ColumnKind::text});
  }
  fields.push_back({"Count", db::ColumnKind::number});
  const auto store = std::make_shared<results::RowStore>();
  store->beginResult(fields);
  std::vector<results::RowId> rows;
  for (const results::RowGroup& group : results::groupRows(wholeRecords(list), keys)) {
    std::vector<db::Cell> cells;
    for (const results::ShownValue& value : group.values) cells.push_back({value.text, value.isNull});
    const std::string count = std::to_string(group.count);
    cells.push_back({count, false});
    rows.push_back(store->append(cells));
  }
  ResultList counted(RowFilling::whole);
  std::vector<results::ColumnHeader> headers;
  headers.reserve(fields.size());
  for (const db::Field& field : fields) headers.push_back({field.name, results::standardColumnWidth, 0});
  counted.setColumns(std::move(headers));
  counted.setRows(store, std::move(rows));
  return counted;
}

std::string choiceText(const RowChoice& choice) {
  std::string text;
  const auto add = [&](std::string_view part) { text.append(text.empty() ? "" : ", ").append(part); };
  if (!choice.find.empty())
    add("find " + std::string(choice.regex ? "regular expression " : "") + '"' + choice.find + '"' +
        (choice.exactCase ? " in exact case" : ""));
  for (const WhereText& where : choice.where)
    add(where.column + (where.excludes ? " != " : " = ") + '"' + where.value + '"');
  return text;
}

std::optional<int> applyRowChoice(const RowChoice& choice, ResultList& list, std::string& remark, std::ostream& err) {
  if (const auto problem = choiceProblem(choice, list)) return refused(err, *problem);
  const std::size_t all = list.rowCount();
  if (!choice.takesAll()) {
    const auto gaveUp = std::make_shared<std::atomic<bool>>(false);
    keepPassingRows(list, std::get<RowFilter>(filterOf(choice, list, gaveUp)));
    std::string said = groupedNumber(list.rowCount()) + " of " + groupedNumber(all) + " records chosen";
    if (*gaveUp) said += "; some values are too much for this regular expression and count as not matching";
    say(err, said);
    // A page is read without the command beside it.
    addSentence(remark, said + ": " + choiceText(choice));
    if (list.rowCount() == 0) return exitNoRecords;
  }
  if (!choice.countBy.empty()) list = countedRows(list, choice.countBy);
  return std::nullopt;
}

}  // namespace korvel::cli
