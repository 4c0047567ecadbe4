#include "output/terminal_text.h"

#include <gtest/gtest.h>

namespace korvel::output {
namespace {

TEST(TerminalText, LeavesReadableTextAlone) {
  for (const char* text : {"", "plain", "C:\\temp\\new", "Überdruck größer", "Δp ≥ 3 µm", "ポンプ停止", "e\u0301",
                           "👩\u200D🔧", "soft\u00ADhyphen"})
    EXPECT_EQ(terminalText(text), text);
}

TEST(TerminalText, ShowsControlCharacters) {
  EXPECT_EQ(terminalText("a\nb\r\nc\td"), "a\\nb\\r\\nc\\td");
  EXPECT_EQ(terminalText("\x1B[2J\x1B]0;title\x07"), "\\x1B[2J\\x1B]0;title\\x07");
  EXPECT_EQ(terminalText(std::string_view("a\0b\x7F", 4)), "a\\x00b\\x7F");
  EXPECT_EQ(terminalText("\u009B2J\u0085"), "\\u009B2J\\u0085");
}

TEST(TerminalText, ShowsWhatTurnsOrBreaksTheLine) {
  EXPECT_EQ(terminalText("abc\u202Edcba\u2066x\u200F"), "abc\\u202Edcba\\u2066x\\u200F");
  EXPECT_EQ(terminalText("a\u2028b\u2029c\uFEFF"), "a\\u2028b\\u2029c\\uFEFF");
  EXPECT_EQ(terminalText("\U000E0041"), "\\U000E0041");
}

TEST(TerminalText, ShowsBytesThatAreNotUtf8) {
  EXPECT_EQ(terminalText("a\xFFz"), "a\\xFFz");
  EXPECT_EQ(terminalText("\xC3"), "\\xC3");
  EXPECT_EQ(terminalText("\xED\xA0\x80"), "\\xED\\xA0\\x80") << "half a surrogate pair";
  EXPECT_EQ(terminalText("\xC0\x9B"), "\\xC0\\x9B") << "an over-long form";
}

TEST(TerminalWidth, CountsCells) {
  EXPECT_EQ(terminalWidth(""), 0U);
  EXPECT_EQ(terminalWidth("abc"), 3U);
  EXPECT_EQ(terminalWidth("größer"), 6U);
  EXPECT_EQ(terminalWidth("ポンプ"), 6U) << "wide characters";
  EXPECT_EQ(terminalWidth("e\u0301"), 1U) << "a combining accent";
  EXPECT_EQ(terminalWidth("👷"), 2U);
}

}  // namespace
}  // namespace korvel::output
