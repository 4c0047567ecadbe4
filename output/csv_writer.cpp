#include "output/csv_writer.h"

#include <vector>

#include "results/text_bytes.h"

namespace korvel::output {

namespace {

constexpr std::uint64_t each = 0x0101010101010101U;

/// Whether one of the word's bytes is `byte`.
constexpr bool holds(std::uint64_t word, std::uint64_t byte) noexcept {
  const std::uint64_t zeroWhereEqual = word ^ each * byte;
  return ((zeroWhereEqual - each) & ~zeroWhereEqual & each << 7U) != 0;
}

constexpr bool holdsSpecial(std::uint64_t word) noexcept {
  return holds(word, ',') || holds(word, '"') || holds(word, '\r') || holds(word, '\n');
}

constexpr bool isSpecial(char c) noexcept {
  return c == ',' || c == '"' || c == '\r' || c == '\n';
}

/// Outer blanks are quoted as well: some readers drop them otherwise.
bool needsQuotes(std::string_view value) noexcept {
  const std::size_t size = value.size();
  if (size == 0 || value.front() == ' ' || value.back() == ' ') return true;
  if (size < sizeof(std::uint64_t)) {
    for (const char c : value)
      if (isSpecial(c)) return true;
    return false;
  }
  // Eight bytes at a time, the last eight overlapping the ones before.
  for (std::size_t i = 0; i + sizeof(std::uint64_t) < size; i += sizeof(std::uint64_t))
    if (holdsSpecial(results::loadWord(value.data() + i))) return true;
  return holdsSpecial(results::loadWord(value.data() + size - sizeof(std::uint64_t)));
}

char* writeQuoted(std::string_view value, char* out) noexcept {
  *out++ = '"';
  for (const char c : value) {
    if (c == '"') *out++ = '"';
    *out++ = c;
  }
  *out++ = '"';
  return out;
}

}  // namespace

void CsvWriter::row(std::span<const db::Cell> cells) {
  // Every byte may be a quote, and every field has two more and a comma.
  constexpr std::size_t bytesAround = 3;
  std::size_t most = 2;
  for (const db::Cell& cell : cells) most += 2 * cell.text.size() + bytesAround;
  char* at = out_.room(most);
  bool first = true;
  for (const db::Cell& cell : cells) {
    if (!first) *at++ = ',';
    first = false;
    if (cell.isNull) continue;
    if (needsQuotes(cell.text)) {
      at = writeQuoted(cell.text, at);
    } else {
      results::copyText(cell.text, at);
      at += cell.text.size();
    }
  }
  *at++ = '\r';
  *at++ = '\n';
  out_.writtenTo(at);
}

void CsvWriter::begin(std::span<const db::Field> fields) {
  std::vector<db::Cell> names;
  names.reserve(fields.size());
  for (const db::Field& field : fields) names.push_back({field.name, false});
  row(names);
}

}  // namespace korvel::output
