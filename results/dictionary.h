#pragma once

#define XXH_INLINE_ALL
#include <xxhash.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "results/text_arena.h"
#include "results/text_bytes.h"

namespace korvel::results {

/// Stands for a distinct value of one column; 0 is null.
using ValueCode = std::uint32_t;
inline constexpr ValueCode nullCode = 0;

/// Hashes for tables in memory: those of texts, and of the bits of a short one.
[[nodiscard]] inline std::uint32_t hashOf(std::string_view text) noexcept {
  return static_cast<std::uint32_t>(XXH3_64bits(text.data(), text.size()));
}
[[nodiscard]] inline std::uint32_t hashOfWord(std::uint64_t word) noexcept {
  return static_cast<std::uint32_t>(XXH3_64bits(&word, sizeof word));
}

/// The distinct values of one column, numbered in the order of their first appearance.
class Dictionary {
 public:
  /// Starts looking up `text`: what codeOf needs is on its way from memory meanwhile. A row prepares all of its columns
  /// first, which hides most of the time that large tables take to answer.
  void prepare(std::string_view text) noexcept {
    // Neighbouring records repeat each other more often than not.
    if (isShort(text)) {
      wanted_.bits = shortTextBits(text);
      repeatsLast_ = wanted_.bits == lastShortText_;
      if (repeatsLast_) return;
      wanted_.hash = hashOfWord(wanted_.bits) | shortMark;
    } else {
      repeatsLast_ = sameText(lastLongText_, text);
      if (repeatsLast_) return;
      wanted_.hash = hashOf(text) & ~shortMark;
    }
    __builtin_prefetch(slots_.data() + (wanted_.hash >> 1U & mask_));
  }
  /// The code of the text that was prepared last, which is stored in `arena` when it is new. Throws std::bad_alloc;
  /// nothing is changed then.
  ValueCode codeOf(std::string_view text, TextArena& arena) {
    if (repeatsLast_) return lastCode_;
    const bool textIsShort = isShort(text);
    std::size_t at = wanted_.hash >> 1U & mask_;
    for (std::size_t probes = 0; probes < longestProbe; ++probes, at = (at + 1) & mask_) {
      const Slot& slot = slots_[at];
      if (slot.code == nullCode) break;
      if (slot.hash != wanted_.hash) continue;
      if (textIsShort) {
        if (slot.bits != wanted_.bits) continue;
        lastShortText_ = slot.bits;
        lastLongText_ = {};
      } else {
        const std::string_view found = textAt(addressFrom(slot.bits));
        if (!sameText(found, text)) continue;
        lastShortText_ = 0;
        lastLongText_ = found;
      }
      return lastCode_ = slot.code;
    }
    return add(text, arena);
  }

  /// Number of values, the null value included: one more than the highest code.
  [[nodiscard]] std::size_t size() const noexcept { return values_.size(); }
  [[nodiscard]] StoredText stored(ValueCode code) const noexcept { return values_[code]; }
  /// Whether the texts crowd a few places of the table, by chance or by malice, so that looking them up no longer pays.
  [[nodiscard]] bool isCrowded() const noexcept { return crowded_; }
  /// Drops what only looking up needs; nothing may be looked up any more.
  void stopLookingUp() noexcept;

 private:
  /// The bits are a text of up to seven bytes, or the address of a longer one. The lowest bit of the
  /// hash tells which of both it is.
  struct Slot {
    std::uint64_t bits = 0;
    std::uint32_t hash = 0;
    ValueCode code = nullCode;
  };
  static StoredText addressFrom(std::uint64_t bits) noexcept {
    return std::bit_cast<StoredText>(static_cast<std::uintptr_t>(bits));
  }
  static constexpr std::uint32_t shortMark = 1;
  static constexpr std::size_t longestProbe = 128;
  static constexpr std::size_t firstSlots = 16;

  ValueCode add(std::string_view text, TextArena& arena);
  static bool place(std::vector<Slot>& slots, const Slot& slot) noexcept;
  void grow();

  Slot wanted_;  ///< what was prepared last, without its code
  bool repeatsLast_ = false;
  bool crowded_ = false;
  ValueCode lastCode_ = nullCode;
  std::uint64_t lastShortText_ = 0;  ///< 0, which no text has, when the last one was long
  std::string_view lastLongText_;    ///< empty when the last one was short
  std::size_t mask_ = firstSlots - 1;
  std::vector<Slot> slots_ = std::vector<Slot>(firstSlots);
  std::vector<StoredText> values_{nullptr};
};

}  // namespace korvel::results
