#include "cli/query_command.h"

#include <CLI/CLI.hpp>
#include <ostream>

#include "cli/common_options.h"
#include "cli/manifest_option.h"
#include "cli/tool_page_head.h"
#include "evidence/recorded_rows.h"

namespace korvel::cli {

namespace {

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
    "\n"
    "With --manifest the file gets two more beside it: what was asked, of whom and when, with the\n"
    "SHA-256 of the file and of each record, and a file that \"sha256sum -c\" reads. See verify.\n"
    "\n"
    "As displayed means: outer blanks removed, Comments and Summer Time left empty. Only csv, json\n"
    "and xlsx carry these two.\n"
    "\n"
    "Of the list's rows --find and --where take some, judged by all 18 columns as they are stored,\n"
    "outer blanks aside. --where takes a caption, a column name or a number; values of one column\n"
    "are alternatives, of different columns all must hold, and an empty value is null, too. How many\n"
    "rows were chosen goes to standard error and onto pages. --count-by writes numbers of rows\n"
    "instead, the largest first, as csv unless --format says otherwise.\n"
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
    "  korvel-audit query --complete --find TIC-1901 --where \"User Name!=Luca Rossi\"\n"
    "  korvel-audit query --complete --count-by \"Event,Date Time:day\" --output activity.csv\n"
    "  korvel-audit query --server /srv/audit --database Korvel_Audit_MU --format json | jq .\n";

void addOutput(CLI::App& command, QueryOptions& options) {
  addList(command, options);
  addReadOption(
      command,
      {"--sort", "COLUMN", "Column to sort by: caption, column name, or number\ncounted from 1 (default: Entry ID)"},
      columnNamed, "no column", [&options](results::ColumnIndex column) { options.sort = column; });
  command.add_flag("--descending", options.descending, "Sort from the last to the first");
  addTarget(command, options.format, options.output);
  addManifest(command, options.manifest);
  addQuiet(command, options);
}

/// Sorts the list as it is to be written; the manifest says how, and what was chosen.
void arrangeList(const QueryOptions& options, results::ResultList& list, evidence::Manifest& manifest) {
  if (options.sort || options.descending)
    list.sortBy(options.sort.value_or(list.sortKey()),
                options.descending ? results::SortOrder::descending : results::SortOrder::ascending);
  if (!options.choice.takesAll()) manifest.question.filters.push_back(choiceText(options.choice));
  if (list.isSorted())
    manifest.question.sortedBy = list.columns()[list.sortKey().value].caption +
                                 (list.sortOrder() == results::SortOrder::descending ? ", descending" : "");
}

}  // namespace

CLI::App* addQueryCommand(CLI::App& app, QueryOptions& options) {
  CLI::App* command = app.add_subcommand("query", "Run the standard query and write one of its result lists");
  addQuestion(*command, options);
  addComplete(*command, options);
  addOutput(*command, options);
  addRowChoice(*command, options.choice);
  addCountFormat(*command, options.choice, options.format);
  command->get_option("--count-by")
      ->excludes(command->get_option("--sort"))
      ->excludes(command->get_option("--descending"))
      ->excludes(command->get_option("--manifest"));
  command->footer(footer);
  return command;
}

int runQuery(const QueryOptions& options, const query::Connector& connect, std::ostream& out, std::ostream& err) {
  if (const auto problem = questionProblem(options)) return refused(err, *problem);
  if (const auto problem = targetProblem(*options.format, options.output, out)) return refused(err, *problem);

  if (options.manifest)
    if (const auto problem = manifestProblem(options.output)) return refused(err, *problem);
  if (const auto problem = choiceProblem(options.choice, query::makeResultLists()[options.list]))
    return refused(err, *problem);
  return writeAnswer(options, connect, options.output, out, err,
                     [&](results::ResultList& list, Answered& answer, const output::ByteSink& sink) {
                       evidence::PrintedPart part{.caption = std::string(query::pageCaptions[options.list])};
                       part.notes = answer.manifest.notes;
                       part.ofRows = list.rowCount();
                       std::string chosen;
                       const auto ended = applyRowChoice(options.choice, list, chosen, err);
                       if (ended) return ended;
                       if (!chosen.empty()) {
                         addSentence(answer.remark, chosen);
                         addSentence(answer.pageRemark, chosen);
                       }
                       part.remark = answer.pageRemark;
                       part.rows = list.rowCount();
                       part.isCounted = !options.choice.countBy.empty();
                       const RepeatedNotes notes(err, answer.manifest);
                       arrangeList(options, list, answer.manifest);
                       options.format->write(
                           {list, part.caption, answer.remark, [&] { return toolPageHead(answer.described(), part); }},
                           sink, notes.stream());
                       answer.manifest.output.format = options.format->name;
                       if (options.manifest)
                         answer.manifest.rows =
                             evidence::recordedRows(list, evidence::recordedForms(options.format->name));
                       return ended;
                     });
}

}  // namespace korvel::cli
