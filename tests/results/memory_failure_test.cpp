#include <gtest/gtest.h>

#include <numeric>

#include "base/error.h"
#include "results/result_list.h"
#include "results/row_sink.h"
#include "tests/results/failing_allocations.h"
#include "tests/results/stored_rows.h"

namespace korvel::results::test {
namespace {

using korvel::test::FailingAllocations;

/// Runs `action` with one more allocation allowed each time until it succeeds; returns how often it failed. Each
/// failure must be an Error in plain words; `check` runs after each.
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

// Whichever thread runs out of memory, the one that hands over the rows is told.
TEST(OutOfMemory, ALongAnswerFailsAsAnError) {
  constexpr std::size_t rows = 60000;
  std::vector<std::string> numbers;
  for (std::size_t i = 0; i < rows; ++i) numbers.push_back(std::to_string(i));
  const auto oneField = fields(1);
  int failures = 0;
  for (std::size_t allowed = 0; allowed < 1000; allowed += 7) {
    RowSink sink;
    try {
      const FailingAllocations failing{allowed};
      sink.beginResult(oneField);
      for (const std::string& number : numbers) {
        const db::Cell cell{number, false};
        sink.row({&cell, 1});
      }
      sink.endResult();
    } catch (const Error& error) {
      EXPECT_EQ(error.description(), "Out of memory");
      ++failures;
      continue;
    }
    EXPECT_EQ(sink.takeStore()->rowCount(), rows);
  }
  EXPECT_GT(failures, 5);
}

TEST(OutOfMemory, AFailedSortLeavesTheRowsAsTheyWere) {
  const auto store = storeOf({{"3", "ä"}, {"1", "b"}, {"2", "C"}});
  for (const std::size_t key : {0U, 1U}) {
    ResultList list{RowFilling::whole};
    list.setColumns({{"A", standardColumnWidth, 0}, {"B", standardColumnWidth, 0}});
    std::vector<RowId> rows = {{0}, {1}, {2}};
    list.setRows(store, rows);
    EXPECT_GT(failuresUntilSuccess([&] { list.sortBy({key}, SortOrder::ascending); },
                                   [&] {
                                     EXPECT_EQ(list.text({0}, {0}), "3");
                                     EXPECT_EQ(list.text({1}, {0}), "1");
                                     EXPECT_EQ(list.text({2}, {0}), "2");
                                   }),
              0);
    EXPECT_EQ(list.text({0}, {0}), "1");
  }
}

}  // namespace
}  // namespace korvel::results::test
