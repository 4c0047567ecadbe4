#include "results/dictionary.h"

#include <algorithm>

namespace korvel::results {

bool Dictionary::place(std::vector<Slot>& slots, const Slot& slot) noexcept {
  const std::size_t mask = slots.size() - 1;
  // The lowest bit says nothing about the text.
  std::size_t at = slot.hash >> 1U & mask;
  for (std::size_t probes = 0; probes < longestProbe; ++probes, at = (at + 1) & mask) {
    if (slots[at].code != nullCode) continue;
    slots[at] = slot;
    return true;
  }
  return false;
}

void Dictionary::grow() {
  std::vector<Slot> wider(slots_.size() * 2);
  for (const Slot& slot : slots_)
    if (slot.code != nullCode && !place(wider, slot)) crowded_ = true;
  slots_.swap(wider);
  mask_ = slots_.size() - 1;
}

ValueCode Dictionary::add(std::string_view text, TextArena& arena) {
  // Everything that may fail comes before the first change that shows.
  if (values_.size() == values_.capacity()) values_.reserve(std::max(firstSlots, values_.size() * 2));
  if (values_.size() * 2 > slots_.size()) grow();
  const StoredText stored = arena.add(text);
  const auto code = static_cast<ValueCode>(values_.size());
  values_.push_back(stored);
  wanted_.code = code;
  if (!isShort(text)) wanted_.bits = std::bit_cast<std::uintptr_t>(stored);
  if (!place(slots_, wanted_)) crowded_ = true;
  lastShortText_ = isShort(text) ? wanted_.bits : 0;
  lastLongText_ = isShort(text) ? std::string_view{} : textAt(stored);
  lastCode_ = code;
  return code;
}

void Dictionary::stopLookingUp() noexcept {
  std::vector<Slot>{}.swap(slots_);
  mask_ = 0;
}

}  // namespace korvel::results
