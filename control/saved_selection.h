#pragma once

#include <cstddef>
#include <vector>

#include "control/result_list_model.h"
#include "control/row_copy.h"

namespace korvel::control {

/// The selected records of a list, found again after a sort. Takes one bit a record, also for a million selected rows.
class SavedSelection {
 public:
  /// Replaces what was saved by the records in these rows.
  void save(const results::ResultList& list, const std::vector<RowSpan>& rows);
  [[nodiscard]] bool isEmpty() const { return count_ == 0; }
  [[nodiscard]] std::size_t count() const { return count_; }
  /// The present rows of the saved records, top to bottom.
  [[nodiscard]] std::vector<RowSpan> rowsIn(const results::ResultList& list) const;

 private:
  std::vector<bool> records_;
  std::size_t count_ = 0;
};

}  // namespace korvel::control
