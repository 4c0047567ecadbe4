#include "output/separated_lines.h"

#include "base/text.h"

namespace korvel::output {

namespace {
constexpr std::string_view lineEnd = "\r\n";
}

void appendHeaderLine(const results::ResultList& list, char separator, std::string& out) {
  for (const results::ColumnHeader& column : list.columns()) {
    out += column.caption;
    out += separator;
  }
  out += lineEnd;
}

void appendRowLine(const results::ResultList& list, results::RowPosition row, char separator, std::string& out) {
  for (std::size_t column = 0; column < list.columns().size(); ++column) {
    if (column > 0) out += separator;
    out += list.text(row, {column});
  }
  out += lineEnd;
}

void appendHeaderLine(std::span<const db::Field> fields, char separator, std::string& out) {
  for (const db::Field& field : fields) (out += field.name) += separator;
  out += lineEnd;
}

void appendRowLine(std::span<const db::Cell> cells, char separator, std::string& out) {
  bool first = true;
  for (const db::Cell& cell : cells) {
    if (!first) out += separator;
    first = false;
    out += trimBlanks(cell.text);
  }
  out += lineEnd;
}

}  // namespace korvel::output
