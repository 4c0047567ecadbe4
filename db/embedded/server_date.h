#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace korvel::db {

/// A date parameter of QueryAudits in the one form that texts compare by: "2004-03-07 13:45:59.123". Reads what the
/// server reads while the procedure holds it to year, month, day (left to itself it goes by the login's language):
/// year-month-day or yyyymmdd, then perhaps, after a blank or "T", hours:minutes with seconds and a fraction; an empty
/// text is 1900-01-01, as there. A fraction is cut after the milliseconds. Throws Error with the server's number: 241
/// for a text that is no date, 242 for a date that no calendar has.
[[nodiscard]] std::string canonicalServerDate(std::string_view text, std::string_view parameter);

/// A moment in the same form.
using CanonicalTime = std::array<char, 23>;

/// A stored time in the same form. It begins with the whole date, year-month-day in ten characters; hours:minutes,
/// seconds and a fraction may follow, after blanks or "T", and then "Z" or an offset, which is ignored: local time
/// counts. Nothing for a text that is no such time, or one that no calendar has.
[[nodiscard]] std::optional<CanonicalTime> canonicalStoredTime(std::string_view text) noexcept;

}  // namespace korvel::db
