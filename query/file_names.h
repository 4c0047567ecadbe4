#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/error.h"

namespace korvel::query {

inline constexpr char folderSeparator = static_cast<char>(std::filesystem::path::preferred_separator);

/// Why no query file can have this name, which is without its extension; nothing for a name that can be used on every
/// platform, and for the empty one, which is not written. The Error's sentence is one of ours.
[[nodiscard]] std::optional<Error> fileNameProblem(std::string_view name);

/// `folder` with a separator at its end.
[[nodiscard]] std::string withSeparator(std::string folder);
/// The pattern of files with an extension: "*." is put in front unless it stands there; a blank one means every file.
[[nodiscard]] std::string filePattern(std::string_view extension);
/// Whether a file's name matches a pattern of "*" and "?", in any case of letters. "*.*" is every name's.
[[nodiscard]] bool matchesFilePattern(std::string_view name, std::string_view pattern);
/// The names of the files (and links to files) of a folder that match filePattern(extension), in the order in which the
/// system lists them and as it stores them: bytes that are no UTF-8 stay, for they are what opens the file. Throws
/// Error with a sentence of ours where the folder cannot be read.
[[nodiscard]] std::vector<std::string> listedFiles(const std::string& folder, std::string_view extension);

}  // namespace korvel::query
