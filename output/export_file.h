#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

#include "base/atomic_file.h"
#include "base/system_errors.h"

namespace korvel::output {

/// Runs what writes a file that the user asked for; the Error that it throws comes out with a FileError.
template <typename Work>
void writingFile(Work work) {
  try {
    work();
  } catch (const Error& error) {
    throw asFileError(error, FileAccess::write);
  }
}

/// An atomic file that an output goes to. A link in its place is replaced, never followed: exports go to places with
/// known names, where another user may have put one. Throws Error with a FileError.
class ExportFile {
 public:
  /// Creates a file beside `target`; fails at once where that cannot be, or where a folder stands in the file's place.
  explicit ExportFile(const std::filesystem::path& target);

  void write(std::string_view bytes);
  void commit();

 private:
  std::optional<AtomicFile> file_;
};

/// Where the file `name` of an output goes: into the folder that the environment variable "windir" names. Where it is
/// not set, into a folder of the user's own, korvel/export among what programs keep for the user, which is created for
/// the user alone; never into a folder that others share. Throws Error with a FileError where that folder cannot be
/// created, belongs to another user, or is reached through a link.
[[nodiscard]] std::filesystem::path exportPath(std::string_view name);

}  // namespace korvel::output
