#include <gmock/gmock.h>

#include <algorithm>
#include <random>

#include "base/text.h"
#include "results/row_store.h"
#include "tests/results/stored_rows.h"

namespace korvel::results::test {
namespace {

using testing::Each;
using testing::ElementsAre;

std::vector<std::uint32_t> ranksOf(const Row& values, bool numericKeys = false) {
  std::vector<Row> rows;
  for (const Value& value : values) rows.push_back({value});
  return storeOf(rows)->ranks({0}, numericKeys);
}

/// The values in the order of their ranks.
std::vector<std::string> inOrder(const std::vector<std::string>& values, bool numericKeys = false) {
  const auto ranks = ranksOf(Row(values.begin(), values.end()), numericKeys);
  std::vector<std::size_t> places(values.size());
  for (std::size_t i = 0; i < places.size(); ++i) places[i] = i;
  std::stable_sort(places.begin(), places.end(), [&](std::size_t a, std::size_t b) { return ranks[a] < ranks[b]; });
  std::vector<std::string> ordered;
  for (const std::size_t place : places) ordered.push_back(values[place]);
  return ordered;
}

TEST(Ranks, AreDenseAndCaseInsensitive) {
  EXPECT_THAT(ranksOf({"b", "A", "B", "a", "c"}), ElementsAre(2, 1, 2, 1, 3));
}

TEST(Ranks, EmptyNullAndBlankAreTheLeast) {
  EXPECT_THAT(ranksOf({"a", "", null, "   "}), ElementsAre(1, 0, 0, 0));
  EXPECT_THAT(ranksOf({"b", "a"}), ElementsAre(2, 1));  // 0 stays the empty text's
}

TEST(Ranks, GoByTheTextAsItIsShown) {
  EXPECT_THAT(ranksOf({" b ", "a", "b", "  a", "\ta"}), ElementsAre(3, 2, 3, 2, 1));
}

TEST(Ranks, FoldLettersOfEveryScript) {
  EXPECT_THAT(ranksOf({"Ärger", "äRGER", "ÄRGER"}), Each(1));
  EXPECT_THAT(ranksOf({"Straße", "STRASSE", "strasse"}), Each(1));
  EXPECT_THAT(ranksOf({"привет", "ПРИВЕТ", "ΣΑΣ", "σας"}), ElementsAre(2, 2, 1, 1));
}

TEST(Ranks, FollowCodePointsNotALocale) {
  EXPECT_EQ(inOrder({"漢", "ä", "z", "A", "_", "10", "9", "😀", "ﬀ", "Ω"}),
            (std::vector<std::string>{"10", "9", "_", "A", "ﬀ", "z", "ä", "Ω", "漢", "😀"}));
}

TEST(Ranks, TellTextsApartThatShareLongBeginnings) {
  const std::string path = "C:\\Projects\\Dairy\\Engineering\\Graphics\\Overview\\";
  EXPECT_EQ(inOrder({path + "b", path, path + "a12345678", path + "a1234567", path + "A12345670", path.substr(0, 16)}),
            (std::vector<std::string>{path.substr(0, 16), path, path + "a1234567", path + "A12345670",
                                      path + "a12345678", path + "b"}));
}

TEST(Ranks, TellNulBytesFromTheEnd) {
  const std::string one{"a\0", 2};
  const std::string two{"a\0\0", 3};
  const std::string eight{"a\0\0\0\0\0\0\0", 8};
  const std::string nine{"a\0\0\0\0\0\0\0\0", 9};
  EXPECT_THAT(ranksOf({nine, two, "a", eight, one, "A", "a "}), ElementsAre(5, 3, 1, 4, 2, 1, 1));
}

TEST(Ranks, KeepMalformedBytesApart) {
  EXPECT_THAT(ranksOf({"a\xFF", "a\xFE", "A\xFF"}), ElementsAre(2, 1, 2));
}

TEST(Ranks, HugeTextsWithALateDifference) {
  const std::string base(1 << 20, 'x');
  EXPECT_THAT(ranksOf({base + "b", base + "A", base, base + "a", base + "B"}), ElementsAre(3, 2, 1, 2, 3));
}

TEST(Ranks, OfAMissingColumnAreAllTheSame) {
  EXPECT_THAT(storeOf({{"a"}, {"b"}})->ranks({7}, false), ElementsAre(0, 0));
}

TEST(Ranks, OfRowsOfANarrowerResultSetAreEmpty) {
  RowStore store;
  addResult(store, {{"1", "x"}, {"2", "w"}});
  addResult(store, {{"3"}, {"4"}});
  EXPECT_THAT(store.ranks({1}, false), ElementsAre(2, 1, 0, 0));
}

TEST(NumericRanks, OrderNumbersByValue) {
  EXPECT_EQ(inOrder({"10", "7", "100", "9", "1"}, true), (std::vector<std::string>{"1", "7", "9", "10", "100"}));
  EXPECT_EQ(inOrder({"10", "7", "100", "9", "1"}, false), (std::vector<std::string>{"1", "10", "100", "7", "9"}));
  EXPECT_EQ(inOrder({"999999999", "0", "", "12345678"}, true),
            (std::vector<std::string>{"", "0", "12345678", "999999999"}));
}

TEST(NumericRanks, LeadingZerosDoNotCount) {
  EXPECT_THAT(ranksOf({"007", "7", " 7 ", "0000000000007", "8", "0", "000", null}, true),
              ElementsAre(2, 2, 2, 2, 3, 1, 1, 0));
}

// A tenth digit is not padded for: such numbers order as texts, before smaller ones that begin with a higher digit.
TEST(NumericRanks, LongerNumbersOrderAsTexts) {
  EXPECT_EQ(inOrder({"999999999", "1234567890", "99999999", "5"}, true),
            (std::vector<std::string>{"5", "99999999", "1234567890", "999999999"}));
}

TEST(NumericRanks, OtherTextsOrderAsTexts) {
  EXPECT_EQ(inOrder({"b", "10", "A", "9", "-10", "-9", "1.5", "", "12a"}, true),
            (std::vector<std::string>{"", "-9", "-10", "9", "10", "1.5", "12a", "A", "b"}));
}

TEST(NumericRanks, NegativeNumbersArePaddedToo) {
  EXPECT_THAT(ranksOf({"-7", "-007", "7"}, true), ElementsAre(1, 1, 2));
  EXPECT_THAT(ranksOf({"-0", "0", "-000", "-1"}, true), ElementsAre(2, 2, 2, 1));
}

TEST(Ranks, OfManyUniqueTextsInAnyOrder) {
  std::vector<std::string> values;
  for (int i = 0; i < 30000; ++i) {
    std::string text = std::to_string(i * 7919 % 30011);
    values.push_back(i % 3 == 0 ? "2004-03-07 " + text : i % 3 == 1 ? "Ö" + text : text);
  }
  std::shuffle(values.begin(), values.end(), std::mt19937{5});
  std::vector<std::string> expected = values;
  std::sort(expected.begin(), expected.end(),
            [](const std::string& a, const std::string& b) { return caseFolded(a) < caseFolded(b); });
  EXPECT_EQ(inOrder(values), expected);
}

TEST(NumericRanks, OfManyNumbersInAnyOrder) {
  std::vector<std::string> values;
  for (int i = 0; i < 30000; ++i) values.push_back(std::to_string(i));
  const std::vector<std::string> expected = values;
  std::shuffle(values.begin(), values.end(), std::mt19937{6});
  EXPECT_EQ(inOrder(values, true), expected);
}

}  // namespace
}  // namespace korvel::results::test
