#pragma once

#include <memory>
#include <span>

#include "db/connection.h"
#include "output/byte_sink.h"
#include "output/list_writers.h"

namespace korvel::output {

/// Writes the rows of one result set, one after the other. What the byte sink behind it throws comes through; the
/// output is then incomplete.
class RowWriter {
 public:
  RowWriter() = default;
  virtual ~RowWriter() = default;
  RowWriter(const RowWriter&) = delete;
  RowWriter& operator=(const RowWriter&) = delete;

  /// Called once, before the first row.
  virtual void begin(std::span<const db::Field> fields) = 0;
  virtual void row(std::span<const db::Cell> cells) = 0;
  /// All rows have come: writes what is left.
  virtual void end() = 0;
};

/// The writer of a form that canStream(); `sink` outlives it.
[[nodiscard]] std::unique_ptr<RowWriter> rowWriterOf(ListFormat format, const ByteSink& sink);

}  // namespace korvel::output
