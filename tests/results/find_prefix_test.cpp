#include "results/find_prefix.h"

#include <gmock/gmock.h>

#include <random>

#include "base/text.h"
#include "tests/results/stored_rows.h"

namespace korvel::results::test {
namespace {

ResultList listOf(RowFilling filling, const std::vector<std::pair<std::string, std::string>>& records) {
  std::vector<Row> rows;
  for (const auto& [number, text] : records) rows.push_back({number, text, "x", "x"});
  ResultList list{filling};
  list.setColumns({{"Entry ID", standardColumnWidth}, {"Area", standardColumnWidth}});
  const auto store = storeOf(rows);
  std::vector<RowId> ids;
  for (std::uint32_t row = 0; row < store->rowCount(); ++row) ids.push_back({row});
  list.setRows(store, ids);
  return list;
}

/// The text of the row that was found, "-" for none.
std::string found(const ResultList& list, std::size_t column, std::string_view beginning, std::size_t from = 0) {
  const auto row = findPrefix(list, {column}, beginning, {from});
  return row ? std::string(list.text(*row, {column})) : "-";
}

TEST(FindBeginning, GoesDownFromARowAndOnAtTheTop) {
  ResultList list = listOf(RowFilling::whole, {{"1", "b2"}, {"2", "a"}, {"3", "B1"}, {"4", "c"}});
  for (const bool sorted : {false, true}) {
    if (sorted) list.sortBy({1}, SortOrder::ascending);
    EXPECT_EQ(found(list, 1, "b", sorted ? 2 : 1), sorted ? "b2" : "B1");
    EXPECT_EQ(found(list, 1, "A", 3), "a");
    EXPECT_EQ(found(list, 1, "B2"), "b2");
    EXPECT_EQ(found(list, 1, "b22"), "-");
    EXPECT_EQ(found(list, 1, "d"), "-");
    EXPECT_EQ(found(list, 1, "c", 99), "c");
    EXPECT_EQ(found(list, 1, ""), "-");
  }
}

TEST(FindBeginning, AnEmptyListHasNothing) {
  ResultList list{RowFilling::whole};
  EXPECT_EQ(found(list, 0, "a"), "-");
  list.sortBy({0}, SortOrder::ascending);
  EXPECT_EQ(found(list, 0, "a"), "-");
}

TEST(FindBeginning, EntryNumbersOrderByValueAndAreFoundByTheirDigits) {
  ResultList list = listOf(RowFilling::standard, {{"0480", "a"}, {"48", "b"}, {"5", "c"}, {"4811", "d"}, {"7", "e"}});
  list.sortBy({0}, SortOrder::ascending);  // 5 7 48 480 4811
  EXPECT_EQ(found(list, 0, "48"), "48");
  EXPECT_EQ(found(list, 0, "48", 3), "480");
  EXPECT_EQ(found(list, 0, "48", 4), "4811");
  EXPECT_EQ(found(list, 0, "5", 1), "5");
  EXPECT_EQ(found(list, 0, "481"), "4811");
  EXPECT_EQ(found(list, 0, "049"), "-");
}

TEST(FindBeginning, LettersFoldAsTheOrderDoes) {
  ResultList list = listOf(RowFilling::whole, {{"1", "\u00C4nderung"}, {"2", "Stra\u00DFe"}, {"3", "\u00E4hnlich"}});
  list.sortBy({1}, SortOrder::descending);
  EXPECT_EQ(found(list, 1, "\u00E4N"), "\u00C4nderung");
  EXPECT_EQ(found(list, 1, "STRASS"), "Stra\u00DFe");
}

/// Every row that a walk through all rows finds is found by the search in the order, and the other way round.
TEST(FindBeginning, SearchingInTheOrderFindsWhatAWalkFinds) {
  std::mt19937 random(4711);  // NOLINT(cert-msc32-c,cert-msc51-cpp): the same texts in every run
  const std::vector<std::string> parts = {"0", "1", "4", "8", "48", "-", "-0", "a", "B", "\u00C4", "\u00DF", " ", ""};
  const auto anyText = [&] {
    std::string text;
    for (int i = 0; i < 4; ++i) text += parts[random() % parts.size()];
    return text;
  };
  for (int round = 0; round < 60; ++round) {
    std::vector<std::pair<std::string, std::string>> records;
    for (int i = 0; i < 40; ++i) records.emplace_back(anyText(), anyText());
    ResultList list = listOf(round % 3 == 0 ? RowFilling::standard : RowFilling::whole, records);
    const std::size_t column = static_cast<std::size_t>(round) % 2;
    list.sortBy({column}, round % 4 < 2 ? SortOrder::ascending : SortOrder::descending);
    for (int look = 0; look < 50; ++look) {
      const std::string beginning = caseFolded(anyText().substr(0, 1 + random() % 4));
      const std::size_t from = random() % list.rowCount();
      std::optional<RowPosition> walked;
      for (std::size_t step = 0; step < list.rowCount() && !walked && !beginning.empty(); ++step) {
        const std::size_t row = (from + step) % list.rowCount();
        if (caseFolded(list.text({row}, {column})).starts_with(beginning)) walked = RowPosition{row};
      }
      const auto searched = findPrefix(list, {column}, beginning, {from});
      ASSERT_EQ(searched.has_value(), walked.has_value()) << '"' << beginning << "\" from " << from;
      if (walked) {
        EXPECT_EQ(searched->value, walked->value) << '"' << beginning << "\" from " << from;
      }
    }
  }
}

}  // namespace
}  // namespace korvel::results::test
