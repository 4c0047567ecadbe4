#include "results/memory_watch.h"

#include <algorithm>

#include "settings/string_table.h"

namespace korvel::results {

namespace {

bool isShort(const std::optional<MemoryState>& state) noexcept {
  return state && state->freeBytes < MemoryWatch::reserveOf(state->wholeBytes);
}

}  // namespace

std::uint64_t MemoryWatch::reserveOf(std::uint64_t wholeBytes) noexcept {
  constexpr std::uint64_t share = 16;
  constexpr std::uint64_t least = std::uint64_t{64} << 20U;
  constexpr std::uint64_t most = std::uint64_t{512} << 20U;
  return std::clamp(wholeBytes / share, least, most);
}

void MemoryWatch::measure() {
  sinceLook_ = 0;
  if (isShort(gauge_())) throw settings::localizedError(outOfMemoryNumber, "query.memoryShort");
}

void MemoryWatch::engineAtWork() {
  const bool isShortNow = isShort(gauge_());
  if (!begun_) shortFromTheStart_ = isShortNow;
  begun_ = true;
  if (isShortNow && !shortFromTheStart_) throw settings::localizedError(outOfMemoryNumber, "query.memoryShort");
}

}  // namespace korvel::results
