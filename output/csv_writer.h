#pragma once

#include <cstddef>
#include <span>

#include "output/byte_sink.h"
#include "output/row_writer.h"
#include "results/text_arena.h"

namespace korvel::output {

/// A large buffer that rows are written into byte by byte, without asking for each whether there is room: once a row is
/// enough. Hands itself to a sink when it is full.
class RowBuffer {
 public:
  explicit RowBuffer(const ByteSink& sink) : sink_(sink), bytes_(results::heapBytes(size_)) {}

  /// A place with room for `most` bytes, behind what was written; valid until the next call.
  [[nodiscard]] char* room(std::size_t most) {
    if (most > size_ - used_) makeRoom(most);
    return bytes_.get() + used_;
  }
  /// What was written ends here.
  void writtenTo(const char* end) noexcept { used_ = static_cast<std::size_t>(end - bytes_.get()); }

  /// Hands over what is left; to be called at the end.
  void flush() {
    if (used_ > 0) sink_({bytes_.get(), used_});
    used_ = 0;
  }

 private:
  static constexpr std::size_t usualBytes = std::size_t{1} << 16U;

  void makeRoom(std::size_t most) {
    flush();
    if (most <= size_) return;
    bytes_ = results::heapBytes(most);
    size_ = most;
  }

  const ByteSink& sink_;
  std::size_t size_ = usualBytes;
  std::size_t used_ = 0;
  results::HeapBytes bytes_;
};

/// Comma-separated values after RFC 4180, in UTF-8 as they come: a line of names, fields quoted where they need it,
/// lines ended by CR LF. Null is an empty field, an empty text is "", so that the two stay apart. Bytes stay as they
/// are.
class CsvWriter final : public RowWriter {
 public:
  /// `sink` outlives the writer.
  explicit CsvWriter(const ByteSink& sink) : out_(sink) {}

  void begin(std::span<const db::Field> fields) override;
  void row(std::span<const db::Cell> cells) override;
  void end() override { out_.flush(); }

 private:
  RowBuffer out_;
};

}  // namespace korvel::output
