#include "cli/history_command.h"

#include <CLI/CLI.hpp>
#include <array>
#include <memory>
#include <ostream>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "cli/common_options.h"
#include "cli/messages.h"
#include "cli/tool_page_head.h"
#include "query/audit_record.h"
#include "query/item_history.h"

namespace korvel::cli {

namespace {

using results::ResultList;

constexpr const char* footer =
    "All records of the items with this item id, whatever the procedure's limit is (see query\n"
    "--complete): item by item, and in the order of time. An item is what agrees in project,\n"
    "database, area, item and item id. \"Continues\" is \"no\" where the old value is not the new one\n"
    "of the record before: something has happened that these records do not show; it is empty where\n"
    "records have no item id. --where chooses among the records without making gaps; --from, --to and\n"
    "--category limit what is known.\n"
    "\n"
    "Examples:\n"
    "  korvel-audit history --item TIC-1901\n"
    "  korvel-audit history --item TIC-1901 --area vel_AlgLimits --format xlsx --output TIC-1901.xlsx\n";

constexpr std::string_view continuesCaption = "Continues";
constexpr std::string_view oldValueName = "OldValue";

/// All columns of the records, with "Continues" before the old value.
ResultList historyList(const ResultList& list, const std::vector<query::ItemHistory>& histories) {
  std::vector<db::Field> fields;
  std::vector<results::ColumnHeader> headers;
  const auto add = [&](std::string_view name, std::string_view caption) {
    fields.push_back({std::string(name)});
    headers.push_back({std::string(caption), results::standardColumnWidth, 0});
  };
  for (const query::AuditColumn& column : query::auditColumns()) {
    if (column.name == oldValueName) add(continuesCaption, continuesCaption);
    add(column.name, column.caption);
  }
  const auto store = std::make_shared<results::RowStore>();
  store->beginResult(fields);
  std::vector<results::RowId> rows;
  for (const query::ItemHistory& history : histories) {
    for (const query::ItemChange& change : history.changes) {
      std::vector<db::Cell> cells;
      for (std::size_t i = 0; i < query::auditColumnCount; ++i) {
        if (query::auditColumns().at(i).name == oldValueName)
          cells.push_back({!history.namesItem() ? "" : change.continues ? "yes" : "no", false});
        cells.push_back(list.store()->cell(change.record, {i}));
      }
      rows.push_back(store->append(cells));
    }
  }
  ResultList made(results::RowFilling::whole);
  made.setColumns(std::move(headers));
  made.setRows(store, std::move(rows));
  return made;
}

/// Leaves the changes whose records pass.
void keepChosen(std::vector<query::ItemHistory>& histories, const std::vector<std::uint8_t>& passing) {
  for (query::ItemHistory& history : histories)
    std::erase_if(history.changes, [&](const query::ItemChange& change) { return passing[change.record.value] == 0; });
  std::erase_if(histories, [](const query::ItemHistory& history) { return history.changes.empty(); });
}

}  // namespace

CLI::App* addHistoryCommand(CLI::App& app, HistoryOptions& options) {
  CLI::App* command = app.add_subcommand("history", "Write what happened to an item, in the order of time");
  addQuestion(*command, options);
  command->add_option("--item", options.item, "Item ID")->option_text("ID")->required();
  command->add_option("--area", options.area, "Only records of this area")->option_text("AREA");
  addWhere(*command, options.choice);
  addTarget(*command, options.format, options.output);
  addQuiet(*command, options);
  options.complete = true;
  command->footer(footer);
  return command;
}

int runHistory(const HistoryOptions& options, const query::Connector& connect, std::ostream& out, std::ostream& err) {
  if (const auto problem = questionProblem(options)) return refused(err, *problem);
  if (const auto problem = targetProblem(*options.format, options.output, out)) return refused(err, *problem);

  RowChoice item;
  item.where.push_back({"Item ID", false, options.item});
  if (!options.area.empty()) item.where.push_back({"Area", false, options.area});
  if (const auto problem = choiceProblem(options.choice, query::makeResultLists()[options.list]))
    return refused(err, *problem);
  return writeAnswer(
      options, connect, options.output, out, err,
      [&](ResultList& list, Answered& answer, const output::ByteSink& sink) -> std::optional<int> {
        keepPassingRows(list, std::get<results::RowFilter>(filterOf(item, list)));
        // What continues is said of all records of an item, and chosen afterwards: a choice makes no gaps.
        auto histories = query::itemHistories(list, query::itemColumns(list).value(), {});
        const auto chosen = std::get<results::RowFilter>(filterOf(options.choice, list));
        keepChosen(histories, results::passingRecords(wholeRecords(list), chosen));
        if (histories.empty()) {
          say(err, "no record of the item '" + options.item + "'; nothing was written");
          return exitNoRecords;
        }
        std::size_t count = 0;
        for (const query::ItemHistory& history : histories) count += history.changes.size();
        std::string remark = groupedNumber(count) + (count == 1 ? " record of " : " records of ") +
                             groupedNumber(histories.size()) + (histories.size() == 1 ? " item" : " items");
        if (!options.quiet) say(err, remark);
        evidence::PrintedPart part{.caption = "History of " + options.item, .rows = count, .ofRows = count};
        part.notes = answer.manifest.notes;
        part.remark = remark;
        if (!answer.pageRemark.empty()) addSentence(part.remark, answer.pageRemark);
        if (!answer.remark.empty()) addSentence(remark, answer.remark);
        answer.manifest.question.filters.push_back(choiceText(item));
        if (!options.choice.takesAll()) answer.manifest.question.filters.push_back(choiceText(options.choice));
        options.format->write({historyList(list, histories), part.caption, remark,
                               [&] { return toolPageHead(answer.described(), part); }},
                              sink, err);
        return std::nullopt;
      });
}

}  // namespace korvel::cli
