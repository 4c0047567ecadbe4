#include "db/odbc/odbc_row_reader.h"

#include <sqlext.h>
#include <sqlucode.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string_view>

#include "base/numbers.h"
#include "base/utf16.h"
#include "db/odbc/odbc_diagnostics.h"

namespace korvel::db::odbc {

namespace {

/// 8 KB: nearly every audit value in one call, and long ones in parts of a size that drivers handle well.
constexpr std::size_t bufferUnits = 4096;

constexpr SQLSMALLINT typeTime2 = -154;
constexpr SQLSMALLINT typeDateTimeOffset = -155;

ColumnKind kindOf(SQLSMALLINT type) noexcept {
  switch (type) {
    case SQL_TINYINT:
    case SQL_SMALLINT:
    case SQL_INTEGER:
    case SQL_BIGINT:
    case SQL_REAL:
    case SQL_FLOAT:
    case SQL_DOUBLE:
    case SQL_DECIMAL:
    case SQL_NUMERIC:
      return ColumnKind::number;
    case SQL_BIT:
      return ColumnKind::boolean;
    case SQL_TYPE_DATE:
    case SQL_TYPE_TIME:
    case SQL_TYPE_TIMESTAMP:
    case typeTime2:
    case typeDateTimeOffset:
      return ColumnKind::dateTime;
    case SQL_BINARY:
    case SQL_VARBINARY:
    case SQL_LONGVARBINARY:
      return ColumnKind::binary;
    default:
      return ColumnKind::text;
  }
}

}  // namespace

RowReader::RowReader(SQLHSTMT statement, DriverWatchdog& watch)
    : statement_(statement), watch_(watch), buffer_(bufferUnits) {
  SQLSMALLINT count = 0;
  check(SQLNumResultCols(statement_, &count), SQL_HANDLE_STMT, statement_);
  for (SQLSMALLINT i = 1; i <= count; ++i) describe(static_cast<SQLUSMALLINT>(i));
  pieces_.resize(fields_.size());
  cells_.resize(fields_.size());
}

void RowReader::describe(SQLUSMALLINT column) {
  std::vector<SQLWCHAR> name(256);
  SQLSMALLINT length = 0;
  SQLSMALLINT type = 0;
  SQLULEN size = 0;
  SQLSMALLINT digits = 0;
  SQLSMALLINT nullable = 0;
  const auto ask = [&] {
    check(SQLDescribeColW(statement_, column, name.data(), static_cast<SQLSMALLINT>(name.size()), &length, &type, &size,
                          &digits, &nullable),
          SQL_HANDLE_STMT, statement_);
  };
  ask();
  if (static_cast<std::size_t>(length) >= name.size()) {
    name.resize(static_cast<std::size_t>(length) + 1);
    ask();
  }
  fields_.push_back({utf8FromUtf16({reinterpret_cast<const char16_t*>(name.data()), static_cast<std::size_t>(length)}),
                     kindOf(type), nullable != SQL_NO_NULLS});
  decimals_.push_back(digits);
  switch (type) {
    case SQL_TINYINT:
    case SQL_SMALLINT:
    case SQL_INTEGER:
    case SQL_BIGINT:
      readings_.push_back(Reading::integer);
      break;
    case SQL_TYPE_TIMESTAMP:
      readings_.push_back(Reading::timestamp);
      break;
    case SQL_REAL:
      readings_.push_back(Reading::real);
      break;
    case SQL_FLOAT:
    case SQL_DOUBLE:
      readings_.push_back(Reading::doublePrecision);
      break;
    case SQL_BINARY:
    case SQL_VARBINARY:
    case SQL_LONGVARBINARY:
      readings_.push_back(Reading::binary);
      break;
    default:
      readings_.push_back(Reading::wide);
  }
}

bool RowReader::next() {
  const SQLRETURN result = watch_.during([this] { return SQLFetch(statement_); });
  if (result == SQL_NO_DATA) return false;
  check(result, SQL_HANDLE_STMT, statement_);
  watch_.noteActivity();

  textSize_ = 0;
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    Piece& piece = pieces_[i];
    piece.begin = textSize_;
    piece.isNull = !readCell(i);
    piece.size = textSize_ - piece.begin;
  }
  // Only now: the buffer may have moved while it grew.
  for (std::size_t i = 0; i < pieces_.size(); ++i)
    cells_[i] = {{text_.data() + pieces_[i].begin, pieces_[i].size}, pieces_[i].isNull};
  return true;
}

bool RowReader::readCell(std::size_t index) {
  const auto column = static_cast<SQLUSMALLINT>(index + 1);
  const std::size_t begin = textSize_;
  switch (readings_[index]) {
    case Reading::integer:
      return readInteger(column);
    case Reading::timestamp:
      return readTimestamp(column, decimals_[index]);
    case Reading::real:
      return readNumber<float>(column, SQL_C_FLOAT);
    case Reading::doublePrecision:
      return readNumber<double>(column, SQL_C_DOUBLE);
    case Reading::binary:
      return readBinary(column);
    case Reading::wide:
      break;
  }
  if (!readWide(column)) return false;
  if (fields_[index].kind == ColumnKind::number) addLeadingZero(begin);
  return true;
}

void RowReader::addLeadingZero(std::size_t begin) {
  // Some drivers write decimals below one without their zero; every engine's text has it.
  const std::string_view number(text_.data() + begin, textSize_ - begin);
  const std::size_t sign = number.starts_with('-') ? 1 : 0;
  if (!number.substr(sign).starts_with('.')) return;
  room(1);
  char* const point = text_.data() + begin + sign;
  std::copy_backward(point, text_.data() + textSize_, text_.data() + textSize_ + 1);
  *point = '0';
  ++textSize_;
}

bool RowReader::readWide(SQLUSMALLINT column) {
  const auto append = [&](std::size_t units) {
    char* const begin = room(units * maxUtf8BytesPerUnit);
    textSize_ += static_cast<std::size_t>(writeUtf8({buffer_.data(), units}, begin) - begin);
  };
  // A character outside the basic plane may be cut in two at the end of a part; its first half waits at the front.
  std::size_t waiting = 0;
  for (bool first = true;; first = false) {
    SQLLEN indicator = 0;
    const std::size_t free = buffer_.size() - waiting;
    const SQLRETURN result = watch_.during([&] {
      return SQLGetData(statement_, column, SQL_C_WCHAR, buffer_.data() + waiting,
                        static_cast<SQLLEN>(free * sizeof(char16_t)), &indicator);
    });
    if (result == SQL_NO_DATA) break;
    if (result != SQL_SUCCESS) check(result, SQL_HANDLE_STMT, statement_);
    if (indicator == SQL_NULL_DATA) return !first;
    // The indicator decides, because FreeTDS also reports complete values as cut, repeatedly.
    const bool more = indicator == SQL_NO_TOTAL || static_cast<std::size_t>(indicator) > (free - 1) * sizeof(char16_t);
    const std::size_t units = waiting + (more ? free - 1 : static_cast<std::size_t>(indicator) / sizeof(char16_t));
    waiting = more && units > 0 && isHighSurrogate(buffer_[units - 1]) ? 1 : 0;
    append(units - waiting);
    if (waiting != 0) buffer_[0] = buffer_[units - 1];
    if (!more) break;
    watch_.noteActivity();
  }
  append(waiting);
  return true;
}

template <typename Value>
bool RowReader::readFixed(SQLUSMALLINT column, SQLSMALLINT type, Value& value) {
  SQLLEN indicator = 0;
  const SQLRETURN result =
      watch_.during([&] { return SQLGetData(statement_, column, type, &value, sizeof value, &indicator); });
  if (result != SQL_SUCCESS) check(result, SQL_HANDLE_STMT, statement_);
  return indicator != SQL_NULL_DATA;
}

bool RowReader::readInteger(SQLUSMALLINT column) {
  std::int64_t value = 0;
  if (!readFixed(column, SQL_C_SBIGINT, value)) return false;
  constexpr std::size_t mostDigits = 20;
  char* const begin = room(mostDigits);
  textSize_ += static_cast<std::size_t>(std::to_chars(begin, begin + mostDigits, value).ptr - begin);
  return true;
}

bool RowReader::readTimestamp(SQLUSMALLINT column, int decimals) {
  SQL_TIMESTAMP_STRUCT value{};
  if (!readFixed(column, SQL_C_TYPE_TIMESTAMP, value)) return false;
  constexpr int nanosecondDigits = 9;
  constexpr std::size_t longest = 30;  // "9999-12-31 23:59:59.123456789"
  char* out = room(longest);
  char* const begin = out;
  const auto put = [&](unsigned number, int digits) {
    for (int i = digits; i-- > 0; number /= 10) out[i] = static_cast<char>('0' + number % 10);
    out += digits;
  };
  const auto part = [&](char separator, unsigned number, int digits) {
    *out++ = separator;
    put(number, digits);
  };
  put(static_cast<unsigned>(value.year), 4);
  part('-', value.month, 2);
  part('-', value.day, 2);
  part(' ', value.hour, 2);
  part(':', value.minute, 2);
  part(':', value.second, 2);
  if (decimals > 0) {
    part('.', value.fraction, nanosecondDigits);
    out -= std::max(0, nanosecondDigits - decimals);  // the digits that the type does not have
  }
  textSize_ += static_cast<std::size_t>(out - begin);
  return true;
}

template <typename Number>
bool RowReader::readNumber(SQLUSMALLINT column, SQLSMALLINT type) {
  Number value = 0;
  if (!readFixed(column, type, value)) return false;
  NumberText digits{};
  const std::size_t size = writeNumber(value, digits);
  std::copy_n(digits.begin(), size, room(size));
  textSize_ += size;
  return true;
}

bool RowReader::readBinary(SQLUSMALLINT column) {
  for (bool first = true;; first = false) {
    SQLLEN indicator = 0;
    const std::size_t free = buffer_.size() * sizeof(char16_t);
    const SQLRETURN result = watch_.during([&] {
      return SQLGetData(statement_, column, SQL_C_BINARY, buffer_.data(), static_cast<SQLLEN>(free), &indicator);
    });
    if (result == SQL_NO_DATA) return true;
    if (result != SQL_SUCCESS) check(result, SQL_HANDLE_STMT, statement_);
    if (indicator == SQL_NULL_DATA) return !first;
    const bool more = indicator == SQL_NO_TOTAL || static_cast<std::size_t>(indicator) > free;
    const std::size_t size = more ? free : static_cast<std::size_t>(indicator);
    writeHex({reinterpret_cast<const char*>(buffer_.data()), size}, room(2 * size));
    textSize_ += 2 * size;
    if (!more) return true;
    watch_.noteActivity();
  }
}

}  // namespace korvel::db::odbc
