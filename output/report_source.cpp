#include "output/report_source.h"

#include <utility>

namespace korvel::output {

ListSource::ListSource(std::span<const ReportList> lists, PrintFont font)
    : lists_(lists.begin(), lists.end()), font_(std::move(font)) {}

void ListSource::rewind() {
  nextList_ = 0;
}

bool ListSource::nextSection(SectionHead& head) {
  if (nextList_ == lists_.size()) return false;
  const ReportList& list = lists_[nextList_++];
  head = {std::string(list.caption), font_, {}};
  for (const results::ColumnHeader& column : list.list->columns()) head.headers.push_back(column.caption);
  nextRow_ = 0;
  return true;
}

bool ListSource::nextRow(std::vector<std::string_view>& cells) {
  if (nextList_ == 0) return false;
  const results::ResultList& list = *lists_[nextList_ - 1].list;
  if (nextRow_ >= list.rowCount()) return false;
  cells.resize(list.columns().size());
  for (std::size_t column = 0; column < cells.size(); ++column) cells[column] = list.text({nextRow_}, {column});
  ++nextRow_;
  return true;
}

}  // namespace korvel::output
