#pragma once

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <future>
#include <map>
#include <set>

#include "db/embedded/embedded_connection.h"
#include "db/procedure/audit_conditions.h"
#include "query/complete_query.h"
#include "query/date_slices.h"
#include "tests/db/plain_evaluation.h"
#include "tests/query/filter_nodes.h"
#include "tests/support/temporary_folder.h"

namespace korvel::query {

using std::chrono::sys_days;
using test::AuditEntry;
using namespace std::chrono_literals;

/// Rows that an answer of the server has at most.
inline constexpr std::size_t limit = 20;

inline std::string dayText(sys_days day) {
  return minuteText(day).substr(0, 10);
}

/// Rows with every case that a comparison can get wrong, on a few days; regular ones over two months, of each category
/// more than the limit; days of their own, rows without a date, with dates that are none and with dates that no server
/// has.
inline std::vector<AuditEntry> trailOf(int alarmTableRows) {
  std::vector<AuditEntry> entries = test::nastyRows(240);
  int number = 10000;
  const std::vector<AuditEntry> kinds = {
      {0, {}, "Picture", "CHANGE", "CS"},   {0, {}, "MSRT", "CHANGE", "CS"},       {0, {}, "PDETag", "CHANGE", "RT"},
      {0, {}, "UATable", "CHANGE", "CS"},   {0, {}, "Screen", "CLICK", "OA"},      {0, {}, "UATable", "CHANGE", "RT"},
      {0, {}, "Project", "CHECK_IN", "DC"}, {0, {}, "Project", "CHECK_OUT", "DC"}, {0, {}, "Project", "ROLLBACK", "DC"},
      {0, {}, "Project", "RESTORE", "DC"},  {0, {}, "Audit", "START", "AU"}};
  const auto add = [&](AuditEntry entry, std::optional<std::string> time) {
    entry.number = number++;
    entry.dateTime = std::move(time);
    entries.push_back(entry);
  };
  for (int i = 0; i < 60; ++i) {
    const std::string day = dayText(sys_days(2004y / 4 / 1) + std::chrono::days(i));
    for (const AuditEntry& kind : kinds)
      if ((i + static_cast<int>(kind.auditType->front())) % 2 == 0 || i % 3 == 0) add(kind, day + " 08:00:00.000");
    add(kinds[static_cast<std::size_t>(i) % kinds.size()], day + " 00:00:00.000");
    add(kinds[static_cast<std::size_t>(i) % kinds.size()], day + " 23:59:59.999");
  }
  // A minute with more rows of one category than the limit.
  for (int i = 0; i < 45; ++i) add(kinds[4], "2004-04-20 09:00:30.000");
  for (const AuditEntry& kind : kinds) {
    add(kind, std::nullopt);
    add(kind, "yesterday");
    add(kind, "1492-10-12 08:00:00.000");
  }
  for (int i = 0; i < alarmTableRows; ++i)
    add({0, {}, "vel_AlgText", "CHANGE", "CS"},
        i % 5 == 0 ? std::nullopt
                   : std::optional(dayText(sys_days(2004y / 4 / 1) + std::chrono::days(i)) + " 10:00:00"));
  return entries;
}

/// A server whose login may not read the table, or that breaks, in front of an embedded database.
class Server {
 public:
  explicit Server(std::vector<AuditEntry> trail) : entries(std::move(trail)) {
    test::writeAuditDatabase(folder_ / "D.db", entries);
  }

  Connector connector() {
    return [this](std::string_view /*connectionString*/, const std::stop_token& /*stop*/) {
      ++connections;
      return std::make_unique<Connection>(*this);
    };
  }

  /// Each row twice, which a table without a key may hold.
  void repeatEveryRow() {
    test::DatabaseWriter(folder_ / "D.db")
        .run(
            "CREATE TABLE Copy AS SELECT * FROM Korvel_Audit_Trails; DROP TABLE Korvel_Audit_Trails; ALTER TABLE Copy "
            "RENAME TO Korvel_Audit_Trails; INSERT INTO Korvel_Audit_Trails SELECT * FROM Korvel_Audit_Trails");
    const std::vector<AuditEntry> once = entries;
    entries.insert(entries.end(), once.begin(), once.end());
  }

  std::vector<AuditEntry> entries;
  bool tableIsClosed = false;
  bool datesAreAlways = false;
  bool isFree = false;         ///< selects cost no more than calls
  bool hasOtherTable = false;  ///< the login's table is not the procedure's
  std::function<void(std::size_t call)> beforeCall = [](std::size_t /*call*/) {};
  std::function<void(std::size_t select)> beforeSelect = [](std::size_t /*select*/) {};
  std::function<void(std::size_t call)> withinAnswer = [](std::size_t /*call*/) {};
  /// Whether the answer that is being given is still wanted; for withinAnswer.
  std::function<bool()> isWanted;
  std::size_t calls = 0;
  std::atomic<std::size_t> selects = 0;
  std::size_t connections = 0;
  std::vector<std::string> texts;
  test::TemporaryFolder folder_;

 private:
  /// Passes an answer on.
  class Relay final : public db::ResultSink {
   public:
    Relay(Server& server, db::ResultSink& sink) : server_(server), sink_(sink) {
      server_.isWanted = [this] { return sink_.shouldContinue(); };
    }
    void beginResult(std::span<const db::Field> fields) override {
      std::vector<db::Field> known(fields.begin(), fields.end());
      for (db::Field& field : known)
        if (field.name == "DateTime") field.mayBeNull = !server_.datesAreAlways;
      sink_.beginResult(known);
    }
    bool row(std::span<const db::Cell> cells) override {
      server_.withinAnswer(server_.calls);
      return sink_.row(cells);
    }
    void endResult() override { sink_.endResult(); }
    bool shouldContinue() override { return sink_.shouldContinue(); }

   private:
    Server& server_;
    db::ResultSink& sink_;
  };

  class Connection final : public db::Connection {
   public:
    explicit Connection(Server& server)
        : server_(server), database_(db::openEmbedded(server.folder_.path(), "D", {.rowLimit = limit})) {}
    void execute(std::string_view commandText, db::ResultSink& sink) override {
      server_.texts.emplace_back(commandText);
      server_.beforeCall(++server_.calls);
      Relay relay(server_, sink);
      database_->execute(commandText, relay);
    }
    [[nodiscard]] bool selectsFreely() const noexcept override { return server_.isFree; }
    void select(const db::AuditSelection& selection, db::ResultSink& sink) override {
      if (server_.tableIsClosed) throw Error(db::rightMissingNumber, "The SELECT permission was denied.");
      ++server_.calls;
      server_.beforeSelect(++server_.selects);
      Relay relay(server_, sink);
      db::AuditSelection asked = selection;
      if (server_.hasOtherTable)
        asked = {9, db::AuditSelection::Dates::within, "2004-04-03 00:00:00", "2004-04-13 00:00:00"};
      database_->select(asked, relay);
    }

   private:
    Server& server_;
    std::unique_ptr<db::Connection> database_;
  };
};

inline const DateRange aprilToMay{2004y / 4 / 3, 2004y / 5 / 20, true};
inline const DateRange noRange{};

class CompleteQuery : public testing::Test {
 protected:
  CompletionReport run(Server& server, CategoryFlags flags, const DateRange& range,
                       const CompletionCallback& onWait = {},
                       const results::MemoryGauge& memory = results::memoryState) {
    FilterTree tree;
    for (const FilterNode& node : filterNodes())
      if (node.argument != 0 && flags[node.argument - 1]) tree.setChecked(nodeOf(node.key), true);
    const std::string connectionString = "a server";
    lists = makeResultLists();
    // A worker that was stopped uses the server until it ends: it is not abandoned.
    QueryEnvironment patient;
    patient.pace = {std::chrono::milliseconds{1}, std::chrono::seconds{20}};
    patient.memory = memory;
    CompleteAnswer answer =
        completeStandardQuery({tree, range, connectionString}, server.connector(), onWait, patient, limit);
    return answer.fill(lists, 0);
  }

  /// The entry numbers that the procedure gives without its limit: once for each category.
  static std::vector<int> expected(const Server& server, CategoryFlags flags, const DateRange& range) {
    std::vector<int> numbers;
    const test::Range times{fromDateText(range), toDateText(range)};
    const test::Range* const inTime = range.DateRangeActive ? &times : nullptr;
    for (const AuditEntry& entry : server.entries) {
      if (flags.all()) {
        if (inTime == nullptr || inTime->contains(entry)) numbers.push_back(entry.number);
        continue;
      }
      for (std::size_t category = 0; category < flags.size(); ++category)
        if (flags[category] && test::belongs(entry, category, inTime)) numbers.push_back(entry.number);
    }
    std::sort(numbers.begin(), numbers.end());
    return numbers;
  }

  std::vector<int> shown(std::size_t list = 0) const {
    std::vector<int> numbers;
    for (std::size_t row = 0; row < lists[list].rowCount(); ++row)
      numbers.push_back(std::stoi(std::string(lists[list].text({row}, {0}))));
    std::sort(numbers.begin(), numbers.end());
    return numbers;
  }

  void expectWhole(Server& server, CategoryFlags flags, const DateRange& range) {
    const CompletionReport report = run(server, flags, range);
    const std::vector<int> numbers = expected(server, flags, range);
    ASSERT_EQ(report.outcome, numbers.empty() ? QueryOutcome::noRecords : QueryOutcome::filled) << flags;
    ASSERT_THAT(report.incomplete, testing::IsEmpty()) << flags;
    ASSERT_EQ(shown(), numbers) << flags;
    ASSERT_EQ(report.changedEntryCount, 0U) << flags;
  }

  ResultLists lists = makeResultLists();
};

inline const CategoryFlags all(1023);
inline const CategoryFlags alarms = CategoryFlags().set(1);
inline const CategoryFlags actions = CategoryFlags().set(4);

}  // namespace korvel::query
