#include "settings/code_page_windows.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "base/text.h"
#include "tests/support/program_output_windows.h"

namespace korvel::settings {
namespace {

constexpr unsigned western = 1252;
constexpr unsigned cyrillic = 1251;
constexpr unsigned japanese = 932;

std::string bytesOf(const WindowsCodePage& page, std::string_view text) {
  std::string bytes;
  while (!text.empty())
    if (!page.appendBytesOf(takeCodePoint(text).value_or(0), bytes)) bytes += '?';
  return bytes;
}

// The same bytes as on other systems.
TEST(WindowsCodePage, OfTheWestIsTheSameAsElsewhere) {
  constexpr std::array<char32_t, 32> openBytes = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                  0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                                  0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                  0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
  const WindowsCodePage page(western);
  for (unsigned byte = 0x80; byte < 0x100; ++byte) {
    const char32_t character = byte < 0xA0 ? openBytes.at(byte - 0x80) : char32_t{byte};
    std::string text;
    appendCodePoint(character, text);
    const std::string bytes(1, static_cast<char>(byte));
    EXPECT_EQ(page.textOfBytes(bytes), text) << byte;
    EXPECT_EQ(bytesOf(page, text), bytes) << byte;
  }
}

TEST(WindowsCodePage, TakesNoLookAlikes) {
  const WindowsCodePage page(western);
  // A Greek alpha, a fullwidth A, an infinity sign: Windows itself would write a, A and 8.
  EXPECT_EQ(bytesOf(page, "α Ａ ∞"), "? ? ?");
  EXPECT_EQ(bytesOf(page, "日😀"), "??");
}

TEST(WindowsCodePage, MayBeAnother) {
  const WindowsCodePage page(cyrillic);
  EXPECT_EQ(bytesOf(page, "Привет ß"), "\xCF\xF0\xE8\xE2\xE5\xF2 ?");
  EXPECT_EQ(page.textOfBytes("\xCF\xF0\xE8\xE2\xE5\xF2"), "Привет");
}

TEST(WindowsCodePage, MayHaveSeveralBytesForACharacter) {
  const WindowsCodePage page(japanese);
  EXPECT_EQ(bytesOf(page, "日本"), "\x93\xFA\x96\x7B");
  EXPECT_EQ(page.textOfBytes("\x93\xFA\x96\x7B!"), "日本!");
  EXPECT_EQ(bytesOf(page, "é😀"), "??");
}

TEST(WindowsCodePage, MayBeUtf8) {
  const WindowsCodePage page(CP_UTF8);
  EXPECT_EQ(bytesOf(page, "日😀é"), "日😀é");
  EXPECT_EQ(page.textOfBytes("日\xFF"), "日\xEF\xBF\xBD");
}

TEST(WindowsCodePage, OfTheSystemIsNotThatOfTheProcess) {
  const std::string noted = test::outputOf(R"(reg query HKLM\SYSTEM\CurrentControlSet\Control\Nls\CodePage /v ACP)");
  const std::string type = "REG_SZ";
  const std::size_t at = noted.find(type);
  ASSERT_NE(at, std::string::npos) << noted;
  EXPECT_EQ(WindowsCodePage::ofTheSystem().number(), std::stoul(noted.substr(at + type.size())));
}

}  // namespace
}  // namespace korvel::settings
