#include "output/typed_value.h"

#include <charconv>
#include <chrono>
#include <cmath>

#include "base/numbers.h"
#include "base/text.h"

namespace korvel::output {

namespace {

constexpr int digitsOfASpreadsheet = 15;

std::size_t digitsAt(std::string_view text) noexcept {
  std::size_t count = 0;
  while (count < text.size() && isDigit(text[count])) ++count;
  return count;
}

/// Takes a number of exactly `digits` digits off `text`; -1 where there is none.
int takeNumber(std::string_view& text, std::size_t digits) noexcept {
  if (digitsAt(text) < digits) return -1;
  int number = 0;
  for (std::size_t i = 0; i < digits; ++i) number = number * 10 + (text[i] - '0');
  text.remove_prefix(digits);
  return number;
}

bool take(std::string_view& text, char c) noexcept {
  if (text.empty() || text.front() != c) return false;
  text.remove_prefix(1);
  return true;
}

/// The time of the day in milliseconds, which takes the whole text; -1 where it is none.
int millisecondsFrom(std::string_view text) noexcept {
  const int hours = takeNumber(text, 2);
  if (!take(text, ':')) return -1;
  const int minutes = takeNumber(text, 2);
  int seconds = 0;
  int milliseconds = 0;
  if (take(text, ':')) seconds = takeNumber(text, 2);
  if (take(text, '.')) {
    const std::size_t digits = digitsAt(text);
    if (digits == 0) return -1;
    for (std::size_t i = 0, weight = 100; i < digits; ++i, weight /= 10) {
      if (weight == 0 && text[i] != '0') return -1;  // finer than a spreadsheet shows
      milliseconds += static_cast<int>(weight) * (text[i] - '0');
    }
    text.remove_prefix(digits);
  }
  if (!text.empty() || hours < 0 || hours > 23 || minutes < 0 || minutes > 59 || seconds < 0 || seconds > 59) return -1;
  return ((hours * 60 + minutes) * 60 + seconds) * 1000 + milliseconds;
}

}  // namespace

std::optional<double> losslessNumber(std::string_view text) noexcept {
  std::string_view rest = text;
  take(rest, '-');
  const std::size_t whole = digitsAt(rest);
  if (whole == 0 || (whole > 1 && rest.front() == '0')) return std::nullopt;
  std::size_t fraction = 0;
  if (whole < rest.size()) {
    if (rest[whole] != '.') return std::nullopt;
    fraction = digitsAt(rest.substr(whole + 1));
    if (fraction == 0 || whole + 1 + fraction != rest.size()) return std::nullopt;
  }
  // Zeros in front of the first digit that counts, or behind the point's last one, say nothing.
  std::size_t counting = whole + fraction;
  if (fraction > 0)
    for (std::size_t i = rest.size(); i > 0 && (rest[i - 1] == '0' || rest[i - 1] == '.'); --i) {
      if (rest[i - 1] == '.') break;
      --counting;
    }
  if (whole == 1 && rest.front() == '0')
    for (std::size_t i = 0; i < rest.size() && (rest[i] == '0' || rest[i] == '.'); ++i)
      if (rest[i] == '0' && counting > 0) --counting;
  if (counting > digitsOfASpreadsheet) return std::nullopt;
  double number = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  if (result.ec != std::errc{} || !std::isfinite(number) || (number == 0 && text.front() == '-')) return std::nullopt;
  return number;
}

std::optional<double> spreadsheetDate(std::string_view text) noexcept {
  using namespace std::chrono;
  constexpr sys_days dayZero{year{1899} / December / 30};
  constexpr sys_days firstDay{year{1900} / March / 1};
  constexpr double millisecondsOfADay = 86'400'000;
  const int y = takeNumber(text, 4);
  if (!take(text, '-')) return std::nullopt;
  const int m = takeNumber(text, 2);
  if (!take(text, '-')) return std::nullopt;
  const int d = takeNumber(text, 2);
  if (y < 0 || m < 1 || d < 1) return std::nullopt;
  const year_month_day date{year{y}, month{static_cast<unsigned>(m)}, day{static_cast<unsigned>(d)}};
  if (!date.ok() || sys_days{date} < firstDay) return std::nullopt;
  int time = 0;
  if (!text.empty()) {
    if (!take(text, ' ') && !take(text, 'T')) return std::nullopt;
    time = millisecondsFrom(text);
    if (time < 0) return std::nullopt;
  }
  return static_cast<double>((sys_days{date} - dayZero).count()) + time / millisecondsOfADay;
}

std::optional<bool> booleanFrom(std::string_view text) noexcept {
  if (text == "0" || equalsIgnoringAsciiCase(text, "false")) return false;
  if (text == "1" || equalsIgnoringAsciiCase(text, "true")) return true;
  return std::nullopt;
}

}  // namespace korvel::output
