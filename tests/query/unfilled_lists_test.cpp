#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "query/custom_query.h"
#include "query/standard_query.h"
#include "results/memory_watch.h"
#include "tests/support/audit_rows.h"
#include "tests/support/scripted_connection.h"
#include "tests/support/watched_allocations.h"

namespace korvel::query {
namespace {

/// A complete answer, and memory that runs out while the lists are filled.
struct UnfilledLists : testing::Test {
  /// Runs `query`, which fails at one allocation after its connection is closed, at a later one each time, until the
  /// lists are filled; `check` looks at the lists and the failure after each time before.
  template <typename Query, typename Check>
  int failuresUntilFilled(Query query, Check check) {
    for (std::size_t allowed = 0;; ++allowed) {
      std::optional<test::FailingAllocations> failing;
      server.onClose = [&] { failing.emplace(allowed, 1); };
      const auto report = query();
      failing.reset();
      if (!report.failure) return static_cast<int>(allowed);
      EXPECT_EQ(report.failure->number(), results::outOfMemoryNumber);
      check();
    }
  }

  test::ScriptedServer server;
};

TEST_F(UnfilledLists, OfAStandardQueryAreEmptyThroughout) {
  server.answer = {{test::auditFields(), {}, {}}};
  for (const char* type : {"CS", "RT", "DC", "AU"})
    for (int number = 0; number < 10; ++number)
      server.answer[0].rows.push_back(test::auditRow("-" + std::to_string(100 - number), type));
  FilterTree tree;
  tree.selectAll();
  ResultLists lists = makeResultLists();
  // This one sorts its rows while it is filled, the current one afterwards.
  constexpr std::size_t sortedList = 2;
  constexpr std::size_t currentList = 3;
  lists[sortedList].sort();
  const int failures = failuresUntilFilled(
      [&] {
        return runStandardQuery({tree, {}, {}}, server.connector(), lists, currentList);
      },
      [&] {
        for (std::size_t list = 0; list < standardListCount; ++list) EXPECT_EQ(lists[list].rowCount(), 0U) << list;
      });
  EXPECT_GT(failures, 4);
  EXPECT_EQ(lists[0].rowCount(), 40U);
  EXPECT_TRUE(lists[currentList].isSorted());
}

TEST_F(UnfilledLists, OfACustomQueryHasNoRows) {
  server.answer = {{{{"N"}}, {{"1"}, {"2"}}, {}}};
  results::ResultList list(results::RowFilling::whole);
  const int failures = failuresUntilFilled([&] { return runCustomQuery("q", "", server.connector(), list); },
                                           [&] {
                                             EXPECT_EQ(list.rowCount(), 0U);
                                             EXPECT_EQ(list.store(), nullptr);
                                           });
  EXPECT_GT(failures, 0);
  EXPECT_EQ(list.rowCount(), 2U);
}

}  // namespace
}  // namespace korvel::query
