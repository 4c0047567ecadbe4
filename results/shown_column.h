#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <type_traits>
#include <vector>

#include "results/column.h"
#include "results/result_list.h"

namespace korvel::results {

/// One column of all records behind a list, with the texts that the list shows or would show: for finding, filtering
/// and counting, which evaluate a text once however many rows have it. Refers to the list, whose rows must not be
/// replaced meanwhile.
class ShownColumn {
 public:
  ShownColumn(const ResultList& list, ColumnIndex column);

  /// The text that the list shows of a stored one. Valid as long as the stored text.
  [[nodiscard]] std::string_view shown(std::string_view stored) const noexcept;
  /// Whether a row may show something else than its stored text says: a negative number whose zeros were removed.
  [[nodiscard]] bool hasExceptions() const noexcept { return hasExceptions_; }

  /// Rows [first, end) of the store that show nothing in this column, or whose stored texts are shown.
  struct Part {
    std::size_t first = 0;
    std::size_t end = 0;
    bool isFilled = false;
  };
  /// All rows of the store, in order.
  [[nodiscard]] const std::vector<Part>& parts() const noexcept { return parts_; }
  /// The stored values; null where no row fills the column.
  [[nodiscard]] const Column* column() const noexcept { return column_; }

  /// Calls `put(row, value)` for every row of the store, where `value` is `evaluate(text, isNull)` of what the row
  /// shows, or only for those that are `wanted(row)`. Evaluates each distinct text once, where the column knows its
  /// distinct texts. A row that does not fill the column shows an empty text, which is not null. Throws std::bad_alloc.
  template <typename Evaluate, typename Put, typename Wanted>
  void forEachRow(Evaluate evaluate, Put put, Wanted wanted) const;
  template <typename Evaluate, typename Put>
  void forEachRow(Evaluate evaluate, Put put) const {
    forEachRow(evaluate, put, [](std::size_t) { return true; });
  }

 private:
  [[nodiscard]] std::string_view exceptionAt(std::size_t row) const noexcept;

  const ResultList& list_;
  ColumnIndex index_;
  const Column* column_ = nullptr;
  bool rewritten_ = false;
  bool hasExceptions_ = false;
  std::vector<Part> parts_;
};

template <typename Evaluate, typename Put, typename Wanted>
void ShownColumn::forEachRow(Evaluate evaluate, Put put, Wanted wanted) const {
  using Value = std::decay_t<std::invoke_result_t<Evaluate&, std::string_view, bool>>;
  static_assert(!std::is_same_v<Value, bool>, "a vector of bool has no array of values");
  const auto valueOf = [&](StoredText stored) { return evaluate(shown(textAt(stored)), stored == nullptr); };
  const auto putSame = [&](std::size_t first, std::size_t end, bool isNull) {
    for (std::size_t row = first; row < end; ++row)
      if (wanted(row)) put(row, evaluate(std::string_view{}, isNull));
  };
  std::vector<Value> valueOfCode;
  for (const Part& part : parts_) {
    if (!part.isFilled || column_ == nullptr) {
      putSame(part.first, part.end, false);
      continue;
    }
    const std::size_t stored = std::max(part.first, std::min(part.end, column_->size()));
    if (hasExceptions_) {
      for (std::size_t row = part.first; row < stored; ++row)
        if (wanted(row)) put(row, evaluate(exceptionAt(row), column_->stored(row) == nullptr));
    } else {
      const auto onCodes = [&](std::size_t first, std::size_t count, auto codes) {
        if (valueOfCode.empty()) {
          valueOfCode.reserve(column_->codeCount());
          for (std::size_t code = 0; code < column_->codeCount(); ++code)
            valueOfCode.push_back(valueOf(column_->valueOf(static_cast<ValueCode>(code))));
        }
        const Value* const values = valueOfCode.data();
        for (std::size_t i = 0; i < count; ++i)
          if (wanted(first + i)) put(first + i, values[codes(i)]);
      };
      const auto onTexts = [&](std::size_t first, std::size_t count, auto texts) {
        for (std::size_t i = 0; i < count; ++i)
          if (wanted(first + i)) put(first + i, valueOf(texts(i)));
      };
      column_->forEachBlock(part.first, stored, onCodes, onTexts);
    }
    putSame(stored, part.end, true);
  }
}

}  // namespace korvel::results
