#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace korvel {

/// Bytes begin..end of a text, without the last.
struct ByteRange {
  std::size_t begin = 0;
  std::size_t end = 0;
  friend bool operator==(const ByteRange&, const ByteRange&) = default;
};

/// What differs between two texts. What is in no range is the same in both, in the same order.
struct TextDifference {
  /// In order; none is empty or touches the next.
  std::vector<ByteRange> before;
  std::vector<ByteRange> after;
  /// Characters in the ranges; counted only where the difference is the smallest.
  std::size_t charactersBefore = 0;
  std::size_t charactersAfter = 0;
  /// Whether no characters are in the ranges that could be left out. Texts that differ in too many places are not
  /// compared so closely: everything between their common beginning and end is one range.
  bool isSmallest = true;

  [[nodiscard]] bool isNone() const noexcept { return before.empty() && after.empty(); }
};

/// About as many comparisons of two characters as take some hundredths of a second.
inline constexpr std::size_t usualEffort = std::size_t{1} << 24U;

/// Compares two UTF-8 texts by what a reader sees as characters, as they are stored: "é" in one code point differs from
/// "é" in two. Work and memory are bounded by `effort`, beside one pass for the common beginning and end.
[[nodiscard]] TextDifference differenceOf(std::string_view before, std::string_view after,
                                          std::size_t effort = usualEffort);

}  // namespace korvel
