#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "base/error.h"

namespace korvel::output {

/// What was tried with a file: a missing name is a missing file for a reader, and a missing path for a writer.
enum class FileTask { read, write };

// The numbers that the messages of outputs lead with, as Windows users know them.
inline constexpr std::int32_t errorInvalidCall = 5;
inline constexpr std::int32_t errorOutOfMemory = 7;
inline constexpr std::int32_t errorBadFileName = 52;
inline constexpr std::int32_t errorFileNotFound = 53;
inline constexpr std::int32_t errorFileAlreadyOpen = 55;
inline constexpr std::int32_t errorDeviceInputOutput = 57;
inline constexpr std::int32_t errorDiskFull = 61;
inline constexpr std::int32_t errorTooManyFiles = 67;
inline constexpr std::int32_t errorDeviceUnavailable = 68;
inline constexpr std::int32_t errorPermissionDenied = 70;
inline constexpr std::int32_t errorDiskNotReady = 71;
inline constexpr std::int32_t errorPathFileAccess = 75;
inline constexpr std::int32_t errorPathNotFound = 76;
inline constexpr std::int32_t errorInvalidFileFormat = 321;

/// The error of such a number with its usual text, which is English like the messages that it is shown in.
[[nodiscard]] Error windowsError(std::int32_t number);

/// The number for an error number of the system (errno, on Windows that of its own interface); nothing for one that
/// has no counterpart.
[[nodiscard]] std::optional<std::int32_t> windowsErrorNumber(std::int32_t systemNumber, FileTask task) noexcept;

/// What to raise for a failure that carries a number of the system: its counterpart, or the failure itself.
[[nodiscard]] Error asWindowsError(const Error& failure, FileTask task);

/// Whether a number of the system says that the disk has refused something: full, broken, or not to be written.
[[nodiscard]] bool isOfTheDisk(std::int32_t systemNumber) noexcept;

/// A row of the platform's table.
struct SystemNumber {
  std::int32_t system;
  std::int32_t whenReading;
  std::int32_t whenWriting;
};
[[nodiscard]] std::span<const SystemNumber> systemNumbers() noexcept;

}  // namespace korvel::output
