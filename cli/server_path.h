#pragma once

#include <optional>
#include <string>

namespace korvel::cli {

/// The name of a server or database, as long as a connection string gives it back as it is: a semicolon would end the
/// value, and the rest would be taken for another option.
[[nodiscard]] std::optional<std::string> connectionName(const std::string& name);

/// Makes the user's name of a server into a name that the engine knows. A path (it holds a slash or begins with a
/// dot) counts from the working folder. The path of a database file stands for its folder and, in `database`, for its
/// name; null where the command asks for no database. `databaseNamed` says that a name was given beside. Gives the
/// reason where the name is refused.
[[nodiscard]] std::optional<std::string> resolveServerPath(std::string& server, std::string* database,
                                                           bool databaseNamed);

/// A note for a failed server whose name is also that of a folder: how to name the folder. Nothing where there is none.
[[nodiscard]] std::optional<std::string> folderNote(const std::string& server);

}  // namespace korvel::cli
