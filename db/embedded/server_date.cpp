#include "db/embedded/server_date.h"

#include <chrono>
#include <optional>

#include "base/error.h"
#include "base/text.h"

namespace korvel::db {
namespace {

constexpr std::int32_t notADate = 241;
constexpr std::int32_t dateOutOfRange = 242;
constexpr int firstServerYear = 1753;

struct Moment {
  int year = 1900, month = 1, day = 1, hour = 0, minute = 0, second = 0, millisecond = 0;
};

class Digits {
 public:
  explicit Digits(std::string_view text) : text_(text) {}

  /// A number of `least` to `most` digits.
  std::optional<int> number(std::size_t least, std::size_t most) {
    int value = 0;
    std::size_t count = 0;
    for (; count < most && count < text_.size() && text_[count] >= '0' && text_[count] <= '9'; ++count)
      value = value * 10 + (text_[count] - '0');
    if (count < least) return std::nullopt;
    text_.remove_prefix(count);
    return value;
  }
  bool take(char expected) {
    if (!text_.starts_with(expected)) return false;
    text_.remove_prefix(1);
    return true;
  }
  bool takeBlanks() {
    const std::size_t before = text_.size();
    while (take(' ')) {
    }
    return text_.size() < before;
  }
  [[nodiscard]] bool atEnd() const { return text_.empty(); }

 private:
  std::string_view text_;
};

bool readInto(int& part, Digits& digits, std::size_t least, std::size_t most) {
  const auto value = digits.number(least, most);
  if (value) part = *value;
  return value.has_value();
}

bool readDate(Digits& digits, Moment& moment) {
  if (!readInto(moment.year, digits, 4, 4)) return false;
  if (!digits.take('-')) return readInto(moment.month, digits, 2, 2) && readInto(moment.day, digits, 2, 2);
  return readInto(moment.month, digits, 1, 2) && digits.take('-') && readInto(moment.day, digits, 1, 2);
}

bool readFraction(Digits& digits, Moment& moment) {
  int scale = 100;
  std::size_t count = 0;
  while (const auto digit = digits.number(1, 1)) {
    moment.millisecond += *digit * scale;
    scale /= 10;
    ++count;
  }
  constexpr std::size_t mostFractionDigits = 7;
  return count > 0 && count <= mostFractionDigits;
}

bool readTime(Digits& digits, Moment& moment) {
  if (!readInto(moment.hour, digits, 1, 2) || !digits.take(':') || !readInto(moment.minute, digits, 1, 2)) return false;
  if (!digits.take(':')) return true;
  if (!readInto(moment.second, digits, 1, 2)) return false;
  return !digits.take('.') || readFraction(digits, moment);
}

bool readMoment(std::string_view text, Moment& moment) {
  if (text.empty()) return true;
  Digits digits(text);
  if (!readDate(digits, moment)) return false;
  if (digits.atEnd()) return true;
  return (digits.take('T') || digits.takeBlanks()) && readTime(digits, moment) && digits.atEnd();
}

bool exists(const Moment& moment) {
  const std::chrono::year_month_day date{std::chrono::year{moment.year},
                                         std::chrono::month{static_cast<unsigned>(moment.month)},
                                         std::chrono::day{static_cast<unsigned>(moment.day)}};
  return date.ok() && moment.year >= firstServerYear && moment.hour < 24 && moment.minute < 60 && moment.second < 60;
}

void appendPadded(std::string& text, int value, std::size_t width, char separator) {
  const std::string digits = std::to_string(value);
  text.append(width - digits.size(), '0');
  text += digits;
  if (separator != '\0') text += separator;
}

}  // namespace

std::string canonicalServerDate(std::string_view text, std::string_view parameter) {
  Moment moment;
  if (!readMoment(trimBlanks(text), moment))
    throw Error(notADate, "\"" + std::string(text) + "\" is no date and time: @" + std::string(parameter) +
                              " of QueryAudits must read like 2004-03-07 13:45:59.123.");
  if (!exists(moment))
    throw Error(dateOutOfRange, "\"" + std::string(text) + "\" is a date or time that does not exist (@" +
                                    std::string(parameter) + " of QueryAudits).");
  std::string canonical;
  appendPadded(canonical, moment.year, 4, '-');
  appendPadded(canonical, moment.month, 2, '-');
  appendPadded(canonical, moment.day, 2, ' ');
  appendPadded(canonical, moment.hour, 2, ':');
  appendPadded(canonical, moment.minute, 2, ':');
  appendPadded(canonical, moment.second, 2, '.');
  appendPadded(canonical, moment.millisecond, 3, '\0');
  return canonical;
}

}  // namespace korvel::db
