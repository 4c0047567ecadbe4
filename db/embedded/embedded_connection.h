#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <string_view>

#include "db/connection.h"
#include "db/procedure/audit_conditions.h"

namespace korvel::db {

struct EmbeddedOptions {
  /// How long a database that another program has locked is waited for.
  std::chrono::milliseconds busyTimeout{5000};
  /// Rows that QueryAudits returns at most in each result set; tests take fewer.
  std::size_t rowLimit = rowLimitPerResult;
};

/// Opens database `database` of `folder` for reading only: no text that is run over the connection changes a file or
/// makes one. The call text of QueryAudits is answered by the engine itself, any other text runs as SQL, statement by
/// statement.
///
/// Values read as they do on the server: texts as they stand, integers in full, floating-point numbers in the shortest
/// form that reads back as the same number ("5", "0.1", "1.5e-07"), binary values as lower-case hexadecimal digits.
///
/// Throws Error with SQLite's extended result code and its text, the file named.
[[nodiscard]] std::unique_ptr<Connection> openEmbedded(const std::filesystem::path& folder, std::string_view database,
                                                       EmbeddedOptions options = {});

}  // namespace korvel::db
