// The error numbers of a POSIX system.
#include <array>
#include <cerrno>

#include "output/windows_error.h"

namespace korvel::output {

std::span<const SystemNumber> systemNumbers() noexcept {
  static constexpr std::array rows = {
      SystemNumber{ENOENT, errorFileNotFound, errorPathNotFound},
      SystemNumber{ENOTDIR, errorPathNotFound, errorPathNotFound},
      SystemNumber{EACCES, errorPermissionDenied, errorPermissionDenied},
      SystemNumber{EPERM, errorPermissionDenied, errorPermissionDenied},
      SystemNumber{EBUSY, errorPermissionDenied, errorPermissionDenied},
      SystemNumber{ETXTBSY, errorPermissionDenied, errorPermissionDenied},
      SystemNumber{EROFS, errorPathFileAccess, errorPathFileAccess},
      SystemNumber{EISDIR, errorPathFileAccess, errorPathFileAccess},
      SystemNumber{ELOOP, errorPathFileAccess, errorPathFileAccess},
      SystemNumber{EEXIST, errorPathFileAccess, errorPathFileAccess},
      SystemNumber{ENAMETOOLONG, errorBadFileName, errorBadFileName},
      SystemNumber{EBADF, errorBadFileName, errorBadFileName},
      SystemNumber{EINVAL, errorInvalidCall, errorInvalidCall},
      SystemNumber{ENOMEM, errorOutOfMemory, errorOutOfMemory},
      SystemNumber{EMFILE, errorTooManyFiles, errorTooManyFiles},
      SystemNumber{ENFILE, errorTooManyFiles, errorTooManyFiles},
      SystemNumber{ENOSPC, errorDiskFull, errorDiskFull},
      SystemNumber{EDQUOT, errorDiskFull, errorDiskFull},
      SystemNumber{EFBIG, errorDiskFull, errorDiskFull},
      SystemNumber{EIO, errorDeviceInputOutput, errorDeviceInputOutput},
      SystemNumber{EPIPE, errorDeviceInputOutput, errorDeviceInputOutput},
      SystemNumber{ENXIO, errorDeviceUnavailable, errorDeviceUnavailable},
      SystemNumber{ENODEV, errorDeviceUnavailable, errorDeviceUnavailable},
      SystemNumber{ESTALE, errorDiskNotReady, errorDiskNotReady},
      SystemNumber{ETIMEDOUT, errorDiskNotReady, errorDiskNotReady},
  };
  return rows;
}

}  // namespace korvel::output
