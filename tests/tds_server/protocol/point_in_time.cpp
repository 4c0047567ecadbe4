#include "tests/tds_server/protocol/point_in_time.h"

#include <charconv>
#include <chrono>
#include <stdexcept>
#include <string>

namespace korvel::test::tds {
namespace {

class Reader {
 public:
  explicit Reader(std::string_view text) : whole_(text), rest_(text) {}

  int number(std::size_t digits) {
    int value = 0;
    if (rest_.size() < digits) fail();
    const auto result = std::from_chars(rest_.data(), rest_.data() + digits, value);
    if (result.ptr != rest_.data() + digits) fail();
    rest_.remove_prefix(digits);
    return value;
  }
  bool skip(char c) {
    if (rest_.empty() || rest_.front() != c) return false;
    rest_.remove_prefix(1);
    return true;
  }
  void expect(char c) {
    if (!skip(c)) fail();
  }
  [[nodiscard]] bool digitNext() const { return !rest_.empty() && rest_.front() >= '0' && rest_.front() <= '9'; }
  [[nodiscard]] std::string_view rest() const { return rest_; }
  [[noreturn]] void fail() const { throw std::invalid_argument("no date or time: " + std::string(whole_)); }

 private:
  std::string_view whole_;
  std::string_view rest_;
};

std::int32_t readDate(Reader& reader) {
  using namespace std::chrono;
  const int year = reader.number(4);
  reader.expect('-');
  const int month = reader.number(2);
  reader.expect('-');
  const int day = reader.number(2);
  const year_month_day date{std::chrono::year{year}, std::chrono::month{static_cast<unsigned>(month)},
                            std::chrono::day{static_cast<unsigned>(day)}};
  if (!date.ok()) reader.fail();
  return static_cast<std::int32_t>((sys_days{date} - sys_days{std::chrono::year{1} / 1 / 1}).count());
}

std::int64_t readTime(Reader& reader) {
  std::int64_t seconds = std::int64_t{reader.number(2)} * 3600;
  reader.expect(':');
  seconds += std::int64_t{reader.number(2)} * 60;
  reader.expect(':');
  seconds += reader.number(2);
  std::int64_t ticks = seconds * ticksPerSecond;
  if (reader.skip('.'))
    for (std::int64_t unit = ticksPerSecond / 10; reader.digitNext(); unit /= 10) ticks += unit * reader.number(1);
  return ticks;
}

std::int16_t readOffset(Reader& reader) {
  const bool west = reader.skip('-');
  if (!west) reader.expect('+');
  int minutes = reader.number(2) * 60;
  reader.expect(':');
  minutes += reader.number(2);
  return static_cast<std::int16_t>(west ? -minutes : minutes);
}

}  // namespace

PointInTime parsePointInTime(std::string_view text) {
  Reader reader(text);
  PointInTime point;
  if (text.size() > 4 && text[4] == '-') {
    point.days = readDate(reader);
    if (reader.skip(' ')) point.ticks = readTime(reader);
  } else {
    point.ticks = readTime(reader);
  }
  if (reader.skip(' ')) point.offsetMinutes = readOffset(reader);
  if (!reader.rest().empty()) reader.fail();
  return point;
}

}  // namespace korvel::test::tds
