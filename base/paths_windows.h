#pragma once

#include <string>

namespace korvel {

/// The absolute path with the system's separators, as the system resolves `path`: a device's name becomes its path.
/// Empty where the system refuses it.
[[nodiscard]] std::wstring fullPath(const std::wstring& path);

}  // namespace korvel
