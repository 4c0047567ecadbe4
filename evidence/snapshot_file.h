#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "db/connection.h"
#include "evidence/row_digest.h"
#include "evidence/sha256.h"

struct sqlite3;
struct sqlite3_stmt;

namespace korvel::evidence {

/// What a snapshot is of. Texts are UTF-8.
struct SnapshotSource {
  std::string server;
  std::string database;
  std::string from;  ///< first and last moment, "2004-03-07 00:00:00.000"; empty for the whole trail
  std::string to;
  friend bool operator==(const SnapshotSource&, const SnapshotSource&) = default;
};

/// What a finished snapshot says of itself.
struct SnapshotFacts {
  SnapshotSource source;
  std::string engine;  ///< of the server, as far as it told
  std::string login;
  std::string begun;  ///< local time with its offset
  std::string ended;
  std::string program;               ///< with its version
  std::optional<std::int64_t> last;  ///< the greatest entry number when the snapshot was begun
  std::uint64_t rows = 0;
  Digest digest;  ///< of all rows, see digestOfRows()
};

/// The facts of a snapshot by the values that it stores under names; nothing where one of them is not whole.
[[nodiscard]] std::optional<SnapshotFacts> wholeFacts(const std::function<std::string(std::string_view name)>& valueOf);

/// A snapshot in the making: an embedded database with the rows of a trail in the order of their numbers, their
/// digests, and what they are of. What was stored survives the end of the program and is continued by the next object
/// for the same file. One object at a time, of whatever process, has a file.
class SnapshotFile {
 public:
  /// Opens `file`, or creates it. Throws Error where it is no unfinished snapshot of `source`, where another run has
  /// it, or where it cannot be written.
  SnapshotFile(const std::filesystem::path& file, const SnapshotSource& source);
  ~SnapshotFile();
  SnapshotFile(const SnapshotFile&) = delete;
  SnapshotFile& operator=(const SnapshotFile&) = delete;

  [[nodiscard]] std::uint64_t rows() const noexcept { return rows_; }
  /// The number of the last row; nothing while there is none, or it has none.
  [[nodiscard]] std::optional<std::int64_t> lastNumber() const noexcept { return lastNumber_; }
  /// Whether finish() was through with it: the rows are whole, only the file was not given its name.
  [[nodiscard]] bool isComplete() const { return fact("state") == "complete"; }
  /// What finish() stored; only of a complete one.
  [[nodiscard]] SnapshotFacts completeFacts() const;
  /// What was said when the snapshot was begun; empty in a new file.
  [[nodiscard]] std::string begun() const { return fact("begun"); }
  [[nodiscard]] std::optional<std::int64_t> end() const;
  /// Says when it was begun, and the last entry number that belongs to it.
  void start(std::string_view begun, std::optional<std::int64_t> end);

  /// Takes the rows of the last number back, which may not be all that have it.
  void forgetLastNumber();
  /// The rows that follow have these columns. Throws Error where they are not those of the rows before.
  void begin(std::span<const db::Field> fields);
  /// Throws Error for a value that an embedded database would not give back as it is.
  void add(std::span<const db::Cell> cells);
  /// Stores what was added for good. Throws Error, and says of no row that it is there, where a failure took back what
  /// was added since the last time.
  void store();

  /// Makes the indexes, and stores the facts, whose digest and number of rows are filled in. The file is closed.
  void finish(SnapshotFacts& facts);

  /// The names of the columns, in their order.
  [[nodiscard]] const std::vector<std::string>& columns() const noexcept { return columns_; }

 private:
  struct DatabaseCloser {
    void operator()(sqlite3* database) const noexcept;
  };
  struct StatementFinalizer {
    void operator()(sqlite3_stmt* statement) const noexcept;
  };
  using Statement = std::unique_ptr<sqlite3_stmt, StatementFinalizer>;
  enum class Keeping { text, number, time };

  void open(const std::filesystem::path& file);
  void resume(const SnapshotSource& source);
  void create(const SnapshotSource& source);
  void setSource(const SnapshotSource& source) const;
  void run(const std::string& statements) const;
  void check(int code) const;
  [[nodiscard]] Statement prepare(const std::string& text) const;
  [[nodiscard]] std::string fact(std::string_view name) const;
  void setFact(std::string_view name, std::string_view value) const;
  [[nodiscard]] std::string tableText(std::string_view table) const;
  void prepareRows();
  /// Lets entry numbers repeat, and rows have none.
  void allowRepeatedNumbers();
  void bind(std::size_t column, const db::Cell& cell) const;
  [[nodiscard]] Digest digestOfAll() const;

  std::filesystem::path file_;
  std::unique_ptr<sqlite3, DatabaseCloser> database_;
  Statement insertRow_;
  Statement insertDigest_;
  std::vector<std::string> columns_;
  std::vector<Keeping> keeping_;
  std::size_t numberColumn_ = 0;
  std::unique_ptr<RowDigester> digester_;
  bool numbersAreUnique_ = true;
  bool isInRow_ = false;  ///< a row is being added, or could not be
  std::uint64_t rows_ = 0;
  std::uint64_t unstored_ = 0;
  std::optional<std::int64_t> lastNumber_;
};

}  // namespace korvel::evidence
