#pragma once

#include <sqlite3.h>

#include <cstddef>

namespace korvel::db {

/// The values of a statement's current row.
///
/// Asking the library for a column costs more than reading the value, eighteen times a row. The library keeps a row's
/// values side by side, evenly spaced; where the first row shows that it does, the values between the first and the
/// last are reached by their distance, and every further row proves by its last column that this still holds. Where it
/// does not, every column is asked for: slower, never wrong.
class RowValues {
 public:
  RowValues(sqlite3_stmt* statement, std::size_t columns) : statement_(statement), columns_(columns) {}

  /// Looks at the row that the statement now stands on.
  void read() {
    first_ = ask(0);
    if (!measured_) measure();
    if (distance_ != 0 && ask(columns_ - 1) != at(columns_ - 1)) distance_ = 0;
  }

  [[nodiscard]] sqlite3_value* value(std::size_t column) const { return distance_ != 0 ? at(column) : ask(column); }

 private:
  [[nodiscard]] sqlite3_value* ask(std::size_t column) const {
    return sqlite3_column_value(statement_, static_cast<int>(column));
  }
  [[nodiscard]] sqlite3_value* at(std::size_t column) const {
    return reinterpret_cast<sqlite3_value*>(reinterpret_cast<char*>(first_) +
                                            distance_ * static_cast<std::ptrdiff_t>(column));
  }

  void measure() {
    measured_ = true;
    if (columns_ < 3) return;  // nothing in between
    distance_ = reinterpret_cast<char*>(ask(1)) - reinterpret_cast<char*>(first_);
    for (std::size_t column = 2; column < columns_ && distance_ != 0; ++column)
      if (ask(column) != at(column)) distance_ = 0;
  }

  sqlite3_stmt* statement_;
  std::size_t columns_;
  sqlite3_value* first_ = nullptr;
  std::ptrdiff_t distance_ = 0;  ///< 0: ask for every column
  bool measured_ = false;
};

}  // namespace korvel::db
