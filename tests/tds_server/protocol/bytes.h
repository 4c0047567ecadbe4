#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>

namespace korvel::test::tds {

/// The client sent something that is not TDS, or a part of TDS that this server does not support.
struct ProtocolError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// UTF-8 to little-endian UTF-16. A lone surrogate, written as three bytes, is accepted: a server's nchar column can
/// hold one. Throws std::invalid_argument for any other malformed text.
[[nodiscard]] std::string toUtf16(std::string_view utf8);
/// Little-endian UTF-16 to UTF-8; a lone surrogate becomes three bytes. An odd last byte is dropped.
[[nodiscard]] std::string fromUtf16(std::string_view utf16);
/// UTF-8 to a code page by iconv's name for it ("CP1252"). Throws std::invalid_argument for what it cannot hold.
[[nodiscard]] std::string toCodePage(std::string_view utf8, const std::string& codePage);

/// Writes bytes in wire order: little-endian numbers, counted UTF-16 texts.
class ByteWriter {
 public:
  template <class Number>
  ByteWriter& little(Number value, std::size_t size = sizeof(Number)) {
    auto rest = static_cast<std::uint64_t>(value);
    for (std::size_t i = 0; i < size; ++i, rest >>= 8) bytes_ += static_cast<char>(rest & 0xFF);
    return *this;
  }
  template <class Number>
  ByteWriter& big(Number value, std::size_t size = sizeof(Number)) {
    const auto whole = static_cast<std::uint64_t>(value);
    for (std::size_t i = size; i-- > 0;) bytes_ += static_cast<char>((whole >> (8 * i)) & 0xFF);
    return *this;
  }
  ByteWriter& byte(unsigned value) { return little(value, 1); }
  ByteWriter& raw(std::string_view bytes) {
    bytes_.append(bytes);
    return *this;
  }
  /// A text with its length in UTF-16 units before it, in one byte or in two.
  ByteWriter& shortText(std::string_view utf8) { return countedText(utf8, 1); }
  ByteWriter& longText(std::string_view utf8) { return countedText(utf8, 2); }
  /// Bytes with their number before them, in `countSize` bytes.
  ByteWriter& counted(std::string_view bytes, std::size_t countSize) {
    return little(static_cast<std::uint64_t>(bytes.size()), countSize).raw(bytes);
  }

  [[nodiscard]] const std::string& bytes() const { return bytes_; }
  [[nodiscard]] std::string take() { return std::move(bytes_); }

 private:
  ByteWriter& countedText(std::string_view utf8, std::size_t countSize) {
    const std::string wide = toUtf16(utf8);
    return little(static_cast<std::uint64_t>(wide.size() / 2), countSize).raw(wide);
  }

  std::string bytes_;
};

/// Reads bytes in wire order. Throws ProtocolError instead of reading past the end.
class ByteReader {
 public:
  explicit ByteReader(std::string_view bytes) : rest_(bytes) {}

  template <class Number>
  Number little(std::size_t size = sizeof(Number)) {
    const std::string_view part = raw(size);
    std::uint64_t value = 0;
    for (std::size_t i = size; i-- > 0;) value = value << 8 | static_cast<unsigned char>(part[i]);
    return static_cast<Number>(value);
  }
  template <class Number>
  Number big(std::size_t size = sizeof(Number)) {
    std::uint64_t value = 0;
    for (const char c : raw(size)) value = value << 8 | static_cast<unsigned char>(c);
    return static_cast<Number>(value);
  }
  unsigned byte() { return little<unsigned>(1); }
  std::string_view raw(std::size_t size) {
    if (size > rest_.size()) throw ProtocolError("a message ends too early");
    const std::string_view part = rest_.substr(0, size);
    rest_.remove_prefix(size);
    return part;
  }
  /// `units` UTF-16 units as UTF-8.
  std::string text(std::size_t units) { return fromUtf16(raw(units * 2)); }

  [[nodiscard]] bool atEnd() const { return rest_.empty(); }
  [[nodiscard]] std::string_view rest() const { return rest_; }

 private:
  std::string_view rest_;
};

}  // namespace korvel::test::tds
