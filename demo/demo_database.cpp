#include "demo/demo_database.h"

#include <sqlite3.h>

#include <array>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "base/error.h"
#include "base/files.h"
#include "base/paths.h"
#include "base/system_errors.h"
#include "db/embedded/audit_statements.h"
#include "demo/trail.h"
#include "query/audit_record.h"

namespace korvel::demo {

namespace fs = std::filesystem;

namespace {

constexpr std::array<const char*, 2> databaseNames = {"Korvel_Audit.db", "Korvel_Audit_MU.db"};

/// The entry number has at most nine digits.
constexpr std::uint64_t mostRows = 999'999'999;

Error fileError(const std::string& what, const fs::path& file, const std::error_code& code) {
  return systemError(systemErrorNumber(code), what + " " + utf8FromPath(file));
}

/// An unfinished file beside the one it is to become; gone with this object unless it was put in place.
class UnfinishedFile {
 public:
  explicit UnfinishedFile(fs::path target) : target_(std::move(target)) {
    constexpr int attempts = 1000;
    std::error_code failure;
    for (int i = 0; i < attempts; ++i) {
      fs::path name = target_;
      name += "." + std::to_string(i) + ".unfinished";
      files::createNew(name, failure);
      if (!failure) {
        path_ = std::move(name);
        return;
      }
      if (!isSystemError(systemErrorNumber(failure), std::errc::file_exists)) break;
    }
    throw fileError("cannot create a file beside", target_, failure);
  }
  ~UnfinishedFile() {
    std::error_code ignored;
    if (!path_.empty()) files::remove(path_, ignored);
  }
  UnfinishedFile(const UnfinishedFile&) = delete;
  UnfinishedFile& operator=(const UnfinishedFile&) = delete;

  [[nodiscard]] const fs::path& path() const { return path_; }
  [[nodiscard]] const fs::path& target() const { return target_; }

  /// Throws Error where the file, or what belongs to it, would not make room for this one.
  void checkPlace() const {
    std::error_code code;
    for (const char* suffix : {"", "-journal", "-wal", "-shm"}) {
      const fs::path there = besideTarget(suffix);
      files::checkReplaceable(there, code);
      if (code) throw fileError("cannot replace", there, code);
    }
  }

  /// Gives the finished file its name, in place of what stands there.
  void putInPlace() {
    std::error_code code;
    files::rename(path_, target_, code);
    if (code) throw fileError("cannot replace", target_, code);
    path_.clear();
    // A journal left by the file that stood there would be taken for the new one's. While that one stood, it may have
    // held the last of it.
    for (const char* suffix : {"-journal", "-wal", "-shm"}) {
      const fs::path leftover = besideTarget(suffix);
      files::remove(leftover, code);
      if (code) throw fileError("cannot remove", leftover, code);
    }
  }

 private:
  [[nodiscard]] fs::path besideTarget(const char* suffix) const {
    fs::path beside = target_;
    beside += suffix;
    return beside;
  }

  fs::path target_;
  fs::path path_;
};

struct DatabaseCloser {
  void operator()(sqlite3* database) const { sqlite3_close(database); }
};
struct StatementFinalizer {
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};

/// A database file that is being filled: one transaction without a journal, for if it fails the file goes as a whole.
class Filler {
 public:
  explicit Filler(const fs::path& file) {
    sqlite3* database = nullptr;
    const int code =
        sqlite3_open_v2(utf8FromPath(extendedLengthPath(file)).c_str(), &database, SQLITE_OPEN_READWRITE, nullptr);
    database_.reset(database);
    check(code);
    run("PRAGMA journal_mode=OFF; PRAGMA locking_mode=EXCLUSIVE; PRAGMA synchronous=FULL; PRAGMA cache_size=-65536; "
        "BEGIN");
    run(db::auditTableSchema());
    std::string insert = "INSERT INTO ";
    insert += query::auditTable;
    insert += " VALUES (?";
    for (std::size_t i = 1; i < query::auditColumnCount; ++i) insert += ",?";
    insert += ')';
    sqlite3_stmt* statement = nullptr;
    check(sqlite3_prepare_v2(database, insert.c_str(), -1, &statement, nullptr));
    statement_.reset(statement);
  }

  void add(const AuditRow& row) {
    sqlite3_stmt* const statement = statement_.get();
    check(sqlite3_bind_int64(statement, 1, static_cast<sqlite3_int64>(row.number)));
    int place = 2;
    for (const AuditRow::Text& text :
         {AuditRow::Text{row.dateTime}, row.projectGuid, row.databaseName, row.applicationName, row.tableName,
          row.fieldName, row.eventType, row.eventItem, row.oldValue, row.newValue, row.pcName, row.osUser, row.appUser,
          row.userName, row.auditType, row.comments}) {
      // Never a null pointer for an empty text: that would bind a null.
      check(text ? sqlite3_bind_text(statement, place, text->empty() ? "" : text->data(),
                                     static_cast<int>(text->size()), SQLITE_STATIC)
                 : sqlite3_bind_null(statement, place));
      ++place;
    }
    check(sqlite3_bind_int(statement, place, row.summerTime ? 1 : 0));
    const int code = sqlite3_step(statement);
    if (code != SQLITE_DONE) check(code);
    check(sqlite3_reset(statement));
  }

  void finish() {
    statement_.reset();
    run(db::auditIndexes());
    run("ANALYZE; COMMIT");
    check(sqlite3_close(database_.get()));
    static_cast<void>(database_.release());
  }

 private:
  void run(const std::string& statements) {
    check(sqlite3_exec(database_.get(), statements.c_str(), nullptr, nullptr, nullptr));
  }
  void check(int code) const {
    if (code != SQLITE_OK)
      throw Error(code, std::string{"cannot write the database: "} + sqlite3_errmsg(database_.get()));
  }

  std::unique_ptr<sqlite3, DatabaseCloser> database_;
  std::unique_ptr<sqlite3_stmt, StatementFinalizer> statement_;
};

void fill(const fs::path& file, Trail trail) {
  Filler filler(file);
  while (const AuditRow* row = trail.next()) filler.add(*row);
  filler.finish();
}

void checkRows(std::uint64_t rows) {
  if (rows > mostRows)
    throw Error(systemErrorNumber(std::errc::invalid_argument),
                "a demo database has at most " + std::to_string(mostRows) + " rows, not " + std::to_string(rows));
}

void refuseToReplace(const fs::path& file) {
  std::error_code ignored;
  // Of the link itself: a link whose target is missing is not replaced either.
  if (fs::exists(files::symlinkStatus(file, ignored)))
    throw systemError(systemErrorNumber(std::errc::file_exists), "will not replace " + utf8FromPath(file));
}

}  // namespace

bool hasDemoDatabase(const fs::path& folder) {
  return std::any_of(databaseNames.begin(), databaseNames.end(), [&](const char* name) {
    std::error_code ignored;
    return fs::exists(files::symlinkStatus(folder / name, ignored));
  });
}

void writeDemoDatabases(const Options& options) {
  checkRows(options.rows);
  std::error_code code;
  files::createDirectories(options.folder, code);
  if (code) throw fileError("cannot make the folder", options.folder, code);
  const std::array targets = {options.folder / databaseNames[0], options.folder / databaseNames[1]};
  if (!options.force)
    for (const fs::path& target : targets) refuseToReplace(target);

  UnfinishedFile single(targets.at(0));
  UnfinishedFile multi(targets.at(1));
  auto multiFilled = std::async(std::launch::async,
                                [&] { fill(multi.path(), Trail(multiUserPlant(), options.rows, options.seed, {})); });
  fill(single.path(), Trail(singleUserPlant(), options.rows, options.seed, dairyStory()));
  multiFilled.get();
  // Another process may have created it first.
  if (!options.force)
    for (const fs::path& target : targets) refuseToReplace(target);
  // Both or neither: what would hinder the second is asked before the first is replaced.
  single.checkPlace();
  multi.checkPlace();
  single.putInPlace();
  multi.putInPlace();
}

void writeDemoDatabase(const fs::path& file, std::uint64_t rows, std::uint64_t seed) {
  checkRows(rows);
  UnfinishedFile unfinished(file);
  fill(unfinished.path(), Trail(singleUserPlant(), rows, seed, dairyStory()));
  unfinished.checkPlace();
  unfinished.putInPlace();
}

}  // namespace korvel::demo
