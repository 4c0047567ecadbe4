#include "evidence/row_changes.h"

#include <gmock/gmock.h>

#include <random>
#include <set>

namespace korvel::evidence {
namespace {

using Kind = RowChange::Kind;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<Digest> rowsOf(std::string_view names) {
  std::vector<Digest> rows;
  for (const char name : names) rows.push_back(Sha256::of({&name, 1}));
  return rows;
}

std::vector<RowChange> between(std::string_view before, std::string_view after) {
  return rowChanges(rowsOf(before), rowsOf(after));
}

TEST(RowChanges, NameWhatWasDone) {
  EXPECT_THAT(between("", ""), IsEmpty());
  EXPECT_THAT(between("abc", "abc"), IsEmpty());
  EXPECT_THAT(between("abc", "aXc"), ElementsAre(RowChange{Kind::changed, 2, 2}));
  EXPECT_THAT(between("abc", "ac"), ElementsAre(RowChange{Kind::removed, 2, 0}));
  EXPECT_THAT(between("abc", "abXc"), ElementsAre(RowChange{Kind::inserted, 0, 3}));
  EXPECT_THAT(between("abc", ""), ElementsAre(RowChange{Kind::removed, 1, 0}, RowChange{Kind::removed, 2, 0},
                                              RowChange{Kind::removed, 3, 0}));
  EXPECT_THAT(between("", "a"), ElementsAre(RowChange{Kind::inserted, 0, 1}));
  EXPECT_THAT(between("abcde", "adcbe"), ElementsAre(RowChange{Kind::swapped, 2, 4}));
  EXPECT_THAT(between("abc", "bac"), ElementsAre(RowChange{Kind::swapped, 1, 2}));
  EXPECT_THAT(between("abcdef", "bcdefa"), ElementsAre(RowChange{Kind::moved, 1, 6}));
  EXPECT_THAT(
      between("abcdefgh", "aXcdfgYh"),
      ElementsAre(RowChange{Kind::changed, 2, 2}, RowChange{Kind::removed, 5, 0}, RowChange{Kind::inserted, 0, 7}));
  // The same row twice.
  EXPECT_THAT(between("aab", "ab"), ElementsAre(testing::Field(&RowChange::kind, Kind::removed)));
  EXPECT_THAT(between("ab", "abb"), ElementsAre(testing::Field(&RowChange::kind, Kind::inserted)));
}

/// Whatever was done: rows that no change names stand in the same order before and after.
TEST(RowChanges, ExplainEveryDifference) {
  std::mt19937 random(20261122);
  const auto below = [&](std::size_t end) { return std::uniform_int_distribution<std::size_t>(0, end - 1)(random); };
  for (int round = 0; round < 2000; ++round) {
    std::string before;
    for (std::size_t i = below(12); i > 0; --i) before += static_cast<char>('a' + below(6));
    std::string after = before;
    for (std::size_t i = below(5); i > 0; --i) {
      const std::size_t at = below(after.size() + 1);
      if (below(2) == 0 || at == after.size())
        after.insert(at, 1, static_cast<char>('a' + below(6)));
      else
        after.erase(at, 1);
    }
    for (const std::size_t most : {std::size_t{500}, std::size_t{1}}) {
      std::set<std::size_t> named;
      std::set<std::size_t> namedAfter;
      for (const RowChange& change : rowChanges(rowsOf(before), rowsOf(after), most)) {
        const bool swapped = change.kind == Kind::swapped;
        for (const std::size_t row : {change.before, swapped ? change.after : 0}) {
          ASSERT_TRUE(row == 0 || named.insert(row).second) << before << ' ' << after;
        }
        for (const std::size_t row : {change.after, swapped ? change.before : 0}) {
          ASSERT_TRUE(row == 0 || namedAfter.insert(row).second) << before << ' ' << after;
        }
        if (swapped || change.kind == Kind::moved) {
          ASSERT_EQ(before[change.before - 1], after[change.after - 1]);
        }
      }
      std::string left;
      std::string right;
      for (std::size_t i = 0; i < before.size(); ++i)
        if (!named.contains(i + 1)) left += before[i];
      for (std::size_t i = 0; i < after.size(); ++i)
        if (!namedAfter.contains(i + 1)) right += after[i];
      ASSERT_EQ(left, right) << before << ' ' << after;
    }
  }
}

TEST(RowChanges, OfManyRowsTakeThemOneByOne) {
  std::vector<Digest> before;
  std::vector<Digest> after;
  for (int i = 0; i < 3000; ++i) {
    before.push_back(Sha256::of(std::to_string(i)));
    after.push_back(Sha256::of("x" + std::to_string(i)));
  }
  const std::vector<RowChange> changes = rowChanges(before, after);
  ASSERT_EQ(changes.size(), 3000U);
  EXPECT_EQ(changes[17], (RowChange{Kind::changed, 18, 18}));
}

/// Rows between them that are the same are not named.
TEST(RowChanges, OfManyScatteredRowsAreTheirsAlone) {
  std::vector<Digest> before;
  for (int i = 0; i < 6000; ++i) before.push_back(Sha256::of(std::to_string(i)));
  std::vector<Digest> after = before;
  for (std::size_t i = 0; i < after.size(); i += 10) after[i] = Sha256::of("x" + std::to_string(i));
  const std::vector<RowChange> changes = rowChanges(before, after);
  ASSERT_EQ(changes.size(), 600U);
  EXPECT_EQ(changes[1], (RowChange{Kind::changed, 11, 11}));
  after.push_back(Sha256::of("new"));
  EXPECT_EQ(rowChanges(before, after).size(), 601U);
  EXPECT_EQ(rowChanges(after, before).back(), (RowChange{Kind::removed, 6001, 0}));
}

TEST(RowChanges, AreSaid) {
  EXPECT_EQ(textOf({Kind::changed, 12, 12}), "row 12 was changed");
  EXPECT_EQ(textOf({Kind::changed, 12, 13}), "row 12 was changed, and is row 13 now");
  EXPECT_EQ(textOf({Kind::removed, 12, 0}), "row 12 is missing");
  EXPECT_EQ(textOf({Kind::inserted, 0, 12}), "row 12 was inserted");
  EXPECT_EQ(textOf({Kind::moved, 3, 12}), "row 3 was moved, and is row 12 now");
  EXPECT_EQ(textOf({Kind::moved, 3, 3}), "row 3 was moved among its neighbours");
  EXPECT_EQ(textOf({Kind::swapped, 3, 12}), "rows 3 and 12 were swapped");
}

}  // namespace
}  // namespace korvel::evidence
