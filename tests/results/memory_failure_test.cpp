#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <utility>

#include "base/error.h"
#include "results/memory_watch.h"
#include "results/result_list.h"
#include "results/store_filler.h"
#include "tests/results/stored_rows.h"
#include "tests/support/watched_allocations.h"

namespace korvel::results::test {
namespace {

using korvel::test::FailingAllocations;

/// Runs `action` with one more allocation allowed each time until it succeeds; returns how often it failed. Each
/// failure must be an Error with a message; `check` runs after each.
template <typename Action, typename Check>
int failuresUntilSuccess(Action action, Check check) {
  for (int allowed = 0;; ++allowed) {
    bool failed = false;
    std::string description;
    try {
      const FailingAllocations failing{static_cast<std::size_t>(allowed)};
      action();
    } catch (const Error& error) {
      failed = true;
      description = error.description();
    }
    if (!failed) return allowed;
    EXPECT_EQ(description, "Out of memory");
    check();
  }
}

Row rowFor(std::size_t i) {
  return {std::to_string(i), i % 5 == 0 ? null : Value{"user " + std::to_string(i % 300)}, "OA",
          std::string(i % 700, 'x')};
}

TEST(OutOfMemory, ARowIsAppendedWholeOrNotAtAll) {
  constexpr std::size_t rows =
      9000;  // past two blocks, code widths of one and two bytes, and the end of looking for repeats
  RowStore store;
  store.beginResult(fields(4));
  int failures = 0;
  for (std::size_t i = 0; i < rows; ++i) {
    const Row row = rowFor(i);
    const auto rowCells = cells(row);
    failures += failuresUntilSuccess([&] { store.append(rowCells); },
                                     [&] {
                                       ASSERT_EQ(store.rowCount(), i);
                                       if (i > 0) {
                                         ASSERT_EQ(rowOf(store, i - 1), rowFor(i - 1));
                                       }
                                       ASSERT_TRUE(store.cell({static_cast<std::uint32_t>(i)}, {0}).isNull);
                                     });
  }
  EXPECT_GT(failures, 20);
  ASSERT_EQ(store.rowCount(), rows);
  for (std::size_t i = 0; i < rows; ++i) ASSERT_EQ(rowOf(store, i), rowFor(i)) << i;
}

TEST(OutOfMemory, LateColumnsFillUpWholeOrNotAtAll) {
  RowStore store;
  store.beginResult(fields(1));
  for (std::size_t i = 0; i < 9000; ++i) store.append(cells({"narrow"}));
  const auto wideFields = fields(3);
  EXPECT_GT(failuresUntilSuccess([&] { store.beginResult(wideFields); }, [&] { EXPECT_EQ(store.rowCount(), 9000U); }),
            0);
  const Row wide = {"a", "b", "c"};
  const auto wideCells = cells(wide);
  EXPECT_GT(failuresUntilSuccess([&] { store.append(wideCells); }, [&] { EXPECT_EQ(store.rowCount(), 9000U); }), 0);
  EXPECT_EQ(rowOf(store, 8999), Row{"narrow"});
  EXPECT_EQ(rowOf(store, 9000), wide);
  EXPECT_TRUE(store.cell({0}, {2}).isNull);
}

TEST(OutOfMemory, AStoreMayBeDroppedAfterAFailure) {
  for (std::size_t allowed = 0; allowed < 12; ++allowed) {
    RowStore store;
    store.beginResult(fields(3));
    const Row row = {"1", std::string(100000, 'y'), "z"};
    const auto rowCells = cells(row);
    try {
      const FailingAllocations failing{allowed};
      store.append(rowCells);
    } catch (const Error&) {
      EXPECT_EQ(store.rowCount(), 0U);
    }
  }
}

// When either thread runs out of memory, the error reaches the thread that delivers the rows.
TEST(OutOfMemory, ALongAnswerFailsAsAnError) {
  constexpr std::size_t rows = 60000;
  std::vector<std::string> numbers;
  for (std::size_t i = 0; i < rows; ++i) numbers.push_back(std::to_string(i));
  const auto oneField = fields(1);
  int failures = 0;
  for (std::size_t allowed = 0; allowed < 1000; allowed += 7) {
    StoreFiller filler;
    try {
      const FailingAllocations failing{allowed};
      filler.beginResult(oneField);
      for (const std::string& number : numbers) {
        const db::Cell cell{number, false};
        filler.append({&cell, 1});
      }
      filler.finish();
    } catch (const Error& error) {
      EXPECT_EQ(error.description(), "Out of memory");
      ++failures;
      continue;
    }
    EXPECT_EQ(filler.takeStore()->rowCount(), rows);
  }
  EXPECT_GT(failures, 5);
}

/// Rows and all that a sort changes, as they stand in the list.
struct Sorting {
  std::vector<std::string> texts;
  std::vector<int> tags;
  std::size_t key = 0;
  SortOrder order = SortOrder::ascending;
  bool sorted = false;

  bool operator==(const Sorting&) const = default;
};

Sorting sortingOf(const ResultList& list) {
  Sorting sorting{{}, {}, list.sortKey().value, list.sortOrder(), list.isSorted()};
  for (std::size_t row = 0; row < list.rowCount(); ++row) sorting.texts.emplace_back(list.text({row}, {0}));
  for (const ColumnHeader& column : list.columns()) sorting.tags.push_back(column.tag);
  return sorting;
}

TEST(OutOfMemory, AFailedSortLeavesTheRowsAsTheyWere) {
  const std::vector<Row> rows = {{"003", "C", "", ""}, {"001", "b", "", ""}, {"002", "ä", "", ""}};
  const std::vector<std::function<void(ResultList&)>> sorts = {
      [](ResultList& list) { list.sort(); },
      [](ResultList& list) { list.sortBy({0}, SortOrder::descending); },
      [](ResultList& list) { list.sortBy({1}, SortOrder::descending); },
      [](ResultList& list) { list.clickColumn({0}); },
      [](ResultList& list) { list.clickColumn({1}); },
  };
  for (std::size_t i = 0; i < sorts.size(); ++i) {
    ResultList list{RowFilling::standard};
    list.setColumns(std::vector<ColumnHeader>(4));
    list.setRows(storeOf(rows), {{0}, {1}, {2}});
    const Sorting before = sortingOf(list);
    EXPECT_GT(
        failuresUntilSuccess([&] { sorts[i](list); }, [&] { EXPECT_EQ(sortingOf(list), before) << "sort " << i; }), 0);
    EXPECT_TRUE(list.isSorted());
    EXPECT_NE(list.text({0}, {0}), "003");
  }
}

TEST(OutOfMemory, NewRowsThatCannotBeSortedAreNotShown) {
  const auto store = storeOf({{"3"}, {"1"}, {"2"}});
  const std::vector<RowId> rows = {{0}, {1}, {2}};
  ResultList list{RowFilling::whole};
  list.setColumns({{"A", standardColumnWidth, 0}});
  list.sort();
  EXPECT_GT(failuresUntilSuccess(
                [&] {
                  std::vector<RowId> handedOver;
                  try {
                    handedOver = rows;
                  } catch (const std::bad_alloc&) {
                    throw outOfMemory();
                  }
                  list.setRows(store, std::move(handedOver));
                },
                [&] {
                  EXPECT_EQ(list.rowCount(), 0U);
                  EXPECT_EQ(list.store(), nullptr);
                }),
            1);
  EXPECT_EQ(sortingOf(list).texts, (std::vector<std::string>{"1", "2", "3"}));
}

}  // namespace
}  // namespace korvel::results::test
