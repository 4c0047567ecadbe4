#pragma once

#include <cstddef>
#include <string_view>

namespace korvel::results {

/// How much of a date counts; the value is the number of characters of "2004-03-07 03:12:44.310" that say it.
enum class DatePart : std::size_t { whole = 0, year = 4, month = 7, day = 10, hour = 13 };

/// Whether a text begins with a day as lists show it, "2004-03-07", alone or with a time behind it. The calendar is not
/// asked: "2004-02-31" is one too.
[[nodiscard]] constexpr bool isDateText(std::string_view text) noexcept {
  constexpr std::string_view form = "dddd-dd-dd";
  if (text.size() < form.size()) return false;
  for (std::size_t i = 0; i < form.size(); ++i) {
    const bool digit = text[i] >= '0' && text[i] <= '9';
    if (form[i] == 'd' ? !digit : text[i] != form[i]) return false;
  }
  return text.size() == form.size() || text[form.size()] == ' ' || text[form.size()] == 'T';
}

/// The year, month, day or hour of a date; any other text as it stands.
[[nodiscard]] constexpr std::string_view datePart(std::string_view text, DatePart part) noexcept {
  return part == DatePart::whole || !isDateText(text) ? text : text.substr(0, static_cast<std::size_t>(part));
}

}  // namespace korvel::results
