#include "evidence/row_digest.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <limits>
#include <set>
#include <utility>

namespace korvel::evidence {

namespace {

constexpr std::size_t mostDigits = std::numeric_limits<std::size_t>::digits10 + 1;

char* put(std::string_view text, char* out) noexcept {
  std::memcpy(out, text.data(), text.size());
  return out + text.size();
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
  for (const std::size_t index : order)
    columns_.push_back({index, std::to_string(names[index].size()) + ":" + names[index]});
}

std::string_view RowDigester::canonicalForm(std::span<const db::Cell> cells) {
  std::size_t most = 0;
  for (const Column& column : columns_) {
    const std::size_t value = column.index < cells.size() ? cells[column.index].text.size() : 0;
    most += column.beginning.size() + mostDigits + value + 3;  // "=", ":" and the line feed
  }
  if (text_.size() < most) text_.resize(2 * most);
  char* out = text_.data();
  for (const Column& column : columns_) {
    out = put(column.beginning, out);
    if (column.index >= cells.size() || cells[column.index].isNull) {
      *out++ = '~';
    } else {
      const std::string_view value = cells[column.index].text;
      *out++ = '=';
      out = std::to_chars(out, out + mostDigits, value.size()).ptr;
      *out++ = ':';
      out = put(value, out);
    }
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
  std::sort(rows.begin(), rows.end());
  Sha256 sum;
  for (const Digest& row : rows) sum.update(hexText(row) += '\n');
  return sum.finish();
}

}  // namespace korvel::evidence
