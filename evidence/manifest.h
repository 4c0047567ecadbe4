#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "db/connection.h"
#include "evidence/sha256.h"

namespace korvel::evidence {

/// What the time stamps of rows are: the plant's wall-clock time.
struct RecordedStamps {
  /// Times that the clock showed twice, all between them included.
  struct Twice {
    std::string from;
    std::string to;
  };

  std::string column;
  std::string flag;               ///< the column that tells summer time from standard time; empty without one
  std::size_t count = 0;          ///< stamps that were read
  std::size_t withOffset = 0;     ///< of them, those that are written with their offset from UTC
  std::vector<Twice> shownTwice;  ///< as far as the rows prove it
};

/// What an output is, where its rows come from and what was asked for: the text beside an output by which anybody can
/// check later that it is whole and unchanged. Texts are UTF-8; empty ones are left out.
struct Manifest {
  /// Where the rows come from.
  struct Source {
    std::string server;
    std::string database;
    std::string engine;  ///< the product and its version, as far as the connection tells
    std::string login;
    std::optional<db::SnapshotOrigin> snapshot{};  ///< where the database is one
  };
  /// What was asked for.
  struct Question {
    std::vector<std::string> categories;  ///< in words; empty for a query of the user's own
    std::string from;                     ///< first day, whole; empty without a range
    std::string to;
    bool beyondLimit = false;  ///< the answer was to be completed beyond the limit of the procedure
    std::string list;          ///< the list of the answer that was written
    std::string text;          ///< the call, or the query of the user's own
    std::vector<std::string> filters;
    std::string sortedBy;
  };
  struct ListCount {
    std::string caption;
    std::size_t rows = 0;
  };
  struct Output {
    std::string name;  ///< of the file, without its folder
    std::string format;
    std::uint64_t bytes = 0;
    Digest sha256;
  };
  /// The rows of the output, as they are stored.
  struct Rows {
    std::vector<std::string> columns;
    Digest digest;                           ///< of all, whatever their order
    std::vector<Digest> each;                ///< in the order of the output
    std::vector<Digest> cells{};             ///< of a workbook: the rows as its cells hold them, in its order
    std::optional<RecordedStamps> stamps{};  ///< where the rows have time stamps
    /// The number of rows of an output that holds their digests itself; `each` is then empty.
    std::optional<std::uint64_t> inOutput{};
  };

  std::string program;
  std::string programVersion;
  std::string user;
  std::string computer;
  std::string begun;  ///< local time with its offset
  std::string ended;
  std::string written;  ///< when the output was complete
  Source source;
  Question question;
  std::vector<ListCount> lists;
  /// Whether the answer to the standard query was whole, before a list was taken and rows were chosen of it; nothing
  /// for a query of the user's own, whose limits nobody knows.
  std::optional<bool> isComplete;
  /// Where the limit of the procedure was reached: see query::limitReached().
  std::vector<std::string> limitReached;
  std::vector<std::string> notes;  ///< what a reader would not expect: limits reached, characters replaced
  Output output;
  Rows rows;
};

/// The names of the files beside an output: "NAME.manifest.json", and "NAME.sha256" with the sums of both.
inline constexpr std::string_view manifestEnding = ".manifest.json";
inline constexpr std::string_view sumsEnding = ".sha256";

/// The manifest as JSON, ended by a line feed.
[[nodiscard]] std::string manifestText(const Manifest& manifest);

/// The parts of a manifest by which an output is checked.
struct RecordedOutput {
  Manifest::Output output;
  Manifest::Rows rows;
};

/// Reads a manifest. Throws Error with a sentence where it is cut or changed, of a newer version, or names a file that
/// is not beside it.
[[nodiscard]] RecordedOutput readManifest(std::string_view text);

/// A line of a file of sums.
struct NamedSum {
  Digest sha256;
  std::string name;
};

/// Lines in the form that sha256sum writes and reads.
[[nodiscard]] std::string sumsText(const std::vector<NamedSum>& sums);
/// Nothing where a line has another form.
[[nodiscard]] std::optional<std::vector<NamedSum>> readSums(std::string_view text);

}  // namespace korvel::evidence
