#pragma once

#include <filesystem>
#include <string_view>

#include "base/error.h"

namespace korvel::db {

/// The server name that stands for the embedded engine's own folder.
inline constexpr std::string_view embeddedServerName = "(embedded)";
/// Whether a server name means the embedded engine: "(embedded)" or the absolute path of a folder.
[[nodiscard]] bool isEmbeddedServer(std::string_view server);
/// The folder of the embedded databases: KORVEL_AUDIT_DATA, else korvel/audit among the user's data (the XDG data
/// folder; on Windows, the local data of applications). Throws Error for a relative KORVEL_AUDIT_DATA where the working
/// folder is gone.
[[nodiscard]] std::filesystem::path embeddedFolder();
/// The folder that an embedded server name stands for.
[[nodiscard]] std::filesystem::path embeddedFolderOf(std::string_view server);
/// The folder in which programs keep the user's data: one pair of sources a platform.
[[nodiscard]] std::filesystem::path userDataFolder();

/// Whether an embedded database can have this name: that of a plain file.
[[nodiscard]] bool isEmbeddedDatabaseName(std::string_view database);

/// What to say of a folder of embedded databases that cannot be listed, by the system's number for it.
[[nodiscard]] Error folderFailure(const std::filesystem::path& folder, int systemErrorNumber);

/// The file of an embedded database. Throws Error for a name that is more than a plain file name.
[[nodiscard]] std::filesystem::path embeddedDatabaseFile(const std::filesystem::path& folder,
                                                         std::string_view database);

/// Whether `file`, or what it links to, is a file of the embedded engine. Nothing that the system writes ever replaces
/// one.
[[nodiscard]] bool isDatabaseFile(const std::filesystem::path& file);

}  // namespace korvel::db
