// Ctrl+C in the commands snapshot and compare.

#include <gmock/gmock.h>

#include <csignal>

#include "db/embedded/embedded_connection.h"
#include "tests/db/audit_database.h"
#include "tests/support/process_conditions_posix.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/tool_run.h"

namespace korvel::test {
namespace {

using testing::HasSubstr;

/// The user presses Ctrl+C after some rows of the trail; no more come until the program has had enough.
class InterruptedConnection final : public db::Connection {
 public:
  explicit InterruptedConnection(std::unique_ptr<db::Connection> connection) : connection_(std::move(connection)) {}
  void execute(std::string_view text, db::ResultSink& sink) override { connection_->execute(text, sink); }
  void select(const db::AuditSelection& selection, db::ResultSink& sink) override {
    if (selection.columns != db::AuditSelection::Columns::all) return connection_->select(selection, sink);
    class Interrupting final : public db::ResultSink {
     public:
      explicit Interrupting(db::ResultSink& rows) : rows_(rows) {}
      void beginResult(std::span<const db::Field> fields) override { rows_.beginResult(fields); }
      bool row(std::span<const db::Cell> cells) override {
        if (--left_ > 0) return rows_.row(cells);
        std::raise(SIGINT);
        while (rows_.shouldContinue()) std::this_thread::yield();
        return false;
      }
      void endResult() override { rows_.endResult(); }
      bool shouldContinue() override { return rows_.shouldContinue(); }

     private:
      db::ResultSink& rows_;
      int left_ = 10000;
    };
    Interrupting interrupting(sink);
    connection_->select(selection, interrupting);
  }
  [[nodiscard]] db::ServerIdentity identity() const override { return connection_->identity(); }

 private:
  std::unique_ptr<db::Connection> connection_;
};

TEST(SnapshotCommandOnCtrlC, KeepsWhatCameAndIsContinued) {
  const TemporaryFolder folder;
  std::vector<AuditEntry> entries;
  for (int i = 1; i <= 12000; ++i) entries.push_back({i, "2004-03-07 00:00:00.000", "UATable", "UPDATE", "CS"});
  writeAuditDatabase(folder / "D.db", entries);
  const SignalSetting heard(SIGINT, SIG_DFL);
  const auto interrupted = [&folder](std::string_view, const std::stop_token&) {
    return std::make_unique<InterruptedConnection>(db::openEmbedded(folder.path(), "D"));
  };
  const std::vector<std::string> snapshot = {"snapshot", "--server", folder.path().string(),     "--database",
                                             "D",        "--output", (folder / "taken").string()};
  const ToolRun stopped = runTool(snapshot, interrupted);
  EXPECT_EQ(stopped.status, 130);
  EXPECT_THAT(stopped.err, HasSubstr(" rows are kept in "));
  EXPECT_FALSE(std::filesystem::exists(folder / "taken" / "D.db"));
  const ToolRun continued = runTool(snapshot);
  EXPECT_EQ(continued.status, 0) << continued.err;
  EXPECT_THAT(continued.out, HasSubstr("12,000 rows, continued after "));

  const ToolRun compared =
      runTool({"compare", (folder / "taken").string(), "--output", (folder / "report").string()}, interrupted);
  EXPECT_EQ(compared.status, 130);
  EXPECT_EQ(compared.out, "");
  EXPECT_FALSE(std::filesystem::exists(folder / "report")) << "nothing is written of half a comparison";
}

}  // namespace
}  // namespace korvel::test
