#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace korvel::results {

// Texts of an audit trail are short and there are millions of them: the byte loops below read eight bytes at a time,
// the last eight overlapping the ones before, and never read outside the text.

[[nodiscard]] inline std::uint64_t loadWord(const char* at) noexcept {
  std::uint64_t word = 0;
  std::memcpy(&word, at, sizeof word);
  return word;
}

[[nodiscard]] inline std::uint32_t loadHalfWord(const char* at) noexcept {
  std::uint32_t word = 0;
  std::memcpy(&word, at, sizeof word);
  return word;
}

[[nodiscard]] inline bool sameText(std::string_view left, std::string_view right) noexcept {
  const std::size_t size = left.size();
  if (size != right.size()) return false;
  const char* const a = left.data();
  const char* const b = right.data();
  if (size >= 8) {
    for (std::size_t i = 0; i + 8 < size; i += 8)
      if (loadWord(a + i) != loadWord(b + i)) return false;
    return loadWord(a + size - 8) == loadWord(b + size - 8);
  }
  if (size >= 4) return loadHalfWord(a) == loadHalfWord(b) && loadHalfWord(a + size - 4) == loadHalfWord(b + size - 4);
  for (std::size_t i = 0; i < size; ++i)
    if (a[i] != b[i]) return false;
  return true;
}

/// Copies the bytes of `text` to `to`.
inline void copyText(std::string_view text, char* to) noexcept {
  const std::size_t size = text.size();
  const char* const from = text.data();
  if (size > 32) {
    std::memcpy(to, from, size);
  } else if (size >= 8) {
    for (std::size_t i = 0; i + 8 < size; i += 8) std::memcpy(to + i, from + i, 8);
    std::memcpy(to + size - 8, from + size - 8, 8);
  } else if (size >= 4) {
    const std::uint32_t tail = loadHalfWord(from + size - 4);
    std::memcpy(to, from, 4);
    std::memcpy(to + size - 4, &tail, 4);
  } else {
    for (std::size_t i = 0; i < size; ++i) to[i] = from[i];
  }
}

/// Longest text that fits, with its length, into a word.
inline constexpr std::size_t shortBytes = 7;
[[nodiscard]] constexpr bool isShort(std::string_view text) noexcept {
  return text.size() <= shortBytes;
}

/// The bytes of a short text and its length in one number, different for different texts and never 0.
[[nodiscard]] inline std::uint64_t shortTextBits(std::string_view text) noexcept {
  const std::size_t size = text.size();
  const auto byteAt = [&](std::size_t i) { return std::uint64_t{static_cast<unsigned char>(text[i])} << (i * 8U); };
  const std::uint64_t bits = std::uint64_t{size + 1} << 56U;
  // Both reads overlap; on a little-endian machine (there is no other that this is built for) they agree where they do.
  static_assert(std::endian::native == std::endian::little);
  if (size >= 4) {
    const std::uint64_t head = loadHalfWord(text.data());
    const std::uint64_t tail = loadHalfWord(text.data() + size - 4);
    return bits | head | tail << ((size - 4) * 8U);
  }
  return size == 0 ? bits : bits | byteAt(0) | byteAt(size / 2) | byteAt(size - 1);
}

/// The eight bytes of `text` from `offset` as a number that orders as the bytes do, ASCII capitals as small letters;
/// bytes beyond the end read as 0.
[[nodiscard]] inline std::uint64_t orderingWord(std::string_view text, std::size_t offset) noexcept {
  if (offset >= text.size()) return 0;
  const std::size_t left = text.size() - offset;
  std::uint64_t word = 0;
  if (left >= 8)
    word = loadWord(text.data() + offset);
  else
    std::memcpy(&word, text.data() + offset, left);
  word = __builtin_bswap64(word);
  constexpr std::uint64_t each = 0x0101010101010101U;
  constexpr std::uint64_t highBits = each << 7U;
  const std::uint64_t low = word & ~highBits;
  const std::uint64_t fromA = low + each * (0x80U - 'A');
  const std::uint64_t beyondZ = low + each * (0x7FU - 'Z');
  const std::uint64_t capitals = fromA & ~beyondZ & ~word & highBits;
  return word | capitals >> 2U;
}

}  // namespace korvel::results
