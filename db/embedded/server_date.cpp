#include "db/embedded/server_date.h"

#include <chrono>
#include <cstddef>
#include <limits>

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
  [[nodiscard]] bool startsWithDigit() const { return !text_.empty() && text_[0] >= '0' && text_[0] <= '9'; }
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

bool readFraction(Digits& digits, Moment& moment, std::size_t mostDigits) {
  int scale = 100;
  std::size_t count = 0;
  while (const auto digit = digits.number(1, 1)) {
    moment.millisecond += *digit * scale;
    scale /= 10;
    ++count;
  }
  return count > 0 && count <= mostDigits;
}

bool readTime(Digits& digits, Moment& moment, std::size_t mostFractionDigits) {
  if (!readInto(moment.hour, digits, 1, 2) || !digits.take(':') || !readInto(moment.minute, digits, 1, 2)) return false;
  if (!digits.take(':')) return true;
  if (!readInto(moment.second, digits, 1, 2)) return false;
  return !digits.take('.') || readFraction(digits, moment, mostFractionDigits);
}

bool readMoment(std::string_view text, Moment& moment) {
  if (text.empty()) return true;
  Digits digits(text);
  if (!readDate(digits, moment)) return false;
  if (digits.atEnd()) return true;
  constexpr std::size_t mostFractionDigits = 7;
  return (digits.take('T') || digits.takeBlanks()) && readTime(digits, moment, mostFractionDigits) && digits.atEnd();
}

/// The date of a stored time, in ten characters.
bool readWholeDate(Digits& digits, Moment& moment) {
  return readInto(moment.year, digits, 4, 4) && digits.take('-') && readInto(moment.month, digits, 2, 2) &&
         digits.take('-') && readInto(moment.day, digits, 2, 2);
}

/// How far a clock is from that of Greenwich, where it is said: "Z", "+01:00", "-0330".
bool passOverOffset(Digits& digits) {
  digits.takeBlanks();
  if (digits.take('Z') || !(digits.take('+') || digits.take('-'))) return true;
  if (!digits.number(2, 2)) return false;
  digits.take(':');
  return digits.number(2, 2).has_value();
}

bool readStored(std::string_view text, Moment& moment) {
  Digits digits(text);
  if (!readWholeDate(digits, moment)) return false;
  if (digits.take('T') || (digits.takeBlanks() && digits.startsWithDigit())) {
    constexpr std::size_t anyNumberOfDigits = std::numeric_limits<std::size_t>::max();
    if (!readTime(digits, moment, anyNumberOfDigits)) return false;
  }
  if (!passOverOffset(digits)) return false;
  digits.takeBlanks();
  return digits.atEnd();
}

bool exists(const Moment& moment) {
  const std::chrono::year_month_day date{std::chrono::year{moment.year},
                                         std::chrono::month{static_cast<unsigned>(moment.month)},
                                         std::chrono::day{static_cast<unsigned>(moment.day)}};
  return date.ok() && moment.year >= firstServerYear && moment.hour < 24 && moment.minute < 60 && moment.second < 60;
}

CanonicalTime canonical(const Moment& moment) noexcept {
  struct Part {
    int value;
    std::size_t width;
    char separator;
  };
  CanonicalTime text{};
  std::size_t at = 0;
  for (const auto& [value, width, separator] :
       {Part{moment.year, 4, '-'}, Part{moment.month, 2, '-'}, Part{moment.day, 2, ' '}, Part{moment.hour, 2, ':'},
        Part{moment.minute, 2, ':'}, Part{moment.second, 2, '.'}, Part{moment.millisecond, 3, '\0'}}) {
    int rest = value;
    for (std::size_t digit = width; digit-- > 0; rest /= 10) text.at(at + digit) = static_cast<char>('0' + rest % 10);
    at += width;
    if (separator != '\0') text.at(at++) = separator;
  }
  return text;
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
  const CanonicalTime time = canonical(moment);
  return {time.begin(), time.end()};
}

std::optional<CanonicalTime> canonicalStoredTime(std::string_view text) noexcept {
  Moment moment;
  if (!readStored(text, moment) || !exists(moment)) return std::nullopt;
  return canonical(moment);
}

}  // namespace korvel::db
