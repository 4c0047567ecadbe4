#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "results/dictionary.h"

namespace korvel::results {

/// Numbers distinct texts from 0 in the order of their first appearance, whatever they are and however many. The texts
/// must outlive it.
class TextIds {
 public:
  /// The number of `text`, a new one where it has none. Throws std::bad_alloc.
  std::uint32_t idOf(std::string_view text) {
    const std::uint32_t hash = hashOf(text);
    std::size_t at = placeOf(text, hash);
    if (slots_[at].idPlusOne != 0) return slots_[at].idPlusOne - 1;
    if (texts_.size() * 2 >= slots_.size()) {
      grow();
      at = placeOf(text, hash);
    }
    texts_.push_back(text);
    slots_[at] = {hash, static_cast<std::uint32_t>(texts_.size())};
    return slots_[at].idPlusOne - 1;
  }
  /// The number of `text`, if it has one.
  [[nodiscard]] std::optional<std::uint32_t> find(std::string_view text) const noexcept {
    const Slot& slot = slots_[placeOf(text, hashOf(text))];
    return slot.idPlusOne == 0 ? std::nullopt : std::optional(slot.idPlusOne - 1);
  }
  [[nodiscard]] std::size_t size() const noexcept { return texts_.size(); }
  [[nodiscard]] std::string_view textOf(std::uint32_t id) const noexcept { return texts_[id]; }

 private:
  struct Slot {
    std::uint32_t hash = 0;
    std::uint32_t idPlusOne = 0;  ///< 0 in a free slot
  };

  /// The slot of `text`, or the free one that it would get.
  [[nodiscard]] std::size_t placeOf(std::string_view text, std::uint32_t hash) const noexcept {
    const std::size_t mask = slots_.size() - 1;
    std::size_t at = hash & mask;
    while (slots_[at].idPlusOne != 0 && (slots_[at].hash != hash || !sameText(texts_[slots_[at].idPlusOne - 1], text)))
      at = (at + 1) & mask;
    return at;
  }
  void grow() {
    std::vector<Slot> wider(slots_.size() * 4);
    const std::size_t mask = wider.size() - 1;
    for (const Slot& slot : slots_) {
      if (slot.idPlusOne == 0) continue;
      std::size_t at = slot.hash & mask;
      while (wider[at].idPlusOne != 0) at = (at + 1) & mask;
      wider[at] = slot;
    }
    slots_ = std::move(wider);
  }

  std::vector<Slot> slots_ = std::vector<Slot>(64);
  std::vector<std::string_view> texts_;
};

}  // namespace korvel::results
