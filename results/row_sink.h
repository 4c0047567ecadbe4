#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

#include "db/connection.h"
#include "results/row_store.h"
#include "results/store_filler.h"

namespace korvel::results {

/// Collects a whole answer into a RowStore. The first result set of `firstOnly` sinks is the only one that is kept.
/// When a result set has ended all of its rows are in the store, or the call has thrown Error.
class RowSink final : public db::ResultSink {
 public:
  explicit RowSink(bool firstOnly = false) : firstOnly_(firstOnly) {}

  void beginResult(std::span<const db::Field> fields) override;
  bool row(std::span<const db::Cell> cells) override;
  void endResult() override;

  /// Number of result sets begun.
  [[nodiscard]] std::size_t resultCount() const noexcept { return firstRows_.size(); }
  /// The store's row count when result set `index` began: its first row, if it has any.
  [[nodiscard]] std::size_t firstRowOf(std::size_t index) const { return firstRows_.at(index); }
  /// The fields of the first result set.
  [[nodiscard]] const std::vector<db::Field>& firstFields() const noexcept { return firstFields_; }
  /// Only between result sets, and not after takeStore() until the next one has begun.
  [[nodiscard]] RowStore& store() { return filler_.store(); }
  /// Hands the store over; the sink is empty afterwards and takes another answer.
  [[nodiscard]] std::shared_ptr<const RowStore> takeStore();

 private:
  bool firstOnly_;
  StoreFiller filler_;
  std::vector<std::size_t> firstRows_;
  std::vector<db::Field> firstFields_;
};

}  // namespace korvel::results
