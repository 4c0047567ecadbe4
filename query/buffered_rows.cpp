#include "query/buffered_rows.h"

#include "base/text.h"

namespace korvel::query {

std::optional<std::size_t> columnOf(std::span<const db::Field> fields, std::string_view name) noexcept {
  for (std::size_t i = 0; i < fields.size(); ++i)
    if (equalsIgnoringAsciiCase(fields[i].name, name)) return i;
  return std::nullopt;
}

void BufferedRows::begin(std::span<const db::Field> fields) {
  clear();
  fields_.assign(fields.begin(), fields.end());
}

void BufferedRows::add(std::span<const db::Cell> cells) {
  const std::size_t width = fields_.size();
  for (std::size_t i = 0; i < width; ++i) {
    const bool isThere = i < cells.size();
    if (isThere) bytes_ += cells[i].text;
    values_.push_back({bytes_.size(), !isThere || cells[i].isNull});
  }
  ++rowCount_;
}

void BufferedRows::clear() noexcept {
  bytes_.clear();
  values_.clear();
  rowCount_ = 0;
}

std::span<const db::Cell> BufferedRows::row(std::size_t index) const {
  const std::size_t width = fields_.size();
  cells_.resize(width);
  for (std::size_t i = 0; i < width; ++i) {
    const std::size_t at = index * width + i;
    const std::size_t begin = at == 0 ? 0 : values_[at - 1].end;
    cells_[i] = {std::string_view(bytes_).substr(begin, values_[at].end - begin), values_[at].isNull};
  }
  return cells_;
}

std::vector<Minute> BufferedRows::minutes() const {
  std::vector<Minute> minutes;
  const auto column = columnOf(fields_, dateTimeColumn);
  if (!column) return minutes;
  for (std::size_t i = 0; i < rowCount_; ++i)
    if (const auto minute = minuteOf(row(i)[*column].text)) minutes.push_back(*minute);
  return minutes;
}

void BufferedAnswer::beginResult(std::span<const db::Field> fields) {
  if (results_.size() == count_) results_.emplace_back();
  results_[count_].begin(fields);
}

bool BufferedAnswer::row(std::span<const db::Cell> cells) {
  BufferedRows& rows = results_[count_];
  const std::size_t before = rows.byteCount();
  rows.add(cells);
  memory_.grown(rows.byteCount() - before);
  return !stop_.stop_requested();
}

}  // namespace korvel::query
