#include "base/text.h"

#include <gtest/gtest.h>

namespace korvel {
namespace {

TEST(Text, TrimsBlanksOnly) {
  EXPECT_EQ(trimBlanks("  a b  "), "a b");
  EXPECT_EQ(trimBlanks("   "), "");
  EXPECT_EQ(trimBlanks(""), "");
  EXPECT_EQ(trimBlanks("\ta\n"), "\ta\n");
}

TEST(Text, FoldsCaseBeyondAscii) {
  EXPECT_EQ(caseFolded("VEL_Alg"), "vel_alg");
  EXPECT_EQ(caseFolded("ÄÖÜ Привет ΣΑΣ"), caseFolded("äöü пРИВЕТ σας"));
  EXPECT_EQ(caseFolded("Straße"), "strasse");
  EXPECT_NE(caseFolded("é"), caseFolded("e"));
}

TEST(Text, FoldingKeepsMalformedBytes) {
  EXPECT_EQ(caseFolded("A\xFF\xC3"), "a\xFF\xC3");
}

TEST(Text, ComparesAsciiNames) {
  EXPECT_TRUE(equalsIgnoringAsciiCase("QueryAudits", "QUERYAUDITS"));
  EXPECT_FALSE(equalsIgnoringAsciiCase("Query", "Querz"));
  EXPECT_FALSE(equalsIgnoringAsciiCase("Query", "Quer"));
}

TEST(Text, ReplacesMalformedUtf8) {
  EXPECT_TRUE(isValidUtf8("a€😀"));
  EXPECT_FALSE(isValidUtf8("\xED\xA0\x80"));  // a lone surrogate
  EXPECT_FALSE(isValidUtf8("\xC0\xAF"));      // an over-long slash
  EXPECT_EQ(replaceInvalidUtf8("a\xFFz"), "a\xEF\xBF\xBDz");
  EXPECT_EQ(replaceInvalidUtf8("€"), "€");
}

TEST(Text, TakesCharactersOneByOne) {
  std::string_view text = "\xE2\x82\xAC\xFFz";
  EXPECT_EQ(takeCodePoint(text), U'\u20AC');
  EXPECT_EQ(takeCodePoint(text), std::nullopt);
  EXPECT_EQ(takeCodePoint(text), U'z');
  EXPECT_TRUE(text.empty());
}

TEST(Text, AppendsCharacters) {
  std::string text;
  appendCodePoint(U'\u00E9', text);
  appendCodePoint(U'\U0001F600', text);
  appendCodePoint(char32_t{0xD800}, text);
  EXPECT_EQ(text, "\xC3\xA9\xF0\x9F\x98\x80\xEF\xBF\xBD");
}

TEST(Text, ReplacesAllWithoutLooping) {
  EXPECT_EQ(replaceAll("a'b''c", "'", "''"), "a''b''''c");
  EXPECT_EQ(replaceAll("abc", "", "x"), "abc");
}

}  // namespace
}  // namespace korvel
