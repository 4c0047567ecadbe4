#include "evidence/review_file.h"

#include <sqlite3.h>

#include <algorithm>
#include <cstring>
#include <system_error>
#include <utility>

#include "base/files.h"
#include "base/numbers.h"
#include "base/paths.h"
#include "base/system_errors.h"
#include "base/text.h"
#include "evidence/origin.h"
#include "evidence/row_digest.h"
#include "settings/string_table.h"

namespace korvel::evidence {

namespace {

constexpr std::string_view formatName = "korvel-audit-review";
constexpr unsigned formatVersion = 1;

constexpr std::array<MarkKindInfo, markKindCount> kinds = {{{MarkKind::reviewed, "reviewed", "review.reviewed"},
                                                            {MarkKind::question, "question", "review.question"},
                                                            {MarkKind::comment, "comment", "review.comment"}}};

// The triggers stop other programs; this one runs none of a file's.
constexpr const char* tables =
    "CREATE TABLE Korvel_Review (Name TEXT PRIMARY KEY, Value TEXT NOT NULL) WITHOUT ROWID;"
    "CREATE TABLE Korvel_Review_Marks (Place INTEGER PRIMARY KEY, Number INTEGER, RowDigest BLOB NOT NULL,"
    " Kind TEXT NOT NULL, Comment TEXT NOT NULL, User TEXT NOT NULL, Computer TEXT NOT NULL, Time TEXT NOT NULL,"
    " Digest BLOB NOT NULL);"
    "CREATE TRIGGER Korvel_Review_Facts_Stay BEFORE UPDATE ON Korvel_Review"
    " BEGIN SELECT RAISE(ABORT, 'a review file stays of its trail'); END;"
    "CREATE TRIGGER Korvel_Review_Marks_Stay BEFORE UPDATE ON Korvel_Review_Marks"
    " BEGIN SELECT RAISE(ABORT, 'marks are only added'); END;"
    "CREATE TRIGGER Korvel_Review_Marks_Remain BEFORE DELETE ON Korvel_Review_Marks"
    " BEGIN SELECT RAISE(ABORT, 'marks are only added'); END";

enum MarkColumn { place, number, rowDigest, kind, comment, user, computer, timeOf, digest };
constexpr std::string_view markColumns =
    "Place, Number, RowDigest, Kind, Comment, User, Computer, Time, Digest FROM Korvel_Review_Marks";

std::string_view textAt(sqlite3_stmt* statement, int column) {
  const unsigned char* const text = sqlite3_column_text(statement, column);
  if (text == nullptr) return "";
  return {reinterpret_cast<const char*>(text), static_cast<std::size_t>(sqlite3_column_bytes(statement, column))};
}

std::optional<Digest> digestAt(sqlite3_stmt* statement, int column) {
  Digest digest;
  if (sqlite3_column_type(statement, column) != SQLITE_BLOB ||
      static_cast<std::size_t>(sqlite3_column_bytes(statement, column)) != digest.bytes.size())
    return std::nullopt;
  std::memcpy(digest.bytes.data(), sqlite3_column_blob(statement, column), digest.bytes.size());
  return digest;
}

/// Digests in the canonical form of rows.
Digest digestOfTexts(std::span<const std::pair<std::string_view, std::string>> texts) {
  std::vector<db::Field> fields;
  std::vector<db::Cell> cells;
  for (const auto& [name, text] : texts) {
    fields.push_back({std::string(name)});
    cells.push_back({text, false});
  }
  return RowDigester(fields).digestOf(cells);
}

std::array<std::pair<std::string_view, std::string>, 8> factTexts(const ReviewFacts& facts) {
  return {{{"format", std::string(formatName)},
           {"version", std::to_string(formatVersion)},
           {"server", facts.trail.server},
           {"database", facts.trail.database},
           {"created", facts.created},
           {"user", facts.user},
           {"computer", facts.computer},
           {"program", facts.program}}};
}

Digest digestOfFacts(const ReviewFacts& facts) {
  return digestOfTexts(factTexts(facts));
}

Digest digestOfMark(const ReviewMark& mark, const Digest& before) {
  const std::array<std::pair<std::string_view, std::string>, 9> texts = {
      {{"Place", std::to_string(mark.place)},
       {"Number", mark.number ? std::to_string(*mark.number) : std::string()},
       {"RowDigest", hexText(mark.row)},
       {"Kind", std::string(kinds.at(static_cast<std::size_t>(mark.kind)).name)},
       {"Comment", mark.comment},
       {"User", mark.user},
       {"Computer", mark.computer},
       {"Time", mark.time},
       {"Before", hexText(before)}}};
  return digestOfTexts(texts);
}

ReviewFacts newFacts(const ReviewedTrail& trail, std::string_view program) {
  return {trail, localTimeText(std::chrono::system_clock::now()), systemUser(), computerName(), std::string(program)};
}

/// Removes a file that was begun, unless it is kept.
class BegunFile {
 public:
  explicit BegunFile(const std::filesystem::path& file) : file_(file) {
    std::error_code failure;
    files::createNew(file_, failure);
    if (failure == std::errc::file_exists)
      throw settings::localizedError(systemErrorNumber(failure), "review.fileExists", {utf8FromPath(file_)});
    if (failure)
      throw settings::localizedError(systemErrorNumber(failure), "review.unwritable",
                                     {utf8FromPath(file_), failure.message()});
  }
  ~BegunFile() {
    if (isKept_) return;
    std::error_code ignored;
    files::remove(file_, ignored);
  }
  BegunFile(const BegunFile&) = delete;
  BegunFile& operator=(const BegunFile&) = delete;
  void keep() noexcept { isKept_ = true; }

 private:
  const std::filesystem::path& file_;
  bool isKept_ = false;
};

}  // namespace

const std::array<MarkKindInfo, markKindCount>& markKinds() noexcept {
  return kinds;
}

bool isSameTrail(const ReviewedTrail& left, const ReviewedTrail& right) noexcept {
  return equalsIgnoringAsciiCase(left.server, right.server) && equalsIgnoringAsciiCase(left.database, right.database);
}

ReviewedTrail trailOf(const Manifest::Source& source) {
  if (source.snapshot) return {source.snapshot->server, source.snapshot->database};
  return {source.server, source.database};
}

void ReviewFile::DatabaseCloser::operator()(sqlite3* database) const noexcept {
  sqlite3_close_v2(database);
}

void ReviewFile::StatementFinalizer::operator()(sqlite3_stmt* statement) const noexcept {
  sqlite3_finalize(statement);
}

void ReviewFile::create(const std::filesystem::path& file, const ReviewedTrail& trail, std::string_view program) {
  BegunFile begun(file);
  { const ReviewFile created(New{}, file, newFacts(trail, program)); }
  begun.keep();
}

ReviewFile::ReviewFile(New /*tag*/, const std::filesystem::path& file, const ReviewFacts& facts)
    : file_(file), facts_(facts) {
  open(SQLITE_OPEN_READWRITE, {});
  run("BEGIN IMMEDIATE");
  run(tables);
  const Statement insertion = prepare("INSERT INTO Korvel_Review VALUES (?, ?)");
  for (const auto& [name, text] : factTexts(facts_)) {
    check(sqlite3_bind_text(insertion.get(), 1, name.data(), static_cast<int>(name.size()), SQLITE_STATIC));
    check(sqlite3_bind_text(insertion.get(), 2, text.data(), static_cast<int>(text.size()), SQLITE_STATIC));
    if (const int code = sqlite3_step(insertion.get()); code != SQLITE_DONE) throw failure(code);
    check(sqlite3_reset(insertion.get()));
  }
  run("COMMIT");
}

ReviewFile::ReviewFile(const std::filesystem::path& file, const std::optional<ReviewedTrail>& trail, Use use,
                       std::chrono::milliseconds busyTimeout)
    : file_(file) {
  std::error_code failed;
  const auto status = files::status(file_, failed);
  if (status.type() == std::filesystem::file_type::not_found)
    throw settings::localizedError(SQLITE_CANTOPEN, "review.fileMissing", {utf8FromPath(file_)});
  if (!failed && status.type() != std::filesystem::file_type::regular)
    throw settings::localizedError(SQLITE_CANTOPEN, "review.noReview", {utf8FromPath(file_)});
  open(use == Use::read ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE, busyTimeout);
  readFacts();
  if (use == Use::mark && sqlite3_db_readonly(database_.get(), "main") != 0) throw failure(SQLITE_READONLY);
  if (trail && !isSameTrail(*trail, facts_.trail))
    throw settings::localizedError(
        unspecifiedFailure, "review.otherTrail",
        {utf8FromPath(file_), facts_.trail.database, facts_.trail.server, trail->database, trail->server});
  last_ = digestOfFacts(facts_);
}

ReviewFile::~ReviewFile() = default;

void ReviewFile::open(int flags, std::chrono::milliseconds busyTimeout) {
  sqlite3* database = nullptr;
  const int code =
      sqlite3_open_v2(utf8FromPath(extendedLengthPath(file_)).c_str(), &database, flags | SQLITE_OPEN_NOMUTEX, nullptr);
  database_.reset(database);
  if (code != SQLITE_OK) throw failure(code);
  isOpen_ = true;
  sqlite3_extended_result_codes(database, 1);
  sqlite3_busy_timeout(database, static_cast<int>(busyTimeout.count()));
  // A file of somebody else is not trusted: nothing in it is run.
  for (const auto& [option, value] :
       {std::pair{SQLITE_DBCONFIG_DEFENSIVE, 1}, std::pair{SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0},
        std::pair{SQLITE_DBCONFIG_ENABLE_TRIGGER, 0}, std::pair{SQLITE_DBCONFIG_ENABLE_VIEW, 0},
        std::pair{SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0}})
    check(sqlite3_db_config(database, option, value, nullptr));
  sqlite3_limit(database, SQLITE_LIMIT_ATTACHED, 0);
  // A mark that was written survives a failure of power. A folder in the network has no shared memory for a log.
  run("PRAGMA synchronous=FULL; PRAGMA cell_size_check=ON");
}

void ReviewFile::readFacts() {
  std::vector<std::pair<std::string, std::string>> found;
  {
    const Statement known = prepare(
        "SELECT count(*) FROM sqlite_master WHERE type = 'table' AND name IN ('Korvel_Review', 'Korvel_Review_Marks')");
    if (const int code = sqlite3_step(known.get()); code != SQLITE_ROW) throw failure(code);
    if (sqlite3_column_int(known.get(), 0) != 2)
      throw settings::localizedError(SQLITE_NOTADB, "review.noReview", {utf8FromPath(file_)});
    const Statement facts = prepare("SELECT Name, Value FROM Korvel_Review");
    int code = sqlite3_step(facts.get());
    for (; code == SQLITE_ROW; code = sqlite3_step(facts.get()))
      found.emplace_back(textAt(facts.get(), 0), textAt(facts.get(), 1));
    if (code != SQLITE_DONE) throw failure(code);
  }
  const auto of = [&](std::string_view name) {
    const auto at = std::find_if(found.begin(), found.end(), [&](const auto& each) { return each.first == name; });
    return at == found.end() ? std::string() : at->second;
  };
  if (of("format") != formatName)
    throw settings::localizedError(SQLITE_NOTADB, "review.noReview", {utf8FromPath(file_)});
  const auto version = parseInteger<unsigned>(of("version"));
  if (version && *version > formatVersion)
    throw settings::localizedError(unspecifiedFailure, "review.newer",
                                   {utf8FromPath(file_), of("version"), std::to_string(formatVersion)});
  if (version != formatVersion) throw damage();
  facts_ = {{of("server"), of("database")}, of("created"), of("user"), of("computer"), of("program")};
}

void ReviewFile::add(std::span<const NewMark> marks) {
  if (marks.empty()) return;
  ReviewMark written;
  written.user = systemUser();
  written.computer = computerName();
  run("BEGIN IMMEDIATE");
  try {
    // In the transaction: marks stand in the order of their times.
    written.time = localTimeText(std::chrono::system_clock::now());
    Digest before = digestOfFacts(facts_);
    {
      const Statement last = prepare("SELECT Place, Digest FROM Korvel_Review_Marks ORDER BY Place DESC LIMIT 1");
      const int code = sqlite3_step(last.get());
      if (code == SQLITE_ROW) {
        const auto digest = digestAt(last.get(), 1);
        written.place = sqlite3_column_int64(last.get(), 0);
        if (!digest || written.place < 1) throw damage();
        before = *digest;
      } else if (code != SQLITE_DONE) {
        throw failure(code);
      }
    }
    const Statement insertion = prepare("INSERT INTO Korvel_Review_Marks VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)");
    for (const NewMark& mark : marks) {
      ++written.place;
      written.number = mark.number;
      written.row = mark.row;
      written.kind = mark.kind;
      written.comment = mark.comment;
      before = digestOfMark(written, before);
      insert(insertion.get(), written, before);
    }
    run("COMMIT");
  } catch (...) {
    // A full disk may have ended the transaction.
    if (sqlite3_get_autocommit(database_.get()) == 0)
      sqlite3_exec(database_.get(), "ROLLBACK", nullptr, nullptr, nullptr);
    throw;
  }
}

void ReviewFile::insert(sqlite3_stmt* insertion, const ReviewMark& mark, const Digest& digest) const {
  const auto bindText = [&](int column, std::string_view text) {
    check(sqlite3_bind_text64(insertion, column + 1, text.empty() ? "" : text.data(), text.size(), SQLITE_STATIC,
                              SQLITE_UTF8));
  };
  const auto bindDigest = [&](int column, const Digest& value) {
    check(sqlite3_bind_blob(insertion, column + 1, value.bytes.data(), static_cast<int>(value.bytes.size()),
                            SQLITE_STATIC));
  };
  check(sqlite3_bind_int64(insertion, MarkColumn::place + 1, mark.place));
  check(mark.number ? sqlite3_bind_int64(insertion, MarkColumn::number + 1, *mark.number)
                    : sqlite3_bind_null(insertion, MarkColumn::number + 1));
  bindDigest(MarkColumn::rowDigest, mark.row);
  bindText(MarkColumn::kind, kinds.at(static_cast<std::size_t>(mark.kind)).name);
  bindText(MarkColumn::comment, mark.comment);
  bindText(MarkColumn::user, mark.user);
  bindText(MarkColumn::computer, mark.computer);
  bindText(MarkColumn::timeOf, mark.time);
  bindDigest(MarkColumn::digest, digest);
  if (const int code = sqlite3_step(insertion); code != SQLITE_DONE) throw failure(code);
  check(sqlite3_reset(insertion));
}

ReviewMark ReviewFile::markAt(sqlite3_stmt* row) const {
  ReviewMark mark;
  mark.place = sqlite3_column_int64(row, MarkColumn::place);
  if (sqlite3_column_type(row, MarkColumn::number) != SQLITE_NULL)
    mark.number = sqlite3_column_int64(row, MarkColumn::number);
  const auto digest = digestAt(row, MarkColumn::rowDigest);
  const std::string_view kindName = textAt(row, MarkColumn::kind);
  const auto* const known =
      std::find_if(kinds.begin(), kinds.end(), [&](const MarkKindInfo& each) { return each.name == kindName; });
  if (!digest || known == kinds.end()) throw changed(mark.place);
  mark.row = *digest;
  mark.kind = known->kind;
  mark.comment = textAt(row, MarkColumn::comment);
  mark.user = textAt(row, MarkColumn::user);
  mark.computer = textAt(row, MarkColumn::computer);
  mark.time = textAt(row, MarkColumn::timeOf);
  return mark;
}

std::vector<ReviewMark> ReviewFile::takeNewMarks() {
  const Statement rows =
      prepare("SELECT " + std::string(markColumns) + " WHERE Place > " + std::to_string(taken_) + " ORDER BY Place");
  std::vector<ReviewMark> marks;
  std::int64_t last = taken_;
  Digest before = last_;
  int code = sqlite3_step(rows.get());
  for (; code == SQLITE_ROW; code = sqlite3_step(rows.get())) {
    marks.push_back(markAt(rows.get()));
    const Digest digest = digestOfMark(marks.back(), before);
    if (marks.back().place != ++last || digestAt(rows.get(), MarkColumn::digest) != digest) throw changed(last);
    before = digest;
  }
  if (code != SQLITE_DONE) throw failure(code);
  taken_ = last;
  last_ = before;
  return marks;
}

void ReviewFile::continueAfter(const ReviewPosition& position) {
  if (position.place == 0) return;
  const Statement row =
      prepare("SELECT Digest FROM Korvel_Review_Marks WHERE Place = " + std::to_string(position.place));
  const int code = sqlite3_step(row.get());
  if (code != SQLITE_ROW && code != SQLITE_DONE) throw failure(code);
  if (code == SQLITE_DONE || digestAt(row.get(), 0) != position.digest) throw changed(position.place);
  taken_ = position.place;
  last_ = position.digest;
}

ReviewFile::Statement ReviewFile::prepare(std::string_view text) const {
  sqlite3_stmt* statement = nullptr;
  check(sqlite3_prepare_v2(database_.get(), text.data(), static_cast<int>(text.size()), &statement, nullptr));
  return Statement(statement);
}

void ReviewFile::run(const char* statements) const {
  check(sqlite3_exec(database_.get(), statements, nullptr, nullptr, nullptr));
}

void ReviewFile::check(int code) const {
  if (code != SQLITE_OK) throw failure(code);
}

namespace {

bool isOfWriting(int extendedCode) {
  switch (extendedCode) {
    case SQLITE_IOERR_WRITE:
    case SQLITE_IOERR_FSYNC:
    case SQLITE_IOERR_DIR_FSYNC:
    case SQLITE_IOERR_TRUNCATE:
    case SQLITE_IOERR_DELETE:
      return true;
    default:
      // A journal beside the file.
      return (extendedCode & 0xff) == SQLITE_CANTOPEN;
  }
}

}  // namespace

Error ReviewFile::failure(int code) const {
  const std::string name = utf8FromPath(file_);
  const int extended = database_ ? sqlite3_extended_errcode(database_.get()) : code;
  const std::string text = database_ ? sqlite3_errmsg(database_.get()) : sqlite3_errstr(code);
  if (isOpen_ && isOfWriting(extended)) return settings::localizedError(extended, "review.unwritable", {name, text});
  switch (code & 0xff) {
    case SQLITE_NOTADB:
      return settings::localizedError(extended, "review.noReview", {name});
    case SQLITE_CORRUPT:
    case SQLITE_ERROR:  // tables of the right names, without the columns
      return damage();
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return settings::localizedError(extended, "review.locked", {name});
    case SQLITE_FULL:
    case SQLITE_READONLY:
      return settings::localizedError(extended, "review.unwritable", {name, text});
    default:
      return settings::localizedError(extended, "review.unreadable", {name, text});
  }
}

Error ReviewFile::damage() const {
  return settings::localizedError(SQLITE_CORRUPT, "review.damaged", {utf8FromPath(file_)});
}

Error ReviewFile::changed(std::int64_t place) const {
  return settings::localizedError(SQLITE_CORRUPT, "review.changed", {utf8FromPath(file_), std::to_string(place)});
}

}  // namespace korvel::evidence
