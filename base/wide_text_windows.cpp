#include "base/wide_text_windows.h"
#include "base/text.h"

namespace korvel {

static_assert(sizeof(wchar_t) == 2, "a wide character is one UTF-16 unit here");

namespace {

constexpr char32_t replacement = 0xFFFD;
constexpr char32_t firstHigh = 0xD800;
constexpr char32_t firstLow = 0xDC00;
constexpr char32_t afterLow = 0xE000;
constexpr char32_t firstOfTwoUnits = 0x10000;
constexpr unsigned bitsOfLow = 10;
constexpr char32_t maskOfLow = 0x3FF;

void appendUnits(char32_t character, std::wstring& wide) {
  if (character < firstOfTwoUnits) {
    wide.push_back(static_cast<wchar_t>(character));
    return;
  }
  wide.push_back(static_cast<wchar_t>(firstHigh + ((character - firstOfTwoUnits) >> bitsOfLow)));
  wide.push_back(static_cast<wchar_t>(firstLow + ((character - firstOfTwoUnits) & maskOfLow)));
}

bool isLow(char32_t unit) noexcept {
  return unit >= firstLow && unit < afterLow;
}

}  // namespace

std::wstring anyWideFromUtf8(std::string_view text) {
  std::wstring wide;
  wide.reserve(text.size());
  while (!text.empty()) appendUnits(takeCharacter(text).value_or(replacement), wide);
  return wide;
}

std::optional<std::wstring> wideFromUtf8(std::string_view text) {
  if (!isValidUtf8(text)) return std::nullopt;
  return anyWideFromUtf8(text);
}

std::string utf8FromWide(std::wstring_view text) {
  std::string utf8;
  utf8.reserve(text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    char32_t character = text[at];
    const bool pair = character >= firstHigh && character < firstLow && at + 1 < text.size() && isLow(text[at + 1]);
    if (pair) {
      character = firstOfTwoUnits + ((character - firstHigh) << bitsOfLow) + (char32_t{text[at + 1]} - firstLow);
      ++at;
    }
    appendCharacter(character, utf8);  // a lone surrogate is no character
  }
  return utf8;
}

}  // namespace korvel
