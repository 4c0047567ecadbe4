#pragma once

#include <exception>
#include <string>
#include <vector>

#include "base/numbers.h"
#include "db/connection.h"
#include "db/embedded/row_values.h"

struct sqlite3;
struct sqlite3_stmt;
struct sqlite3_value;

namespace korvel::db {

/// Pushes the rows of one compiled statement into a sink. Buffers are made once a statement: a row costs no allocation.
class RowPusher {
 public:
  /// Both must outlive the pusher.
  RowPusher(sqlite3_stmt* statement, ResultSink& sink);

  /// Runs the statement to its end, or until the sink stops it; the sink is also asked while SQLite works on a row.
  /// Gives SQLite's last result code: SQLITE_DONE, SQLITE_ROW where the sink has stopped it, else a failure. Statements
  /// without columns run without a call of the sink.
  [[nodiscard]] int push();

 private:
  /// Lets SQLite ask, while it works on a row, whether to go on.
  class Asking {
   public:
    explicit Asking(RowPusher& pusher);
    ~Asking();
    Asking(const Asking&) = delete;
    Asking& operator=(const Asking&) = delete;

   private:
    sqlite3* database_;
  };

  [[nodiscard]] int pushRows();
  void begin();
  bool pushRow();
  /// The text of a value that is none: a number, bytes, or null.
  void fillOther(std::size_t column, sqlite3_value* value, int type);
  [[nodiscard]] ColumnKind kindOf(int column) const;

  sqlite3_stmt* statement_;
  ResultSink& sink_;
  RowValues values_;
  std::vector<Cell> cells_;
  std::vector<NumberText> numbers_;
  std::vector<std::string> hexTexts_;
  bool outOfMemory_ = false;
  bool stopped_ = false;        ///< the sink has stopped the statement
  std::exception_ptr failure_;  ///< what the sink threw while SQLite was asking it: no exception passes through C
};

}  // namespace korvel::db
