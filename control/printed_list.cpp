#include "control/printed_list.h"

#include <algorithm>
#include <chrono>

#include "control/result_list_view.h"
#include "control/texts.h"
#include "evidence/origin.h"
#include "ui/screen_measure.h"

namespace korvel::control {

namespace {

/// Whether somebody gave a column another width than it had at first.
bool hasChosenWidths(const ResultListView& list, const std::vector<int>& columns) {
  const auto& headers = list.listModel().list().columns();
  const ui::ScreenMeasure measure(list);
  return std::any_of(columns.begin(), columns.end(), [&](int column) {
    return list.columnWidth(column) != measure.horizontal(headers[static_cast<std::size_t>(column)].width);
  });
}

}  // namespace

output::ColumnArrangement arrangementOf(const ResultListView& list) {
  output::ColumnArrangement arrangement;
  const std::vector<int> columns = list.shownColumns();
  for (const int column : columns) arrangement.columns.push_back({static_cast<std::size_t>(column)});
  if (hasChosenWidths(list, columns))
    for (const int column : columns) arrangement.widths.push_back(list.columnWidth(column));
  return arrangement;
}

std::vector<std::string> columnsLeftOut(const ResultListView& list) {
  std::vector<std::string> captions;
  const std::vector<int> shown = list.shownColumns();
  if (shown.empty()) return captions;
  const auto& headers = list.listModel().list().columns();
  for (std::size_t column = 0; column < headers.size(); ++column)
    if (std::find(shown.begin(), shown.end(), static_cast<int>(column)) == shown.end())
      captions.push_back(headers[column].caption);
  return captions;
}

std::unique_ptr<output::ReportSource> sourceOf(const PrintedList& printed) {
  return std::make_unique<output::ListSource>(printed.caption, printed.list, printed.font, printed.arrangement);
}

output::pages::PageTexts pageTextsOf(const PrintedList& printed) {
  evidence::Manifest record = printed.manifest;
  record.question.filters = printed.filters;
  record.question.sortedBy = printed.sortedBy;
  record.user = evidence::systemUser();
  record.computer = evidence::computerName();
  evidence::PrintedPart part = printed.part;
  part.printed = evidence::localTimeText(std::chrono::system_clock::now());
  output::pages::PageTexts texts;
  texts.head = evidence::manifestHead(record, part, libraryState().language,
                                      [](std::size_t count) { return countText(count).toStdString(); });
  texts.pageOf = ownText("print.pageOf");
  texts.columnsOf = ownText("print.columnsOf");
  return texts;
}

}  // namespace korvel::control
