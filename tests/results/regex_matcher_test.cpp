#include "results/patterns/regex_matcher.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace korvel::results {
namespace {

std::string marked(std::string_view pattern, TextMatcher::Options options, std::string_view text) {
  const auto made = regexMatcher(pattern, options);
  if (const auto* problem = std::get_if<PatternProblem>(&made))
    return problem->text + " at " + std::to_string(problem->offset);
  const TextMatcher& matcher = std::get<TextMatcher>(made);
  std::string result;
  std::size_t at = 0;
  for (const TextSpan& span : matcher.spansIn(text)) {
    result.append(text.substr(at, span.begin - at)).append("[");
    result.append(text.substr(span.begin, span.end - span.begin)).append("]");
    at = span.end;
  }
  EXPECT_EQ(matcher.matches(text), at != 0);
  return result.append(text.substr(at));
}

TEST(RegexMatcher, FindsAllMatches) {
  EXPECT_EQ(marked("tic-\\d+", {}, "TIC-1901, tic-26"), "[TIC-1901], [tic-26]");
  EXPECT_EQ(marked("tic-\\d+", {.exactCase = true}, "TIC-1901, tic-26"), "TIC-1901, [tic-26]");
  EXPECT_EQ(marked("ä.", {}, "BÄU \xC3\xA4!"), "B[ÄU] [ä!]");
  EXPECT_EQ(marked("\\w+", {}, "日本 x"), "[日本] [x]");
}

TEST(RegexMatcher, MatchesWholeValues) {
  EXPECT_EQ(marked("a|ab", {.wholeValue = true}, "ab"), "[ab]");
  EXPECT_EQ(marked("a", {.wholeValue = true}, "ab"), "ab");
}

/// Whether a pattern, for whole values, matches a text.
bool isWhole(std::string_view pattern, std::string_view text, TextMatcher::Options options = {.wholeValue = true}) {
  const auto made = regexMatcher(pattern, options);
  const auto* matcher = std::get_if<TextMatcher>(&made);
  EXPECT_NE(matcher, nullptr) << pattern;
  return matcher != nullptr && matcher->matches(text);
}

TEST(RegexMatcher, AWholeValueKeepsAQuotationThatIsNotClosed) {
  EXPECT_TRUE(isWhole("\\Qa(b", "a(b"));
  EXPECT_FALSE(isWhole("\\Qa(b", "a(b)"));
  EXPECT_FALSE(isWhole("\\Qa(b", "xa(b"));
  EXPECT_TRUE(isWhole("x|\\Qa)b", "a)b"));
  EXPECT_TRUE(isWhole("\\Qa(\\E|b", "b"));
  EXPECT_TRUE(isWhole("[\\Q)]\\E]", ")"));
}

TEST(RegexMatcher, AWholeValueKeepsCommentsAndSettings) {
  EXPECT_TRUE(isWhole("(?x) a b # both", "ab"));
  EXPECT_FALSE(isWhole("(?x) a b # both", "abc"));
  EXPECT_FALSE(isWhole("(?x) a b # both", "xab"));
  EXPECT_TRUE(isWhole("(?x) a # \\Q quoted", "a"));
  EXPECT_TRUE(isWhole("(?x) a #", "a"));
  EXPECT_TRUE(isWhole("(*CR)(?x) a # x", "a"));
  EXPECT_TRUE(isWhole("a #", "a #"));
  EXPECT_FALSE(isWhole("a #", "a"));
  EXPECT_TRUE(isWhole("(*UCP)(*ANYCRLF)a|ä+", "ää"));
  EXPECT_TRUE(isWhole("(?i)A|b", "B", {.exactCase = true, .wholeValue = true}));
  EXPECT_FALSE(isWhole("A|b", "B", {.exactCase = true, .wholeValue = true}));
}

TEST(RegexMatcher, AWholeValueKeepsGroupsAndCallsOfThePatternItself) {
  EXPECT_TRUE(isWhole("(a)(b)\\2\\1", "abba"));
  for (const std::string call : {"(?R)", "(?0)", "\\g<0>", "\\g'0'"}) {
    EXPECT_TRUE(isWhole("\\((?:[^()]|" + call + ")*\\)", "(a(b)(c))")) << call;
    EXPECT_FALSE(isWhole("\\((?:[^()]|" + call + ")*\\)", "(a)(b)")) << call;
  }
  EXPECT_TRUE(isWhole("(?<R>a)?|ab", "ab"));
  EXPECT_TRUE(isWhole("a(*ACCEPT)b", "a"));
  EXPECT_FALSE(isWhole("a(*ACCEPT)b", "ab"));
  EXPECT_FALSE(isWhole("^a$", "a\nb"));
}

TEST(RegexMatcher, AWholeValueIsMarkedWhole) {
  EXPECT_EQ(marked("a\\Kb", {.wholeValue = true}, "ab"), "[ab]");
}

TEST(RegexMatcher, CountsCharactersOfAnyKind) {
  EXPECT_EQ(marked("pump", {}, "😀😀 pump"), "😀😀 [pump]");
  EXPECT_EQ(marked("😀", {}, "a😀b"), "a[😀]b");
  EXPECT_EQ(marked("b", {},
                   "\xFF\xFE"
                   "b"),
            "\xFF\xFE[b]");
  EXPECT_EQ(marked("b", {},
                   "\uFEFF"
                   "ab"),
            "\uFEFF"
            "a[b]");
}

TEST(RegexMatcher, WhatHasNoCharacterIsNoMatch) {
  EXPECT_EQ(marked("x*", {}, "ab"), "ab");
  EXPECT_EQ(marked("x*", {}, "axb"), "a[x]b");
  EXPECT_EQ(marked("", {}, "ab"), "ab");
  EXPECT_EQ(marked("x*|b", {}, "ab"), "a[b]");
  EXPECT_EQ(marked("(foo)?|bar", {}, "a bar"), "a [bar]");
}

TEST(RegexMatcher, GivesATextUpThatTakesTooManySteps) {
  const auto gaveUp = std::make_shared<std::atomic<bool>>(false);
  const auto made = regexMatcher("^(\\w|\\w\\w)*!$", {}, gaveUp);
  const TextMatcher& matcher = std::get<TextMatcher>(made);
  EXPECT_TRUE(matcher.matches("ab!"));
  EXPECT_FALSE(matcher.matches("ab?"));
  EXPECT_FALSE(*gaveUp);
  EXPECT_FALSE(matcher.matches(std::string(200, 'a') + "!x"));
  EXPECT_TRUE(*gaveUp);
}

TEST(RegexMatcher, PassesOverPairsBehindMatchesWithoutACharacter) {
  const auto gaveUp = std::make_shared<std::atomic<bool>>(false);
  const auto made = regexMatcher("x*", {}, gaveUp);
  EXPECT_EQ(std::get<TextMatcher>(made).spansIn("\U0001F600x"), (std::vector<TextSpan>{{4, 5}}));
  EXPECT_FALSE(*gaveUp);
}

TEST(RegexMatcher, SaysWhatIsWrongWithAPattern) {
  EXPECT_EQ(marked("a(b", {}, "ab"), "missing closing parenthesis at 3");
  EXPECT_EQ(marked("a)|(b", {.wholeValue = true}, "ab").find("[ab]"), std::string::npos);
}

}  // namespace
}  // namespace korvel::results
