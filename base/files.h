#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <vector>

namespace korvel::files {

// What the library does with files, for paths of any length, and with failures that tell the system's number
// (systemNumber in base/system_errors.h). `failure` is cleared where a function succeeds.

/// The kind of what `path` names, links followed; not_found where nothing is there. A device or pipe is not opened.
[[nodiscard]] std::filesystem::file_status status(const std::filesystem::path& path, std::error_code& failure);
/// The same of a link itself.
[[nodiscard]] std::filesystem::file_status symlinkStatus(const std::filesystem::path& path, std::error_code& failure);
[[nodiscard]] std::uintmax_t size(const std::filesystem::path& file, std::error_code& failure);
[[nodiscard]] std::filesystem::file_time_type lastWriteTime(const std::filesystem::path& file,
                                                            std::error_code& failure);
/// Whether both name the same file.
[[nodiscard]] bool equivalent(const std::filesystem::path& left, const std::filesystem::path& right);

/// What is in a folder, as the system lists it. Those listed before a failure are there.
[[nodiscard]] std::vector<std::filesystem::path> listFolder(const std::filesystem::path& folder,
                                                            std::error_code& failure);

/// Makes a folder and those above it where they are not there.
void createDirectories(const std::filesystem::path& folder, std::error_code& failure);
/// Makes an empty file; fails where anything is there, a link to nowhere among it.
void createNew(const std::filesystem::path& file, std::error_code& failure);
/// Whether the file `target`, if it is there, can be replaced by another: `failure` says why not. A folder cannot.
void checkReplaceable(const std::filesystem::path& target, std::error_code& failure);
/// Puts a file in the place of another or of none, on the same disk.
void rename(const std::filesystem::path& from, const std::filesystem::path& to, std::error_code& failure);
/// Removes a file or an empty folder; nothing there is no failure.
void remove(const std::filesystem::path& path, std::error_code& failure);

/// A file opened as fopen does, bytes as they are; null with `errno` where it cannot be. Closed by the caller.
[[nodiscard]] std::FILE* open(const std::filesystem::path& file, const char* mode);

}  // namespace korvel::files
