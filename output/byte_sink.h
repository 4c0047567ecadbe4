#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace korvel::output {

/// Takes the bytes of a file as they are made; throws where they cannot be kept.
using ByteSink = std::function<void(std::string_view)>;

/// Collects lines and hands them to a sink in chunks, so that a list of any length takes the memory of one chunk.
class ChunkedText {
 public:
  explicit ChunkedText(const ByteSink& sink) : sink_(sink) { text_.reserve(2 * chunkBytes); }

  /// The text that is being written; append to it.
  [[nodiscard]] std::string& text() noexcept { return text_; }
  /// A line is complete.
  void endLine() {
    if (text_.size() >= chunkBytes) flush();
  }
  /// Hands over what is left; to be called at the end.
  void flush() {
    if (!text_.empty()) sink_(text_);
    text_.clear();
  }

 private:
  static constexpr std::size_t chunkBytes = std::size_t{1} << 16U;
  const ByteSink& sink_;
  std::string text_;
};

/// Is told how many rows of a list are written: after every so many and after the last one. What it throws ends the
/// output, of which nothing then stays.
using RowProgress = std::function<void(std::size_t rows)>;

inline constexpr std::size_t rowsPerReport = 1000;

inline void reportRows(const RowProgress& progress, std::size_t done, std::size_t all) {
  if (progress && (done % rowsPerReport == 0 || done == all)) progress(done);
}

}  // namespace korvel::output
