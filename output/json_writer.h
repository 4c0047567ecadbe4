#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "output/byte_sink.h"
#include "output/row_writer.h"

namespace korvel::output {

/// What had to be replaced in the records: bytes that are not UTF-8, which JSON cannot carry.
struct JsonReplacements {
  std::size_t values = 0;       ///< values with such bytes
  std::size_t firstRow = 0;     ///< where the first of them stands, from 0
  std::size_t firstColumn = 0;  ///< likewise
  bool names = false;           ///< column names have such bytes, too
};

/// A JSON array with one object a record, one record a line. Every value is a string, so that no reader rounds a
/// number; null is null. A name that a record holds twice becomes NAME_2, NAME_3. Bytes that are not UTF-8 become
/// U+FFFD, which is counted.
class JsonWriter final : public RowWriter {
 public:
  /// `sink` outlives the writer.
  explicit JsonWriter(const ByteSink& sink) : chunks_(sink) {}

  /// May be called again where records of other fields follow.
  void begin(std::span<const db::Field> fields) override;
  void row(std::span<const db::Cell> cells) override;
  /// Closes the array, and opens it where there was no record.
  void end() override;
  [[nodiscard]] const JsonReplacements& replacements() const noexcept { return replacements_; }

 private:
  ChunkedText chunks_;
  std::vector<std::string> members_;  ///< `"name":` of each field
  std::size_t rows_ = 0;
  JsonReplacements replacements_;
};

}  // namespace korvel::output
