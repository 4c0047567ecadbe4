#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace korvel::db {

/// How one column is tested.
enum class Match { equals, beginsWith };

/// `column` equals or begins with `value`, compared as the server does: case-insensitive, trailing blanks ignored, and
/// in a beginning `_` stands for any one character.
struct Term {
  std::string_view column;
  Match match;
  std::string_view value;
};

/// Terms joined by "and".
using Conjunction = std::span<const Term>;

/// One category of the standard query: its parameter and its condition, conjunctions joined by "or".
struct CategoryCondition {
  std::string_view parameter;  // without the @
  std::span<const Conjunction> alternatives;
};

inline constexpr std::size_t categoryCount = 10;
inline constexpr std::size_t rowLimitPerResult = 5000;
inline constexpr std::size_t procedureParameterCount = 13;

/// The ten categories in parameter order: the single source of the embedded engine's answer and of the server
/// procedure's text. With a date range the date condition is joined by "and" to the last alternative only, because
/// "and" binds before "or": the alarm category's first alternative is deliberately not limited by the dates.
[[nodiscard]] const std::array<CategoryCondition, categoryCount>& categoryConditions() noexcept;

/// Answers with the columns of the audit trail and reads no row: whether the table is there, and may be read.
inline constexpr std::string_view auditTableProbe = "SELECT * FROM Korvel_Audit_Trails WHERE 1 = 0";

/// What a server says of a table that is not there, and of a table or procedure that the user has no right to.
inline constexpr std::int32_t nameUnknownNumber = 208;
inline constexpr std::int32_t rightMissingNumber = 229;

/// The condition of a category as a server reads it, a date condition joined to the last alternative without brackets.
[[nodiscard]] std::string conditionText(const CategoryCondition& category, std::string_view dates);

}  // namespace korvel::db
