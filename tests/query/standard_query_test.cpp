#include "query/standard_query.h"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <string>

#include "db/procedure/audit_conditions.h"
#include "tests/query/filter_nodes.h"
#include "tests/support/audit_rows.h"
#include "tests/support/scripted_connection.h"

namespace korvel::query {
namespace {

using test::auditFields;
using test::auditRow;
using test::ScriptedResult;
using test::ScriptedServer;

ScriptedResult resultOf(std::vector<test::ScriptedRow> rows) {
  return {auditFields(), std::move(rows), {}};
}

/// A control's lists, tree and range, and the server that is queried.
struct StandardQuery : testing::Test {
  StandardQuery() { tree.selectAll(); }

  QueryReport run(std::size_t currentList = 0) {
    return runStandardQuery({tree, range, "the string"}, server.connector(), lists, currentList);
  }

  /// The entry numbers of a list, as shown, in order.
  std::string numbers(std::size_t list) const {
    std::string text;
    for (std::size_t row = 0; row < lists[list].rowCount(); ++row) {
      if (row > 0) text += ' ';
      text += lists[list].text({row}, {0});
    }
    return text;
  }

  void fillCustomList() {
    auto store = std::make_shared<results::RowStore>();
    const std::vector<db::Field> fields{{"x"}};
    store->beginResult(fields);
    const std::vector<db::Cell> cells{{"kept"}};
    const results::RowId row = store->append(cells);
    lists[customList].setColumns({{"x", results::standardColumnWidth, 0}});
    lists[customList].setRows(store, {row});
  }

  void expectEmptyStandardLists() const {
    for (std::size_t i = 0; i < standardListCount; ++i) EXPECT_EQ(lists[i].rowCount(), 0U) << "list " << i;
  }

  FilterTree tree;
  DateRange range;
  ScriptedServer server;
  ResultLists lists = makeResultLists();
};

TEST_F(StandardQuery, SendsTheCallOverAConnectionOfItsOwn) {
  server.answer = {resultOf({auditRow("1", "CS")})};
  tree.unselectAll();
  tree.setChecked(nodeOf("R1"), true);
  EXPECT_EQ(run().outcome, QueryOutcome::filled);
  EXPECT_EQ(server.opened, std::vector<std::string>{"the string"});
  EXPECT_EQ(server.executed, std::vector<std::string>{queryAuditsText(tree.flags(), range)});
  EXPECT_EQ(server.openConnections, 0);
  run();
  EXPECT_EQ(server.opened.size(), 2U);
}

TEST_F(StandardQuery, PassesTheDateRange) {
  range = {*parseDay("2004-03-07"), *parseDay("2004-03-07"), true};
  run();
  ASSERT_EQ(server.executed.size(), 1U);
  EXPECT_NE(server.executed[0].find("'True','2004-03-07 00:00:00.000','2004-03-07 23:59:59.999'"), std::string::npos);
}

TEST_F(StandardQuery, SpreadsTheRowsByAuditType) {
  server.answer = {resultOf({auditRow("1", "CS"), auditRow("2", "RT"), auditRow("3", "OA"), auditRow("4", "DC"),
                             auditRow("5", "AU"), auditRow("6", "CS")})};
  const QueryReport report = run();
  EXPECT_EQ(report.outcome, QueryOutcome::filled);
  EXPECT_FALSE(report.failure.has_value());
  EXPECT_EQ(numbers(0), "1 2 3 4 5 6");
  EXPECT_EQ(numbers(1), "1 6");
  EXPECT_EQ(numbers(2), "2 3");
  EXPECT_EQ(numbers(3), "4");
  EXPECT_EQ(numbers(4), "5");
}

TEST_F(StandardQuery, EmptyAndUnknownAuditTypesStayInListZero) {
  server.answer = {resultOf({auditRow("1", ""), auditRow("2", std::nullopt), auditRow("3", "ZZ"), auditRow("4", "cs"),
                             auditRow("5", " CS"), auditRow("6", "   ")})};
  run();
  EXPECT_EQ(numbers(0), "1 2 3 4 5 6");
  for (std::size_t i = 1; i < standardListCount; ++i) EXPECT_EQ(numbers(i), "") << "list " << i;
}

TEST_F(StandardQuery, PaddingOfAFixedWidthColumnIsNoPartOfTheCode) {
  server.answer = {resultOf({auditRow("1", "CS  "), auditRow("2", "AU ")})};
  run();
  EXPECT_EQ(numbers(0), "1 2");
  EXPECT_EQ(numbers(1), "1");
  EXPECT_EQ(numbers(4), "2");
}

TEST_F(StandardQuery, FindsTheAuditTypeByNameInEachResultSet) {
  server.answer = {{{{"Nr"}, {"AUDITTYPE"}, {"x"}, {"y"}}, {{"1", "DC", "a", "b"}}, {}},
                   {{{"audittype"}, {"Nr"}, {"x"}, {"y"}}, {{"AU", "CS", "a", "b"}}, {}}};
  run();
  EXPECT_EQ(lists[0].rowCount(), 2U);
  EXPECT_EQ(numbers(3), "1");
  EXPECT_EQ(numbers(4), "AU");
  EXPECT_EQ(numbers(1), "");
}

TEST_F(StandardQuery, WithoutAnAuditTypeColumnRowsStayInListZero) {
  server.answer = {{{{"Nr"}, {"Type"}, {"x"}, {"y"}}, {{"1", "CS", "a", "b"}}, {}}};
  EXPECT_EQ(run().outcome, QueryOutcome::filled);
  EXPECT_EQ(numbers(0), "1");
  EXPECT_EQ(numbers(1), "");
}

TEST_F(StandardQuery, FillsAllButTheLastTwoColumnsTrimmed) {
  test::ScriptedRow row = auditRow("  17 ", "CS");
  row[9] = "  old\t ";
  row[10] = std::nullopt;
  server.answer = {resultOf({row})};
  run();
  for (const std::size_t list : {0U, 1U}) {
    EXPECT_EQ(lists[list].text({0}, {0}), "17");
    EXPECT_EQ(lists[list].text({0}, {1}), "DateTime");
    EXPECT_EQ(lists[list].text({0}, {9}), "old\t");
    EXPECT_EQ(lists[list].text({0}, {10}), "");
    EXPECT_EQ(lists[list].text({0}, {15}), "CS");
    EXPECT_EQ(lists[list].text({0}, {16}), "") << "Comments stay empty";
    EXPECT_EQ(lists[list].text({0}, {17}), "") << "Summer Time stays empty";
  }
}

TEST_F(StandardQuery, StoresEachRowOnceForAllLists) {
  server.answer = {resultOf({auditRow("1", "CS"), auditRow("2", "DC")})};
  run();
  ASSERT_NE(lists[0].store(), nullptr);
  EXPECT_EQ(lists[0].store()->rowCount(), 2U);
  EXPECT_EQ(lists[0].store(), lists[1].store());
  EXPECT_EQ(lists[3].rowId({0}), lists[0].rowId({1}));
}

TEST_F(StandardQuery, RowOfTwoCategoriesIsShownTwice) {
  server.answer = {resultOf({auditRow("1", "CS"), auditRow("2", "CS")}), resultOf({auditRow("2", "CS")})};
  run();
  EXPECT_EQ(numbers(0), "1 2 2");
  EXPECT_EQ(numbers(1), "1 2 2");
}

TEST_F(StandardQuery, TakesEveryResultSetAlsoAcrossEmptyOnes) {
  server.answer = {resultOf({auditRow("3", "CS")}), resultOf({}), resultOf({auditRow("1", "DC")})};
  run();
  EXPECT_EQ(numbers(0), "1 3");
}

TEST_F(StandardQuery, SortsTheCurrentListOnly) {
  server.answer = {resultOf({auditRow("10", "CS"), auditRow("9", "CS"), auditRow("100", "CS")})};
  run(1);
  EXPECT_EQ(numbers(1), "9 10 100");
  EXPECT_EQ(numbers(0), "10 9 100");
  EXPECT_TRUE(lists[1].isSorted());
  EXPECT_FALSE(lists[0].isSorted());
}

TEST_F(StandardQuery, SortsWithTheKeyAndOrderOfTheList) {
  lists[0].sortBy({0}, results::SortOrder::descending);
  server.answer = {resultOf({auditRow("2", "CS"), auditRow("30", "CS"), auditRow("7", "CS")})};
  run(0);
  EXPECT_EQ(numbers(0), "30 7 2");
}

TEST_F(StandardQuery, NoCriteriaClearsTheListsAndSendsNothing) {
  server.answer = {resultOf({auditRow("1", "CS")})};
  run();
  fillCustomList();
  tree.unselectAll();
  server.opened.clear();
  const QueryReport report = run();
  EXPECT_EQ(report.outcome, QueryOutcome::noCriteria);
  EXPECT_FALSE(report.failure.has_value());
  EXPECT_TRUE(server.opened.empty());
  expectEmptyStandardLists();
  EXPECT_EQ(lists[customList].rowCount(), 1U);
}

TEST_F(StandardQuery, CustomListKeepsItsRowsWhateverHappens) {
  fillCustomList();
  server.answer = {resultOf({auditRow("1", "CS")})};
  for (const bool broken : {false, true}) {
    if (broken) server.refusesExecution = [] { throw Error(2812, "no such procedure"); };
    run();
    ASSERT_EQ(lists[customList].rowCount(), 1U);
    EXPECT_EQ(lists[customList].text({0}, {0}), "kept");
  }
}

TEST_F(StandardQuery, EmptyFirstResultMeansNoRecordsEvenWhenLaterOnesHoldRows) {
  server.answer = {resultOf({}), resultOf({auditRow("1", "CS"), auditRow("2", "CS")}), resultOf({auditRow("3", "DC")})};
  const QueryReport report = run();
  EXPECT_EQ(report.outcome, QueryOutcome::noRecords);
  EXPECT_FALSE(report.failure.has_value());
  expectEmptyStandardLists();
  EXPECT_EQ(server.rowsOffered, 1U) << "the rest of the answer is not asked for";
  EXPECT_EQ(server.openConnections, 0);
}

TEST_F(StandardQuery, FailureBehindAnEmptyFirstResultIsNotLookedAtEither) {
  server.answer = {resultOf({}), resultOf({})};
  server.answer[1].breaksOff = [] { throw Error(10054, "connection reset"); };
  EXPECT_EQ(run().outcome, QueryOutcome::noRecords);
}

TEST_F(StandardQuery, NoResultSetAtAllMeansNoRecords) {
  const QueryReport report = run();
  EXPECT_EQ(report.outcome, QueryOutcome::noRecords);
  EXPECT_EQ(server.openConnections, 0);
}

TEST_F(StandardQuery, ConnectionIsClosedBeforeAListIsFilled) {
  server.answer = {resultOf({auditRow("1", "CS")})};
  int closed = 0;
  server.onClose = [&] {
    ++closed;
    expectEmptyStandardLists();
  };
  run();
  EXPECT_EQ(closed, 1);
  EXPECT_EQ(numbers(1), "1");
}

TEST_F(StandardQuery, ReportsResultSetsThatTheServerMayHaveCut) {
  std::vector<test::ScriptedRow> rows(db::rowLimitPerResult, auditRow("1", "CS"));
  server.answer = {resultOf(rows), resultOf({auditRow("2", "DC")}), resultOf(rows)};
  const QueryReport report = run();
  EXPECT_THAT(report.fullResults, testing::ElementsAre(0U, 2U));
  EXPECT_EQ(report.resultCount, 3U);
  server.answer = {resultOf({rows.begin() + 1, rows.end()})};
  EXPECT_THAT(run().fullResults, testing::IsEmpty());
}

struct FailingQuery : StandardQuery {
  /// The lists hold rows of an earlier query when the failing one begins.
  FailingQuery() {
    server.answer = {resultOf({auditRow("1", "CS"), auditRow("2", "DC")})};
    run();
    fillCustomList();
  }

  void expectFailure(std::int32_t number, const std::string& description) {
    const QueryReport report = run();
    EXPECT_EQ(report.outcome, QueryOutcome::failed);
    ASSERT_TRUE(report.failure.has_value());
    EXPECT_EQ(report.failure->number(), number);
    EXPECT_EQ(report.failure->description(), description);
    expectEmptyStandardLists();
    EXPECT_EQ(lists[customList].rowCount(), 1U);
    EXPECT_EQ(server.openConnections, 0);
  }
};

TEST_F(FailingQuery, ConnectionRefused) {
  server.refusesConnection = [] { throw Error(17, "server does not exist"); };
  expectFailure(17, "server does not exist");
}

TEST_F(FailingQuery, ProcedureMissing) {
  server.refusesExecution = [] { throw Error(2812, "no such procedure"); };
  expectFailure(2812, "no such procedure");
}

TEST_F(FailingQuery, HalfWayThroughTheFirstResultShowsNothing) {
  server.answer[0].breaksOff = [] { throw Error(10054, "connection reset"); };
  expectFailure(10054, "connection reset");
}

TEST_F(FailingQuery, HalfWayThroughALaterResultShowsNothing) {
  server.answer.push_back(resultOf({auditRow("3", "AU")}));
  server.answer[1].breaksOff = [] { throw Error(823, "damaged page"); };
  expectFailure(823, "damaged page");
}

TEST_F(FailingQuery, AtTheVeryEndShowsNothing) {
  server.breaksAtTheEnd = [] { throw Error(10054, "connection reset"); };
  expectFailure(10054, "connection reset");
}

TEST_F(FailingQuery, OtherExceptionsBecomeErrors) {
  server.refusesExecution = [] { throw std::runtime_error("driver gave up"); };
  expectFailure(51, "driver gave up");
  server.refusesExecution = [] { throw std::bad_alloc(); };
  expectFailure(7, "Out of memory");
  server.refusesExecution = [] { throw 42; };  // NOLINT(hicpp-exception-baseclass)
  expectFailure(51, "Internal error");
}

TEST_F(FailingQuery, NoConnectionAtAll) {
  const QueryReport report = runStandardQuery(
      {tree, range, "the string"},
      [](std::string_view, const std::stop_token&) { return std::unique_ptr<db::Connection>(); }, lists, 0);
  EXPECT_EQ(report.outcome, QueryOutcome::failed);
  EXPECT_TRUE(report.failure.has_value());
  expectEmptyStandardLists();
}

TEST_F(FailingQuery, IsForgottenByTheNextQuery) {
  server.answer[0].breaksOff = [] { throw Error(10054, "connection reset"); };
  run();
  server.answer[0].breaksOff = {};
  const QueryReport report = run();
  EXPECT_EQ(report.outcome, QueryOutcome::filled);
  EXPECT_FALSE(report.failure.has_value());
  EXPECT_EQ(numbers(0), "1 2");
}

}  // namespace
}  // namespace korvel::query
