#include <windows.h>

#include <array>

#include "output/windows_error.h"

namespace korvel::output {

namespace {

/// ERROR_DIRECTORY_NOT_SUPPORTED, which the compiler's headers lack.
constexpr std::int32_t directoryNotSupported = 336;

}  // namespace

std::span<const SystemNumber> systemNumbers() noexcept {
  static constexpr std::array rows = {
      SystemNumber{ERROR_FILE_NOT_FOUND, errorFileNotFound, errorPathNotFound},
      SystemNumber{ERROR_PATH_NOT_FOUND, errorPathNotFound, errorPathNotFound},
      SystemNumber{ERROR_BAD_NETPATH, errorPathNotFound, errorPathNotFound},
      SystemNumber{ERROR_BAD_NET_NAME, errorPathNotFound, errorPathNotFound},
      SystemNumber{ERROR_INVALID_DRIVE, errorDeviceUnavailable, errorDeviceUnavailable},
      SystemNumber{ERROR_ACCESS_DENIED, errorPermissionDenied, errorPermissionDenied},
      SystemNumber{ERROR_SHARING_VIOLATION, errorPermissionDenied, errorPermissionDenied},
      SystemNumber{ERROR_LOCK_VIOLATION, errorPermissionDenied, errorPermissionDenied},
      SystemNumber{ERROR_WRITE_PROTECT, errorPathFileAccess, errorPathFileAccess},
      SystemNumber{ERROR_ALREADY_EXISTS, errorPathFileAccess, errorPathFileAccess},
      SystemNumber{ERROR_DIRECTORY, errorPathNotFound, errorPathNotFound},
      SystemNumber{directoryNotSupported, errorPathFileAccess, errorPathFileAccess},
      SystemNumber{ERROR_FILE_EXISTS, errorPathFileAccess, errorPathFileAccess},
      SystemNumber{ERROR_INVALID_NAME, errorBadFileName, errorBadFileName},
      SystemNumber{ERROR_FILENAME_EXCED_RANGE, errorBadFileName, errorBadFileName},
      SystemNumber{ERROR_INVALID_HANDLE, errorBadFileName, errorBadFileName},
      SystemNumber{ERROR_INVALID_PARAMETER, errorInvalidCall, errorInvalidCall},
      SystemNumber{ERROR_NOT_ENOUGH_MEMORY, errorOutOfMemory, errorOutOfMemory},
      SystemNumber{ERROR_OUTOFMEMORY, errorOutOfMemory, errorOutOfMemory},
      SystemNumber{ERROR_TOO_MANY_OPEN_FILES, errorTooManyFiles, errorTooManyFiles},
      SystemNumber{ERROR_DISK_FULL, errorDiskFull, errorDiskFull},
      SystemNumber{ERROR_HANDLE_DISK_FULL, errorDiskFull, errorDiskFull},
      SystemNumber{ERROR_FILE_TOO_LARGE, errorDiskFull, errorDiskFull},
      SystemNumber{ERROR_IO_DEVICE, errorDeviceInputOutput, errorDeviceInputOutput},
      SystemNumber{ERROR_BROKEN_PIPE, errorDeviceInputOutput, errorDeviceInputOutput},
      SystemNumber{ERROR_NO_DATA, errorDeviceInputOutput, errorDeviceInputOutput},
      SystemNumber{ERROR_DEV_NOT_EXIST, errorDeviceUnavailable, errorDeviceUnavailable},
      SystemNumber{ERROR_NOT_READY, errorDiskNotReady, errorDiskNotReady},
      SystemNumber{WAIT_TIMEOUT, errorDiskNotReady, errorDiskNotReady},
  };
  return rows;
}

}  // namespace korvel::output
