#include "base/text_clusters.h"

#include <gmock/gmock.h>

#include <random>
#include <string>

namespace korvel {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

constexpr auto family = "👨\u200D👩\u200D👧";
constexpr auto flag = "🇩🇪";

/// Texts whose clusters are known: none of these joins with the one after it.
const std::vector<std::string>& clusters() {
  static const std::vector<std::string> all{"a",  "0", " ",  "\n", "\r\n", "é",        "e\u0301", "a\u0308\u0323", "漢",
                                            "한", "न", "नि", flag, family, "👍🏽", "\xFF",    "\xE2\x82",      "ب"};
  return all;
}

bool joinsWithNext(const std::string& one) {
  return one == "\xE2\x82";  // two malformed bytes, each a cluster
}

/// A text of `count` clusters, and where they begin and end.
struct Built {
  std::string text;
  std::vector<std::uint32_t> bounds{0};
};

Built built(std::mt19937& random, int count) {
  Built result;
  for (int i = 0; i < count; ++i) {
    const std::string& next = clusters()[random() % clusters().size()];
    for (std::size_t byte = 1; joinsWithNext(next) && byte < next.size(); ++byte)
      result.bounds.push_back(static_cast<std::uint32_t>(result.text.size() + byte));
    result.text += next;
    result.bounds.push_back(static_cast<std::uint32_t>(result.text.size()));
  }
  return result;
}

TEST(TextClusters, AreWhatAReaderSeesAsCharacters) {
  EXPECT_THAT(clusterBounds(""), ElementsAre(0));
  EXPECT_THAT(clusterBounds("ab"), ElementsAre(0, 1, 2));
  EXPECT_THAT(clusterBounds("a\r\nb"), ElementsAre(0, 1, 3, 4));
  EXPECT_THAT(clusterBounds("e\u0301!"), ElementsAre(0, 3, 4));
  EXPECT_THAT(clusterBounds(std::string("x") + family), ElementsAre(0, 1, 19));
  EXPECT_THAT(clusterBounds(std::string(flag) + flag + flag), ElementsAre(0, 8, 16, 24));
  EXPECT_THAT(clusterBounds("\xFF\xE2\x82z"), ElementsAre(0, 1, 2, 3, 4));
}

TEST(TextClusters, OfAnyTextAreFound) {
  std::mt19937 random(1);
  for (int round = 0; round < 3000; ++round) {
    const Built text = built(random, static_cast<int>(random() % 12));
    EXPECT_THAT(clusterBounds(text.text), ElementsAreArray(text.bounds)) << text.text;
  }
}

TEST(TextClusters, CertainBoundsAreBoundsInEveryText) {
  std::mt19937 random(2);
  int found = 0;
  for (int round = 0; round < 3000; ++round) {
    // The same bytes at the end of one text and at the beginning of another, cut anywhere.
    const Built text = built(random, 8);
    const std::size_t cut = random() % (text.text.size() + 1);
    const auto isBound = [&](std::size_t place) {
      return std::find(text.bounds.begin(), text.bounds.end(), place) != text.bounds.end();
    };
    const std::size_t last = lastCertainBound(std::string_view(text.text).substr(0, cut));
    EXPECT_LE(last, cut);
    EXPECT_TRUE(isBound(last)) << text.text << ' ' << cut;
    const std::size_t first = cut + firstCertainBound(std::string_view(text.text).substr(cut));
    EXPECT_LE(first, text.text.size());
    EXPECT_TRUE(isBound(first)) << text.text << ' ' << cut;
    found += static_cast<int>(last > 0 && first < text.text.size());
  }
  EXPECT_GT(found, 1000);
}

TEST(TextClusters, CertainBoundsAreNear) {
  EXPECT_EQ(lastCertainBound("1234"), 3U);
  EXPECT_EQ(firstCertainBound("1234"), 1U);
  EXPECT_EQ(lastCertainBound("漢字漢字"), 9U);
  EXPECT_EQ(firstCertainBound("\xAA漢字漢字"), 4U);
  EXPECT_EQ(lastCertainBound("1"), 0U);
  EXPECT_EQ(lastCertainBound(""), 0U);
  EXPECT_EQ(firstCertainBound(""), 0U);
  EXPECT_EQ(firstCertainBound("1"), 1U);
}

TEST(TextClusters, ARowWithoutCertainBoundsIsNotSearchedToItsEnd) {
  std::string flags;
  for (int i = 0; i < 5000; ++i) flags += flag;
  EXPECT_GT(lastCertainBound(flags), flags.size() / 2);
  EXPECT_LT(firstCertainBound(flags), flags.size() / 2);
}

}  // namespace
}  // namespace korvel
