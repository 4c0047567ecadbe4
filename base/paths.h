#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace korvel {

// All texts of the program are UTF-8, file names included. The standard library's conversions between texts and paths
// take another encoding on some systems, so all conversions are here.

/// The path that UTF-8 `text` names. Where the system's names are bytes, they stay as they are, UTF-8 or not.
[[nodiscard]] std::filesystem::path pathFromUtf8(std::string_view text);
/// `path` as UTF-8, with the system's own separators as they stand in it.
[[nodiscard]] std::string utf8FromPath(const std::filesystem::path& path);

/// Whether `path` is absolute. The standard library's answer is wrong for network folders on Windows.
[[nodiscard]] bool isAbsolute(const std::filesystem::path& path);
/// The absolute path; on a failure `path` itself. The standard library's function drops the leading separators of
/// network folders on Windows.
[[nodiscard]] std::filesystem::path absolutePath(const std::filesystem::path& path, std::error_code& failure);

/// Whether the name of a file ends in `extension`, a dot and letters of ASCII, as the system compares names of files.
[[nodiscard]] bool hasExtension(const std::filesystem::path& file, std::string_view extension);

/// `path` in the form in which calls of Windows take paths of any length; itself on other systems. A relative path
/// means the folder that is current now. For calls only, never to be shown or stored.
[[nodiscard]] std::filesystem::path extendedLengthPath(const std::filesystem::path& path);

}  // namespace korvel
