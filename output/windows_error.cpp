#include "output/windows_error.h"

#include <algorithm>
#include <array>
#include <string>

#include "base/system_errors.h"

namespace korvel::output {

namespace {

struct UsualText {
  std::int32_t number;
  std::string_view text;
};

constexpr std::array usualTexts = {
    UsualText{errorInvalidCall, "Invalid procedure call or argument"},
    UsualText{errorOutOfMemory, "Out of memory"},
    UsualText{errorBadFileName, "Bad file name or number"},
    UsualText{errorFileNotFound, "File not found"},
    UsualText{errorFileAlreadyOpen, "File already open"},
    UsualText{errorDeviceInputOutput, "Device I/O error"},
    UsualText{errorDiskFull, "Disk full"},
    UsualText{errorTooManyFiles, "Too many files"},
    UsualText{errorDeviceUnavailable, "Device unavailable"},
    UsualText{errorPermissionDenied, "Permission denied"},
    UsualText{errorDiskNotReady, "Disk not ready"},
    UsualText{errorPathFileAccess, "Path/File access error"},
    UsualText{errorPathNotFound, "Path not found"},
    UsualText{errorInvalidFileFormat, "Invalid file format"},
};

}  // namespace

Error windowsError(std::int32_t number) {
  const auto found = std::find_if(usualTexts.begin(), usualTexts.end(),
                                  [number](const UsualText& each) { return each.number == number; });
  return {number, std::string(found == usualTexts.end() ? "Application-defined or object-defined error" : found->text)};
}

std::optional<std::int32_t> windowsErrorNumber(std::int32_t systemNumber, FileTask task) noexcept {
  const auto rows = systemNumbers();
  const auto found =
      std::find_if(rows.begin(), rows.end(), [&](const SystemNumber& row) { return row.system == systemNumber; });
  if (found == rows.end()) return std::nullopt;
  return task == FileTask::read ? found->whenReading : found->whenWriting;
}

bool isOfTheDisk(std::int32_t systemNumber) noexcept {
  const std::int32_t number = windowsErrorNumber(systemNumber, FileTask::write).value_or(0);
  return number == errorDiskFull || number == errorDeviceInputOutput ||
         means(systemNumber, std::errc::read_only_file_system);
}

Error asWindowsError(const Error& failure, FileTask task) {
  const auto number = windowsErrorNumber(failure.number(), task);
  return number ? windowsError(*number) : failure;
}

}  // namespace korvel::output
