#include "query/custom_query.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <future>
#include <mutex>
#include <new>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "results/memory_watch.h"
#include "settings/string_table.h"
#include "tests/support/scripted_connection.h"

namespace korvel::query {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::chrono_literals;

/// A custom list that shows an earlier answer, and the server that is queried.
struct CustomQuery : testing::Test {
  CustomQuery() {
    server.answer = {{{{"Before"}}, {{"kept"}}, {}}};
    run();
    server = {};
  }

  CustomReport run(const std::string& text = "the text") {
    return runCustomQuery(text, "the string", server.connector(), list, progress, environment);
  }

  std::vector<std::string> captions() const {
    std::vector<std::string> all;
    for (const auto& column : list.columns()) all.push_back(column.caption);
    return all;
  }
  /// A line a row, "|" between cells as they are shown.
  std::string rows() const {
    std::string text;
    for (std::size_t row = 0; row < list.rowCount(); ++row) {
      for (std::size_t column = 0; column < list.columns().size(); ++column)
        text.append(column == 0 ? "" : "|").append(list.text({row}, {column}));
      text += '\n';
    }
    return text;
  }
  void expectClearedWithColumnsOfBefore() const {
    EXPECT_EQ(list.rowCount(), 0U);
    EXPECT_EQ(list.store(), nullptr);
    EXPECT_THAT(captions(), ElementsAre("Before"));
  }
  void expectFailure(const CustomReport& report, std::int32_t number, const std::string& description) const {
    EXPECT_EQ(report.outcome, CustomOutcome::failed);
    ASSERT_TRUE(report.failure);
    EXPECT_EQ(report.failure->number(), number);
    EXPECT_EQ(report.failure->description(), description);
    expectClearedWithColumnsOfBefore();
  }

  test::ScriptedServer server;
  results::ResultList list{results::RowFilling::whole};
  QueryProgress progress;
  QueryEnvironment environment;
};

TEST_F(CustomQuery, SendsTheTextAsItIsOverAConnectionOfItsOwn) {
  server.answer = {{{{"A"}}, {{"1"}}, {}}};
  const std::string text = "  Select *\r\n\tfrom Korvel_Audit_Trails -- 'ä'\r\n";
  EXPECT_EQ(run(text).outcome, CustomOutcome::filled);
  run(text);
  EXPECT_THAT(server.opened, ElementsAre("the string", "the string"));
  EXPECT_THAT(server.executed, ElementsAre(text, text));
  EXPECT_EQ(server.openConnections, 0);
}

TEST_F(CustomQuery, ColumnsAreTheFieldsInTheirOrder) {
  server.answer = {{{{"UserName"}, {""}, {"DateTime"}, {"UserName"}}, {{"a", "b", "c", "d"}}, {}}};
  const CustomReport report = run();
  EXPECT_EQ(report.outcome, CustomOutcome::filled);
  EXPECT_FALSE(report.failure);
  EXPECT_THAT(captions(), ElementsAre("UserName", "", "DateTime", "UserName"));
  for (const auto& column : list.columns()) {
    EXPECT_EQ(column.width.value, 1440);
    EXPECT_EQ(column.tag, 0);
  }
  EXPECT_EQ(rows(), "a|b|c|d\n");
}

TEST_F(CustomQuery, CellsAreTrimmedAndEveryColumnIsFilled) {
  server.answer = {{{{"A"}, {"B"}, {"C"}}, {{" 007 ", "   ", std::nullopt}, {"", "\tx\t", " y"}}, {}}};
  run();
  EXPECT_EQ(rows(), "007||\n|\tx\t|y\n");
  EXPECT_EQ(list.store()->cell({0}, {1}).text, "   ");
  EXPECT_TRUE(list.store()->cell({0}, {2}).isNull);
}

TEST_F(CustomQuery, OnlyTheFirstResultSetCounts) {
  server.answer = {{{{"First"}}, {{"1"}, {"2"}}, {}}, {{{"Second"}, {"More"}}, {{"3", "4"}}, {}}};
  EXPECT_EQ(run().outcome, CustomOutcome::filled);
  EXPECT_THAT(captions(), ElementsAre("First"));
  EXPECT_EQ(rows(), "1\n2\n");
  EXPECT_EQ(server.rowsOffered, 3U);  // the second set's first row is not taken, and no other is sent
}

TEST_F(CustomQuery, NoRowsLeaveTheListEmptyWithItsColumns) {
  server.answer = {{{{"A"}}, {}, {}}, {{{"B"}}, {{"1"}}, {}}};
  const CustomReport report = run();
  EXPECT_EQ(report.outcome, CustomOutcome::noRecords);
  EXPECT_FALSE(report.failure);
  expectClearedWithColumnsOfBefore();
}

TEST_F(CustomQuery, NoResultSetIsNoRecordsToo) {
  EXPECT_EQ(run().outcome, CustomOutcome::noRecords);
  expectClearedWithColumnsOfBefore();
}

TEST_F(CustomQuery, RowsAreClearedBeforeTheServerIsAsked) {
  std::size_t shown = 1;
  server.refusesConnection = [&] { shown = list.rowCount(); };
  server.answer = {{{{"A"}}, {{"1"}}, {}}};
  run();
  EXPECT_EQ(shown, 0U);
}

TEST_F(CustomQuery, NothingIsShownBeforeTheAnswerIsWholeAndTheConnectionClosed) {
  server.answer = {{{{"A"}}, {{"1"}}, [&] { EXPECT_EQ(list.rowCount(), 0U); }}};
  server.onClose = [&] { expectClearedWithColumnsOfBefore(); };
  run();
  EXPECT_EQ(rows(), "1\n");
}

TEST_F(CustomQuery, FailuresLeaveTheListClearedWithItsColumns) {
  server.answer = {{{{"A"}}, {{"1"}}, {}}};
  const auto fails = [] { throw Error(208, "Invalid object name 'x'.", 3); };
  server.refusesConnection = fails;
  expectFailure(run(), 208, "Invalid object name 'x'.");
  server.refusesConnection = {};
  server.refusesExecution = fails;
  const CustomReport report = run();
  expectFailure(report, 208, "Invalid object name 'x'.");
  EXPECT_EQ(report.failure->line(), 3);
  server.refusesExecution = {};
  server.answer[0].breaksOff = fails;
  expectFailure(run(), 208, "Invalid object name 'x'.");
  server.answer[0].breaksOff = {};
  server.breaksAtTheEnd = fails;
  expectFailure(run(), 208, "Invalid object name 'x'.");
}

TEST_F(CustomQuery, FailuresOfOtherKindsHaveANumberToo) {
  server.refusesExecution = [] { throw std::bad_alloc(); };
  expectFailure(run(), results::outOfMemoryNumber, "Out of memory");
  EXPECT_EQ(run().failure->textKey(), "query.outOfMemory");
  server.refusesExecution = [] { throw results::outOfMemory(); };
  expectFailure(run(), results::outOfMemoryNumber, "Out of memory");
  EXPECT_EQ(run().failure->textKey(), "query.outOfMemory");
  server.refusesExecution = [] { throw std::runtime_error("odd"); };
  expectFailure(run(), 51, "odd");
  server.refusesExecution = [] { throw 1; };
  expectFailure(run(), 51, "Internal error");
  const auto nobody = [](std::string_view, const std::stop_token&) { return std::unique_ptr<db::Connection>(); };
  expectFailure(runCustomQuery("x", "", nobody, list), 51, "Internal error");
}

TEST_F(CustomQuery, TheSortingOfAnEarlierAnswerIsNoneOfTheNext) {
  server.answer = {{{{"A"}, {"B"}}, {{"1", "b"}, {"2", "a"}}, {}}};
  run();
  list.clickColumn({1});
  list.clickColumn({1});
  EXPECT_EQ(rows(), "1|b\n2|a\n");
  EXPECT_EQ(list.columns()[1].tag, -1);

  server.answer = {{{{"X"}, {"Y"}}, {{"3", "c"}, {"1", "d"}, {"2", "a"}}, {}}};
  run();
  EXPECT_EQ(rows(), "3|c\n1|d\n2|a\n");
  EXPECT_FALSE(list.isSorted());
  EXPECT_EQ(list.columns()[1].tag, 0);
  list.clickColumn({1});
  EXPECT_EQ(rows(), "2|a\n3|c\n1|d\n");
}

TEST_F(CustomQuery, AnAnswerOfManyRowsKeepsTheirOrder) {
  server.answer = {{{{"N"}}, {}, {}}};
  for (int i = 20'000; i > 0; --i) server.answer[0].rows.push_back({std::to_string(i)});
  EXPECT_EQ(run().outcome, CustomOutcome::filled);
  ASSERT_EQ(list.rowCount(), 20'000U);
  EXPECT_EQ(list.text({0}, {0}), "20000");
  EXPECT_EQ(list.text({19'999}, {0}), "1");
}

/// The reported progress, on the waiting thread, while the server answers on another.
struct CustomQueryProgress : CustomQuery {
  CustomQueryProgress() {
    environment.pace = {1ms, 20s};
    progress = [this](std::size_t rows) {
      const std::lock_guard lock(mutex);
      told.push_back(rows);
      changed.notify_all();
      return told.size() != stopAt;
    };
    server.answer = {{{{"N"}}, {}, {}}};
    for (int i = 0; i < 1000; ++i) server.answer[0].rows.push_back({std::to_string(i)});
  }

  /// Called by the server: false after the timeout.
  bool waitUntilTold(std::size_t rows) {
    std::unique_lock lock(mutex);
    return changed.wait_for(lock, 20s, [&] { return !told.empty() && told.back() >= rows; });
  }
  bool waitUntilStopped() const {
    const auto end = std::chrono::steady_clock::now() + 20s;
    while (!server.stop.stop_requested() && std::chrono::steady_clock::now() < end) std::this_thread::yield();
    return server.stop.stop_requested();
  }

  std::mutex mutex;
  std::condition_variable changed;
  std::vector<std::size_t> told;
  std::size_t stopAt = 0;
};

TEST_F(CustomQueryProgress, ReportsTheRowsSoFarFromZeroOn) {
  server.answer[0].breaksOff = [&] { EXPECT_TRUE(waitUntilTold(900)); };
  EXPECT_EQ(run().outcome, CustomOutcome::filled);
  EXPECT_EQ(told.front(), 0U);
  EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
}

TEST_F(CustomQueryProgress, ReportsNotMoreOftenThanItsPace) {
  environment.pace.interval = 1h;
  EXPECT_EQ(run().outcome, CustomOutcome::filled);
  EXPECT_THAT(told, ElementsAre(0U));
}

TEST_F(CustomQueryProgress, ReportsOnTheWaitingThread) {
  const std::thread::id here = std::this_thread::get_id();
  std::thread::id asked;
  const QueryProgress note = progress;
  progress = [&](std::size_t rows) {
    EXPECT_EQ(std::this_thread::get_id(), here);
    return note(rows);
  };
  server.refusesConnection = [&] { asked = std::this_thread::get_id(); };
  server.answer[0].breaksOff = [&] { EXPECT_TRUE(waitUntilTold(900)); };
  run();
  EXPECT_NE(asked, std::thread::id());
  EXPECT_NE(asked, here);
}

TEST_F(CustomQueryProgress, StopsBeforeTheConnectionIsOpened) {
  stopAt = 1;
  const CustomReport report = run();
  EXPECT_EQ(report.outcome, CustomOutcome::stopped);
  EXPECT_FALSE(report.failure);
  EXPECT_THAT(server.opened, IsEmpty());
  expectClearedWithColumnsOfBefore();
}

TEST_F(CustomQueryProgress, StopsAmongTheRows) {
  stopAt = 4;
  server.refusesExecution = [&] { EXPECT_TRUE(waitUntilStopped()); };
  EXPECT_EQ(run().outcome, CustomOutcome::stopped);
  EXPECT_LT(server.rowsOffered, 500U);
  EXPECT_EQ(told.size(), 4U);
  EXPECT_EQ(server.openConnections, 0);
  expectClearedWithColumnsOfBefore();
}

TEST_F(CustomQueryProgress, AStopIsAStopAlsoWhereTheEngineCallsItAFailure) {
  stopAt = 2;
  server.refusesExecution = [&] {
    EXPECT_TRUE(waitUntilStopped());
    throw Error(9, "interrupted");
  };
  EXPECT_EQ(run().outcome, CustomOutcome::stopped);
}

TEST_F(CustomQueryProgress, AServerThatDoesNotComeBackIsLeftBehind) {
  stopAt = 2;
  environment.pace.grace = 0ms;
  std::promise<void> begun;
  std::promise<void> answers;
  std::promise<void> closed;
  server.refusesExecution = [&] {
    begun.set_value();
    answers.get_future().wait();
  };
  // A stop before the server has the text would end the worker by itself.
  progress = [this, &begun, stop = progress](std::size_t rows) {
    if (!told.empty()) {
      EXPECT_EQ(begun.get_future().wait_for(20s), std::future_status::ready);
    }
    return stop(rows);
  };
  server.onClose = [&] { closed.set_value(); };
  EXPECT_EQ(run().outcome, CustomOutcome::stopped);
  expectClearedWithColumnsOfBefore();
  EXPECT_TRUE(db::hasAbandonedWorkers());
  // Its result is ignored from here on.
  answers.set_value();
  EXPECT_EQ(closed.get_future().wait_for(20s), std::future_status::ready);
  while (db::hasAbandonedWorkers()) std::this_thread::yield();
  expectClearedWithColumnsOfBefore();
}

TEST_F(CustomQueryProgress, ThatThrowsIsAFailure) {
  progress = [](std::size_t) -> bool { throw std::runtime_error("no window"); };
  expectFailure(run(), 51, "no window");
}

TEST_F(CustomQueryProgress, ThatThrowsWhileTheServerWorksIsAFailureToo) {
  progress = [this](std::size_t) -> bool {
    if (told.empty()) {
      told.push_back(0);
      return true;
    }
    throw std::runtime_error("no window");
  };
  server.refusesExecution = [&] { EXPECT_TRUE(waitUntilStopped()); };
  expectFailure(run(), 51, "no window");
}

/// A machine with memory that the test sets.
struct QueryMemory : CustomQuery {
  QueryMemory() {
    environment.memory = [this] {
      ++looks;
      return state;
    };
    server.answer = {{{{"Text"}}, {}, {}}};
    for (int i = 0; i < 40; ++i) server.answer[0].rows.push_back({std::string(std::size_t{1} << 20U, 'x')});
  }

  results::MemoryState state{std::uint64_t{8} << 30U, std::uint64_t{16} << 30U};
  int looks = 0;
};

TEST_F(QueryMemory, AnAnswerThatWouldTakeTheLastOfItIsAnError) {
  EXPECT_EQ(run().outcome, CustomOutcome::filled);
  EXPECT_GT(looks, 1);
  state.freeBytes = std::uint64_t{100} << 20U;
  server.onClose = [] {};
  const CustomReport report = run();
  EXPECT_EQ(report.outcome, CustomOutcome::failed);
  ASSERT_TRUE(report.failure);
  EXPECT_EQ(report.failure->number(), results::outOfMemoryNumber);
  EXPECT_EQ(report.failure->textKey(), "query.memoryShort");
  EXPECT_EQ(list.rowCount(), 0U);
}

TEST_F(QueryMemory, ASmallAnswerIsShownOnASmallMachineToo) {
  server.answer[0].rows.resize(3);
  state.freeBytes = 1000;
  EXPECT_EQ(run().outcome, CustomOutcome::filled);
}

TEST_F(QueryMemory, WhatTheEngineTakesForItselfCounts) {
  server.answer[0].rows.assign(1000, {"x"});
  environment.now = [time = std::chrono::steady_clock::time_point{}]() mutable { return time += 50ms; };
  server.refusesExecution = [this] { state.freeBytes = 1000; };
  EXPECT_EQ(run().failure.value_or(Error(0, "")).number(), results::outOfMemoryNumber);
}

TEST_F(QueryMemory, TheStandardQueryIsGuardedAsWell) {
  ResultLists lists = makeResultLists();
  FilterTree tree;
  tree.selectAll();
  state.freeBytes = 1000;
  const QueryReport report = runStandardQuery({tree, {}, {}}, server.connector(), lists, 0, {}, environment);
  EXPECT_EQ(report.outcome, QueryOutcome::failed);
  ASSERT_TRUE(report.failure);
  EXPECT_EQ(report.failure->number(), results::outOfMemoryNumber);
  EXPECT_EQ(lists[0].rowCount(), 0U);
}

}  // namespace
}  // namespace korvel::query
