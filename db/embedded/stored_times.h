#pragma once

#include <string_view>

struct sqlite3;

namespace korvel::db {

/// A function of the engine's own statements: name(value, from, to) is 1 where a stored time (see canonicalStoredTime)
/// lies between two moments in canonical form, both included, else 0; texts that are no times lie nowhere.
inline constexpr std::string_view storedTimeFunction = "korvel_time_within";

/// Makes the function known to a connection; gives SQLite's result code.
[[nodiscard]] int addStoredTimeFunction(sqlite3* handle) noexcept;

}  // namespace korvel::db
