// Answers beyond the procedure's limit over the wire, from a server whose login may or may not read the table.

#include "query/complete_query.h"

#include <algorithm>
#include <atomic>

#include "db/embedded/embedded_connection.h"
#include "db/procedure/audit_conditions.h"
#include "tests/db/plain_evaluation.h"
#include "tests/odbc/wire.h"
#include "tests/query/filter_nodes.h"

namespace korvel::test {
namespace {

using namespace std::chrono_literals;
using query::CategoryFlags;
using query::CompletionReport;
using query::DateRange;
using query::Minute;
using query::QueryOutcome;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

const CategoryFlags actions = CategoryFlags().set(4);
const CategoryFlags alarms = CategoryFlags().set(1);
const DateRange april{2004y / 4 / 1, 2004y / 4 / 30, true};
const DateRange noRange{};
const Minute busyDay = std::chrono::sys_days(2004y / 4 / 7);
constexpr std::size_t limit = 500;
constexpr const char* refusalText =
    "The SELECT permission was denied on the object 'Korvel_Audit_Trails', database 'Korvel_Audit', schema 'dbo'.";

/// A server that evaluates the procedure, and selects where the login may read the table, over a given trail.
class CompletingOverTheWire : public WireTest {
 protected:
  void SetUp() override {
    WireTest::SetUp();
    server_.answerOthers([this](const tds::Command& command) { return answerTo(command.text); });
  }

  /// A record each so many seconds of the busy day.
  void addBusyDay(int count) {
    for (int i = 0; i < count; ++i) add(busyDay + std::chrono::seconds(86400LL * i / count), 250ms, "Screen", "OA");
  }
  /// Records of one minute of that day, the first ones of its first moment.
  void addBusyMinute(int count) {
    for (int i = 0; i < count; ++i) add(busyDay + 9h, i < 10 ? 0ms : 10ms * (i % 5900), "Screen", "OA");
  }
  void add(std::chrono::sys_seconds time, std::chrono::milliseconds part, const std::string& table,
           const std::string& type) {
    const auto moment = time + part;
    const auto minute = std::chrono::floor<std::chrono::minutes>(moment);
    std::string rest = std::to_string(100000 + (moment - minute).count()).substr(1);
    rest.insert(2, ".");
    std::string text = query::minuteText(minute) + ":" + rest;
    // As the select's literals are written: texts are compared here, on a server times.
    text[10] = 'T';
    addAt(std::move(text), table, type);
  }
  void addAt(std::optional<std::string> time, const std::string& table, const std::string& type) {
    entries_.push_back({static_cast<int>(entries_.size()) + 1, std::move(time), table, "CHANGE", type});
  }

  CompletionReport complete(CategoryFlags flags, const DateRange& range, const query::CompletionCallback& onWait = {}) {
    std::filesystem::remove(folder_ / "D.db");
    writeAuditDatabase(folder_ / "D.db", entries_);
    query::FilterTree tree;
    for (const query::FilterNode& node : query::filterNodes())
      if (node.argument != 0 && flags[node.argument - 1]) tree.setChecked(query::nodeOf(node.key), true);
    const std::string connectionString = "a server";
    query::QueryEnvironment environment;
    environment.pace = {1ms, tds::testTimeout};
    lists_ = query::makeResultLists();
    query::CompleteAnswer answer = query::completeStandardQuery(
        {tree, range, connectionString},
        [this](std::string_view, const std::stop_token& stop) {
          db::odbc::ServerAccess access = access_;
          access.stop = stop;
          return db::odbc::openServer(serverName(), "Korvel_Audit", access);
        },
        onWait, environment, rowLimit_);
    EXPECT_THAT(server_.record().problems, IsEmpty());
    return answer.fill(lists_, 0);
  }

  /// The entry numbers that the procedure gives without its limit.
  [[nodiscard]] std::vector<int> expected(CategoryFlags flags, const DateRange& range) const {
    std::vector<int> numbers;
    const Range times{query::fromDateText(range), query::toDateText(range)};
    for (const AuditEntry& entry : entries_)
      for (std::size_t category = 0; category < flags.size(); ++category)
        if (flags[category] && belongs(entry, category, range.DateRangeActive ? &times : nullptr))
          numbers.push_back(entry.number);
    return numbers;
  }
  [[nodiscard]] std::vector<int> shown() const {
    std::vector<int> numbers;
    for (std::size_t row = 0; row < lists_[0].rowCount(); ++row)
      numbers.push_back(std::stoi(std::string(lists_[0].text({row}, {0}))));
    std::sort(numbers.begin(), numbers.end());
    return numbers;
  }
  [[nodiscard]] std::vector<std::string> selects() const {
    std::vector<std::string> texts;
    for (const std::string& text : server_.texts())
      if (text.starts_with("SELECT")) texts.push_back(text);
    return texts;
  }
  [[nodiscard]] std::vector<std::string> said(const CompletionReport& report) const {
    return query::completionTexts(report, lists_[0].rowCount(), settings::LanguageOffset{},
                                  [](std::size_t count) { return std::to_string(count); });
  }
  void expectWhole(const CompletionReport& report, CategoryFlags flags, const DateRange& range) const {
    EXPECT_TRUE(report.isComplete());
    EXPECT_EQ(report.changedEntryCount, 0U);
    EXPECT_EQ(shown(), expected(flags, range));
  }

  std::size_t rowLimit_ = limit;
  bool tableIsClosed_ = false;
  const char* dateDeclaration_ = "datetime2(3)";
  /// Changes the answer to a slice that has rows and is not cut, or to a select, by its number from 1.
  std::function<void(std::size_t number, tds::Answer& answer)> afterSlice_ = [](std::size_t, tds::Answer&) {};
  std::function<void(std::size_t number, tds::Answer& answer)> afterSelect_ = afterSlice_;
  std::atomic<std::size_t> calls_ = 0;
  std::atomic<std::size_t> slices_ = 0;
  std::atomic<std::size_t> selects_ = 0;
  query::ResultLists lists_ = query::makeResultLists();
  std::vector<AuditEntry> entries_;

 private:
  tds::Answer answerTo(const std::string& text) {
    const bool isSelect = text.starts_with("SELECT");
    tds::Answer answer;
    if (isSelect && tableIsClosed_) return answer.error({db::rightMissingNumber, refusalText, 14});
    // Servers have no such dates.
    if (text.find("'0001-") != std::string::npos)
      return answer.error({242,
                           "The conversion of a varchar data type to a datetime data type resulted in an "
                           "out-of-range value."});
    CollectingSink sink;
    db::openEmbedded(folder_.path(), "D", {.rowLimit = rowLimit_})->execute(text, sink);
    for (const CollectedResult& result : sink.results) {
      std::vector<tds::Column> columns;
      for (const db::Field& field : result.fields)
        columns.emplace_back(field.name, field.name == "Nr"         ? "int not null"
                                         : field.name == "DateTime" ? dateDeclaration_
                                                                    : "nvarchar(50)");
      answer.result(columns);
      for (const TextRow& row : result.rows) {
        std::vector<tds::Value> values;
        for (std::size_t i = 0; i < row.size(); ++i)
          values.push_back(!row[i]                               ? tds::Value(tds::null)
                           : result.fields[i].name == "Nr"       ? tds::Value(std::stoi(*row[i]))
                           : result.fields[i].name == "DateTime" ? tds::Value(replaceAll(*row[i], "T", " "))
                                                                 : tds::Value(*row[i]));
        answer.row(values);
      }
    }
    if (isSelect) {
      afterSelect_(++selects_, answer);
      return answer;
    }
    ++calls_;
    const std::size_t rows = sink.results.at(0).rows.size();
    if (rows > 0 && rows < rowLimit_) afterSlice_(++slices_, answer);
    return answer;
  }
};

TEST_F(CompletingOverTheWire, aBusyDayNeedsNoRightToTheTable) {
  rowLimit_ = db::rowLimitPerResult;
  addBusyDay(12000);
  add(busyDay - 24h, 0ms, "Screen", "OA");
  add(busyDay + 48h, 0ms, "Screen", "OA");
  tableIsClosed_ = true;
  const CompletionReport report = complete(actions, april);
  expectWhole(report, actions, april);
  EXPECT_GT(report.slices, 2U);
  EXPECT_THAT(selects(), IsEmpty());
}

TEST_F(CompletingOverTheWire, aBusyMinuteIsFinishedByASelectWhereThatIsAllowed) {
  addBusyDay(400);
  addBusyMinute(600);
  expectWhole(complete(actions, april), actions, april);
  EXPECT_THAT(selects(), ElementsAre("SELECT * FROM Korvel_Audit_Trails WHERE AuditType = 'OA' and DateTime >= "
                                     "'2004-04-07T09:00:00.000' and DateTime <= '2004-04-07T09:01:00.000'"));
}

TEST_F(CompletingOverTheWire, aBusyMinuteIsNamedWhereTheTableIsClosed) {
  addBusyDay(400);
  addBusyMinute(600);
  tableIsClosed_ = true;
  const CompletionReport report = complete(actions, april);
  EXPECT_FALSE(report.isComplete());
  // Of the minute there is what the procedure gives; the records after it have come over the same connection.
  const auto ofTheMinute =
      static_cast<std::size_t>(std::count_if(entries_.begin(), entries_.end(), [](const AuditEntry& e) {
        return e.dateTime->starts_with("2004-04-07T09:00");
      }));
  ASSERT_GT(ofTheMinute, limit);
  EXPECT_THAT(shown(), SizeIs(expected(actions, april).size() - ofTheMinute + limit));
  EXPECT_EQ(server_.record().logins.size(), 1U);
  EXPECT_THAT(
      said(report),
      ElementsAre("incomplete: " + std::to_string(shown().size()) + " records",
                  std::string("Runtime / Custom Operator Actions, 2004-04-07 09:00: more than 5000 records within a "
                              "minute; the table cannot be read instead: ") +
                      refusalText));
}

TEST_F(CompletingOverTheWire, alarmsOfAllDatesAreFinishedByASelectWhereThatIsAllowed) {
  for (int i = 0; i < 600; ++i) add(busyDay - std::chrono::hours(i), 0ms, "vel_AlgText", "CS");
  for (int i = 0; i < 100; ++i) add(busyDay + std::chrono::hours(i), 0ms, "MSRT", "CS");
  addAt(std::nullopt, "vel_AlgText", "CS");
  addAt(std::nullopt, "MSRT", "CS");
  for (const DateRange& range : {april, noRange}) {
    expectWhole(complete(alarms, range), alarms, range);
    EXPECT_EQ(selects_.exchange(0), 1U);
  }
  tableIsClosed_ = true;
  const CompletionReport report = complete(alarms, april);
  EXPECT_THAT(shown(), SizeIs(limit));
  ASSERT_THAT(report.incomplete, SizeIs(1));
  EXPECT_EQ(report.incomplete[0].kind, query::IncompletePart::Kind::ofAllDates);
  EXPECT_EQ(report.incomplete[0].category, 1U);
  EXPECT_EQ(report.incomplete[0].reason.description(), refusalText);
}

TEST_F(CompletingOverTheWire, recordsWithoutADateNeedTheRightToTheTable) {
  addBusyDay(600);
  for (int i = 0; i < 3; ++i) addAt(std::nullopt, "Screen", "OA");
  expectWhole(complete(actions, noRange), actions, noRange);
  tableIsClosed_ = true;
  const CompletionReport report = complete(actions, noRange);
  EXPECT_THAT(shown(), SizeIs(600));
  ASSERT_THAT(report.incomplete, SizeIs(1));
  EXPECT_EQ(report.incomplete[0].kind, query::IncompletePart::Kind::undated);
}

TEST_F(CompletingOverTheWire, noRightIsNeededWhereTheTableHasNoRecordsWithoutADate) {
  addBusyDay(600);
  tableIsClosed_ = true;
  dateDeclaration_ = "datetime2(3) not null";
  expectWhole(complete(actions, noRange), actions, noRange);
}

TEST_F(CompletingOverTheWire, aConnectionThatBreaksInTheTenthSliceIsOpenedOnceMore) {
  addBusyDay(8000);
  afterSlice_ = [](std::size_t number, tds::Answer& answer) {
    if (number == 10) answer.cut(500).abandon().reset();
  };
  const CompletionReport report = complete(actions, april);
  expectWhole(report, actions, april);
  EXPECT_GT(report.slices, 10U);
  EXPECT_EQ(calls_, report.calls + 1);
  EXPECT_EQ(server_.record().logins.size(), 2U);
}

TEST_F(CompletingOverTheWire, aConnectionThatBreaksAgainFailsTheQueryAndLeavesTheLists) {
  addBusyDay(8000);
  afterSlice_ = [](std::size_t number, tds::Answer& answer) {
    if (number >= 10) answer.cut(500).abandon().reset();
  };
  const CompletionReport report = complete(actions, april);
  EXPECT_EQ(report.outcome, QueryOutcome::failed);
  EXPECT_EQ(slices_, 11U) << "the tenth twice";
  EXPECT_EQ(server_.record().logins.size(), 2U);
  EXPECT_EQ(lists_[0].rowCount(), 0U);
  ASSERT_TRUE(report.failure);
  EXPECT_THAT(report.failure->description(), ::testing::StartsWith("The connection to localhost"));
}

TEST_F(CompletingOverTheWire, aSelectThatBreaksIsReadOnceMoreAndCountedOnce) {
  addBusyMinute(2000);
  afterSelect_ = [](std::size_t number, tds::Answer& answer) {
    if (number == 1) answer.cut(500).abandon().close();
  };
  expectWhole(complete(actions, april), actions, april);
  EXPECT_EQ(selects_, 2U);
}

TEST_F(CompletingOverTheWire, aStopKeepsWhatHasCome) {
  addBusyDay(8000);
  afterSlice_ = [](std::size_t number, tds::Answer& answer) {
    if (number == 10) answer = tds::Answer().silence();
  };
  std::size_t seen = 0;
  const CompletionReport report = complete(actions, april, [&](const query::CompletionProgress& progress) {
    seen = progress.rows;
    return slices_ < 10;
  });
  EXPECT_TRUE(report.endedEarly);
  EXPECT_GT(seen, 0U);
  EXPECT_GE(shown().size(), seen);
  EXPECT_LT(shown().size(), 8000U);
  EXPECT_THAT(said(report),
              ElementsAre("incomplete: " + std::to_string(shown().size()) + " records", "stopped before the end"));
}

}  // namespace
}  // namespace korvel::test
