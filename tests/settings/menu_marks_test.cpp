// The mnemonics: the "&" before the letter that selects an entry of a menu.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <string>
#include <vector>

#include "settings/string_table.h"

namespace korvel::settings {
namespace {

const std::vector<std::string> offsets = {"0", "10000", "20000", "30000", "40000"};

std::string text(int k, const std::string& offset) {
  return std::string(loadText(TextId{10000 + k}, LanguageOffset(offset)));
}

/// The marked letters of a text, in lower case.
std::string marksOf(const std::string& caption) {
  std::string marks;
  for (auto at = caption.find('&'); at != std::string::npos; at = caption.find('&', at + 1))
    marks.push_back(
        at + 1 < caption.size() ? static_cast<char>(std::tolower(static_cast<unsigned char>(caption[at + 1]))) : ' ');
  return marks;
}

std::string marksOf(const std::vector<int>& menu, const std::string& offset) {
  std::string marks;
  for (const int k : menu) marks += marksOf(text(k, offset));
  return marks;
}

TEST(MenuMarks, EveryTranslationMarksAsManyLettersAsEnglish) {
  for (int k = 1; k <= fixedTextCount; ++k)
    for (const std::string& offset : offsets)
      EXPECT_EQ(marksOf(text(k, offset)).size(), marksOf(text(k, "0")).size()) << text(k, offset);
}

TEST(MenuMarks, StandBeforeLettersThatEveryKeyboardHas) {
  for (int k = 1; k <= fixedTextCount; ++k)
    for (const std::string& offset : offsets)
      for (const char mark : marksOf(text(k, offset))) EXPECT_TRUE(mark >= 'a' && mark <= 'z') << text(k, offset);
}

TEST(MenuMarks, AreUniqueWithinEachMenu) {
  const std::vector<std::vector<int>> menus = {
      {1, 12, 27, 32}, {2, 4, 6, 8, 10}, {13, 15, 17, 19, 21, 23, 25}, {28, 30}, {33, 35, 37}};
  for (const std::string& offset : offsets)
    for (const auto& menu : menus) {
      std::string marks = marksOf(menu, offset);
      EXPECT_GE(marks.size(), 2U);
      std::sort(marks.begin(), marks.end());
      EXPECT_EQ(std::adjacent_find(marks.begin(), marks.end()), marks.end()) << offset << ": " << marks;
    }
}

TEST(MenuMarks, CommandsReadTheSameWithAndWithoutMarks) {
  // A command and the tooltip or description that repeats it.
  const std::vector<std::pair<int, int>> pairs = {{17, 18}, {19, 20}, {21, 50}, {4, 52}, {6, 68}};
  for (const std::string& offset : offsets)
    for (const auto& [command, plain] : pairs) {
      std::string unmarked = text(command, offset);
      std::erase(unmarked, '&');
      EXPECT_EQ(unmarked, text(plain, offset));
    }
}

}  // namespace
}  // namespace korvel::settings
