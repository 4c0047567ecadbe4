#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/error.h"
#include "evidence/manifest.h"
#include "evidence/sha256.h"

struct sqlite3;
struct sqlite3_stmt;

namespace korvel::evidence {

/// What a reviewer says of a row.
enum class MarkKind : std::size_t {
  reviewed,  ///< looked at and found right; answers a question of the row
  question,  ///< somebody has to answer for it
  comment    ///< a remark, which changes nothing else
};
inline constexpr std::size_t markKindCount = 3;

struct MarkKindInfo {
  MarkKind kind;
  std::string_view name;     ///< in files
  std::string_view textKey;  ///< of what a user reads
};
/// All kinds, in the order in which they are shown.
[[nodiscard]] const std::array<MarkKindInfo, markKindCount>& markKinds() noexcept;

/// The audit trail whose rows are reviewed. Texts are UTF-8.
struct ReviewedTrail {
  std::string server;
  std::string database;
};
/// The case of letters of A to Z does not count.
[[nodiscard]] bool isSameTrail(const ReviewedTrail& left, const ReviewedTrail& right) noexcept;
/// The trail that an answer comes from; of a snapshot the trail that it was taken of.
[[nodiscard]] ReviewedTrail trailOf(const Manifest::Source& source);

/// What a reviewer says, before it is written down.
struct NewMark {
  std::optional<std::int64_t> number;  ///< the row's entry number; nothing where it has none
  Digest row;                          ///< of RowDigester, over all columns of the record
  MarkKind kind = MarkKind::reviewed;
  std::string comment;  ///< UTF-8; may be empty but for a comment
};

/// What a reviewer said.
struct ReviewMark {
  std::int64_t place = 0;  ///< 1, 2, 3 ... in the order in which marks were written
  std::optional<std::int64_t> number;
  Digest row;
  MarkKind kind = MarkKind::reviewed;
  std::string comment;
  std::string user;      ///< who was logged in at the system
  std::string computer;  ///< and where
  std::string time;      ///< local with its offset, "2026-11-22T16:05:03+01:00"
};

/// What a review file says of itself.
struct ReviewFacts {
  ReviewedTrail trail;
  std::string created;  ///< local time with its offset
  std::string user;     ///< who created it
  std::string computer;
  std::string program;  ///< with its version
};

/// How far the marks of a review file were taken.
struct ReviewPosition {
  std::int64_t place = 0;  ///< of the last mark; 0 before the first one
  Digest digest;           ///< of that mark
  friend bool operator==(const ReviewPosition&, const ReviewPosition&) = default;
};

/// The marks of reviewers of one audit trail, in a file of its own that several reviewers use at once. Marks are only
/// added, never changed or removed. Each has the digest of the one before, so that a change by another program is
/// noticed. Used by one thread at a time. docs/formats.md describes the file.
class ReviewFile {
 public:
  enum class Use {
    mark,  ///< read marks, and add some
    read   ///< nothing is written, also where the file could be
  };

  /// Creates a review file that has no marks. Throws Error where there is a file already, which stays as it is, or
  /// where none can be written.
  static void create(const std::filesystem::path& file, const ReviewedTrail& trail, std::string_view program);

  /// Opens the review of `trail`, or, without one, of whatever trail. Throws Error with a sentence of its own where the
  /// file is missing, cannot be read or written, is locked for longer than `busyTimeout`, is no review file, is
  /// damaged, is of another trail, or was made by a newer version.
  ReviewFile(const std::filesystem::path& file, const std::optional<ReviewedTrail>& trail, Use use,
             std::chrono::milliseconds busyTimeout = std::chrono::seconds{10});
  ~ReviewFile();
  ReviewFile(const ReviewFile&) = delete;
  ReviewFile& operator=(const ReviewFile&) = delete;

  [[nodiscard]] const std::filesystem::path& file() const noexcept { return file_; }
  [[nodiscard]] const ReviewFacts& facts() const noexcept { return facts_; }

  /// Adds marks of the user who is logged in, at this moment: all of them or, where it throws Error, none.
  void add(std::span<const NewMark> marks);
  /// The marks that were written since the last call, of all reviewers, in their order. Throws Error where they do not
  /// follow those before, or were changed; the next call then begins at the same place.
  [[nodiscard]] std::vector<ReviewMark> takeNewMarks();
  [[nodiscard]] ReviewPosition position() const noexcept { return {taken_, last_}; }
  /// Takes marks from where another object for the same file stopped. Throws Error where the mark there is another one,
  /// or is gone.
  void continueAfter(const ReviewPosition& position);
  /// The digest of the last mark that was taken, which stands for all marks up to it; of the file's facts where there
  /// is none.
  [[nodiscard]] const Digest& lastDigest() const noexcept { return last_; }

 private:
  struct DatabaseCloser {
    void operator()(sqlite3* database) const noexcept;
  };
  struct StatementFinalizer {
    void operator()(sqlite3_stmt* statement) const noexcept;
  };
  using Statement = std::unique_ptr<sqlite3_stmt, StatementFinalizer>;

  struct New {};
  ReviewFile(New, const std::filesystem::path& file, const ReviewFacts& facts);

  void open(int flags, std::chrono::milliseconds busyTimeout);
  void readFacts();
  void insert(sqlite3_stmt* insertion, const ReviewMark& mark, const Digest& digest) const;
  [[nodiscard]] ReviewMark markAt(sqlite3_stmt* row) const;
  [[nodiscard]] Statement prepare(std::string_view text) const;
  void run(const char* statements) const;
  void check(int code) const;
  [[nodiscard]] Error failure(int code) const;
  [[nodiscard]] Error damage() const;
  [[nodiscard]] Error changed(std::int64_t place) const;

  std::filesystem::path file_;
  ReviewFacts facts_;
  std::unique_ptr<sqlite3, DatabaseCloser> database_;
  bool isOpen_ = false;
  std::int64_t taken_ = 0;  ///< the place of the last mark that was taken
  Digest last_;
};

}  // namespace korvel::evidence
