#pragma once

#include <cstdint>
#include <string_view>

namespace korvel::db {

/// Answers with the columns of the audit trail and reads no row: whether the table is there, and may be read.
inline constexpr std::string_view auditTableProbe = "SELECT * FROM Korvel_Audit_Trails WHERE 1 = 0";

/// What a server says of a table that is not there, and of a table or procedure that the user has no right to.
inline constexpr std::int32_t nameUnknownNumber = 208;
inline constexpr std::int32_t rightMissingNumber = 229;

}  // namespace korvel::db
