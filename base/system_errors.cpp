#include "base/system_errors.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace korvel {

namespace {

struct UsualText {
  FileError error;
  std::string_view text;
};

constexpr std::array usualTexts = {
    UsualText{FileError::invalidCall, "Invalid procedure call or argument"},
    UsualText{FileError::outOfMemory, "Out of memory"},
    UsualText{FileError::badFileName, "Bad file name or number"},
    UsualText{FileError::fileNotFound, "File not found"},
    UsualText{FileError::fileAlreadyOpen, "File already open"},
    UsualText{FileError::deviceInputOutput, "Device I/O error"},
    UsualText{FileError::diskFull, "Disk full"},
    UsualText{FileError::tooManyFiles, "Too many files"},
    UsualText{FileError::deviceUnavailable, "Device unavailable"},
    UsualText{FileError::permissionDenied, "Permission denied"},
    UsualText{FileError::diskNotReady, "Disk not ready"},
    UsualText{FileError::pathFileAccess, "Path/File access error"},
    UsualText{FileError::pathNotFound, "Path not found"},
    UsualText{FileError::invalidFileFormat, "Invalid file format"},
};

}  // namespace

Error systemError(int systemErrorNumber, const std::string& what) {
  return {systemErrorNumber, what + ": " + systemMessage(systemErrorNumber)};
}

Error fileError(FileError error) {
  const auto found = std::find_if(usualTexts.begin(), usualTexts.end(),
                                  [error](const UsualText& each) { return each.error == error; });
  return {numberOf(error),
          std::string(found == usualTexts.end() ? "Application-defined or object-defined error" : found->text)};
}

bool isDiskFailure(int systemErrorNumber) noexcept {
  const auto error = fileErrorFrom(systemErrorNumber, FileAccess::write);
  return error == FileError::diskFull || error == FileError::deviceInputOutput ||
         isSystemError(systemErrorNumber, std::errc::read_only_file_system);
}

Error asFileError(const Error& failure, FileAccess access) {
  const auto error = fileErrorFrom(failure.number(), access);
  return error ? fileError(*error) : failure;
}

}  // namespace korvel
