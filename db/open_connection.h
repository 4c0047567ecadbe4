#pragma once

#include <memory>
#include <stop_token>
#include <string_view>

#include "db/connection.h"

namespace korvel::db {

/// Opens a connection; the server name chooses the engine. `stop` ends what is under way on a connection to a server,
/// now or later; the embedded engine asks its sink. Throws Error with the engine's number and text.
[[nodiscard]] std::unique_ptr<Connection> openConnection(std::string_view connectionString,
                                                         const std::stop_token& stop = {});

}  // namespace korvel::db
