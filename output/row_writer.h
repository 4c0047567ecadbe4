#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "db/connection.h"

namespace korvel::output {

/// Writes rows one after the other in some format. What the byte sink behind it throws comes through; the output is
/// then incomplete.
class RowWriter {
 public:
  RowWriter() = default;
  virtual ~RowWriter() = default;
  RowWriter(const RowWriter&) = delete;
  RowWriter& operator=(const RowWriter&) = delete;

  /// Called before the first row; `fields` are those of the rows that follow.
  virtual void begin(std::span<const db::Field> fields) = 0;
  virtual void row(std::span<const db::Cell> cells) = 0;
  /// All rows have come: writes what is left.
  virtual void end() = 0;
};

/// Writes the first result set of an answer while it arrives, in the memory of a few rows. Nothing is written before
/// the first row, nor for an answer without rows. What the writer throws comes through; the output is then incomplete.
class RecordStream final : public db::ResultSink {
 public:
  /// `wanted` is called periodically and tells whether to go on.
  RecordStream(std::unique_ptr<RowWriter> writer, std::function<bool()> wanted);

  void beginResult(std::span<const db::Field> fields) override;
  bool row(std::span<const db::Cell> cells) override;
  void endResult() override;
  bool shouldContinue() override;

  /// The answer has arrived: writes what is left.
  void finish();

  [[nodiscard]] std::size_t rowCount() const noexcept { return rowCount_; }
  /// Whether the answer was ended because it was not wanted any more.
  [[nodiscard]] bool stopped() const noexcept { return stopped_; }

 private:
  std::unique_ptr<RowWriter> writer_;
  std::function<bool()> wanted_;
  std::vector<db::Field> fields_;
  std::size_t rowCount_ = 0;
  bool begun_ = false;
  bool complete_ = false;
  bool stopped_ = false;
};

}  // namespace korvel::output
