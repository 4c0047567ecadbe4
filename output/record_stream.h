#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "output/byte_sink.h"
#include "output/list_writers.h"
#include "output/row_writer.h"

namespace korvel::output {

/// Whether the format's rows can be written one by one; a table needs to know all of them for its widths.
[[nodiscard]] constexpr bool canStream(ListFormat format) noexcept {
  return format != ListFormat::table;
}

/// Writes the first result set of an answer while it arrives, in the memory of a few rows: in a form that canStream(),
/// the same bytes that writeList() gives for a list of those rows. Nothing is written before the first row, nor for an
/// answer without rows. What the writer throws comes through; the output is then incomplete.
class RecordStream final : public db::ResultSink {
 public:
  /// `wanted` is asked again and again whether to go on; `sink` outlives the stream.
  RecordStream(ListFormat format, const ByteSink& sink, std::function<bool()> wanted);
  RecordStream(std::unique_ptr<RowWriter> writer, std::function<bool()> wanted);
  ~RecordStream() override;

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
