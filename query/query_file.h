#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "query/file_names.h"

namespace korvel::query {

/// Query files: a query's text in the system's code page, followed by CR LF.

inline constexpr std::string_view queryFileExtension = "vqf";

/// What a query file of this text holds. A character that the code page lacks becomes "?".
[[nodiscard]] std::string queryFileBytes(std::string_view text);
/// Whether a file can hold the text as it is: the code page has all of its characters.
[[nodiscard]] bool fitsQueryFile(std::string_view text);

/// Writes the text to `file`, whole or not at all, over an earlier one. Throws Error with the reason in a sentence of
/// ours; a database that stands there is never replaced, not even through a link.
void saveQueryFile(const std::filesystem::path& file, std::string_view text);

/// The text that a file of these bytes gives: line by line, each line followed by CR LF. A line ends at CR, at CR LF or
/// at the end of the file; an empty file has no line. All other bytes are characters of their line, LF alone, NUL and
/// Ctrl+Z among them, so that nothing of a file is lost.
[[nodiscard]] std::string textOfQueryFile(std::string_view bytes);
/// Reads a file. Throws Error with the reason in a sentence of ours; a pipe or device is no query file.
[[nodiscard]] std::string loadQueryFile(const std::filesystem::path& file);

}  // namespace korvel::query
