#include "db/embedded/embedded_connection.h"

#include <sqlite3.h>

#include <map>
#include <optional>

#include "base/error.h"
#include "db/embedded/audit_statements.h"
#include "db/embedded/embedded_folder.h"
#include "db/embedded/row_pusher.h"
#include "db/embedded/snapshot_tables.h"
#include "db/embedded/sqlite_database.h"
#include "db/procedure/query_audits_call.h"

namespace korvel::db {
namespace {

/// Rows of a name and a value.
class NamedTexts final : public ResultSink {
 public:
  void beginResult(std::span<const Field> /*fields*/) override {}
  bool row(std::span<const Cell> cells) override {
    if (cells.size() == 2) texts_.emplace(cells[0].text, cells[1].text);
    return true;
  }
  void endResult() override {}
  [[nodiscard]] std::string of(const std::string& name) const {
    const auto found = texts_.find(name);
    return found == texts_.end() ? std::string() : found->second;
  }

 private:
  std::map<std::string, std::string> texts_;
};

class EmbeddedConnection final : public Connection {
 public:
  EmbeddedConnection(const std::filesystem::path& file, const EmbeddedOptions& options)
      : database_(file, options.busyTimeout), rowLimit_(options.rowLimit) {
    // Nobody writes to a snapshot: what is locked is none, and is waited for by its queries.
    database_.setBusyTimeout({});
    snapshot_ = snapshotOrigin();
    database_.setBusyTimeout(options.busyTimeout);
  }

  void execute(std::string_view commandText, ResultSink& sink) override {
    if (commandText.find('\0') != std::string_view::npos)
      throw Error(SQLITE_ERROR, "the command text holds a character of code 0 and would be cut short there");
    if (const auto call = parseQueryAuditsCall(commandText))
      answer(*call, sink);
    else
      runText(std::string(commandText), sink);
    database_.checkUnchanged();
  }

  [[nodiscard]] ServerIdentity identity() const override {
    std::string product = std::string("SQLite ") + sqlite3_libversion();
    if (snapshot_)
      product += ", snapshot of " + snapshot_->database + " on " + snapshot_->server + ", " + snapshot_->taken;
    return {product, {}, snapshot_};
  }

  [[nodiscard]] bool selectsFreely() const noexcept override { return true; }

  void select(const AuditSelection& selection, ResultSink& sink) override {
    runText(auditSelectionStatement(selection, database_.tableOrder(std::string(auditTrail))), sink);
    database_.checkUnchanged();
  }

 private:
  static constexpr std::string_view auditTrail = "Korvel_Audit_Trails";

  void answer(const QueryAuditsCall& call, ResultSink& sink) {
    for (const std::string& statement : auditStatements(call, database_.tableOrder(std::string(auditTrail)), rowLimit_))
      if (!runText(statement, sink)) return;
  }

  /// Runs the statements of a text one after the other; false once the sink has had enough.
  bool runText(const std::string& text, ResultSink& sink) {
    for (std::size_t start = 0; start < text.size();) {
      if (!sink.shouldContinue()) return false;
      const SqliteStatement statement = database_.prepare(text, start);
      if (!statement) continue;
      const int code = RowPusher(statement.get(), sink).push();
      if (code == SQLITE_ROW) return false;
      if (code != SQLITE_DONE) throw database_.error(code);
    }
    return true;
  }

  /// Whose copy the database is, where it says so; a damaged one says so when it is queried.
  std::optional<SnapshotOrigin> snapshotOrigin() {
    NamedTexts facts;
    try {
      runText("SELECT Name, Value FROM " + std::string(snapshotFactsTable), facts);
    } catch (const Error&) {
      return {};
    }
    if (facts.of("format") != snapshotFormat) return {};
    return SnapshotOrigin{facts.of("server"), facts.of("database"), facts.of("begun")};
  }

  SqliteDatabase database_;
  std::size_t rowLimit_;
  std::optional<SnapshotOrigin> snapshot_;
};

}  // namespace

std::unique_ptr<Connection> openEmbedded(const std::filesystem::path& folder, std::string_view database,
                                         EmbeddedOptions options) {
  return std::make_unique<EmbeddedConnection>(embeddedDatabaseFile(folder, database), options);
}

}  // namespace korvel::db
