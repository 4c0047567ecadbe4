#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace korvel {

// All texts of the system are UTF-8, names of files among them. The library's own conversions between texts and paths
// take another encoding on some systems, so every text becomes a path here, and every path a text.

/// The path that UTF-8 `text` names. Where the system's names are bytes, they stay as they are, UTF-8 or not.
[[nodiscard]] std::filesystem::path pathFromUtf8(std::string_view text);
/// `path` as UTF-8, with the system's own separators as they stand in it.
[[nodiscard]] std::string utf8FromPath(const std::filesystem::path& path);

/// Whether `path` says where it leads without the current folder. The library's own answer is wrong for folders of the
/// network on Windows.
[[nodiscard]] bool isAbsolute(const std::filesystem::path& path);
/// `path` said without the current folder; unchanged where it is whole already. The library's own function drops the
/// leading separators of folders of the network on Windows. On a failure `path` itself.
[[nodiscard]] std::filesystem::path absolutePath(const std::filesystem::path& path, std::error_code& failure);

/// Whether the name of a file ends in `extension`, a dot and letters of ASCII, as the system compares names of files.
[[nodiscard]] bool hasExtension(const std::filesystem::path& file, std::string_view extension);

/// `path` in the form in which the system's calls take it however long it is; a relative one means the folder that is
/// current now. For calls only, never to be shown or kept.
[[nodiscard]] std::filesystem::path extendedLengthPath(const std::filesystem::path& path);

}  // namespace korvel
