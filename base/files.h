#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <vector>

namespace korvel::files {

// The standard library's functions on files, for paths of any length and with the system's own error numbers
// (systemErrorNumber). `failure` is cleared where a function succeeds.

/// The type of the file that `path` names, links followed. A device or pipe is not opened.
[[nodiscard]] std::filesystem::file_status status(const std::filesystem::path& path, std::error_code& failure);
/// The same of a link itself.
[[nodiscard]] std::filesystem::file_status symlinkStatus(const std::filesystem::path& path, std::error_code& failure);
[[nodiscard]] std::uintmax_t size(const std::filesystem::path& file, std::error_code& failure);
[[nodiscard]] std::filesystem::file_time_type lastWriteTime(const std::filesystem::path& file,
                                                            std::error_code& failure);
/// Whether both name the same file.
[[nodiscard]] bool equivalent(const std::filesystem::path& left, const std::filesystem::path& right);

/// The entries of a folder in the order of the system. After a failure, those listed before it.
[[nodiscard]] std::vector<std::filesystem::path> listFolder(const std::filesystem::path& folder,
                                                            std::error_code& failure);

/// Creates a folder and its missing parents.
void createDirectories(const std::filesystem::path& folder, std::error_code& failure);
/// Creates an empty file; fails where anything is there, a dangling link included.
void createNew(const std::filesystem::path& file, std::error_code& failure);
/// Whether the file `target`, if it is there, can be replaced by another: `failure` says why not. A folder cannot.
void checkReplaceable(const std::filesystem::path& target, std::error_code& failure);
/// Renames a file on the same disk, over an existing one.
void rename(const std::filesystem::path& from, const std::filesystem::path& to, std::error_code& failure);
/// Removes a file or an empty folder; nothing there is no failure.
void remove(const std::filesystem::path& path, std::error_code& failure);

/// A file opened as fopen does, bytes as they are; null with `errno` where it cannot be. Closed by the caller.
[[nodiscard]] std::FILE* open(const std::filesystem::path& file, const char* mode);

}  // namespace korvel::files
