#include <algorithm>
#include <array>
#include <cerrno>

#include "base/system_errors.h"

namespace korvel {

namespace {

struct Row {
  int number;
  Win32Error win32;
  FileError whenReading;
  FileError whenWriting;
};

constexpr std::array rows = {
    Row{ENOENT, Win32Error::fileNotFound, FileError::fileNotFound, FileError::pathNotFound},
    // Not a missing file: a path that leads through a file is a mistake, not a setting that was never written.
    Row{ENOTDIR, Win32Error::pathNotFound, FileError::pathNotFound, FileError::pathNotFound},
    Row{EACCES, Win32Error::accessDenied, FileError::permissionDenied, FileError::permissionDenied},
    Row{EPERM, Win32Error::accessDenied, FileError::permissionDenied, FileError::permissionDenied},
    Row{EBUSY, Win32Error::busy, FileError::permissionDenied, FileError::permissionDenied},
    Row{ETXTBSY, Win32Error::registryIoFailed, FileError::permissionDenied, FileError::permissionDenied},
    Row{EROFS, Win32Error::writeProtected, FileError::pathFileAccess, FileError::pathFileAccess},
    Row{EISDIR, Win32Error::accessDenied, FileError::pathFileAccess, FileError::pathFileAccess},
    Row{ELOOP, Win32Error::cannotResolveFileName, FileError::pathFileAccess, FileError::pathFileAccess},
    Row{EEXIST, Win32Error::registryIoFailed, FileError::pathFileAccess, FileError::pathFileAccess},
    Row{ENAMETOOLONG, Win32Error::fileNameTooLong, FileError::badFileName, FileError::badFileName},
    Row{EBADF, Win32Error::registryIoFailed, FileError::badFileName, FileError::badFileName},
    Row{EINVAL, Win32Error::invalidParameter, FileError::invalidCall, FileError::invalidCall},
    Row{ENOMEM, Win32Error::notEnoughMemory, FileError::outOfMemory, FileError::outOfMemory},
    Row{EMFILE, Win32Error::tooManyOpenFiles, FileError::tooManyFiles, FileError::tooManyFiles},
    Row{ENFILE, Win32Error::tooManyOpenFiles, FileError::tooManyFiles, FileError::tooManyFiles},
    Row{ENOSPC, Win32Error::diskFull, FileError::diskFull, FileError::diskFull},
    Row{EDQUOT, Win32Error::diskFull, FileError::diskFull, FileError::diskFull},
    Row{EFBIG, Win32Error::fileTooLarge, FileError::diskFull, FileError::diskFull},
    Row{EIO, Win32Error::ioDevice, FileError::deviceInputOutput, FileError::deviceInputOutput},
    Row{EPIPE, Win32Error::registryIoFailed, FileError::deviceInputOutput, FileError::deviceInputOutput},
    Row{ENXIO, Win32Error::registryIoFailed, FileError::deviceUnavailable, FileError::deviceUnavailable},
    Row{ENODEV, Win32Error::registryIoFailed, FileError::deviceUnavailable, FileError::deviceUnavailable},
    Row{ESTALE, Win32Error::registryIoFailed, FileError::diskNotReady, FileError::diskNotReady},
    Row{ETIMEDOUT, Win32Error::registryIoFailed, FileError::diskNotReady, FileError::diskNotReady},
};

const Row* rowOf(int systemErrorNumber) noexcept {
  const auto* const found =
      std::find_if(rows.begin(), rows.end(), [&](const Row& row) { return row.number == systemErrorNumber; });
  return found == rows.end() ? nullptr : found;
}

}  // namespace

int systemErrorNumber(std::errc condition) noexcept {
  return static_cast<int>(condition);
}

int systemErrorNumber(const std::error_code& failure) noexcept {
  return failure.value();
}

int systemErrorNumberFromErrno(std::errc otherwise) noexcept {
  return errno != 0 ? errno : static_cast<int>(otherwise);
}

bool isSystemError(int systemErrorNumber, std::errc condition) noexcept {
  return systemErrorNumber == static_cast<int>(condition);
}

std::string systemMessage(int systemErrorNumber) {
  return std::generic_category().message(systemErrorNumber);
}

Win32Error win32ErrorFrom(int systemErrorNumber) noexcept {
  if (systemErrorNumber == 0) return Win32Error::success;
  const Row* const row = rowOf(systemErrorNumber);
  return row == nullptr ? Win32Error::registryIoFailed : row->win32;
}

std::optional<FileError> fileErrorFrom(int systemErrorNumber, FileAccess access) noexcept {
  const Row* const row = rowOf(systemErrorNumber);
  if (row == nullptr) return std::nullopt;
  return access == FileAccess::read ? row->whenReading : row->whenWriting;
}

}  // namespace korvel
