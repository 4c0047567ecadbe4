#include "evidence/row_digest.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <set>
#include <utility>

#include "base/numbers.h"
#include "results/text_bytes.h"

namespace korvel::evidence {

namespace {

constexpr std::size_t mostDigits = std::numeric_limits<std::size_t>::digits10 + 1;

char* put(std::string_view text, char* out) noexcept {
  results::copyText(text, out);
  return out + text.size();
}

/// Most values are shorter than a hundred bytes.
char* putNumber(std::size_t number, char* out) noexcept {
  if (number >= 100) return std::to_chars(out, out + mostDigits, number).ptr;
  if (number >= 10) *out++ = static_cast<char>('0' + number / 10);
  *out++ = static_cast<char>('0' + number % 10);
  return out;
}

/// Sorts values that are spread evenly: by their first two bytes, then what shares them.
void sortDigests(std::vector<Digest>& digests) {
  constexpr std::size_t fewDigests = 10'000;
  if (digests.size() < fewDigests) return std::sort(digests.begin(), digests.end());
  const auto bucketOf = [](const Digest& digest) { return std::size_t{digest.bytes[0]} << 8U | digest.bytes[1]; };
  constexpr std::size_t buckets = 1U << 16U;
  std::vector<std::size_t> ends(buckets + 1);
  for (const Digest& digest : digests) ++ends[bucketOf(digest) + 1];
  for (std::size_t i = 1; i < ends.size(); ++i) ends[i] += ends[i - 1];
  std::vector<Digest> sorted(digests.size());
  for (const Digest& digest : digests) sorted[ends[bucketOf(digest)]++] = digest;
  // Now each number is where its bucket ends.
  std::size_t begin = 0;
  for (std::size_t i = 0; i < buckets; ++i) {
    std::sort(sorted.begin() + static_cast<std::ptrdiff_t>(begin),
              sorted.begin() + static_cast<std::ptrdiff_t>(ends[i]));
    begin = ends[i];
  }
  digests = std::move(sorted);
}

}  // namespace

std::vector<std::string> digestedNames(std::span<const db::Field> fields) {
  std::vector<std::string> names;
  std::set<std::string> taken;
  for (const db::Field& field : fields) {
    std::string name = field.name;
    for (int number = 2; !taken.insert(name).second; ++number) name = field.name + "_" + std::to_string(number);
    names.push_back(std::move(name));
  }
  return names;
}

RowDigester::RowDigester(std::span<const db::Field> fields) {
  const std::vector<std::string> names = digestedNames(fields);
  std::vector<std::size_t> order(names.size());
  for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
  std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return names[a] < names[b]; });
  for (const std::size_t index : order) {
    const std::string name = std::to_string(names[index].size()) + ":" + names[index];
    columns_.push_back({index, name + "=", name + "~\n"});
  }
}

std::string_view RowDigester::canonicalForm(std::span<const db::Cell> cells) {
  std::size_t most = 0;
  for (const Column& column : columns_) {
    const std::size_t value = column.index < cells.size() ? cells[column.index].text.size() : 0;
    most += column.null.size() + mostDigits + value + 2;  // ":" and the line feed
  }
  if (text_.size() < most) text_.resize(2 * most);
  char* out = text_.data();
  for (const Column& column : columns_) {
    if (column.index >= cells.size() || cells[column.index].isNull) {
      out = put(column.null, out);
      continue;
    }
    const std::string_view value = cells[column.index].text;
    out = putNumber(value.size(), put(column.beginning, out));
    *out++ = ':';
    out = put(value, out);
    *out++ = '\n';
  }
  return {text_.data(), static_cast<std::size_t>(out - text_.data())};
}

Digest RowDigester::digestOf(std::span<const db::Cell> cells) {
  sum_.update(canonicalForm(cells));
  return sum_.finish();
}

Digest digestOfRows(std::vector<Digest> rows) {
  // The order of the bytes is that of their digits.
  sortDigests(rows);
  constexpr std::size_t chunkBytes = std::size_t{1} << 16U;
  Sha256 sum;
  std::string lines;
  for (const Digest& row : rows) {
    for (const std::uint8_t byte : row.bytes) appendHex(byte, lines);
    lines += '\n';
    if (lines.size() < chunkBytes) continue;
    sum.update(lines);
    lines.clear();
  }
  sum.update(lines);
  return sum.finish();
}

}  // namespace korvel::evidence
