#pragma once

#include <string>
#include <vector>

#include "db/connection.h"
#include "db/embedded/row_values.h"
#include "db/number_text.h"

struct sqlite3_stmt;
struct sqlite3_value;

namespace korvel::db {

/// Pushes the rows of one compiled statement into a sink. Buffers are made once a statement: a row costs no allocation.
class RowPusher {
 public:
  /// Both must outlive the pusher.
  RowPusher(sqlite3_stmt* statement, ResultSink& sink);

  /// Runs the statement to its end. Gives SQLite's last result code: SQLITE_DONE, SQLITE_ROW where the sink has had
  /// enough, else a failure. Statements without columns run without a word to the sink.
  [[nodiscard]] int push();

 private:
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
};

}  // namespace korvel::db
