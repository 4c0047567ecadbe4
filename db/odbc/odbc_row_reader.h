#pragma once

#include <sql.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "db/connection.h"
#include "db/odbc/driver_watchdog.h"

namespace korvel::db::odbc {

/// Reads the rows of the statement's current result, one at a time, every value as text.
///
/// Columns are not bound: array binding truncates long values without an error. Values are read as wide characters in
/// ascending column order and in parts, which is exact with every driver; the text of a row goes into one buffer that
/// is reused, so a row costs no allocation once the buffer has grown. Whole numbers and points in time are read as such
/// and written here, which costs less than the driver's own texts. Floats are read as numbers and written in their
/// shortest exact form, as the embedded engine does, because drivers pad them with digits that the value does not have.
/// Binary values read as lower-case hex.
class RowReader {
 public:
  /// Describes the current result; both outlive the reader. Received data is reported to the watchdog.
  RowReader(SQLHSTMT statement, DriverWatchdog& watch);

  /// Empty for a result that is only a row count.
  [[nodiscard]] const std::vector<Field>& fields() const noexcept { return fields_; }
  /// Fetches the next row; false after the last. Throws Error.
  bool next();
  /// The values of the row that next() fetched, valid until the next call.
  [[nodiscard]] std::span<const Cell> cells() const noexcept { return cells_; }

 private:
  enum class Reading { wide, integer, timestamp, real, doublePrecision, binary };
  struct Piece {
    std::size_t begin = 0;
    std::size_t size = 0;
    bool isNull = false;
  };

  void describe(SQLUSMALLINT column);
  bool readCell(std::size_t index);
  void addLeadingZero(std::size_t begin);
  /// Room for `more` bytes behind the text so far.
  char* room(std::size_t more) {
    if (text_.size() - textSize_ < more) text_.resize(std::max(text_.size() * 2, textSize_ + more));
    return text_.data() + textSize_;
  }
  bool readWide(SQLUSMALLINT column);
  template <typename Value>
  bool readFixed(SQLUSMALLINT column, SQLSMALLINT type, Value& value);
  bool readInteger(SQLUSMALLINT column);
  bool readTimestamp(SQLUSMALLINT column, int decimals);
  template <typename Number>
  bool readNumber(SQLUSMALLINT column, SQLSMALLINT type);
  bool readBinary(SQLUSMALLINT column);

  SQLHSTMT statement_;
  DriverWatchdog& watch_;
  std::vector<Field> fields_;
  std::vector<Reading> readings_;
  std::vector<int> decimals_;
  std::vector<char16_t> buffer_;
  /// The texts of the row, one behind the other in the first textSize_ bytes.
  std::vector<char> text_;
  std::size_t textSize_ = 0;
  std::vector<Piece> pieces_;
  std::vector<Cell> cells_;
};

}  // namespace korvel::db::odbc
