#pragma once

#include <filesystem>
#include <string>

#include "base/error.h"

namespace korvel::evidence {

/// What to say of a file of a snapshot that cannot be written, by the system's number for it; `reason` is the system's
/// own text.
[[nodiscard]] Error unwritable(const std::filesystem::path& file, int systemErrorNumber, const std::string& reason);
/// The same for a failure of whatever wrote it; one that is explained already stays.
[[nodiscard]] Error unwritable(const std::filesystem::path& file, const Error& failure);

/// What to say of a snapshot that cannot be read: that it is damaged, or locked; another failure stays.
[[nodiscard]] Error unreadable(const std::filesystem::path& file, const Error& failure);

}  // namespace korvel::evidence
