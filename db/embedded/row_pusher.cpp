#include "db/embedded/row_pusher.h"
#include "base/numbers.h"

#include <sqlite3.h>

#include <array>
#include <charconv>
#include <string_view>

namespace korvel::db {
namespace {

struct TypeName {
  std::string_view part;
  ColumnKind kind;
};
/// What a declared type means, the first part that it holds deciding. Types are declared freely, in any spelling.
constexpr std::array typeNames = {
    TypeName{"DATE", ColumnKind::dateTime}, TypeName{"TIME", ColumnKind::dateTime},
    TypeName{"BOOL", ColumnKind::boolean},  TypeName{"BIT", ColumnKind::boolean},
    TypeName{"CHAR", ColumnKind::text},     TypeName{"TEXT", ColumnKind::text},
    TypeName{"CLOB", ColumnKind::text},     TypeName{"BLOB", ColumnKind::binary},
    TypeName{"BINARY", ColumnKind::binary}, TypeName{"IMAGE", ColumnKind::binary},
    TypeName{"INT", ColumnKind::number},    TypeName{"REAL", ColumnKind::number},
    TypeName{"FLOA", ColumnKind::number},   TypeName{"DOUB", ColumnKind::number},
    TypeName{"NUM", ColumnKind::number},    TypeName{"DEC", ColumnKind::number},
    TypeName{"MONEY", ColumnKind::number},
};

std::string upperCase(std::string_view text) {
  std::string upper(text);
  for (char& c : upper)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return upper;
}

void fillWithHex(std::string_view bytes, std::string& text) {
  text.resize(bytes.size() * 2);
  writeHex(bytes, text.data());
}

}  // namespace

RowPusher::RowPusher(sqlite3_stmt* statement, ResultSink& sink)
    : statement_(statement),
      sink_(sink),
      values_(statement, static_cast<std::size_t>(sqlite3_column_count(statement))) {
  const auto columns = static_cast<std::size_t>(sqlite3_column_count(statement));
  cells_.resize(columns);
  numbers_.resize(columns);
  hexTexts_.resize(columns);
}

RowPusher::Asking::Asking(RowPusher& pusher) : database_(sqlite3_db_handle(pusher.statement_)) {
  // A fraction of a millisecond apart in most statements, and too rare to be felt.
  constexpr int instructionsBetween = 4000;
  const auto ask = [](void* self) noexcept -> int {
    auto& asking = *static_cast<RowPusher*>(self);
    try {
      asking.stopped_ = !asking.sink_.shouldContinue();
    } catch (...) {
      asking.failure_ = std::current_exception();
      asking.stopped_ = true;
    }
    return asking.stopped_ ? 1 : 0;
  };
  sqlite3_progress_handler(database_, instructionsBetween, ask, &pusher);
}

RowPusher::Asking::~Asking() {
  sqlite3_progress_handler(database_, 0, nullptr, nullptr);
}

int RowPusher::push() {
  const Asking asking(*this);
  const int code = pushRows();
  if (failure_) std::rethrow_exception(failure_);
  return stopped_ ? SQLITE_ROW : code;
}

int RowPusher::pushRows() {
  int code = sqlite3_step(statement_);
  if (code != SQLITE_ROW && code != SQLITE_DONE) return code;
  if (cells_.empty()) {
    while (code == SQLITE_ROW) code = sqlite3_step(statement_);
    return code;
  }
  begin();
  for (; code == SQLITE_ROW; code = sqlite3_step(statement_))
    if (!pushRow()) return outOfMemory_ ? SQLITE_NOMEM : SQLITE_ROW;
  if (code == SQLITE_DONE) sink_.endResult();
  return code;
}

void RowPusher::begin() {
  std::vector<Field> fields(cells_.size());
  for (std::size_t column = 0; column < fields.size(); ++column) {
    const char* const name = sqlite3_column_name(statement_, static_cast<int>(column));
    fields[column] = {name == nullptr ? "" : name, kindOf(static_cast<int>(column))};
  }
  sink_.beginResult(fields);
}

ColumnKind RowPusher::kindOf(int column) const {
  if (const char* const declared = sqlite3_column_decltype(statement_, column)) {
    const std::string type = upperCase(declared);
    for (const TypeName& name : typeNames)
      if (type.find(name.part) != std::string::npos) return name.kind;
  }
  // A computed column: its first value tells.
  if (sqlite3_data_count(statement_) == 0) return ColumnKind::text;
  switch (sqlite3_column_type(statement_, column)) {
    case SQLITE_INTEGER:
    case SQLITE_FLOAT:
      return ColumnKind::number;
    case SQLITE_BLOB:
      return ColumnKind::binary;
    default:
      return ColumnKind::text;
  }
}

bool RowPusher::pushRow() {
  values_.read();
  // Calls on the value itself are the cheapest that SQLite offers, and nearly all of a trail is text.
  for (std::size_t column = 0; column < cells_.size(); ++column) {
    sqlite3_value* const value = values_.value(column);
    const int type = sqlite3_value_type(value);
    if (type != SQLITE_TEXT) {
      fillOther(column, value, type);
      continue;
    }
    const unsigned char* const text = sqlite3_value_text(value);
    outOfMemory_ = text == nullptr;
    if (outOfMemory_) return false;
    cells_[column] = {{reinterpret_cast<const char*>(text), static_cast<std::size_t>(sqlite3_value_bytes(value))},
                      false};
  }
  return sink_.row(cells_);
}

void RowPusher::fillOther(std::size_t column, sqlite3_value* value, int type) {
  Cell& cell = cells_[column];
  cell = {{}, false};
  switch (type) {
    case SQLITE_INTEGER: {
      NumberText& text = numbers_[column];
      const auto* const end = std::to_chars(text.data(), text.data() + text.size(), sqlite3_value_int64(value)).ptr;
      cell.text = {text.data(), static_cast<std::size_t>(end - text.data())};
      return;
    }
    case SQLITE_FLOAT:
      cell.text = {numbers_[column].data(), writeNumber(sqlite3_value_double(value), numbers_[column])};
      return;
    case SQLITE_BLOB: {
      const auto* const bytes = static_cast<const char*>(sqlite3_value_blob(value));
      fillWithHex({bytes, static_cast<std::size_t>(sqlite3_value_bytes(value))}, hexTexts_[column]);
      cell.text = hexTexts_[column];
      return;
    }
    default:
      cell.isNull = true;
      return;
  }
}

}  // namespace korvel::db
