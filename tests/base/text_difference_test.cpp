#include "base/text_difference.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "base/text_clusters.h"

namespace korvel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// `text` with brackets around the ranges.
std::string marked(std::string_view text, const std::vector<ByteRange>& ranges) {
  std::string shown;
  std::size_t at = 0;
  for (const ByteRange& range : ranges) {
    shown += text.substr(at, range.begin - at);
    shown += '[';
    shown += text.substr(range.begin, range.end - range.begin);
    shown += ']';
    at = range.end;
  }
  return shown += text.substr(at);
}

std::string marked(std::string_view before, std::string_view after) {
  const TextDifference difference = differenceOf(before, after);
  return marked(before, difference.before) + " | " + marked(after, difference.after);
}

std::string without(std::string_view text, const std::vector<ByteRange>& ranges) {
  std::string rest;
  std::size_t at = 0;
  for (const ByteRange& range : ranges) {
    rest += text.substr(at, range.begin - at);
    at = range.end;
  }
  return rest += text.substr(at);
}

/// The ranges are in order, apart, within the text and between characters; the texts without them are the same.
void expectSound(std::string_view before, std::string_view after, const TextDifference& difference) {
  EXPECT_EQ(without(before, difference.before), without(after, difference.after)) << before << " | " << after;
  const auto expectRanges = [](std::string_view text, const std::vector<ByteRange>& ranges) {
    const auto bounds = clusterBounds(text);
    const auto isBound = [&](std::size_t place) { return std::binary_search(bounds.begin(), bounds.end(), place); };
    std::size_t end = 0;
    for (std::size_t i = 0; i < ranges.size(); ++i) {
      EXPECT_LT(ranges[i].begin, ranges[i].end);
      if (i > 0) {
        EXPECT_LT(end, ranges[i].begin);
      }
      EXPECT_LE(ranges[i].end, text.size());
      EXPECT_TRUE(isBound(ranges[i].begin) && isBound(ranges[i].end)) << marked(text, ranges);
      end = ranges[i].end;
    }
  };
  expectRanges(before, difference.before);
  expectRanges(after, difference.after);
}

std::vector<std::string> charactersOf(std::string_view text) {
  const auto bounds = clusterBounds(text);
  std::vector<std::string> characters;
  for (std::size_t i = 1; i < bounds.size(); ++i)
    characters.emplace_back(text.substr(bounds[i - 1], bounds[i] - bounds[i - 1]));
  return characters;
}

/// The most characters that two texts have in common in the same order, by the table that the definition gives.
std::size_t mostInCommon(const std::vector<std::string>& before, const std::vector<std::string>& after) {
  std::vector<std::vector<std::size_t>> most(before.size() + 1, std::vector<std::size_t>(after.size() + 1));
  for (std::size_t i = 0; i < before.size(); ++i)
    for (std::size_t j = 0; j < after.size(); ++j)
      most[i + 1][j + 1] = before[i] == after[j] ? most[i][j] + 1 : std::max(most[i][j + 1], most[i + 1][j]);
  return most.back().back();
}

std::string randomText(std::mt19937& random, const std::vector<std::string>& alphabet, std::size_t mostCharacters) {
  std::string text;
  for (std::size_t count = random() % (mostCharacters + 1); count > 0; --count)
    text += alphabet[random() % alphabet.size()];
  return text;
}

TEST(TextDifference, MarksWhatDiffers) {
  EXPECT_EQ(marked("9.14 bar", "9.5 bar"), "9.[14] bar | 9.[5] bar");
  EXPECT_EQ(marked("10", "100"), "10 | 10[0]");
  EXPECT_EQ(marked("UpperLimit=10;Unit=bar", "UpperLimit=10;LowerLimit=5;Unit=bar"),
            "UpperLimit=10;Unit=bar | UpperLimit=10;[LowerLimit=5;]Unit=bar");
  EXPECT_EQ(marked("", "new"), " | [new]");
  EXPECT_EQ(marked("old", ""), "[old] | ");
  EXPECT_EQ(marked("abc", "xyz"), "[abc] | [xyz]");
  EXPECT_TRUE(differenceOf("same", "same").isNone());
  EXPECT_TRUE(differenceOf("", "").isNone());
}

TEST(TextDifference, TakesCharactersAsAReaderSeesThem) {
  // The accent alone is no character, and a flag is not made of two.
  EXPECT_EQ(marked("e\u0301t", "e\u0300t"), "[e\u0301]t | [e\u0300]t");
  EXPECT_EQ(marked("🇩🇪🇫🇷", "🇩🇪🇪🇸"), "🇩🇪[🇫🇷] | 🇩🇪[🇪🇸]");
  EXPECT_EQ(marked("a👨\u200D👩\u200D👧b", "a👨\u200D👩\u200D👦b"), "a[👨\u200D👩\u200D👧]b | a[👨\u200D👩\u200D👦]b");
  EXPECT_EQ(marked("x\r\ny", "x\ny"), "x[\r\n]y | x[\n]y");
  EXPECT_EQ(marked("20 µm", "20 μm"), "20 [µ]m | 20 [μ]m");
}

TEST(TextDifference, ComparesWhatIsStored) {
  EXPECT_EQ(marked("é", "e\u0301"), "[é] | [e\u0301]");
  EXPECT_EQ(marked("a\xFF", "a\xFE"), "a[\xFF] | a[\xFE]");
  EXPECT_EQ(marked("a ", "a"), "a[ ] | a");
}

TEST(TextDifference, CountsMarkedCharacters) {
  const TextDifference difference = differenceOf("a e\u0301e\u0301 z", "a 1234 z");
  EXPECT_TRUE(difference.isSmallest);
  EXPECT_EQ(difference.charactersBefore, 2U);
  EXPECT_EQ(difference.charactersAfter, 4U);
}

TEST(TextDifference, IsTheSmallest) {
  std::mt19937 random(3);
  const std::vector<std::vector<std::string>> alphabets{{"a", "b"},
                                                        {"0", "1", "2", "."},
                                                        {"a", "\u0301", "🇩", "🇪", "\u200D", "👩", "\r", "\n"},
                                                        {"漢", "字", "한", "ᄀ", "ᅡ", "नि", "\xE2", "\x82", "\xAC"}};
  for (int round = 0; round < 8000; ++round) {
    const auto& alphabet = alphabets[static_cast<std::size_t>(round) % alphabets.size()];
    // Sometimes one text is much longer than the other.
    const std::string before = randomText(random, alphabet, round % 3 == 0 ? 30 : 10);
    const std::string after = randomText(random, alphabet, round % 5 == 0 ? 30 : 10);
    const TextDifference difference = differenceOf(before, after);
    EXPECT_TRUE(difference.isSmallest);
    expectSound(before, after, difference);
    const auto old = charactersOf(before);
    const auto fresh = charactersOf(after);
    const std::size_t same = mostInCommon(old, fresh);
    EXPECT_EQ(difference.charactersBefore, old.size() - same) << before << " | " << after;
    EXPECT_EQ(difference.charactersAfter, fresh.size() - same) << before << " | " << after;
  }
}

TEST(TextDifference, OfAnyBytesIsSound) {
  std::mt19937 random(4);
  for (int round = 0; round < 3000; ++round) {
    std::string before;
    for (std::size_t count = random() % 40; count > 0; --count) before += static_cast<char>(random());
    std::string after = before;
    for (std::size_t count = random() % 4; count > 0 && !after.empty(); --count)
      after[random() % after.size()] = static_cast<char>(random());
    expectSound(before, after, differenceOf(before, after));
  }
}

TEST(TextDifference, BeyondTheEffortTheMiddleIsMarkedWhole) {
  const std::string before = "same 0123456789abcdefghij same";
  const std::string after = "same jihgfedcba9876543210 same";
  const TextDifference whole = differenceOf(before, after, 50);
  EXPECT_FALSE(whole.isSmallest);
  EXPECT_EQ(marked(before, whole.before), "same [0123456789abcdefghij] same");
  EXPECT_EQ(marked(after, whole.after), "same [jihgfedcba9876543210] same");
  EXPECT_TRUE(differenceOf(before, after).isSmallest);
  // What is the same costs next to nothing.
  EXPECT_TRUE(differenceOf(before + before, before + "x" + before, 50).isSmallest);
}

TEST(TextDifference, LongTextsAreComparedWithinBounds) {
  std::mt19937 random(5);
  const std::size_t size = 3000000;
  std::string before;
  while (before.size() < size) before += static_cast<char>('a' + random() % 26);
  // A few changes, near to each other, in a very long text.
  std::string after = before;
  after.replace(size / 2, 3, "12");
  after.insert(size / 2 + 1000, "34");
  const TextDifference few = differenceOf(before, after);
  EXPECT_TRUE(few.isSmallest);
  EXPECT_EQ(few.charactersBefore, 3U);
  EXPECT_EQ(few.charactersAfter, 4U);
  expectSound(before, after, few);
  // Far apart, and different everywhere.
  after.replace(10, 1, "1");
  after.replace(size - 10, 1, "1");
  std::string other(before.rbegin(), before.rend());
  for (const std::string& each : {after, other}) {
    const TextDifference difference = differenceOf(before, each);
    EXPECT_FALSE(difference.isSmallest);
    EXPECT_EQ(difference.before.size(), 1U);
    EXPECT_EQ(difference.after.size(), 1U);
    EXPECT_EQ(without(before, difference.before), without(each, difference.after));
  }
  // Different everywhere, and small enough to be divided into characters.
  before.resize(1000000);
  other.resize(1000000);
  EXPECT_FALSE(differenceOf(before, other).isSmallest);
}

}  // namespace
}  // namespace korvel
