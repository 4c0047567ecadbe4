#pragma once

#include <filesystem>

namespace korvel::db {

/// The folder in which programs keep the user's data.
[[nodiscard]] std::filesystem::path userDataFolder();

}  // namespace korvel::db
