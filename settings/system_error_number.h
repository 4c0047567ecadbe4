#pragma once

#include <cstdint>

#include "settings/settings_backend.h"

namespace korvel::settings {

// The numbers under which users and manuals know the failures of a registry; the settings file answers with the same.
inline constexpr std::uint32_t errorPathNotFound = 3;
/// Another program keeps the store locked.
inline constexpr std::uint32_t errorLockViolation = 33;
inline constexpr std::uint32_t errorInvalidParameter = 87;
inline constexpr std::uint32_t errorMoreData = 234;
/// The store holds something that is no registry.
inline constexpr std::uint32_t errorBadDatabase = 1009;
/// A failure of input or output that has no number of its own.
inline constexpr std::uint32_t errorRegistryIoFailed = 1016;
/// A text that cannot be converted to UTF-16.
inline constexpr std::uint32_t errorNoUnicodeTranslation = 1113;

/// The number for a value of `errno`.
[[nodiscard]] std::uint32_t systemErrorNumber(int errorNumber) noexcept;

}  // namespace korvel::settings
