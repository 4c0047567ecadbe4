// Queries that are stopped while a server runs them, servers that ignore the stop, and the rollback of changes by a
// custom text.

#include <chrono>
#include <csignal>
#include <future>
#include <sstream>
#include <thread>

#include "cli/tool.h"
#include "query/custom_query.h"
#include "tests/odbc/full_port.h"
#include "tests/odbc/wire.h"
#include "tests/support/process_conditions_posix.h"

namespace korvel::test {
namespace {

using namespace std::chrono_literals;
using query::CustomOutcome;
using query::QueryOutcome;
using tds::Answer;
using tds::Moment;
using tds::Steps;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::vector<tds::Column> numberAndName{{"Nr", "int"}, {"Name", "nvarchar(30)"}};

Answer begun() {
  return Answer().result(numberAndName).row({1, "pump"});
}

/// Both kinds of query over the wire, stopped by the caller's onWait once the server has received something.
class Stopping : public WireTest {
 protected:
  void SetUp() override {
    WireTest::SetUp();
    // Nothing but a stop ends these.
    access_.options.commandTimeout = 0s;
    access_.options.connectionTimeout = 60s;
    environment_.pace = {1ms, tds::testTimeout};
    lists_[5].startOver({{"Before", 1440, 0}});
  }
  ~Stopping() override {
    // Work that was left behind still uses the server.
    while (db::hasAbandonedWorkers()) std::this_thread::yield();
  }

  QueryOutcome standardQuery() {
    query::FilterTree tree;
    tree.selectAll();
    return query::runStandardQuery(
               {tree, {}, {}}, connector(), lists_, 0, [this] { return !isTime(); }, environment_)
        .outcome;
  }
  CustomOutcome customQuery() {
    return query::runCustomQuery(
               "go", {}, connector(), lists_[5], [this](std::size_t) { return !isTime(); }, environment_)
        .outcome;
  }
  void answerWith(const Answer& answer) {
    server_.answerOthers([answer](const tds::Command&) { return answer; });
  }
  /// Stops the queries from here on as soon as this holds.
  void stopWhen(std::function<bool(const tds::Record&)> holds) { holds_ = std::move(holds); }
  static bool hasCommand(const tds::Record& record) { return !record.commands.empty(); }

  void expectNothingShown() const {
    for (const auto& list : lists_) EXPECT_EQ(list.rowCount(), 0U);
  }

  query::Connector connector() {
    return [access = access_, server = otherServer_.empty() ? serverName() : otherServer_](
               std::string_view, const std::stop_token& stop) {
      db::odbc::ServerAccess stoppable = access;
      stoppable.stop = stop;
      return db::odbc::openServer(server, "Korvel_Audit", stoppable);
    };
  }

  std::string otherServer_;  ///< instead of the TDS server
  query::ResultLists lists_ = query::makeResultLists();
  query::QueryEnvironment environment_;

 private:
  [[nodiscard]] bool isTime() const { return holds_(server_.record()); }

  std::function<bool(const tds::Record&)> holds_ = hasCommand;
};

TEST_F(Stopping, aServerThatNeverAnswersGetsAnAttentionAndIsLeft) {
  for (const Answer& answer : {Answer().silence(), begun().silence(), begun().done().silence()}) {
    const std::size_t attentions = server_.record().attentions;
    const std::size_t commands = server_.record().commands.size();
    stopWhen([commands](const tds::Record& record) { return record.commands.size() > commands; });
    answerWith(answer);
    EXPECT_EQ(standardQuery(), QueryOutcome::stopped);
    EXPECT_FALSE(db::hasAbandonedWorkers());
    expectNothingShown();
    EXPECT_TRUE(server_.waitUntilDisconnected());
    EXPECT_GT(server_.record().attentions, attentions);
  }
  stopWhen([commands = server_.record().commands.size()](const tds::Record& record) {
    return record.commands.size() > commands;
  });
  answerWith(Answer().silence());
  EXPECT_EQ(customQuery(), CustomOutcome::stopped);
  expectNothingShown();
  EXPECT_TRUE(server_.waitUntilDisconnected());
}

TEST_F(Stopping, aServerThatAnswersTheAttentionLateIsNotWaitedFor) {
  const tds::Gate gate;
  server_.answerAttentionsAt(gate);
  answerWith(begun().silence());
  environment_.pace.grace = 0ms;
  EXPECT_EQ(standardQuery(), QueryOutcome::stopped);
  // After the query the server still holds the connection.
  EXPECT_TRUE(gate.waitUntilReached());
  EXPECT_EQ(server_.record().openConnections, 1U);
  expectNothingShown();
  gate.open();
  EXPECT_TRUE(server_.waitUntilDisconnected());
  expectNothingShown();
}

TEST_F(Stopping, aServerThatIgnoresAttentionsLosesItsConnection) {
  server_.ignoreAttentions();
  answerWith(begun().silence());
  EXPECT_EQ(customQuery(), CustomOutcome::stopped);
  EXPECT_FALSE(db::hasAbandonedWorkers());
  EXPECT_TRUE(server_.waitUntilDisconnected());
}

TEST_F(Stopping, aLoginThatIsNotAnsweredIsGivenUpAndOthersDoNotWaitForIt) {
  for (const Moment moment : {Moment::accepted, Moment::preloginAnswered, Moment::loginReceived}) {
    SCOPED_TRACE(static_cast<int>(moment));
    server_.at(moment, Steps().silence());
    const std::size_t connections = server_.record().connections;
    stopWhen([connections](const tds::Record& record) { return record.connections > connections; });
    EXPECT_EQ(standardQuery(), QueryOutcome::stopped);
    EXPECT_FALSE(db::hasAbandonedWorkers());
    server_.at(moment, Steps());
    EXPECT_FALSE(connectError());
    EXPECT_TRUE(server_.waitUntilDisconnected());
  }
}

/// A connection in progress has no peer address yet by which it could be identified.
TEST_F(Stopping, aLoginThatIsStillConnectingIsGivenUpAndOthersDoNotWaitForIt) {
  const FullPort full;
  otherServer_ = full.serverName();
  int looks = 0;
  stopWhen([&looks](const tds::Record&) { return ++looks == 200; });
  EXPECT_EQ(standardQuery(), QueryOutcome::stopped);
  EXPECT_FALSE(db::hasAbandonedWorkers());
  EXPECT_FALSE(connectError());
}

/// A stop while the driver is idle: cancelling then waits for the server's answer, and nothing else cancels meanwhile.
TEST_F(Stopping, aServerThatIgnoresAttentionsLosesItsConnectionBetweenTwoRowsToo) {
  server_.ignoreAttentions();
  server_.answer("go", Answer()
                           .result(numberAndName)
                           .rows(2000,
                                 [](std::size_t row) {
                                   return std::vector<tds::Value>{static_cast<std::int64_t>(row), std::string(30, 'x')};
                                 })
                           .silence());
  std::stop_source stop;
  access_.stop = stop.get_token();
  const auto connection = connect();
  /// Stops at its first row.
  class StoppingSink final : public db::ResultSink {
   public:
    explicit StoppingSink(std::stop_source& source) : source_(source) {}
    void beginResult(std::span<const db::Field>) override {}
    bool row(std::span<const db::Cell>) override {
      ++rows;
      source_.request_stop();
      return true;
    }
    void endResult() override {}

    std::size_t rows = 0;

   private:
    std::stop_source& source_;
  } sink(stop);
  auto ended = std::async(std::launch::async, [&] { return errorOf([&] { connection->execute("go", sink); }); });
  EXPECT_EQ(ended.wait_for(tds::testTimeout), std::future_status::ready);
  EXPECT_EQ(sink.rows, 1U);
  EXPECT_GT(server_.record().attentions, 0U);
  server_.stop();  // ends it in any case
}

TEST_F(Stopping, afterAnEmptyFirstResultNoOtherIsWaitedFor) {
  // FreeTDS reports the end of a result after the columns of the next one.
  answerWith(Answer().result(numberAndName).done().result(numberAndName).silence());
  const auto end = std::chrono::steady_clock::now() + tds::testTimeout;
  stopWhen([end](const tds::Record&) { return std::chrono::steady_clock::now() > end; });
  EXPECT_EQ(standardQuery(), QueryOutcome::noRecords);
  EXPECT_TRUE(server_.waitUntilDisconnected());
}

/// A statement that changes no row is answered by some drivers as if there were nothing more.
TEST_F(Stopping, aStatementThatChangesNothingDoesNotEndItsBatch) {
  access_.options.driver = SCRIPTED_DRIVER;
  access_.driverText = [](const db::odbc::LoginRequest&) { return "Driver={" SCRIPTED_DRIVER "};"; };
  stopWhen([](const tds::Record&) { return false; });
  EXPECT_EQ(customQuery(), CustomOutcome::filled);
  ASSERT_EQ(lists_[5].rowCount(), 1U);
  EXPECT_EQ(lists_[5].text({0}, {0}), "pump");
}

/// The tool on a server that does not answer, and Ctrl+C.
TEST_F(Stopping, theToolEndsOnCtrlC) {
  // Whatever signals this program was started to ignore.
  const SignalSetting heard(SIGINT, SIG_DFL);
  const TemporaryFolder folder;
  const std::string target = (folder / "rows.csv").string();
  writeFileAtomically(target, "before");
  server_.answerOthers([](const tds::Command&) {
    (void)std::raise(SIGINT);
    return begun().silence();
  });
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"sql", "--format", "csv", "--output", target, "select 1"},
        {"sql", "--format", "table", "--output", target, "select 1"},
        {"query", "--format", "csv", "--output", target}}) {
    std::ostringstream out;
    std::ostringstream err;
    std::vector<std::string> all = arguments;
    EXPECT_EQ(cli::runTool(std::move(all), out, err, connector()), 130) << arguments[0];
    EXPECT_EQ(out.str(), "");
    EXPECT_THAT(err.str(), ::testing::HasSubstr("stopped"));
    EXPECT_EQ(readFile(target), "before");
    while (db::hasAbandonedWorkers()) std::this_thread::yield();
    EXPECT_TRUE(server_.waitUntilDisconnected());
  }
}

/// Changes by a custom text are rolled back.
class Undoing : public Stopping {
 protected:
  std::vector<std::string> transactionsOf(const Answer& answer) {
    answerWith(answer);
    const std::size_t before = server_.record().transactions.size();
    outcome = customQuery();
    EXPECT_TRUE(server_.waitUntilDisconnected());
    auto all = server_.record().transactions;
    all.erase(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(before));
    return all;
  }
  CustomOutcome outcome = CustomOutcome::failed;
};

TEST_F(Undoing, everyTextIsRolledBack) {
  stopWhen([](const tds::Record&) { return false; });
  const auto rolledBack = ElementsAre("begin", "rollback", "begin");
  EXPECT_THAT(transactionsOf(Answer().affected(3).result(numberAndName).row({1, "pump"})), rolledBack);
  EXPECT_EQ(outcome, CustomOutcome::filled);
  EXPECT_THAT(transactionsOf(Answer().affected(3).error({208, "Invalid object name 'x'."})), rolledBack);
  EXPECT_EQ(outcome, CustomOutcome::failed);
  EXPECT_THAT(transactionsOf(Answer()), rolledBack);
  EXPECT_EQ(outcome, CustomOutcome::noRecords);
}

TEST_F(Undoing, aStoppedTextToo) {
  stopWhen(hasCommand);
  EXPECT_THAT(transactionsOf(begun().silence()), ElementsAre("begin", "rollback", "begin"));
  EXPECT_EQ(outcome, CustomOutcome::stopped);
}

TEST_F(Undoing, theStandardQueryNeedsNoTransaction) {
  stopWhen([](const tds::Record&) { return false; });
  answerWith(begun());
  EXPECT_EQ(standardQuery(), QueryOutcome::filled);
  EXPECT_THAT(server_.record().transactions, IsEmpty());
}

}  // namespace
}  // namespace korvel::test
