#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "db/connection.h"
#include "query/date_slices.h"
#include "results/memory_watch.h"

namespace korvel::query {

/// The place of a column, whatever the case of its name.
[[nodiscard]] std::optional<std::size_t> columnOf(std::span<const db::Field> fields, std::string_view name) noexcept;

/// The rows of one result set, until it is known whether they are all that there are.
class BufferedRows {
 public:
  /// The column that minutes() reads.
  static constexpr std::string_view dateTimeColumn = "DateTime";

  void begin(std::span<const db::Field> fields);
  void add(std::span<const db::Cell> cells);
  void clear() noexcept;

  [[nodiscard]] std::size_t rowCount() const noexcept { return rowCount_; }
  [[nodiscard]] std::size_t byteCount() const noexcept { return bytes_.size() + values_.size() * bytesOfValue; }
  [[nodiscard]] const std::vector<db::Field>& fields() const noexcept { return fields_; }
  /// The cells of a row, valid until the next call of a member.
  [[nodiscard]] std::span<const db::Cell> row(std::size_t index) const;
  /// The minutes of the rows, in their order; rows without a time that can be read are left out.
  [[nodiscard]] std::vector<Minute> minutes() const;

 private:
  struct Value {
    std::size_t end = 0;
    bool isNull = false;
  };

  /// What a value costs beside its text.
  static constexpr std::size_t bytesOfValue = sizeof(Value);

  std::vector<db::Field> fields_;
  std::string bytes_;
  std::vector<Value> values_;
  std::size_t rowCount_ = 0;
  mutable std::vector<db::Cell> cells_;
};

/// The result sets of one answer, each in full. A stop ends it.
class BufferedAnswer final : public db::ResultSink {
 public:
  /// `results` are those of an earlier answer or none, so that their memory is used again.
  BufferedAnswer(std::vector<BufferedRows>& results, results::MemoryWatch& memory, const std::stop_token& stop)
      : results_(results), memory_(memory), stop_(stop) {}

  void beginResult(std::span<const db::Field> fields) override;
  bool row(std::span<const db::Cell> cells) override;
  void endResult() override { ++count_; }
  bool shouldContinue() override { return !stop_.stop_requested(); }

  [[nodiscard]] std::size_t count() const noexcept { return count_; }

 private:
  std::vector<BufferedRows>& results_;
  results::MemoryWatch& memory_;
  const std::stop_token& stop_;
  std::size_t count_ = 0;
};

}  // namespace korvel::query
