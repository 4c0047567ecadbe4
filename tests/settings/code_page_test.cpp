#include "settings/code_page.h"

#include <gtest/gtest.h>

#include <string>

namespace korvel::settings {
namespace {

TEST(CodePage, KeepsWhatItHolds) {
  EXPECT_EQ(toCodePage("K\xC3\xBChlung\t5 \xE2\x82\xAC\r\n"), "K\xFChlung\t5 \x80\r\n");
  EXPECT_EQ(toCodePage("\xC5\xB8\xC3\xBF\xC2\xA0"), "\x9F\xFF\xA0");
  EXPECT_TRUE(fitsCodePage("K\xC3\xBChlung \xE2\x82\xAC"));
}

TEST(CodePage, ReplacesEachCharacterThatItLacksByOneMark) {
  std::string bytes = "=";
  EXPECT_EQ(appendInCodePage("a\xF0\x9F\x98\x80z\xCE\xB1!", bytes), 2U);
  EXPECT_EQ(bytes, "=a?z?!");
  EXPECT_FALSE(fitsCodePage("abc \xCE\xB1"));
}

TEST(CodePage, ReplacesEachByteThatIsNoUtf8) {
  std::string bytes;
  EXPECT_EQ(appendInCodePage("\xFF\xC3z\xED\xA0\x80", bytes), 5U);
  EXPECT_EQ(bytes, "??z???");
  EXPECT_FALSE(fitsCodePage("\xFF"));
}

TEST(CodePage, LatinControlCharactersAreNotItsOwn) {
  // U+0080 has no byte: 0x80 is the euro. U+0081 has: the code page leaves that byte open.
  EXPECT_EQ(toCodePage("\xC2\x80\xC2\x81"), "?\x81");
}

TEST(CodePage, EveryByteComesBack) {
  std::string all;
  for (int byte = 0; byte < 256; ++byte) all.push_back(static_cast<char>(byte));
  const std::string text = fromCodePage(all);
  EXPECT_EQ(toCodePage(text), all);
  EXPECT_TRUE(fitsCodePage(text));
  EXPECT_EQ(fromCodePage("\x80\x99\xE9"), "\xE2\x82\xAC\xE2\x84\xA2\xC3\xA9");
}

TEST(CodePage, TheBytesOf0x80To0x9FAreThoseOfWindows1252) {
  // The five that it leaves open stand for the control characters of their numbers.
  const char* const characters[] = {"\u20AC", "\u0081", "\u201A", "\u0192", "\u201E", "\u2026", "\u2020", "\u2021",
                                    "\u02C6", "\u2030", "\u0160", "\u2039", "\u0152", "\u008D", "\u017D", "\u008F",
                                    "\u0090", "\u2018", "\u2019", "\u201C", "\u201D", "\u2022", "\u2013", "\u2014",
                                    "\u02DC", "\u2122", "\u0161", "\u203A", "\u0153", "\u009D", "\u017E", "\u0178"};
  int byte = 0x80;
  for (const char* const character : characters) {
    const std::string one(1, static_cast<char>(byte));
    EXPECT_EQ(toCodePage(character), one) << byte;
    EXPECT_EQ(fromCodePage(one), character) << byte;
    ++byte;
  }
  EXPECT_EQ(byte, 0xA0);
}

TEST(CodePage, NothingGivesNothing) {
  EXPECT_EQ(toCodePage(""), "");
  EXPECT_EQ(fromCodePage(""), "");
  EXPECT_TRUE(fitsCodePage(""));
}

}  // namespace
}  // namespace korvel::settings
