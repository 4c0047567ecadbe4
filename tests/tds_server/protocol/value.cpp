#include "tests/tds_server/protocol/value.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <stdexcept>

#include "tests/tds_server/protocol/point_in_time.h"

namespace korvel::test::tds {
namespace {

[[noreturn]] void throwUnfit(const Column& column, const Value& value) {
  throw std::invalid_argument("column " + column.name + " cannot hold '" + value.text() + "'");
}

/// The digits of a decimal without its point, padded to `scale` places, and its sign.
struct Digits {
  std::string digits;
  bool negative = false;
};

Digits scaledDigits(const Column& column, const Value& value, std::size_t scale) {
  Digits result;
  std::string text = value.text();
  if (!text.empty() && (text[0] == '-' || text[0] == '+')) {
    result.negative = text[0] == '-';
    text.erase(0, 1);
  }
  const auto point = text.find('.');
  std::string places = point == std::string::npos ? std::string() : text.substr(point + 1);
  text.erase(std::min(point, text.size()));
  if (places.size() > scale) throwUnfit(column, value);
  places.resize(scale, '0');
  result.digits = text + places;
  if (result.digits.empty() || result.digits.find_first_not_of("0123456789") != std::string::npos)
    throwUnfit(column, value);
  return result;
}

std::string decimalBytes(const Column& column, const Value& value) {
  const Digits number = scaledDigits(column, value, column.scale);
  std::string magnitude(decimalSize(column.precision) - 1, '\0');
  for (const char digit : number.digits) {
    auto carry = static_cast<unsigned>(digit - '0');
    for (char& place : magnitude) {
      carry += static_cast<unsigned char>(place) * 10U;
      place = static_cast<char>(carry & 0xFF);
      carry >>= 8;
    }
    if (carry != 0) throwUnfit(column, value);
  }
  return (number.negative ? '\0' : '\1') + magnitude;
}

std::string moneyBytes(const Column& column, const Value& value) {
  const Digits number = scaledDigits(column, value, 4);
  const std::uint64_t magnitude = std::stoull(number.digits);
  const std::uint64_t amount = number.negative ? ~magnitude + 1 : magnitude;
  ByteWriter out;
  // The upper half comes first; each half is little-endian.
  if (column.type->size == 8) out.little(amount >> 32, 4);
  return out.little(amount, 4).take();
}

std::string floatingBytes(const Column& column, const Value& value) {
  ByteWriter out;
  if (column.type->size == 4)
    return out.little(std::bit_cast<std::uint32_t>(static_cast<float>(value.floating()))).take();
  return out.little(std::bit_cast<std::uint64_t>(value.floating())).take();
}

std::string dateAndTimeBytes(const Column& column, const PointInTime& point) {
  ByteWriter out;
  const std::int32_t days = point.days - daysTo1900;
  if (column.type->size == 4) return out.little(days, 2).little(point.ticks / (60 * ticksPerSecond), 2).take();
  const auto thirds = static_cast<std::uint32_t>((point.ticks * 300 + ticksPerSecond / 2) / ticksPerSecond);
  return out.little(days, 4).little(thirds).take();
}

void writeTime(ByteWriter& out, const Column& column, std::int64_t ticks) {
  std::int64_t unit = 1;
  for (unsigned scale = column.scale; scale < 7; ++scale) unit *= 10;
  out.little(ticks / unit, column.scale <= 2 ? 3 : column.scale <= 4 ? 4 : 5);
}

std::string pointInTimeBytes(const Column& column, const Value& value) {
  PointInTime point = parsePointInTime(value.text());
  ByteWriter out;
  switch (column.type->family) {
    case Family::date:
      return out.little(point.days, 3).take();
    case Family::time:
      writeTime(out, column, point.ticks);
      return out.take();
    case Family::dateTime2:
      writeTime(out, column, point.ticks);
      return out.little(point.days, 3).take();
    case Family::dateTimeOffset:
      // The wire format is universal time; the value is written as local time with its offset.
      point.ticks -= std::int64_t{point.offsetMinutes} * 60 * ticksPerSecond;
      if (point.ticks < 0) {
        point.ticks += ticksPerDay;
        --point.days;
      } else if (point.ticks >= ticksPerDay) {
        point.ticks -= ticksPerDay;
        ++point.days;
      }
      writeTime(out, column, point.ticks);
      return out.little(point.days, 3).little(point.offsetMinutes).take();
    default:
      return dateAndTimeBytes(column, point);
  }
}

std::string hexBytes(std::string_view digits) {
  std::string bytes;
  for (std::size_t i = 0; i + 1 < digits.size(); i += 2)
    bytes += static_cast<char>(std::stoi(std::string(digits.substr(i, 2)), nullptr, 16));
  return bytes;
}

std::string guidBytes(const Column& column, const Value& value) {
  std::string digits = value.text();
  std::erase(digits, '-');
  if (digits.size() != 32) throwUnfit(column, value);
  std::string bytes = hexBytes(digits);
  // The first three groups are little-endian numbers, the rest is a sequence of bytes.
  std::reverse(bytes.begin(), bytes.begin() + 4);
  std::reverse(bytes.begin() + 4, bytes.begin() + 6);
  std::reverse(bytes.begin() + 6, bytes.begin() + 8);
  return bytes;
}

std::string plainBytes(const Value& value) {
  const std::string text = value.text();
  return text.starts_with("0x") ? hexBytes(std::string_view(text).substr(2)) : text;
}

std::string variantBytes(const Column& column, const Value& value) {
  ByteWriter out;
  if (value.isInteger()) return out.byte(0x38).byte(0).little(value.integer(), 4).take();
  out.byte(0xE7).byte(7);
  writeCollation(out, *column.collation);
  return out.little(std::uint16_t{8000}).raw(toUtf16(value.text())).take();
}

/// The bytes of the value, without its length.
std::string valueBytes(const Column& column, const Value& value) {
  ByteWriter out;
  switch (column.type->family) {
    case Family::integer:
      return out.little(value.integer(), column.type->size).take();
    case Family::bit:
      return out.byte(value.integer() != 0).take();
    case Family::decimal:
      return decimalBytes(column, value);
    case Family::money:
      return moneyBytes(column, value);
    case Family::floating:
      return floatingBytes(column, value);
    case Family::dateAndTime:
    case Family::date:
    case Family::time:
    case Family::dateTime2:
    case Family::dateTimeOffset:
      return pointInTimeBytes(column, value);
    case Family::guid:
      return guidBytes(column, value);
    case Family::bytes:
    case Family::byteLob:
      return plainBytes(value);
    case Family::narrowText:
    case Family::narrowLob:
      return toCodePage(value.text(), column.collation->iconvName);
    case Family::wideText:
    case Family::wideLob:
    case Family::xml:
      return toUtf16(value.text());
    case Family::variant:
      return variantBytes(column, value);
  }
  return {};
}

/// Values of char, nchar and binary columns have the declared length.
void pad(std::string& bytes, const Column& column) {
  if (column.type->name == "char") bytes.resize(std::max<std::size_t>(bytes.size(), column.length), ' ');
  if (column.type->name == "binary") bytes.resize(std::max<std::size_t>(bytes.size(), column.length), '\0');
  if (column.type->name == "nchar")
    while (bytes.size() < std::size_t{column.length} * 2) bytes.append(" \0", 2);
}

void writeChunks(ByteWriter& out, std::string_view bytes, std::size_t chunkSize) {
  out.little(static_cast<std::uint64_t>(bytes.size()));
  for (; !bytes.empty(); bytes.remove_prefix(std::min(chunkSize, bytes.size())))
    out.counted(bytes.substr(0, chunkSize), 4);
  out.little(std::uint32_t{0});
}

}  // namespace

std::int64_t Value::integer() const {
  if (const auto* number = std::get_if<std::int64_t>(&value_)) return *number;
  throw std::invalid_argument("the column needs an integer");
}

double Value::floating() const {
  if (const auto* number = std::get_if<double>(&value_)) return *number;
  return static_cast<double>(integer());
}

std::string Value::text() const {
  if (const auto* text = std::get_if<std::string>(&value_)) return *text;
  return std::to_string(integer());
}

void writeValue(ByteWriter& out, const Column& column, const Value& value, std::size_t chunkSize) {
  const Family family = column.type->family;
  if (value.isNull() && !column.nullable) throw std::invalid_argument("column " + column.name + " is not null");
  std::string bytes = value.isNull() ? std::string() : valueBytes(column, value);
  switch (family) {
    case Family::bytes:
    case Family::narrowText:
    case Family::wideText:
    case Family::xml:
      if (column.unlimited) {
        if (value.isNull())
          out.little(~std::uint64_t{0});
        else
          writeChunks(out, bytes, chunkSize);
        return;
      }
      if (value.isNull()) {
        out.little(std::uint16_t{0xFFFF});
        return;
      }
      pad(bytes, column);
      out.counted(bytes, 2);
      return;
    case Family::narrowLob:
    case Family::wideLob:
    case Family::byteLob:
      // A text pointer of 16 bytes and a timestamp of 8 precede the value; clients ignore both.
      out.byte(value.isNull() ? 0 : 16);
      if (!value.isNull()) out.raw(std::string(24, 'p')).counted(bytes, 4);
      return;
    case Family::variant:
      out.counted(bytes, 4);
      return;
    default:
      if (column.nullable || column.type->fixedToken == 0) out.byte(static_cast<unsigned>(bytes.size()));
      out.raw(bytes);
  }
}

}  // namespace korvel::test::tds
