#include "output/separated_lines.h"

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

}  // namespace korvel::output
