#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

#include "base/atomic_file.h"

namespace korvel::output {

/// A file that an output goes to, whole or not at all. A link in its place is replaced, never followed: exports go to
/// places with known names, where anybody may have put one. Throws Error with a FileError.
class ExportFile {
 public:
  /// Creates a file beside `target`; fails at once where that cannot be, or where a folder stands in the file's place.
  explicit ExportFile(const std::filesystem::path& target);

  void write(std::string_view bytes);
  void commit();

 private:
  std::optional<AtomicFile> file_;
};

}  // namespace korvel::output
