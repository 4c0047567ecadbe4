#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace korvel::demo {

/// Numbers that follow from the seed alone. The standard library's distributions differ between its makers; these do
/// not.
class Random {
 public:
  explicit Random(std::uint64_t seed) noexcept : state_(seed) {}

  std::uint64_t next() noexcept {
    state_ += 0x9E3779B97F4A7C15U;
    std::uint64_t mixed = state_;
    mixed = (mixed ^ (mixed >> 30U)) * 0xBF58476D1CE4E5B9U;
    mixed = (mixed ^ (mixed >> 27U)) * 0x94D049BB133111EBU;
    return mixed ^ (mixed >> 31U);
  }

  /// 0 .. limit - 1, or 0 where the limit is 0.
  std::uint32_t below(std::uint32_t limit) noexcept {
    return static_cast<std::uint32_t>(((next() >> 32U) * limit) >> 32U);
  }
  /// first .. last, both included.
  int between(int first, int last) noexcept {
    return first + static_cast<int>(below(static_cast<std::uint32_t>(last - first + 1)));
  }
  /// True in `count` of `outOf` cases.
  bool chance(std::uint32_t count, std::uint32_t outOf) noexcept { return below(outOf) < count; }

  /// Any index of a container that is not empty.
  std::size_t indexOf(std::size_t size) noexcept { return below(static_cast<std::uint32_t>(size)); }
  template <typename Container>
  const auto& pick(const Container& entries) noexcept {
    return entries[indexOf(entries.size())];
  }
  /// An index, each as likely as its weight; the weights may not all be 0.
  std::size_t pickWeighted(std::span<const std::uint32_t> weights) noexcept {
    std::uint32_t total = 0;
    for (const std::uint32_t weight : weights) total += weight;
    std::uint32_t rest = below(total);
    for (std::size_t i = 0; i < weights.size(); ++i) {
      if (rest < weights[i]) return i;
      rest -= weights[i];
    }
    return weights.size() - 1;
  }

 private:
  std::uint64_t state_;
};

}  // namespace korvel::demo
