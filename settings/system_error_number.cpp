#include "settings/system_error_number.h"

#include <algorithm>
#include <array>
#include <cerrno>

namespace korvel::settings {

namespace {

struct Translation {
  int errorNumber;
  std::uint32_t number;
};

constexpr std::array translations = {
    Translation{0, errorSuccess},
    Translation{ENOENT, errorFileNotFound},
    // Not 2: a path that leads through a file is a mistake, not a setting that was never written.
    Translation{ENOTDIR, errorPathNotFound},
    Translation{EMFILE, 4},
    Translation{ENFILE, 4},
    Translation{EACCES, errorAccessDenied},
    Translation{EPERM, errorAccessDenied},
    Translation{EISDIR, errorAccessDenied},
    Translation{ENOMEM, 8},
    Translation{EROFS, 19},
    Translation{EINVAL, errorInvalidParameter},
    Translation{ENOSPC, 112},
    Translation{EDQUOT, 112},
    Translation{EBUSY, 170},
    Translation{ENAMETOOLONG, 206},
    Translation{EFBIG, 223},
    Translation{EIO, 1117},
    Translation{ELOOP, 1921},
};

}  // namespace

std::uint32_t systemErrorNumber(int errorNumber) noexcept {
  const auto found = std::find_if(translations.begin(), translations.end(),
                                  [&](const Translation& each) { return each.errorNumber == errorNumber; });
  return found == translations.end() ? errorRegistryIoFailed : found->number;
}

}  // namespace korvel::settings
