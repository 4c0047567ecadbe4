#include "output/separated_text.h"

#include "base/text.h"

namespace korvel::output {

namespace {
constexpr std::string_view lineEnd = "\r\n";
}

void SeparatedTextWriter::begin(std::span<const db::Field> fields) {
  std::string& out = chunks_.text();
  for (const db::Field& field : fields) (out += field.name) += separator_;
  out += lineEnd;
}

void SeparatedTextWriter::row(std::span<const db::Cell> cells) {
  std::string& out = chunks_.text();
  bool first = true;
  for (const db::Cell& cell : cells) {
    if (!first) out += separator_;
    first = false;
    out += trimBlanks(cell.text);
  }
  out += lineEnd;
  chunks_.endLine();
}

}  // namespace korvel::output
