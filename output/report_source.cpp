#include "output/report_source.h"

#include <utility>

namespace korvel::output {

ListSource::ListSource(std::span<const ReportList> lists, PrintFont font) : font_(std::move(font)) {
  for (const ReportList& list : lists) add(std::string(list.caption), {std::shared_ptr<const void>(), list.list}, {});
}

ListSource::ListSource(std::string caption, std::shared_ptr<const results::ResultList> list, PrintFont font,
                       ColumnArrangement arrangement)
    : font_(std::move(font)) {
  add(std::move(caption), std::move(list), std::move(arrangement));
}

void ListSource::add(std::string caption, std::shared_ptr<const results::ResultList> list,
                     ColumnArrangement arrangement) {
  if (arrangement.columns.empty())
    for (std::size_t column = 0; column < list->columns().size(); ++column) arrangement.columns.push_back({column});
  sections_.push_back({std::move(caption), std::move(list), std::move(arrangement)});
}

void ListSource::rewind() {
  nextSection_ = 0;
}

bool ListSource::nextSection(SectionHead& head) {
  if (nextSection_ == sections_.size()) return false;
  const Section& section = sections_[nextSection_++];
  head = {section.caption, font_, {}, section.arrangement.widths};
  for (const results::ColumnIndex column : section.arrangement.columns)
    head.headers.push_back(section.list->columns()[column.value].caption);
  nextRow_ = 0;
  return true;
}

bool ListSource::nextRow(std::vector<std::string_view>& cells) {
  if (nextSection_ == 0) return false;
  const Section& section = sections_[nextSection_ - 1];
  if (nextRow_ >= section.list->rowCount()) return false;
  const std::vector<results::ColumnIndex>& columns = section.arrangement.columns;
  cells.resize(columns.size());
  for (std::size_t i = 0; i < columns.size(); ++i) cells[i] = section.list->text({nextRow_}, columns[i]);
  ++nextRow_;
  return true;
}

}  // namespace korvel::output
