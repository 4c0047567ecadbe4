#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <span>
#include <string_view>
#include <vector>

#include "db/connection.h"
#include "results/dictionary.h"
#include "results/row_store.h"
#include "results/text_arena.h"

namespace korvel::results {

/// The values of one column of a RowStore, in blocks of rows. Each block has the narrowest entries that hold its rows:
/// codes of 1, 2 or 4 bytes, or, once the column has stopped looking for repeats, the addresses of the texts
/// themselves.
class Column {
 public:
  static constexpr std::size_t blockRows = 4096;

  /// Announces the value that the next append brings. Costs nothing that append would not cost without it.
  void prepare(const db::Cell& cell) noexcept {
    if (looksForRepeats_ && !cell.isNull) dictionary_.prepare(cell.text);
  }
  /// Appends the value that was prepared. Throws std::bad_alloc; the column then has as many rows as before.
  void append(const db::Cell& cell) {
    if (size_ % blockRows == 0) startBlock();
    if (looksForRepeats_)
      putCode(cell.isNull ? nullCode : dictionary_.codeOf(cell.text, arena_));
    else
      put(cell.isNull ? nullptr : arena_.add(cell.text));
    ++size_;
  }
  /// Appends nulls until the column has `rows` rows.
  void padTo(std::size_t rows);
  /// Takes back the row that was appended last.
  void takeBackLastRow() noexcept;

  [[nodiscard]] std::size_t size() const noexcept { return size_; }
  /// The value of a row; null beyond the last one.
  [[nodiscard]] StoredText stored(std::size_t row) const noexcept {
    if (row >= size_) return nullptr;
    const Block& block = blocks_[row / blockRows];
    const std::size_t at = row % blockRows;
    switch (block.width) {
      case EntryWidth::byte:
        return dictionary_.stored(block.at<std::uint8_t>(at));
      case EntryWidth::two:
        return dictionary_.stored(block.at<std::uint16_t>(at));
      case EntryWidth::four:
        return dictionary_.stored(block.at<std::uint32_t>(at));
      case EntryWidth::address:
        break;
    }
    return block.at<StoredText>(at);
  }

  /// The distinct values that rows refer to by code, null among them, at code 0; rows that have no code are not
  /// counted.
  [[nodiscard]] std::size_t codeCount() const noexcept { return dictionary_.size(); }
  [[nodiscard]] StoredText valueOf(ValueCode code) const noexcept { return dictionary_.stored(code); }

  /// Goes through the rows [begin, end) block by block, where `end` is at most size(). Calls `onCodes(row, count,
  /// codes)` for rows that have codes and `onTexts(row, count, texts)` for rows that have the addresses of their texts:
  /// `row` is the first of them, and `codes(i)` or `texts(i)` belongs to the i-th.
  template <typename OnCodes, typename OnTexts>
  void forEachBlock(std::size_t begin, std::size_t end, OnCodes onCodes, OnTexts onTexts) const {
    while (begin < end) {
      const Block& block = blocks_[begin / blockRows];
      const std::size_t first = begin % blockRows;
      const std::size_t count = std::min(blockRows - first, end - begin);
      switch (block.width) {
        case EntryWidth::byte:
          onCodes(begin, count, [&](std::size_t i) { return ValueCode{block.at<std::uint8_t>(first + i)}; });
          break;
        case EntryWidth::two:
          onCodes(begin, count, [&](std::size_t i) { return ValueCode{block.at<std::uint16_t>(first + i)}; });
          break;
        case EntryWidth::four:
          onCodes(begin, count, [&](std::size_t i) { return ValueCode{block.at<std::uint32_t>(first + i)}; });
          break;
        case EntryWidth::address:
          onTexts(begin, count, [&](std::size_t i) { return block.at<StoredText>(first + i); });
          break;
      }
      begin += count;
    }
  }

  /// Calls `visit` with every text of the column at least once; nulls are passed over.
  void visitDistinct(const std::function<void(std::string_view)>& visit) const;
  /// The same for some rows only: calls `visit` with every text that they have.
  void visitDistinct(std::span<const RowId> rows, const std::function<void(std::string_view)>& visit) const;
  /// Fills ranks[row] for every row of the column; see RowStore::ranks.
  void fillRanks(std::vector<std::uint32_t>& ranks, bool numericKeys) const;

 private:
  enum class EntryWidth : std::uint8_t { byte, two, four, address };
  static constexpr std::array<std::size_t, 4> bytesOf{1, 2, 4, sizeof(StoredText)};

  struct Block {
    HeapBytes entries;
    EntryWidth width = EntryWidth::byte;

    Block(EntryWidth entryWidth, std::size_t rows)
        : entries(heapBytes(rows * bytesOf[static_cast<std::size_t>(entryWidth)])), width(entryWidth) {}
    template <typename Entry>
    [[nodiscard]] Entry at(std::size_t row) const noexcept {
      Entry entry;
      std::memcpy(&entry, entries.get() + row * sizeof entry, sizeof entry);
      return entry;
    }
    template <typename Entry>
    void set(std::size_t row, Entry entry) noexcept {
      std::memcpy(entries.get() + row * sizeof entry, &entry, sizeof entry);
    }
  };

  template <typename Entry>
  void put(Entry entry) noexcept {
    std::memcpy(current_ + size_ % blockRows * sizeof entry, &entry, sizeof entry);
  }
  void putCode(ValueCode code) {
    if (code > highestCode_) widen(code);
    switch (width_) {
      case EntryWidth::byte:
        put(static_cast<std::uint8_t>(code));
        break;
      case EntryWidth::two:
        put(static_cast<std::uint16_t>(code));
        break;
      default:
        put(code);
        break;
    }
  }

  [[nodiscard]] static EntryWidth widthFor(ValueCode highest) noexcept;
  [[nodiscard]] ValueCode codeAt(const Block& block, std::size_t at) const noexcept;
  [[nodiscard]] bool repeatsAreRare() const noexcept;
  void startBlock();
  void widen(ValueCode code);
  void use(Block& block) noexcept;
  template <typename Visit>
  void forEachPlain(Visit visit) const;

  std::size_t size_ = 0;
  char* current_ = nullptr;  ///< entries of the block that is being filled
  EntryWidth width_ = EntryWidth::byte;
  ValueCode highestCode_ = 0;  ///< that fits into the block that is being filled
  bool looksForRepeats_ = true;
  std::size_t valuesAtBlockStart_ = 0;
  std::vector<Block> blocks_;
  Dictionary dictionary_;
  TextArena arena_;
};

}  // namespace korvel::results
