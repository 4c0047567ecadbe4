#include "evidence/snapshot_file.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "base/atomic_file.h"
#include "base/error.h"
#include "base/files.h"
#include "base/numbers.h"
#include "base/paths.h"
#include "base/system_errors.h"
#include "base/text.h"
#include "db/embedded/audit_statements.h"
#include "db/embedded/snapshot_tables.h"
#include "evidence/snapshot_failures.h"
#include "settings/string_table.h"

namespace korvel::evidence {

using settings::localizedError;

namespace {

/// How many rows are lost at most when the program ends unexpectedly.
constexpr std::uint64_t rowsBetweenStores = 65536;

constexpr std::string_view numberColumn = "Nr";
/// Columns whose declared types make SQLite take texts that look like numbers for numbers.
constexpr std::array<std::string_view, 2> numericColumns = {"DateTime", "T1"};

std::string quotedName(std::string_view name) {
  return '"' + replaceAll(std::string(name), "\"", "\"\"") + '"';
}

/// Whether SQLite would store a number instead of a text, in a column that has numbers.
bool looksLikeNumber(std::string_view text) {
  text = trimWhitespace(text);
  if (text.starts_with('+') || text.starts_with('-')) text.remove_prefix(1);
  if (text.empty() || (!isDigit(text.front()) && text.front() != '.')) return false;
  double value = 0;
  const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), value);
  return failure != std::errc::invalid_argument && end == text.data() + text.size();
}

std::optional<std::int64_t> exactInteger(std::string_view text) {
  const auto number = parseInteger<std::int64_t>(text);
  return number && std::to_string(*number) == text ? number : std::nullopt;
}

std::optional<double> exactNumber(std::string_view text) {
  double value = 0;
  const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (failure != std::errc() || end != text.data() + text.size()) return std::nullopt;
  NumberText written;
  return std::string_view(written.data(), writeNumber(value, written)) == text ? std::optional(value) : std::nullopt;
}

std::string_view textAt(sqlite3_stmt* statement, int column) {
  const unsigned char* const text = sqlite3_column_text(statement, column);
  return {reinterpret_cast<const char*>(text == nullptr ? reinterpret_cast<const unsigned char*>("") : text),
          static_cast<std::size_t>(sqlite3_column_bytes(statement, column))};
}

}  // namespace

std::optional<SnapshotFacts> wholeFacts(const std::function<std::string(std::string_view name)>& valueOf) {
  const auto rows = parseInteger<std::uint64_t>(valueOf("rows"));
  const auto digest = digestFromHex(valueOf("digest"));
  if (valueOf("state") != "complete" || !rows || !digest) return std::nullopt;
  return SnapshotFacts{{valueOf("server"), valueOf("database"), valueOf("from"), valueOf("to")},
                       valueOf("engine"),
                       valueOf("login"),
                       valueOf("begun"),
                       valueOf("ended"),
                       valueOf("program"),
                       parseInteger<std::int64_t>(valueOf("end")),
                       *rows,
                       *digest};
}

void SnapshotFile::DatabaseCloser::operator()(sqlite3* database) const noexcept {
  sqlite3_close_v2(database);
}

void SnapshotFile::StatementFinalizer::operator()(sqlite3_stmt* statement) const noexcept {
  sqlite3_finalize(statement);
}

SnapshotFile::SnapshotFile(const std::filesystem::path& file, const SnapshotSource& source) : file_(file) {
  open(file);
  // The lock is kept until the file is closed: another run fails here.
  run("PRAGMA locking_mode=EXCLUSIVE; PRAGMA journal_mode=DELETE; PRAGMA synchronous=NORMAL; "
      "PRAGMA cache_size=-65536; PRAGMA trusted_schema=OFF; BEGIN EXCLUSIVE");
  const Statement tables = prepare("SELECT count(*) FROM sqlite_master");
  if (sqlite3_step(tables.get()) != SQLITE_ROW) check(sqlite3_errcode(database_.get()));
  if (sqlite3_column_int64(tables.get(), 0) == 0)
    create(source);
  else
    resume(source);
}

SnapshotFile::~SnapshotFile() = default;

void SnapshotFile::open(const std::filesystem::path& file) {
  sqlite3* database = nullptr;
  const int code = sqlite3_open_v2(utf8FromPath(extendedLengthPath(file)).c_str(), &database,
                                   SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
  database_.reset(database);
  if ((code & 0xFF) == SQLITE_CANTOPEN) {
    // The engine has tried again to read only, and lost the system's reason.
    try {
      const AtomicFile probe(file);
    } catch (const Error& reason) {
      throw unwritable(file, reason);
    }
  }
  check(code);
}

void SnapshotFile::create(const SnapshotSource& source) {
  std::string tables = "CREATE TABLE ";
  tables += db::snapshotFactsTable;
  tables += " (Name TEXT PRIMARY KEY, Value TEXT) WITHOUT ROWID; CREATE TABLE ";
  tables += db::snapshotDigestsTable;
  tables += " (Place INTEGER PRIMARY KEY, Digest BLOB)";
  run(tables);
  setFact("format", db::snapshotFormat);
  setFact("version", std::to_string(db::snapshotVersion));
  setFact("state", "unfinished");
  setSource(source);
  run("COMMIT; BEGIN EXCLUSIVE");
}

void SnapshotFile::setSource(const SnapshotSource& source) const {
  setFact("server", source.server);
  setFact("database", source.database);
  setFact("from", source.from);
  setFact("to", source.to);
}

void SnapshotFile::resume(const SnapshotSource& source) {
  const std::string name = utf8FromPath(file_);
  const Statement known =
      prepare("SELECT count(*) FROM sqlite_master WHERE name = '" + std::string(db::snapshotFactsTable) + "'");
  if (sqlite3_step(known.get()) != SQLITE_ROW || sqlite3_column_int64(known.get(), 0) == 0 ||
      fact("format") != db::snapshotFormat || (fact("state") != "unfinished" && !isComplete()))
    throw localizedError(SQLITE_NOTADB, "snapshot.notUnfinished", {name});
  if (fact("version") != std::to_string(db::snapshotVersion))
    throw localizedError(SQLITE_NOTADB, "snapshot.otherVersion", {name});
  // Of a trail that did not answer nothing is kept.
  if (fact("begun").empty()) setSource(source);
  const SnapshotSource begun{fact("server"), fact("database"), fact("from"), fact("to")};
  if (begun != source)
    throw localizedError(SQLITE_NOTADB, "snapshot.otherRows",
                         {name, begun.database, begun.server,
                          begun.from.empty() ? std::string() : " (" + begun.from + " - " + begun.to + ")"});
  numbersAreUnique_ = fact("numbersRepeat") != "yes";
  rows_ = parseInteger<std::uint64_t>(fact("rows")).value_or(0);
  lastNumber_ = parseInteger<std::int64_t>(fact("lastNumber"));
  const Statement columns =
      prepare("SELECT name FROM pragma_table_info('" + std::string(db::snapshotTrailTable) + "')");
  int code = sqlite3_step(columns.get());
  for (; code == SQLITE_ROW; code = sqlite3_step(columns.get())) columns_.emplace_back(textAt(columns.get(), 0));
  if (code != SQLITE_DONE) check(code);
  if (columns_.empty()) return;
  std::vector<db::Field> fields;
  for (const std::string& column : columns_) fields.push_back({column});
  columns_.clear();
  begin(fields);
}

SnapshotFacts SnapshotFile::completeFacts() const {
  auto facts = wholeFacts([this](std::string_view name) { return fact(name); });
  if (!facts) throw localizedError(SQLITE_CORRUPT, "snapshot.unfinishedDamaged", {utf8FromPath(file_)});
  return std::move(*facts);
}

std::optional<std::int64_t> SnapshotFile::end() const {
  return parseInteger<std::int64_t>(fact("end"));
}

void SnapshotFile::start(std::string_view begun, std::optional<std::int64_t> end) {
  setFact("begun", begun);
  setFact("end", end ? std::to_string(*end) : std::string());
  store();
}

void SnapshotFile::forgetLastNumber() {
  if (rows_ == 0) return;
  run("DELETE FROM " + std::string(db::snapshotTrailTable) + " WHERE Nr " +
      (lastNumber_ ? "= " + std::to_string(*lastNumber_) : std::string("IS NULL")));
  const auto forgotten = static_cast<std::uint64_t>(sqlite3_changes64(database_.get()));
  run("DELETE FROM " + std::string(db::snapshotDigestsTable) + " WHERE Place > " + std::to_string(rows_ - forgotten));
  rows_ -= forgotten;
}

void SnapshotFile::begin(std::span<const db::Field> fields) {
  std::vector<std::string> columns;
  for (const db::Field& field : fields) columns.push_back(field.name);
  if (!columns_.empty()) {
    if (columns != columns_) throw localizedError(unspecifiedFailure, "snapshot.columnsChanged");
    return;
  }
  columns_ = std::move(columns);
  keeping_.clear();
  bool hasNumber = false;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    const auto isNamed = [&](std::string_view name) { return equalsIgnoringAsciiCase(columns_[i], name); };
    if (isNamed(numberColumn)) {
      hasNumber = true;
      numberColumn_ = i;
    }
    keeping_.push_back(isNamed(numberColumn)                                                ? Keeping::number
                       : std::any_of(numericColumns.begin(), numericColumns.end(), isNamed) ? Keeping::time
                                                                                            : Keeping::text);
  }
  if (!hasNumber) throw localizedError(unspecifiedFailure, "snapshot.noNumbers");
  digester_ = std::make_unique<RowDigester>(fields);
  run(tableText(db::snapshotTrailTable));
  prepareRows();
}

std::string SnapshotFile::tableText(std::string_view table) const {
  std::string text = "CREATE TABLE IF NOT EXISTS " + std::string(table) + " (";
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    text.append(i == 0 ? "" : ", ").append(quotedName(columns_[i]));
    switch (keeping_[i]) {
      case Keeping::number:
        text += numbersAreUnique_ ? " INTEGER PRIMARY KEY" : " INTEGER";
        break;
      case Keeping::time:
        text += equalsIgnoringAsciiCase(columns_[i], numericColumns.front()) ? " DATETIME" : " BIT";
        break;
      case Keeping::text:
        text += " TEXT COLLATE NOCASE";
        break;
    }
  }
  return text + ")";
}

void SnapshotFile::prepareRows() {
  std::string insert = "INSERT INTO " + std::string(db::snapshotTrailTable) + " VALUES (?";
  for (std::size_t i = 1; i < columns_.size(); ++i) insert += ",?";
  insertRow_ = prepare(insert + ')');
  insertDigest_ = prepare("INSERT INTO " + std::string(db::snapshotDigestsTable) + " VALUES (?,?)");
}

void SnapshotFile::allowRepeatedNumbers() {
  insertRow_.reset();
  const std::string trail(db::snapshotTrailTable);
  const std::string copy = trail + "_Copy";
  numbersAreUnique_ = false;
  run("ALTER TABLE " + trail + " RENAME TO " + copy);
  run(tableText(trail));
  run("INSERT INTO " + trail + " SELECT * FROM " + copy + " ORDER BY Nr; DROP TABLE " + copy);
  setFact("numbersRepeat", "yes");
  prepareRows();
}

void SnapshotFile::bind(std::size_t column, const db::Cell& cell) const {
  sqlite3_stmt* const statement = insertRow_.get();
  const int place = static_cast<int>(column) + 1;
  if (cell.isNull) return check(sqlite3_bind_null(statement, place));
  if (keeping_[column] != Keeping::text) {
    if (const auto integer = exactInteger(cell.text)) return check(sqlite3_bind_int64(statement, place, *integer));
    if (const auto number = exactNumber(cell.text)) return check(sqlite3_bind_double(statement, place, *number));
    if (looksLikeNumber(cell.text))
      throw localizedError(unspecifiedFailure, "snapshot.valueWouldChange", {std::string(cell.text), columns_[column]});
  }
  // Never a null pointer for an empty text: that would bind a null.
  check(sqlite3_bind_text64(statement, place, cell.text.empty() ? "" : cell.text.data(), cell.text.size(),
                            SQLITE_STATIC, SQLITE_UTF8));
}

void SnapshotFile::add(std::span<const db::Cell> cells) {
  const auto number = cells[numberColumn_].isNull ? std::nullopt : exactInteger(cells[numberColumn_].text);
  if (!number && !cells[numberColumn_].isNull)
    throw localizedError(unspecifiedFailure, "snapshot.numberNotWhole", {std::string(cells[numberColumn_].text)});
  // Rows come in the order of their numbers: one that repeats comes right after the first.
  if (numbersAreUnique_ && (!number || (rows_ > 0 && lastNumber_ && *number <= *lastNumber_))) allowRepeatedNumbers();
  isInRow_ = true;
  for (std::size_t i = 0; i < columns_.size(); ++i) bind(i, i < cells.size() ? cells[i] : db::Cell{{}, true});
  if (const int code = sqlite3_step(insertRow_.get()); code != SQLITE_DONE) check(code);
  check(sqlite3_reset(insertRow_.get()));
  const Digest digest = digester_->digestOf(cells);
  sqlite3_stmt* const statement = insertDigest_.get();
  check(sqlite3_bind_int64(statement, 1, static_cast<sqlite3_int64>(rows_) + 1));
  check(sqlite3_bind_blob(statement, 2, digest.bytes.data(), static_cast<int>(digest.bytes.size()), SQLITE_STATIC));
  if (const int code = sqlite3_step(statement); code != SQLITE_DONE) check(code);
  check(sqlite3_reset(statement));
  isInRow_ = false;
  ++rows_;
  lastNumber_ = number;
  if (++unstored_ == rowsBetweenStores) store();
}

void SnapshotFile::store() {
  // A full disk may have ended the transaction: the rows since the last time are gone. So they are where a row went in
  // and its digest did not: the transaction ends with the object.
  if (isInRow_ || sqlite3_get_autocommit(database_.get()) != 0)
    throw Error(SQLITE_FULL, "cannot write " + utf8FromPath(file_) + ": the last rows were taken back");
  setFact("rows", std::to_string(rows_));
  setFact("lastNumber", lastNumber_ ? std::to_string(*lastNumber_) : std::string());
  run("COMMIT; BEGIN EXCLUSIVE");
  unstored_ = 0;
}

Digest SnapshotFile::digestOfAll() const {
  // Sorted by the engine, in the memory of its cache.
  const Statement digests = prepare("SELECT Digest FROM " + std::string(db::snapshotDigestsTable) + " ORDER BY Digest");
  Sha256 sum;
  int code = sqlite3_step(digests.get());
  for (; code == SQLITE_ROW; code = sqlite3_step(digests.get())) {
    Digest digest;
    if (static_cast<std::size_t>(sqlite3_column_bytes(digests.get(), 0)) == digest.bytes.size())
      std::memcpy(digest.bytes.data(), sqlite3_column_blob(digests.get(), 0), digest.bytes.size());
    sum.update(hexText(digest) + '\n');
  }
  if (code != SQLITE_DONE) check(code);
  return sum.finish();
}

void SnapshotFile::finish(SnapshotFacts& facts) {
  insertRow_.reset();
  insertDigest_.reset();
  facts.rows = rows_;
  facts.digest = digestOfAll();
  run(db::auditIndexes());
  if (!numbersAreUnique_)
    run("CREATE INDEX Korvel_Audit_Trails_Nr ON " + std::string(db::snapshotTrailTable) + " (Nr)");
  run("DELETE FROM " + std::string(db::snapshotFactsTable) + " WHERE Name IN ('lastNumber', 'numbersRepeat')");
  setFact("state", "complete");
  setFact("engine", facts.engine);
  setFact("login", facts.login);
  setFact("begun", facts.begun);
  setFact("ended", facts.ended);
  setFact("program", facts.program);
  setFact("end", facts.last ? std::to_string(*facts.last) : std::string());
  setFact("rows", std::to_string(facts.rows));
  setFact("digest", hexText(facts.digest));
  // Enough for the choice of an index; looking at all rows would take a tenth of the whole time.
  run("PRAGMA analysis_limit=1000; ANALYZE; COMMIT");
  check(sqlite3_close(database_.get()));
  static_cast<void>(database_.release());
}

std::string SnapshotFile::fact(std::string_view name) const {
  const Statement statement =
      prepare("SELECT Value FROM " + std::string(db::snapshotFactsTable) + " WHERE Name = '" + std::string(name) + "'");
  return sqlite3_step(statement.get()) == SQLITE_ROW ? std::string(textAt(statement.get(), 0)) : std::string();
}

void SnapshotFile::setFact(std::string_view name, std::string_view value) const {
  const Statement statement =
      prepare("INSERT OR REPLACE INTO " + std::string(db::snapshotFactsTable) + " VALUES (?,?)");
  check(sqlite3_bind_text(statement.get(), 1, name.data(), static_cast<int>(name.size()), SQLITE_STATIC));
  check(sqlite3_bind_text(statement.get(), 2, value.empty() ? "" : value.data(), static_cast<int>(value.size()),
                          SQLITE_STATIC));
  if (const int code = sqlite3_step(statement.get()); code != SQLITE_DONE) check(code);
}

SnapshotFile::Statement SnapshotFile::prepare(const std::string& text) const {
  sqlite3_stmt* statement = nullptr;
  check(sqlite3_prepare_v2(database_.get(), text.c_str(), -1, &statement, nullptr));
  return Statement(statement);
}

void SnapshotFile::run(const std::string& statements) const {
  check(sqlite3_exec(database_.get(), statements.c_str(), nullptr, nullptr, nullptr));
}

void SnapshotFile::check(int code) const {
  if (code == SQLITE_OK) return;
  switch (code & 0xFF) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      throw localizedError(code, "snapshot.otherRun", {utf8FromPath(file_)});
    case SQLITE_FULL:
      throw unwritable(file_, systemErrorNumber(std::errc::no_space_on_device), {});
    case SQLITE_READONLY:
    case SQLITE_PERM:
      throw unwritable(file_, systemErrorNumber(std::errc::permission_denied), {});
    case SQLITE_CANTOPEN:
    case SQLITE_IOERR:
      throw unwritable(file_, sqlite3_system_errno(database_.get()), sqlite3_errmsg(database_.get()));
    default:
      throw localizedError(code, "snapshot.unwritable", {utf8FromPath(file_), sqlite3_errmsg(database_.get())});
  }
}

}  // namespace korvel::evidence
