#pragma once

#include <filesystem>

namespace korvel::db {

/// Whether `file`, or what it links to, is a file of the embedded engine. Nothing that the system writes ever replaces
/// one.
[[nodiscard]] bool isDatabaseFile(const std::filesystem::path& file);

}  // namespace korvel::db
