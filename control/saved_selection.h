#pragma once

#include <cstddef>
#include <vector>

#include "control/result_list_model.h"
#include "control/row_copy.h"

namespace korvel::control {

/// Which records of a list are selected, wherever a sort moves them. Takes a bit a record: a million selected rows are
/// no burden, as they would be one by one.
class SavedSelection {
 public:
  /// Forgets what was kept and keeps the records in these rows.
  void save(const results::ResultList& list, const std::vector<RowSpan>& rows);
  [[nodiscard]] bool isEmpty() const { return count_ == 0; }
  [[nodiscard]] std::size_t count() const { return count_; }
  /// The rows in which the records stand now, top to bottom.
  [[nodiscard]] std::vector<RowSpan> rowsIn(const results::ResultList& list) const;

 private:
  std::vector<bool> records_;
  std::size_t count_ = 0;
};

}  // namespace korvel::control
