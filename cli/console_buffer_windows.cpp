#include "cli/console_buffer_windows.h"

#include <algorithm>

#include "base/wide_text_windows.h"

namespace korvel::cli {

namespace {

/// Consoles of older systems take no more at once.
constexpr std::size_t mostUnits = 8192;

bool isContinuation(char c) noexcept {
  return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
}

std::size_t lengthOfCharacter(char lead) noexcept {
  const auto byte = static_cast<unsigned char>(lead);
  return byte < 0xC0U ? 1 : byte < 0xE0U ? 2 : byte < 0xF0U ? 3 : 4;
}

}  // namespace

std::size_t lengthInWholeCharacters(std::string_view text) noexcept {
  constexpr std::size_t longestCharacter = 4;
  for (std::size_t back = 1; back <= std::min(text.size(), longestCharacter); ++back) {
    const char c = text[text.size() - back];
    if (isContinuation(c)) continue;
    return lengthOfCharacter(c) > back ? text.size() - back : text.size();
  }
  return text.size();
}

ConsoleBuffer::int_type ConsoleBuffer::overflow(int_type character) {
  if (traits_type::eq_int_type(character, traits_type::eof())) return traits_type::not_eof(character);
  const char c = traits_type::to_char_type(character);
  return xsputn(&c, 1) == 1 ? character : traits_type::eof();
}

std::streamsize ConsoleBuffer::xsputn(const char* bytes, std::streamsize count) {
  waiting_.append(bytes, static_cast<std::size_t>(count));
  if (waiting_.size() >= mostUnits && !write(lengthInWholeCharacters(waiting_))) return 0;
  return count;
}

int ConsoleBuffer::sync() {
  return write(lengthInWholeCharacters(waiting_)) ? 0 : -1;
}

bool ConsoleBuffer::write(std::size_t size) {
  const std::wstring text = lossyWideFromUtf8(std::string_view(waiting_).substr(0, size));
  waiting_.erase(0, size);
  for (std::wstring_view rest = text; !rest.empty();) {
    DWORD written = 0;
    if (WriteConsoleW(console_, rest.data(), static_cast<DWORD>(std::min(rest.size(), mostUnits)), &written, nullptr) ==
        0)
      return false;
    rest.remove_prefix(written);
  }
  return true;
}

}  // namespace korvel::cli
