#include "base/utf16.h"

#include <gtest/gtest.h>

#include <array>

namespace korvel {
namespace {

TEST(Utf16, plainAndOtherCharactersAtEveryPlace) {
  struct Character {
    std::u16string wide;
    std::string narrow;
  };
  const auto others = std::to_array<Character>({{u"ä", "ä"},
                                                {u"\u0080", "\u0080"},
                                                {u"\u07FF", "\u07FF"},
                                                {u"\u0800", "\u0800"},
                                                {u"漢", "漢"},
                                                {u"\uFFFF", "\uFFFF"},
                                                {u"🛢", "🛢"},
                                                {u"\U0010FFFF", "\U0010FFFF"},
                                                {std::u16string(1, u'\0'), std::string(1, '\0')},
                                                {u"\x7F", "\x7F"}});
  for (const Character& other : others) {
    for (std::size_t before = 0; before < 14; ++before) {
      for (std::size_t after = 0; after < 14; ++after) {
        std::u16string wide(before, u'a');
        wide.append(other.wide).append(after, u'z');
        std::string narrow(before, 'a');
        narrow.append(other.narrow).append(after, 'z');
        EXPECT_EQ(utf8FromUtf16(wide), narrow);
        EXPECT_EQ(utf16FromUtf8(narrow), wide);
        EXPECT_EQ(utf16Length(narrow), wide.size());
        EXPECT_EQ(utf8FromUtf16(wide + wide), narrow + narrow);
      }
    }
  }
}

TEST(Utf16, writesNothingBehindItsEnd) {
  for (std::size_t size = 0; size < 12; ++size) {
    std::string out(3 * size + 8, '#');
    const std::u16string wide(size, u'a');
    const char* const end = writeUtf8(wide, out.data());
    EXPECT_EQ(static_cast<std::size_t>(end - out.data()), size);
    EXPECT_EQ(out.substr(size), std::string(out.size() - size, '#'));
  }
}

TEST(Utf16, surrogatesWithoutPartnersAreReplaced) {
  EXPECT_EQ(utf8FromUtf16(std::u16string{0xD83D}), "\uFFFD");
  EXPECT_EQ(utf8FromUtf16(std::u16string{u'a', 0xD83D, u'b', u'c', u'd', u'e'}), "a\uFFFDbcde");
  EXPECT_EQ(utf8FromUtf16(std::u16string{0xDEE2, 0xD83D}), "\uFFFD\uFFFD");
  EXPECT_EQ(utf8FromUtf16(std::u16string{0xD83D, 0xD83D, 0xDEE2}), "\uFFFD🛢");
}

TEST(Utf16, malformedUtf8IsReplaced) {
  EXPECT_EQ(utf16FromUtf8("a\xFF"), u"a\uFFFD");
  EXPECT_EQ(utf16Length("a\xFF\xE2\x82"), 4U);
  EXPECT_EQ(utf16FromUtf8(""), u"");
}

}  // namespace
}  // namespace korvel
