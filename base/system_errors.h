#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <system_error>

#include "base/error.h"

namespace korvel {

// Error numbers come in three families: those of the system that the program runs on, those of Windows, which the
// settings store answers with on every system, and those of files, which messages of outputs lead with.

// The system's own numbers: errno on POSIX systems, those of GetLastError on Windows. Shared code names conditions
// instead.

/// The system's number for a condition.
[[nodiscard]] int systemErrorNumber(std::errc condition) noexcept;
/// The system's number of a failure that the standard library reports.
[[nodiscard]] int systemErrorNumber(const std::error_code& failure) noexcept;
/// The number for what `errno` says, as functions of the C library set it; that of `otherwise` where it is 0.
[[nodiscard]] int systemErrorNumberFromErrno(std::errc otherwise) noexcept;
/// Whether a number of the system means this condition. Several may: Windows has one for a missing file and one for a
/// missing path.
[[nodiscard]] bool isSystemError(int systemErrorNumber, std::errc condition) noexcept;

/// The system's message for one of its numbers, in UTF-8.
[[nodiscard]] std::string systemMessage(int systemErrorNumber);
/// The error for a failed system call: the system's number and its message after `what`, a colon and a blank.
[[nodiscard]] Error systemError(int systemErrorNumber, const std::string& what);

/// Error numbers of Windows, under which users and manuals know the failures of a registry. A value may be another
/// number than those named.
enum class Win32Error : std::uint32_t {
  success = 0,
  fileNotFound = 2,
  pathNotFound = 3,
  tooManyOpenFiles = 4,
  accessDenied = 5,
  notEnoughMemory = 8,
  writeProtected = 19,
  lockViolation = 33,  ///< another program keeps the store locked
  invalidParameter = 87,
  diskFull = 112,
  busy = 170,
  fileNameTooLong = 206,
  fileTooLarge = 223,
  moreData = 234,
  badDatabase = 1009,       ///< the store holds something that is no registry
  registryIoFailed = 1016,  ///< a failure of input or output that has no number of its own
  noUnicodeTranslation = 1113,
  ioDevice = 1117,
  cannotResolveFileName = 1921
};
[[nodiscard]] constexpr std::uint32_t numberOf(Win32Error error) noexcept {
  return static_cast<std::uint32_t>(error);
}
/// The number of Windows for one of the system's.
[[nodiscard]] Win32Error win32ErrorFrom(int systemErrorNumber) noexcept;

/// Error numbers that the messages of outputs lead with, as Windows users know them from its programs.
enum class FileError : std::int32_t {
  invalidCall = 5,
  outOfMemory = 7,
  badFileName = 52,
  fileNotFound = 53,
  fileAlreadyOpen = 55,
  deviceInputOutput = 57,
  diskFull = 61,
  tooManyFiles = 67,
  deviceUnavailable = 68,
  permissionDenied = 70,
  diskNotReady = 71,
  pathFileAccess = 75,
  pathNotFound = 76,
  invalidFileFormat = 321
};
[[nodiscard]] constexpr std::int32_t numberOf(FileError error) noexcept {
  return static_cast<std::int32_t>(error);
}

/// What a file was opened for: a missing name is a missing file to a reader, and a missing path to a writer.
enum class FileAccess { read, write };

/// The error of such a number with its usual text, which is English like the messages that it is shown in.
[[nodiscard]] Error fileError(FileError error);
/// The file error for one of the system's numbers; nothing for one that has no counterpart.
[[nodiscard]] std::optional<FileError> fileErrorFrom(int systemErrorNumber, FileAccess access) noexcept;
/// What to raise for a failure that carries a number of the system: the file error for it, or the failure itself.
[[nodiscard]] Error asFileError(const Error& failure, FileAccess access);
/// Whether a number of the system says that a disk is full, broken, or write-protected.
[[nodiscard]] bool isDiskFailure(int systemErrorNumber) noexcept;

}  // namespace korvel
