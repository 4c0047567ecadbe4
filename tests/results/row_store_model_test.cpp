#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "base/text.h"
#include "results/row_store.h"
#include "tests/results/stored_rows.h"

namespace korvel::results::test {
namespace {

/// Values of one column: how many distinct ones there are, how long they get, how often they are null.
struct Flavour {
  std::size_t distinct;
  std::size_t longest;
  unsigned nullPercent;
};
constexpr Flavour flavours[] = {{1, 4, 0},     {3, 10, 50},  {250, 6, 1},   {400, 40, 0},
                                {70000, 9, 2}, {9, 300, 10}, {30000, 0, 0}, {1000000000, 14, 0}};

class Maker {
 public:
  explicit Maker(std::uint32_t seed) : random_(seed) {}

  std::size_t below(std::size_t limit) { return static_cast<std::size_t>(random_()) % limit; }

  Value value(const Flavour& flavour) {
    if (below(100) < flavour.nullPercent) return null;
    static constexpr const char* pieces[] = {" ", "a", "B", "b", "Ä", "ä", "0", "7", "ß", "漢", "\xC3", "Z"};
    const std::size_t which = below(flavour.distinct);
    std::minstd_rand own{static_cast<std::uint32_t>(which)};
    std::string text = flavour.distinct > 1000 ? std::to_string(which) : std::string{};
    const std::size_t longest = own() % (flavour.longest + 1);
    while (text.size() < longest) text += pieces[own() % std::size(pieces)];
    return text;
  }

 private:
  std::mt19937 random_;
};

std::string shownText(const Value& value) {
  return caseFolded(trimBlanks(value ? *value : std::string{}));
}

/// The definition of ranks: the place among the sorted distinct folded texts, the empty text first.
std::vector<std::uint32_t> plainRanks(const std::vector<Row>& rows, std::size_t column) {
  std::vector<std::string> texts{""};
  for (const Row& row : rows) texts.push_back(column < row.size() ? shownText(row[column]) : "");
  std::vector<std::string> distinct = texts;
  std::sort(distinct.begin(), distinct.end());
  distinct.erase(std::unique(distinct.begin(), distinct.end()), distinct.end());
  std::vector<std::uint32_t> ranks;
  for (std::size_t i = 1; i < texts.size(); ++i)
    ranks.push_back(
        static_cast<std::uint32_t>(std::lower_bound(distinct.begin(), distinct.end(), texts[i]) - distinct.begin()));
  return ranks;
}

class RandomRows : public testing::TestWithParam<std::uint32_t> {};

TEST_P(RandomRows, ReadBackAndRankAsAPlainListOfRowsDoes) {
  Maker make{GetParam()};
  RowStore store;
  std::vector<Row> rows;
  const std::size_t resultSets = 1 + make.below(6);
  for (std::size_t set = 0; set < resultSets; ++set) {
    const std::size_t width = 1 + make.below(std::size(flavours));
    store.beginResult(fields(width));
    for (std::size_t left = make.below(9000); left > 0; --left) {
      Row row;
      for (std::size_t column = 0; column < width; ++column) row.push_back(make.value(flavours[column]));
      ASSERT_EQ(store.append(cells(row)).value, rows.size());
      rows.push_back(std::move(row));
    }
  }

  ASSERT_EQ(store.rowCount(), rows.size());
  for (std::size_t row = 0; row < rows.size(); ++row) ASSERT_EQ(rowOf(store, row), rows[row]) << "row " << row;
  for (std::size_t column = 0; column < std::size(flavours); ++column)
    EXPECT_EQ(store.ranks({column}, false), plainRanks(rows, column)) << "column " << column;
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomRows, testing::Range(1U, 6U));

}  // namespace
}  // namespace korvel::results::test
