#include "control/saved_selection.h"

namespace korvel::control {

using results::RowPosition;

void SavedSelection::save(const results::ResultList& list, const std::vector<RowSpan>& rows) {
  records_.clear();
  count_ = 0;
  if (list.store() == nullptr || rows.empty()) return;
  records_.assign(list.store()->rowCount(), false);
  for (const RowSpan& span : rows) {
    for (int row = span.first; row <= span.last; ++row, ++count_)
      records_[list.rowId(RowPosition{static_cast<std::size_t>(row)}).value] = true;
  }
}

std::vector<RowSpan> SavedSelection::rowsIn(const results::ResultList& list) const {
  std::vector<RowSpan> spans;
  for (std::size_t position = 0; position < list.rowCount(); ++position) {
    if (!records_[list.rowId(RowPosition{position}).value]) continue;
    const int row = static_cast<int>(position);
    if (!spans.empty() && spans.back().last == row - 1)
      spans.back().last = row;
    else
      spans.push_back({row, row});
  }
  return spans;
}

}  // namespace korvel::control
