#pragma once

#include <optional>
#include <string_view>

namespace korvel::output {

/// The number that `text` is, as long as a spreadsheet shows the same value: at most 15 digits that count, no leading
/// zeros, no blanks.
[[nodiscard]] std::optional<double> losslessNumber(std::string_view text) noexcept;

/// A date, or date and time to the millisecond ("2004-03-07 13:45:59.123"), as days of a spreadsheet. Only from March
/// 1900 on, where all spreadsheets agree, to 9999.
[[nodiscard]] std::optional<double> spreadsheetDate(std::string_view text) noexcept;

/// "0", "1", "false" or "true".
[[nodiscard]] std::optional<bool> booleanFrom(std::string_view text) noexcept;

}  // namespace korvel::output
