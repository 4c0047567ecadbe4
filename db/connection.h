#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "db/procedure/audit_selection.h"

namespace korvel::db {

/// What a column holds, as far as writers of typed files need to know it. All values travel as text.
enum class ColumnKind { text, number, boolean, dateTime, binary };

struct Field {
  std::string name;
  ColumnKind kind = ColumnKind::text;
  bool mayBeNull = true;  ///< false where the engine knows that no value of the column is null
};

/// One value of a row: UTF-8 text in the form the server gives it, valid only during the call that hands it over.
struct Cell {
  std::string_view text;
  bool isNull = false;
};

/// Receives an answer as it arrives: for each result set beginResult, its rows, endResult. Results without columns (row
/// counts) never reach it.
class ResultSink {
 public:
  virtual ~ResultSink() = default;
  virtual void beginResult(std::span<const Field> fields) = 0;
  /// `cells` has one entry a field. Returns false to stop the whole answer; the connection then ends it in good order
  /// and calls nothing more, not even endResult.
  virtual bool row(std::span<const Cell> cells) = 0;
  virtual void endResult() = 0;
  /// Asked again and again while an engine works, also before its first row and between result sets, within the call of
  /// execute. False ends the answer as row() does; what it throws ends it as well and comes out of execute.
  virtual bool shouldContinue() { return true; }
};

/// What a snapshot is a copy of.
struct SnapshotOrigin {
  std::string server;
  std::string database;
  std::string taken;  ///< local time with its offset
};

/// Who answers, and as whom it knows us; empty where a connection does not tell.
struct ServerIdentity {
  std::string product;  ///< with its version: "SQLite 3.40.1"; of a snapshot also what it is of
  std::string login;
  std::optional<SnapshotOrigin> snapshot{};  ///< where the database is one
};

/// An open connection to one audit database; closed by destruction. Used by one thread at a time.
class Connection {
 public:
  virtual ~Connection() = default;
  /// Runs `commandText` and pushes its whole answer. Throws Error where the engine reports a failure, also when part of
  /// the answer has already been pushed: the sink's owner must then drop what it got.
  virtual void execute(std::string_view commandText, ResultSink& sink) = 0;
  /// The same, in a transaction that is rolled back, also when the text fails or is stopped: for texts that users type.
  /// A text that commits its own transaction is not rolled back. Engines that cannot write execute the text as it is.
  virtual void executeRolledBack(std::string_view commandText, ResultSink& sink) { execute(commandText, sink); }
  /// Asks nobody: what is known since the login.
  [[nodiscard]] virtual ServerIdentity identity() const { return {}; }
  /// Whether a select of any part of the trail costs no more than the procedure's own answer, and is always allowed.
  [[nodiscard]] virtual bool selectsFreely() const noexcept { return false; }
  /// Selects rows of the audit trail from its table, beyond the procedure's limit. Throws Error like execute, with
  /// rightMissingNumber where the login may not read the table.
  virtual void select(const AuditSelection& selection, ResultSink& sink) {
    execute(auditSelectionText(selection), sink);
  }
};

}  // namespace korvel::db
