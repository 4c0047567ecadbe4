#pragma once

#include "output/byte_sink.h"
#include "output/json_records.h"
#include "output/row_writer.h"

namespace korvel::output {

/// JSON, record by record as they come, with what had to be replaced in them.
class JsonRowWriter final : public RowWriter {
 public:
  /// `sink` outlives the writer.
  explicit JsonRowWriter(const ByteSink& sink) : chunks_(sink) {}

  void begin(std::span<const db::Field> fields) override { records_.setFields(fields); }
  void row(std::span<const db::Cell> cells) override {
    records_.appendRecord(cells, chunks_.text());
    chunks_.endLine();
  }
  void end() override {
    records_.appendEnd(chunks_.text());
    chunks_.flush();
  }
  [[nodiscard]] const JsonReplacements& replacements() const noexcept { return records_.replacements(); }

 private:
  ChunkedText chunks_;
  JsonRecords records_;
};

}  // namespace korvel::output
