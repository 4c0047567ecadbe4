#include "tests/query/complete_query_fixture.h"

namespace korvel::query {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Kind = IncompletePart::Kind;

TEST_F(CompleteQuery, FinishesAlarmRowsOfAllDatesThatAreMoreThanTheLimit) {
  Server many(trailOf(70));
  for (const unsigned long bits : {2UL, 3UL, 10UL, 1022UL, 1023UL})
    for (const DateRange& range : {noRange, aprilToMay}) expectWhole(many, CategoryFlags(bits), range);
}

TEST_F(CompleteQuery, SelectsEachCutCategoryAtOnceWhereThatIsFree) {
  Server server(trailOf(70));
  server.isFree = true;
  for (const unsigned long bits : {1UL, 2UL, 15UL, 16UL, 1022UL, 1023UL})
    for (const DateRange& range : {noRange, aprilToMay}) expectWhole(server, CategoryFlags(bits), range);
  server.calls = 0;
  run(server, all, noRange);
  EXPECT_EQ(server.calls, 2U);
}

TEST_F(CompleteQuery, SaysWhatBreaksWhileItSelectsAtOnce) {
  Server server(trailOf(0));
  server.isFree = true;
  server.withinAnswer = [rows = 0](std::size_t call) mutable {
    if (call == 2 && ++rows == 300) throw Error(11, "database disk image is malformed");
  };
  const CompletionReport report = run(server, all, noRange);
  EXPECT_EQ(report.outcome, QueryOutcome::failed);
  ASSERT_TRUE(report.failure);
  EXPECT_EQ(report.failure->number(), 11);
  EXPECT_EQ(lists[0].rowCount(), 0U);
}

TEST_F(CompleteQuery, SpreadsRowsOverThePagesByTheirAuditType) {
  Server server(trailOf(10));
  run(server, all, noRange);
  std::map<std::size_t, std::size_t> counts;
  for (const AuditEntry& entry : server.entries)
    if (const auto list = listOfStoredAuditType(entry.auditType.value_or(""))) ++counts[*list];
  for (std::size_t list = 1; list < standardListCount; ++list) EXPECT_EQ(lists[list].rowCount(), counts[list]) << list;
}

TEST_F(CompleteQuery, StoresARowOfSeveralCategoriesOnce) {
  Server server(trailOf(10));
  const CategoryFlags overlapping(0b1111);
  run(server, overlapping, noRange);
  const std::vector<int> numbers = expected(server, overlapping, noRange);
  const std::size_t distinct = std::set<int>(numbers.begin(), numbers.end()).size();
  ASSERT_LT(distinct, numbers.size());
  EXPECT_EQ(lists[0].store()->rowCount(), distinct);
}

TEST_F(CompleteQuery, KeepsRowsThatAreTheSameInAllColumns) {
  std::vector<AuditEntry> entries;
  for (int i = 0; i < 60; ++i)
    entries.push_back(
        {i, dayText(sys_days(2004y / 4 / 1) + std::chrono::days(i / 12)) + " 00:00:00", "Screen", "X", "OA"});
  Server server(entries);
  server.repeatEveryRow();
  expectWhole(server, actions, noRange);
  expectWhole(server, all, noRange);
  expectWhole(server, CategoryFlags(0b10001), noRange);
}

TEST_F(CompleteQuery, StoresRowsThatAreTheSameOnceAndCountsThemAll) {
  std::vector<AuditEntry> entries;
  for (int i = 0; i < 60; ++i)
    entries.push_back(
        {i, dayText(sys_days(2004y / 4 / 1) + std::chrono::days(i / 6)) + " 08:00:30", "Screen", "X", "OA"});
  Server server(entries);
  server.repeatEveryRow();
  expectWhole(server, all, noRange);
  EXPECT_EQ(lists[0].store()->rowCount(), 60U);
}

TEST_F(CompleteQuery, CountsRowsBetweenTwoSlicesOnceHoweverFinelyTheirTimesAreGiven) {
  std::vector<AuditEntry> entries;
  for (int i = 0; i < 600; ++i)
    entries.push_back({i, minuteText(Minute(sys_days(2004y / 4 / 1)) + std::chrono::minutes(i)) + ":00.0004123",
                       "Screen", "X", "OA"});
  Server server(entries);
  expectWhole(server, all, noRange);
  expectWhole(server, actions, {2004y / 4 / 1, 2004y / 4 / 1, true});
}

TEST_F(CompleteQuery, NeedsOneCallWhereNothingIsCut) {
  std::vector<AuditEntry> few = test::nastyRows(15);
  Server server(few);
  expectWhole(server, all, noRange);
  EXPECT_EQ(server.calls, 1U);
}

TEST_F(CompleteQuery, LooksAtLaterCategoriesWhereTheFirstIsEmpty) {
  std::vector<AuditEntry> entries;
  for (int i = 0; i < 50; ++i) entries.push_back({i, "2004-04-01 08:00:00", "Screen", "X", "OA"});
  Server server(entries);
  expectWhole(server, CategoryFlags(0b10001), noRange);
}

TEST_F(CompleteQuery, NamesAMinuteThatOnlyTheTableCouldFinish) {
  Server server(trailOf(0));
  server.tableIsClosed = true;
  const CompletionReport report = run(server, actions, aprilToMay);
  EXPECT_EQ(report.outcome, QueryOutcome::filled);
  ASSERT_THAT(report.incomplete, SizeIs(1));
  EXPECT_EQ(report.incomplete[0].kind, Kind::minute);
  EXPECT_EQ(report.incomplete[0].minute, sys_days(2004y / 4 / 20) + 9h);
  EXPECT_EQ(report.incomplete[0].category, 4U);
  EXPECT_EQ(report.incomplete[0].reason.number(), db::rightMissingNumber);
  EXPECT_FALSE(report.isComplete());
  // All other times are whole, and of that one there is what the procedure gives.
  const auto isOfTheMinute = [](const AuditEntry& entry) {
    return entry.dateTime && entry.dateTime->starts_with("2004-04-20 09:00") && entry.auditType == "OA";
  };
  const auto ofTheMinute =
      static_cast<std::size_t>(std::count_if(server.entries.begin(), server.entries.end(), isOfTheMinute));
  ASSERT_GT(ofTheMinute, limit);
  EXPECT_EQ(shown().size(), expected(server, actions, aprilToMay).size() - ofTheMinute + limit);
}

TEST_F(CompleteQuery, NamesAlarmsOfAllDatesThatOnlyTheTableCouldFinish) {
  Server server(trailOf(70));
  server.tableIsClosed = true;
  const CompletionReport report = run(server, alarms, aprilToMay);
  ASSERT_THAT(report.incomplete, SizeIs(1));
  EXPECT_EQ(report.incomplete[0].kind, Kind::ofAllDates);
  EXPECT_EQ(report.incomplete[0].category, 1U);
  EXPECT_EQ(shown().size(), limit);
}

TEST_F(CompleteQuery, NamesWhatATableWithFewerRowsCannotFinish) {
  Server server(trailOf(0));
  server.hasOtherTable = true;
  const CompletionReport report = run(server, actions, aprilToMay);
  ASSERT_THAT(report.incomplete, SizeIs(1));
  EXPECT_EQ(report.incomplete[0].kind, Kind::minute);
  EXPECT_FALSE(report.isComplete());
  // What the procedure gave is kept, and nothing of the other table shown.
  const std::vector<int> numbers = expected(server, actions, aprilToMay);
  const std::vector<int> kept = shown();
  EXPECT_GE(kept.size(), limit);
  EXPECT_TRUE(std::includes(numbers.begin(), numbers.end(), kept.begin(), kept.end()));
}

TEST_F(CompleteQuery, ShowsNothingOfATableWithFewerRowsHoweverLargeTheyAre) {
  std::vector<AuditEntry> entries;
  for (int i = 0; i < 60; ++i) entries.push_back({i, "2004-04-20 09:00:30.000", "Screen", "X", "OA"});
  for (int i = 0; i < 10; ++i)
    entries.push_back({100 + i, "2004-04-05 09:00:00.000", std::string(1 << 20, 'x'), "RESTORE", "DC"});
  Server server(entries);
  server.hasOtherTable = true;
  EXPECT_THAT(run(server, actions, aprilToMay).incomplete, SizeIs(1));
  EXPECT_THAT(shown(), testing::AllOf(SizeIs(limit), testing::Each(testing::Lt(100))));
}

TEST_F(CompleteQuery, NamesRowsWithoutADateThatOnlyTheTableCouldFind) {
  Server server(trailOf(0));
  server.tableIsClosed = true;
  const CompletionReport report = run(server, CategoryFlags().set(6), noRange);
  ASSERT_THAT(report.incomplete, SizeIs(testing::Ge(1U)));
  EXPECT_EQ(report.incomplete.back().kind, Kind::undated);
}

TEST_F(CompleteQuery, IsCompleteWithoutTheTableWhereEachRowHasADate) {
  std::vector<AuditEntry> entries;
  for (int i = 0; i < 200; ++i)
    entries.push_back(
        {i, dayText(sys_days(2004y / 4 / 1) + std::chrono::days(i / 5)) + " 08:00:00", "Screen", "X", "OA"});
  Server server(entries);
  server.tableIsClosed = true;
  EXPECT_FALSE(run(server, actions, noRange).isComplete());
  server.datesAreAlways = true;
  EXPECT_TRUE(run(server, actions, noRange).isComplete());
  EXPECT_EQ(shown().size(), 200U);
}

/// A server that answers with another number of result sets than was asked for.
class OtherResults final : public db::Connection {
 public:
  explicit OtherResults(std::size_t count) : count_(count) {}
  void execute(std::string_view /*commandText*/, db::ResultSink& sink) override {
    const std::vector<db::Field> fields{{"Nr"}, {"DateTime"}, {"TableName"}, {"AuditType"}};
    const std::vector<db::Cell> cells{{"1", false}, {"2004-04-01 08:00:00", false}, {"Screen", false}, {"OA", false}};
    for (std::size_t i = 0; i < count_; ++i) {
      sink.beginResult(fields);
      sink.row(cells);
      sink.endResult();
    }
  }

 private:
  std::size_t count_;
};

TEST_F(CompleteQuery, IsNotCompleteWhereResultSetsCannotBeToldApart) {
  FilterTree tree;
  for (const char* key : {"C1", "R1"}) tree.setChecked(nodeOf(key), true);
  const std::string connectionString = "a server";
  for (const std::size_t count : {0UL, 1UL, 3UL}) {
    const CompleteAnswer answer = completeStandardQuery(
        {tree, noRange, connectionString},
        [count](std::string_view, const std::stop_token&) { return std::make_unique<OtherResults>(count); });
    EXPECT_EQ(answer.report().outcome, QueryOutcome::failed) << count;
  }
}

TEST_F(CompleteQuery, AsksOnceMoreWhereTheConnectionBreaks) {
  Server server(trailOf(10));
  server.withinAnswer = [broken = false](std::size_t call) mutable {
    if (call == 10 && !std::exchange(broken, true)) throw Error(10054, "Connection reset by peer");
  };
  expectWhole(server, all, aprilToMay);
  EXPECT_EQ(server.connections, 2U);
}

TEST_F(CompleteQuery, SaysWhatBreaksAgainAndLeavesTheListsAsTheyWere) {
  Server server(trailOf(10));
  server.beforeCall = [](std::size_t call) {
    if (call >= 10) throw Error(10054, "Connection reset by peer");
  };
  const CompletionReport report = run(server, all, aprilToMay);
  EXPECT_EQ(report.outcome, QueryOutcome::failed);
  ASSERT_TRUE(report.failure);
  EXPECT_EQ(report.failure->number(), 10054);
  EXPECT_EQ(server.calls, 11U);
  EXPECT_EQ(lists[0].rowCount(), 0U);
}

TEST_F(CompleteQuery, KeepsWhatHasComeWhenItIsStopped) {
  Server server(trailOf(10));
  std::promise<void> tenth;
  std::promise<void> released;
  server.beforeCall = [&](std::size_t call) {
    if (call != 10) return;
    tenth.set_value();
    released.get_future().wait();
  };
  auto reached = tenth.get_future();
  CompletionProgress seen;
  const CompletionReport report = run(server, all, aprilToMay, [&](const CompletionProgress& progress) {
    if (reached.wait_for(0s) != std::future_status::ready) return true;
    seen = progress;
    released.set_value();
    return false;
  });
  EXPECT_EQ(report.outcome, QueryOutcome::filled);
  EXPECT_TRUE(report.endedEarly);
  EXPECT_FALSE(report.isComplete());
  EXPECT_GT(seen.slices, 1U);
  EXPECT_GE(shown().size(), seen.rows);
  const std::vector<int> numbers = expected(server, all, aprilToMay);
  EXPECT_LT(shown().size(), numbers.size());
  const std::vector<int> kept = shown();
  EXPECT_TRUE(std::includes(numbers.begin(), numbers.end(), kept.begin(), kept.end()));
}

/// A minute that only a select can finish, with rows of its first moment, each of them twice.
class BusyMinute : public CompleteQuery {
 protected:
  static constexpr int rows = 400;
  /// The select fails, or waits, when it has given so many rows: several batches.
  static constexpr int rowInTheMiddle = 300;

  BusyMinute() : server(trailOfTheMinute()) { server.repeatEveryRow(); }

  static std::vector<AuditEntry> trailOfTheMinute() {
    std::vector<AuditEntry> entries;
    for (int i = 0; i < rows; ++i)
      entries.push_back(
          {i, std::string("2004-04-01 08:00:") + (i % 80 == 0 ? "00" : "30") + ".000", "Screen", "X", "OA"});
    return entries;
  }
  /// Calls `step` when a select has given rows up to the middle, with the number of the select.
  void inTheMiddleOfASelect(const std::function<void(std::size_t select)>& step) {
    server.withinAnswer = [this, step, select = std::size_t{0}, row = 0](std::size_t /*call*/) mutable {
      if (server.selects != select) row = 0;
      select = server.selects;
      if (select > 0 && ++row == rowInTheMiddle) step(select);
    };
  }

  const DateRange day{2004y / 4 / 1, 2004y / 4 / 1, true};
  Server server;
};

TEST_F(BusyMinute, IsJoinedWhileItsRowsArrive) {
  std::promise<void> joined;
  auto hasJoined = joined.get_future();
  bool isJoined = false;
  inTheMiddleOfASelect([&](std::size_t) { isJoined = hasJoined.wait_for(20s) == std::future_status::ready; });
  const CompletionReport report =
      run(server, actions, day, [&, isSet = false](const CompletionProgress& progress) mutable {
        if (progress.rows >= rowInTheMiddle / 2 && !std::exchange(isSet, true)) joined.set_value();
        return true;
      });
  EXPECT_TRUE(isJoined);
  EXPECT_TRUE(report.isComplete());
  EXPECT_EQ(shown(), expected(server, actions, day));
}

TEST_F(BusyMinute, IsStoppedInTheMiddleAndKeepsWhatHasCome) {
  std::promise<void> reached;
  std::promise<void> released;
  auto isReached = reached.get_future();
  inTheMiddleOfASelect([&](std::size_t) {
    reached.set_value();
    released.get_future().wait();
    // No row more before the stop has come here.
    while (server.isWanted()) std::this_thread::yield();
  });
  const CompletionReport report = run(server, actions, day, [&](const CompletionProgress& /*progress*/) {
    if (isReached.wait_for(0s) != std::future_status::ready) return true;
    released.set_value();
    return false;
  });
  EXPECT_TRUE(report.endedEarly);
  EXPECT_GE(shown().size(), rowInTheMiddle / 2);
  EXPECT_LT(shown().size(), rowInTheMiddle + limit);
}

TEST_F(BusyMinute, IsCountedOnceWhereItsSelectBreaks) {
  inTheMiddleOfASelect([](std::size_t select) {
    if (select == 1) throw Error(10054, "Connection reset by peer");
  });
  expectWhole(server, actions, day);
  EXPECT_EQ(server.selects, 2U);
  EXPECT_EQ(lists[0].store()->rowCount(), static_cast<std::size_t>(rows));
}

TEST_F(BusyMinute, LeavesTheListsAsTheyWereWhereItsSelectBreaksAgain) {
  inTheMiddleOfASelect([](std::size_t) { throw Error(10054, "Connection reset by peer"); });
  const CompletionReport report = run(server, actions, day);
  EXPECT_EQ(report.outcome, QueryOutcome::failed);
  EXPECT_EQ(server.selects, 2U);
  EXPECT_EQ(lists[0].rowCount(), 0U);
}

TEST_F(BusyMinute, NamesWhatChangesBeforeItsSelectIsRepeated) {
  inTheMiddleOfASelect([](std::size_t select) {
    if (select == 1) throw Error(10054, "Connection reset by peer");
  });
  server.beforeSelect = [this](std::size_t select) {
    if (select == 2)
      test::DatabaseWriter(server.folder_ / "D.db").run("UPDATE Korvel_Audit_Trails SET EventType = 'Y' WHERE Nr = 12");
  };
  const CompletionReport report = run(server, actions, day);
  EXPECT_THAT(report.changedEntries, ElementsAre("12"));
  // As it was, as often as it came before the break, and as it is now, twice.
  const std::vector<int> kept = shown();
  EXPECT_EQ(std::count(kept.begin(), kept.end(), 12), 3);
  EXPECT_EQ(kept.size(), 2U * rows + 1);
}

TEST_F(BusyMinute, KeepsWhatHasComeOnceWhereFewerRowsAreLeftForTheRepeatedSelect) {
  inTheMiddleOfASelect([](std::size_t select) {
    if (select == 1) throw Error(10054, "Connection reset by peer");
  });
  server.beforeSelect = [this](std::size_t select) {
    if (select == 2) test::DatabaseWriter(server.folder_ / "D.db").run("DELETE FROM Korvel_Audit_Trails WHERE Nr > 4");
  };
  EXPECT_THAT(run(server, actions, day).incomplete, IsEmpty());
  const std::vector<int> kept = shown();
  // One of the row that is gone, which had come before the break; both of one that is still there.
  EXPECT_EQ(std::count(kept.begin(), kept.end(), 10), 1);
  EXPECT_EQ(std::count(kept.begin(), kept.end(), 4), 2);
}

TEST_F(CompleteQuery, NamesEntriesThatChangeMeanwhile) {
  std::vector<AuditEntry> entries;
  for (int i = 0; i < 200; ++i)
    entries.push_back(
        {i, dayText(sys_days(2004y / 4 / 1) + std::chrono::days(i / 5)) + " 08:00:00", "Screen", "X", "OA"});
  Server server(entries);
  server.beforeCall = [&](std::size_t call) {
    if (call != 5) return;
    // A row of the first day moves behind what has been read.
    test::DatabaseWriter(server.folder_ / "D.db")
        .run("UPDATE Korvel_Audit_Trails SET DateTime = '2004-05-09 08:00:00' WHERE Nr = 2");
  };
  const CompletionReport report = run(server, actions, {2004y / 4 / 1, 2004y / 5 / 20, true});
  EXPECT_EQ(report.changedEntryCount, 1U);
  EXPECT_THAT(report.changedEntries, ElementsAre("2"));
  EXPECT_EQ(shown().size(), 201U);
}

TEST_F(CompleteQuery, ReadsNothingWhereNothingIsTicked) {
  Server server({});
  EXPECT_EQ(run(server, {}, noRange).outcome, QueryOutcome::noCriteria);
  EXPECT_EQ(server.calls, 0U);
}

TEST_F(CompleteQuery, FindsNothingInAnEmptyTrail) {
  Server server({});
  EXPECT_EQ(run(server, all, noRange).outcome, QueryOutcome::noRecords);
}

TEST_F(CompleteQuery, EndsBeforeTheMemoryDoes) {
  std::vector<AuditEntry> large;
  for (int i = 0; i < 60; ++i)
    large.push_back({i, dayText(sys_days(2004y / 4 / 1) + std::chrono::days(i)) + " 08:00:00",
                     std::string(1 << 20, 'x'), "X", "OA"});
  Server server(large);
  FilterTree tree;
  tree.selectAll();
  QueryEnvironment small;
  small.memory = [] { return results::MemoryState{1, std::uint64_t{1} << 30}; };
  const std::string connectionString = "a server";
  const CompleteAnswer answer =
      completeStandardQuery({tree, noRange, connectionString}, server.connector(), {}, small, limit);
  EXPECT_EQ(answer.report().outcome, QueryOutcome::failed);
  ASSERT_TRUE(answer.report().failure);
  EXPECT_EQ(answer.report().failure->number(), 7);
}

TEST_F(CompleteQuery, EndsBeforeTheMemoryDoesWhileItSelects) {
  std::vector<AuditEntry> large;
  for (int i = 0; i < 60; ++i) large.push_back({i, "2004-04-01 08:00:30.000", std::string(1 << 20, 'x'), "X", "OA"});
  for (const bool isFree : {true, false}) {
    Server server(large);
    server.isFree = isFree;
    const CompletionReport report = run(server, all, noRange, {}, [&] {
      constexpr std::uint64_t whole = std::uint64_t{1} << 30;
      return results::MemoryState{server.selects > 0 ? 1 : whole, whole};
    });
    EXPECT_EQ(report.outcome, QueryOutcome::failed) << isFree;
    ASSERT_TRUE(report.failure);
    EXPECT_EQ(report.failure->number(), results::outOfMemoryNumber);
    EXPECT_EQ(lists[0].rowCount(), 0U);
  }
}

TEST(AuditSelection, OfAllDatesHasNoConditionOnThem) {
  using enum db::AuditSelection::Dates;
  EXPECT_EQ(db::auditSelectionText({std::nullopt, all, {}, {}}), "SELECT * FROM Korvel_Audit_Trails");
  EXPECT_EQ(db::auditSelectionText({4, all, {}, {}}), "SELECT * FROM Korvel_Audit_Trails WHERE AuditType = 'OA'");
}

TEST(AuditSelection, OnAServerHasTheProceduresConditions) {
  const auto text = [](std::optional<std::size_t> category, db::AuditSelection::Dates dates) {
    return db::auditSelectionText({category, dates, "2004-03-07 00:00:00.000", "2004-03-08 00:00:00.000"});
  };
  using enum db::AuditSelection::Dates;
  EXPECT_EQ(text({}, within),
            "SELECT * FROM Korvel_Audit_Trails WHERE DateTime >= '2004-03-07T00:00:00.000' and DateTime <= "
            "'2004-03-08T00:00:00.000'");
  EXPECT_EQ(text(1, within),
            "SELECT * FROM Korvel_Audit_Trails WHERE AuditType = 'CS' and TableName like 'vel_Alg%' or AuditType = "
            "'CS' and TableName like 'MS%' and DateTime >= '2004-03-07T00:00:00.000' and DateTime <= "
            "'2004-03-08T00:00:00.000'");
  EXPECT_EQ(text(4, outside),
            "SELECT * FROM Korvel_Audit_Trails WHERE (AuditType = 'OA') and (DateTime is null or DateTime < "
            "'2004-03-07T00:00:00.000' or DateTime > '2004-03-08T00:00:00.000')");
}

}  // namespace
}  // namespace korvel::query
