#include "results/text_matcher.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "base/text.h"

namespace korvel::results {
namespace {

std::string marked(const TextMatcher& matcher, std::string_view text) {
  std::string result;
  std::size_t at = 0;
  for (const TextSpan& span : matcher.spansIn(text)) {
    result.append(text.substr(at, span.begin - at)).append("[");
    result.append(text.substr(span.begin, span.end - span.begin)).append("]");
    at = span.end;
  }
  return result.append(text.substr(at));
}

TEST(TextMatcher, FoldsCaseLikeSorting) {
  const TextMatcher matcher("tic-19", {});
  EXPECT_EQ(marked(matcher, "x TIC-1901 tic-1926"), "x [TIC-19]01 [tic-19]26");
  EXPECT_EQ(marked(TextMatcher("BÄU", {}), "Heike Bäuerle"), "Heike [Bäu]erle");
  EXPECT_EQ(marked(TextMatcher("strasse", {}), "Straße 1"), "[Straße] 1");
  EXPECT_EQ(marked(TextMatcher("s", {}), "aßb"), "a[ß]b");
  EXPECT_EQ(marked(TextMatcher("k", {}), "5 \u212A"), "5 [\u212A]");
  EXPECT_EQ(marked(TextMatcher("😀", {}), "a😀b"), "a[😀]b");
}

TEST(TextMatcher, MatchesExactly) {
  const TextMatcher matcher("Tic", {.exactCase = true});
  EXPECT_EQ(marked(matcher, "tic Tic TIC"), "tic [Tic] TIC");
  EXPECT_FALSE(matcher.matches("tic"));
  EXPECT_TRUE(matcher.matches("aTicb"));
}

TEST(TextMatcher, MatchesWholeValues) {
  EXPECT_TRUE(TextMatcher("straSSE", {.wholeValue = true}).matches("Straße"));
  EXPECT_FALSE(TextMatcher("strasse", {.wholeValue = true}).matches("Straße 1"));
  EXPECT_FALSE(TextMatcher("b", {.wholeValue = true}).matches("ab"));
  EXPECT_FALSE(TextMatcher("AB", {.exactCase = true, .wholeValue = true}).matches("ab"));
  EXPECT_EQ(marked(TextMatcher("AB", {.wholeValue = true}), "ab"), "[ab]");
}

TEST(TextMatcher, AnEmptyTextMatchesNothing) {
  for (const bool exact : {false, true})
    for (const bool whole : {false, true}) {
      const TextMatcher matcher("", {exact, whole});
      EXPECT_FALSE(matcher.matches(""));
      EXPECT_FALSE(matcher.matches("a"));
      EXPECT_TRUE(matcher.spansIn("a").empty());
    }
}

TEST(TextMatcher, AFinderDecidesAlone) {
  const TextMatcher matcher([](std::string_view text, bool) {
    return text.size() > 2 ? std::vector<TextSpan>{{1, 2}} : std::vector<TextSpan>{};
  });
  EXPECT_EQ(marked(matcher, "abc"), "a[b]c");
  EXPECT_FALSE(matcher.matches("ab"));
  EXPECT_EQ(matcher.needle(), nullptr);
}

TEST(TextMatcher, AgreesWithFoldingBothTexts) {
  const std::vector<std::string> letters = {"a",      "A", "b", "s", "S", "ß",    "k",
                                            "\u212A", "é", "É", "ﬁ", "i", "\xFF", "-"};
  std::mt19937 random(7);
  const auto text = [&](std::size_t longest) {
    std::string made;
    for (std::size_t i = random() % (longest + 1); i > 0; --i) made += letters[random() % letters.size()];
    return made;
  };
  for (int round = 0; round < 20'000; ++round) {
    const std::string shown = text(12);
    const std::string wanted = text(3);
    const bool expected = !wanted.empty() && caseFolded(shown).find(caseFolded(wanted)) != std::string::npos;
    ASSERT_EQ(TextMatcher(wanted, {}).matches(shown), expected) << shown << " for " << wanted;
    ASSERT_EQ(!TextMatcher(wanted, {}).spansIn(shown).empty(), expected) << shown << " for " << wanted;
  }
}

TEST(FoldedSearch, FindsEveryPlace) {
  std::mt19937 random(11);
  const std::string letters = "aAbBeE-1\x01\x7F";
  for (int round = 0; round < 5'000; ++round) {
    std::string text;
    for (std::size_t i = random() % 60; i > 0; --i) text += letters[random() % letters.size()];
    std::string needle;
    for (std::size_t i = 1 + random() % 3; i > 0; --i) needle += letters[random() % letters.size()];
    needle = caseFolded(needle);
    const std::string folded = caseFolded(text);
    FoldedSearch search(text, needle);
    for (std::size_t from = 0, at = 0; at != std::string::npos; from = at + 1) {
      at = search.next(from);
      ASSERT_EQ(at, folded.find(needle, from)) << text << " for " << needle << " from " << from;
    }
  }
}

}  // namespace
}  // namespace korvel::results
