#pragma once

#include <string>
#include <string_view>

#include "db/server_directory.h"

namespace korvel::db {

inline constexpr std::string_view eventEchoTitle = "SQLServer Object Event";

/// What the event echo shows for an event, CR LF between the lines. Fixed English.
[[nodiscard]] std::string eventEchoText(const ServerEvent& event);

}  // namespace korvel::db
