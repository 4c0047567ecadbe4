#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace korvel::settings {

/// A code page as Windows knows it, by its number.
class WindowsCodePage {
 public:
  /// A number that Windows does not know gives a code page that holds ASCII alone.
  explicit WindowsCodePage(unsigned number);

  /// The code page that the whole system is set to. Not that of this process, which its manifest may have made UTF-8:
  /// the files are for others.
  [[nodiscard]] static const WindowsCodePage& ofTheSystem();

  [[nodiscard]] unsigned number() const noexcept { return number_; }
  [[nodiscard]] bool appendBytesOf(char32_t character, std::string& bytes) const;
  [[nodiscard]] std::string textOfBytes(std::string_view bytes) const;

 private:
  static constexpr std::size_t bytesBeyondAscii = 128;

  [[nodiscard]] bool appendConverted(char32_t character, std::string& bytes) const;

  unsigned number_;
  bool oneByteEach_ = false;
  /// Where each byte is a character: those of the bytes 0x80 to 0xFF, 0 for a byte that is none.
  std::array<char32_t, bytesBeyondAscii> characters_{};
};

}  // namespace korvel::settings
