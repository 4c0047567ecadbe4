#include "settings/code_page_windows.h"

#include <windows.h>

#include <algorithm>
#include <cwchar>

#include "base/text.h"
#include "base/wide_text_windows.h"
#include "settings/code_page.h"

namespace korvel::settings {

namespace {

constexpr char32_t firstBeyondAscii = 0x80;

unsigned systemCodePage() {
  constexpr std::size_t longestNumber = 16;
  std::array<wchar_t, longestNumber> digits{};
  DWORD bytes = sizeof digits;
  // From the registry: GetACP() follows the process, whose manifest may have set it to UTF-8.
  const LSTATUS read = RegGetValueW(HKEY_LOCAL_MACHINE, LR"(SYSTEM\CurrentControlSet\Control\Nls\CodePage)", L"ACP",
                                    RRF_RT_REG_SZ, nullptr, digits.data(), &bytes);
  const unsigned long number = read == ERROR_SUCCESS ? std::wcstoul(digits.data(), nullptr, 10) : 0;
  return number == 0 ? GetACP() : static_cast<unsigned>(number);
}

}  // namespace

WindowsCodePage::WindowsCodePage(unsigned number) : number_(number) {
  CPINFO about{};
  oneByteEach_ = GetCPInfo(number, &about) == 0 || about.MaxCharSize == 1;
  if (!oneByteEach_) return;
  for (std::size_t i = 0; i < characters_.size(); ++i) {
    const char byte = static_cast<char>(firstBeyondAscii + i);
    wchar_t character = 0;
    if (MultiByteToWideChar(number, MB_ERR_INVALID_CHARS, &byte, 1, &character, 1) == 1) characters_.at(i) = character;
  }
}

const WindowsCodePage& WindowsCodePage::ofTheSystem() {
  static const WindowsCodePage page(systemCodePage());
  return page;
}

bool WindowsCodePage::appendBytesOf(char32_t character, std::string& bytes) const {
  if (character < firstBeyondAscii) {
    bytes.push_back(static_cast<char>(character));
    return true;
  }
  if (!oneByteEach_) return appendConverted(character, bytes);
  // Only what reads back as the same character: Windows would take look-alikes, too.
  const auto* const found = std::find(characters_.begin(), characters_.end(), character);
  if (found == characters_.end()) return false;
  bytes.push_back(static_cast<char>(firstBeyondAscii + static_cast<char32_t>(found - characters_.begin())));
  return true;
}

bool WindowsCodePage::appendConverted(char32_t character, std::string& bytes) const {
  std::string utf8;
  appendCodePoint(character, utf8);
  if (number_ == CP_UTF8) {
    bytes += utf8;
    return true;
  }
  const std::wstring wide = lossyWideFromUtf8(utf8);
  constexpr std::size_t mostBytes = 8;
  std::array<char, mostBytes> converted{};
  BOOL replaced = FALSE;
  const int length = WideCharToMultiByte(number_, WC_NO_BEST_FIT_CHARS, wide.data(), static_cast<int>(wide.size()),
                                         converted.data(), static_cast<int>(converted.size()), nullptr, &replaced);
  if (length <= 0 || replaced != FALSE) return false;
  bytes.append(converted.data(), static_cast<std::size_t>(length));
  return true;
}

std::string WindowsCodePage::textOfBytes(std::string_view bytes) const {
  if (number_ == CP_UTF8) return replaceInvalidUtf8(bytes);
  std::string text;
  text.reserve(bytes.size());
  if (oneByteEach_) {
    for (const char c : bytes) {
      const auto byte = static_cast<unsigned char>(c);
      if (byte < firstBeyondAscii)
        text.push_back(c);
      else
        // A byte that is no character keeps its number, as Windows has it.
        appendCodePoint(
            characters_.at(byte - firstBeyondAscii) != 0 ? characters_.at(byte - firstBeyondAscii) : char32_t{byte},
            text);
    }
    return text;
  }
  // Files are read whole, of a size that one call takes.
  std::wstring wide(bytes.size(), L'\0');
  const int length = MultiByteToWideChar(number_, 0, bytes.data(), static_cast<int>(bytes.size()), wide.data(),
                                         static_cast<int>(wide.size()));
  wide.resize(static_cast<std::size_t>(std::max(length, 0)));
  return utf8FromWide(wide);
}

bool appendBytesOf(char32_t character, std::string& bytes) {
  return WindowsCodePage::ofTheSystem().appendBytesOf(character, bytes);
}

std::string textOfBytes(std::string_view bytes) {
  return WindowsCodePage::ofTheSystem().textOfBytes(bytes);
}

}  // namespace korvel::settings
