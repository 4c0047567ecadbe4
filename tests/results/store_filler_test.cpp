#include "results/store_filler.h"

#include <gtest/gtest.h>

#include "base/error.h"
#include "results/memory_watch.h"
#include "tests/results/stored_rows.h"
#include "tests/support/watched_allocations.h"

namespace korvel::results::test {
namespace {

using korvel::test::FailingAllocations;

/// Long enough for the second thread.
constexpr std::size_t longAnswer = 5000;

Row wideRow(std::size_t i) {
  return {std::to_string(i), i % 7 == 0 ? null : Value{"user " + std::to_string(i % 11)}, std::string(i % 50, 'x')};
}

// Nothing waits between the result sets: each begins while rows of the one before are still on their way.
TEST(StoreFiller, ResultSetsFollowEachOtherWhileRowsAreOnTheirWay) {
  StoreFiller filler;
  std::size_t next = 0;
  const auto append = [&](const Row& row) { ASSERT_EQ(filler.append(cells(row)).value, next++); };
  filler.beginResult(fields(3));
  for (std::size_t i = 0; i < longAnswer; ++i) append(wideRow(i));
  filler.beginResult(fields(1));
  for (std::size_t i = 0; i < 3000; ++i) append({"narrow " + std::to_string(i)});
  filler.beginResult(fields(2));
  filler.beginResult(fields(3));
  for (std::size_t i = 0; i < 10; ++i) append(wideRow(i));

  EXPECT_EQ(filler.rowCount(), longAnswer + 3010);
  const auto store = filler.takeStore();
  ASSERT_EQ(store->rowCount(), longAnswer + 3010);
  for (std::size_t i = 0; i < longAnswer; ++i) ASSERT_EQ(rowOf(*store, i), wideRow(i)) << i;
  for (std::size_t i = 0; i < 3000; ++i)
    ASSERT_EQ(rowOf(*store, longAnswer + i), Row{"narrow " + std::to_string(i)}) << i;
  for (std::size_t i = 0; i < 10; ++i) ASSERT_EQ(rowOf(*store, longAnswer + 3000 + i), wideRow(i)) << i;
}

TEST(StoreFiller, WithoutAnAnswerHoldsAnEmptyStore) {
  StoreFiller filler;
  EXPECT_EQ(filler.rowCount(), 0U);
  EXPECT_EQ(filler.takeStore()->rowCount(), 0U);
}

/// A row of three columns: unique, repeating and now and then null, and of very different lengths.
Row rowOfAnyLength(std::size_t i) {
  const std::size_t length = i % 20000 == 19999 ? 300000 : i % 97;
  return {std::to_string(i), i % 3 == 0 ? null : Value{"user " + std::to_string(i % 40)}, std::string(length, 'x')};
}

// Several result sets of enough rows for the second thread, and texts longer than it takes along with others.
TEST(StoreFiller, CollectsLongAnswersInTheirOrder) {
  constexpr std::size_t firstRows = 60000;
  constexpr std::size_t secondRows = 30000;
  StoreFiller filler;
  filler.beginResult(fields(3));
  for (std::size_t i = 0; i < firstRows; ++i) ASSERT_EQ(filler.append(cells(rowOfAnyLength(i))).value, i);
  filler.finish();
  EXPECT_EQ(filler.rowCount(), firstRows);
  filler.beginResult(fields(1));
  for (std::size_t i = 0; i < secondRows; ++i)
    ASSERT_EQ(filler.append(cells({std::to_string(i)})).value, firstRows + i);
  filler.finish();

  const auto store = filler.takeStore();
  ASSERT_EQ(store->rowCount(), firstRows + secondRows);
  for (std::size_t i = 0; i < firstRows; ++i) ASSERT_EQ(rowOf(*store, i), rowOfAnyLength(i)) << i;
  for (std::size_t i = 0; i < secondRows; ++i) ASSERT_EQ(rowOf(*store, firstRows + i), Row{std::to_string(i)}) << i;
}

TEST(StoreFiller, CollectsShortAnswersToo) {
  StoreFiller filler;
  filler.beginResult(fields(2));
  filler.append(cells({"1", "2"}));
  filler.append(cells({"3", null}));
  filler.beginResult(fields(1));
  filler.beginResult(fields(1));
  EXPECT_EQ(filler.append(cells({"4"})).value, 2U);
  const auto store = filler.takeStore();
  ASSERT_EQ(store->rowCount(), 3U);
  EXPECT_EQ(rowOf(*store, 1), (Row{"3", null}));
  EXPECT_EQ(rowOf(*store, 2), (Row{"4"}));
}

TEST(StoreFiller, TakesAnotherAnswerAfterItsStoreWasTaken) {
  StoreFiller filler;
  filler.beginResult(fields(1));
  for (std::size_t i = 0; i < longAnswer; ++i) filler.append(cells({"first"}));
  const auto first = filler.takeStore();
  filler.beginResult(fields(1));
  EXPECT_EQ(filler.append(cells({"second"})).value, 0U);
  EXPECT_EQ(rowOf(*first, longAnswer - 1), Row{"first"});
  EXPECT_EQ(rowOf(*filler.takeStore(), 0), Row{"second"});
}

// A late failure of the second thread must not give an answer with missing rows.
TEST(StoreFiller, ARowThatCannotBeStoredIsReported) {
  StoreFiller filler;
  filler.beginResult(fields(3));
  // Until every batch has been used once: from here on only the store allocates.
  for (std::size_t i = 0; i < 4 * longAnswer; ++i) filler.append(cells(wideRow(i)));
  filler.finish();
  const std::string text = "a text that the store does not know yet, too long to stand anywhere but in its own memory";
  std::vector<db::Cell> row(3);
  std::string numbered;
  numbered.reserve(2 * text.size());

  std::optional<std::int32_t> number;
  {
    const FailingAllocations none{0};
    try {
      for (int i = 0; i < 100'000; ++i) {
        numbered = text;
        for (int digits = i; digits != 0; digits /= 10) numbered.push_back(static_cast<char>('0' + digits % 10));
        row[0].text = numbered;
        filler.append(row);
      }
      filler.finish();
    } catch (const Error& error) {
      number = error.number();
    } catch (const std::bad_alloc&) {
      // The failure is reported although there is no memory for its text.
      number = outOfMemoryNumber;
    }
  }
  EXPECT_EQ(number, outOfMemoryNumber);
}

TEST(StoreFiller, MayBeGivenUpAtAnyTime) {
  for (const std::size_t rows : {0U, 4095U, 4096U, 4097U, 5119U, 5120U, 5121U, 40001U}) {
    StoreFiller filler;
    filler.beginResult(fields(1));
    for (std::size_t i = 0; i < rows; ++i) filler.append(cells({"value"}));
  }
}

}  // namespace
}  // namespace korvel::results::test
