#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <span>

namespace korvel::output {

/// The bytes of a report, from the beginning as often as is needed. Throws Error.
class ReportBytes {
 public:
  virtual ~ReportBytes() = default;
  virtual void rewind() = 0;
  /// Fills `to` as far as there are bytes; returns how many, 0 at the end.
  virtual std::size_t read(std::span<char> to) = 0;
};

/// The bytes of a file. The same file is read each time, whatever takes its name meanwhile. Throws Error with the
/// numbers of FileError.
[[nodiscard]] std::unique_ptr<ReportBytes> reportFile(const std::filesystem::path& file);

}  // namespace korvel::output
