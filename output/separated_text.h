#pragma once

#include <span>
#include <string>

#include "output/byte_sink.h"
#include "output/row_writer.h"

namespace korvel::output {

inline constexpr char textExportSeparator = ',';
inline constexpr char exchangeSeparator = '|';

/// The layout of the text export and of the exchange file, in UTF-8: a line of captions and a line a row, outer blanks
/// removed, nothing quoted or escaped, each line ended by CR LF. Every caption is followed by the separator, the last
/// one too. Deliberate: data lines do not end so.
class SeparatedTextWriter final : public RowWriter {
 public:
  /// `sink` outlives the writer.
  SeparatedTextWriter(const ByteSink& sink, char separator) : chunks_(sink), separator_(separator) {}

  void begin(std::span<const db::Field> fields) override;
  void row(std::span<const db::Cell> cells) override;
  void end() override { chunks_.flush(); }

 private:
  ChunkedText chunks_;
  char separator_;
};

}  // namespace korvel::output
