#include "results/column.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

#include "base/text.h"
#include "results/text_ranks.h"

namespace korvel::results {

namespace {

/// A column of at least `values` distinct values stops looking for repeats when more than `share` of the last block's
/// rows brought a new one. Early only if practically every row does (running numbers); later, when looking up has
/// become slow because the table outgrows the processor's caches, already if every second row does.
struct GiveUpRule {
  std::size_t values;
  double share;
};
constexpr std::array giveUpRules = {GiveUpRule{2 * Column::blockRows - 256, 31.0 / 32}, GiveUpRule{65536, 0.5}};

}  // namespace

Column::EntryWidth Column::widthFor(ValueCode highest) noexcept {
  if (highest <= std::numeric_limits<std::uint8_t>::max()) return EntryWidth::byte;
  if (highest <= std::numeric_limits<std::uint16_t>::max()) return EntryWidth::two;
  return EntryWidth::four;
}

ValueCode Column::codeAt(const Block& block, std::size_t at) const noexcept {
  switch (block.width) {
    case EntryWidth::byte:
      return block.at<std::uint8_t>(at);
    case EntryWidth::two:
      return block.at<std::uint16_t>(at);
    default:
      return block.at<std::uint32_t>(at);
  }
}

bool Column::repeatsAreRare() const noexcept {
  if (dictionary_.isCrowded()) return true;
  const std::size_t fresh = dictionary_.size() - valuesAtBlockStart_;
  return std::any_of(giveUpRules.begin(), giveUpRules.end(), [&](const GiveUpRule& rule) {
    return dictionary_.size() >= rule.values && static_cast<double>(fresh) > rule.share * blockRows;
  });
}

void Column::use(Block& block) noexcept {
  current_ = block.entries.get();
  width_ = block.width;
  switch (width_) {
    case EntryWidth::byte:
      highestCode_ = std::numeric_limits<std::uint8_t>::max();
      break;
    case EntryWidth::two:
      highestCode_ = std::numeric_limits<std::uint16_t>::max();
      break;
    default:
      highestCode_ = std::numeric_limits<ValueCode>::max();
      break;
  }
}

void Column::startBlock() {
  const std::size_t index = size_ / blockRows;
  const bool repeats = looksForRepeats_ && (size_ == 0 || !repeatsAreRare());
  const auto highest = static_cast<ValueCode>(dictionary_.size() - 1);
  Block block(repeats ? widthFor(highest) : EntryWidth::address, blockRows);
  if (index < blocks_.size())
    blocks_[index] = std::move(block);  // left over from a row that was taken back
  else
    blocks_.push_back(std::move(block));
  use(blocks_[index]);
  if (looksForRepeats_ && !repeats) dictionary_.stopLookingUp();
  looksForRepeats_ = repeats;
  valuesAtBlockStart_ = dictionary_.size();
}

void Column::widen(ValueCode code) {
  Block& narrow = blocks_[size_ / blockRows];
  Block wide(widthFor(code), blockRows);
  const std::size_t filled = size_ % blockRows;
  for (std::size_t at = 0; at < filled; ++at) {
    const ValueCode kept = codeAt(narrow, at);
    if (wide.width == EntryWidth::two)
      wide.set(at, static_cast<std::uint16_t>(kept));
    else
      wide.set(at, kept);
  }
  narrow = std::move(wide);
  use(narrow);
}

void Column::padTo(std::size_t rows) {
  const db::Cell null{{}, true};
  while (size_ < rows) append(null);
}

void Column::takeBackLastRow() noexcept {
  --size_;
  // At the start of a block there is nothing to go on with: the next row starts that block afresh.
  if (size_ % blockRows != 0) use(blocks_[size_ / blockRows]);
}

template <typename Visit>
void Column::forEachPlain(Visit visit) const {
  for (std::size_t index = 0; index * blockRows < size_; ++index) {
    const Block& block = blocks_[index];
    if (block.width != EntryWidth::address) continue;
    const std::size_t firstRow = index * blockRows;
    const std::size_t count = std::min(blockRows, size_ - firstRow);
    for (std::size_t at = 0; at < count; ++at) visit(firstRow + at, block.at<StoredText>(at));
  }
}

void Column::visitDistinct(const std::function<void(std::string_view)>& visit) const {
  for (std::size_t code = 1; code < dictionary_.size(); ++code)
    visit(textAt(dictionary_.stored(static_cast<ValueCode>(code))));
  forEachPlain([&](std::size_t, StoredText stored) {
    if (stored != nullptr) visit(textAt(stored));
  });
}

void Column::visitDistinct(std::span<const RowId> rows, const std::function<void(std::string_view)>& visit) const {
  std::vector<bool> visited(dictionary_.size(), false);
  for (const RowId row : rows) {
    if (row.value >= size_) continue;
    const Block& block = blocks_[row.value / blockRows];
    const std::size_t at = row.value % blockRows;
    if (block.width == EntryWidth::address) {
      const auto text = block.at<StoredText>(at);
      if (text != nullptr) visit(textAt(text));
      continue;
    }
    const ValueCode code = codeAt(block, at);
    if (code == nullCode || visited[code]) continue;
    visited[code] = true;
    visit(textAt(dictionary_.stored(code)));
  }
}

void Column::fillRanks(std::vector<std::uint32_t>& ranks, bool numericKeys) const {
  std::vector<std::string_view> texts;
  std::size_t plainRows = 0;
  forEachPlain([&](std::size_t, StoredText) { ++plainRows; });
  texts.reserve(dictionary_.size() + plainRows);
  for (std::size_t code = 0; code < dictionary_.size(); ++code)
    texts.push_back(trimBlanks(textAt(dictionary_.stored(static_cast<ValueCode>(code)))));
  forEachPlain([&](std::size_t, StoredText stored) { texts.push_back(trimBlanks(textAt(stored))); });

  const std::vector<std::uint32_t> rankOf =
      numericKeys ? rankNumberTexts(std::move(texts)) : rankTexts(std::move(texts));

  std::size_t nextPlain = dictionary_.size();
  for (std::size_t index = 0; index * blockRows < size_; ++index) {
    const Block& block = blocks_[index];
    const std::size_t firstRow = index * blockRows;
    const std::size_t count = std::min(blockRows, size_ - firstRow);
    std::uint32_t* const out = ranks.data() + firstRow;
    switch (block.width) {
      case EntryWidth::byte:
        for (std::size_t at = 0; at < count; ++at) out[at] = rankOf[block.at<std::uint8_t>(at)];
        break;
      case EntryWidth::two:
        for (std::size_t at = 0; at < count; ++at) out[at] = rankOf[block.at<std::uint16_t>(at)];
        break;
      case EntryWidth::four:
        for (std::size_t at = 0; at < count; ++at) out[at] = rankOf[block.at<std::uint32_t>(at)];
        break;
      case EntryWidth::address:
        for (std::size_t at = 0; at < count; ++at) out[at] = rankOf[nextPlain++];
        break;
    }
  }
}

}  // namespace korvel::results
