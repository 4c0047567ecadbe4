#pragma once

#include <string>

namespace korvel {

/// The whole path with the system's separators, as the system understands `path`: a device's name becomes its path.
/// Empty where the system makes none of it.
[[nodiscard]] std::wstring fullPath(const std::wstring& path);

}  // namespace korvel
