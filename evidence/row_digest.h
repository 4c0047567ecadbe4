#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "db/connection.h"
#include "evidence/sha256.h"

namespace korvel::evidence {

/// The names under which columns are digested: a name that came before gets "_2", "_3" and so on, as in JSON.
[[nodiscard]] std::vector<std::string> digestedNames(std::span<const db::Field> fields);

/// Digests rows in their canonical form, which says the same of the same values whatever file or server they come from:
/// for each column, in the byte order of the names, a line
///
///     LENGTH:NAME=LENGTH:VALUE     or, where the value is null,     LENGTH:NAME~
///
/// ended by a line feed; lengths count bytes of UTF-8, values stand as they are stored. docs/formats.md has an example.
class RowDigester {
 public:
  /// For rows with these columns.
  explicit RowDigester(std::span<const db::Field> fields);

  /// Missing cells are null. The result is valid until the next call.
  [[nodiscard]] std::string_view canonicalForm(std::span<const db::Cell> cells);
  [[nodiscard]] Digest digestOf(std::span<const db::Cell> cells);

 private:
  struct Column {
    std::size_t index = 0;
    std::string beginning;  ///< "LENGTH:NAME="
    std::string null;       ///< "LENGTH:NAME~" and the line feed
  };

  std::vector<Column> columns_;  ///< in the order of their names
  std::vector<char> text_;
  Sha256 sum_;
};

/// The digest of a set of rows: SHA-256 of the rows' digests as hexadecimal lines, each ended by a line feed, sorted.
/// The order of the rows does not count, their number does.
[[nodiscard]] Digest digestOfRows(std::vector<Digest> rows);

}  // namespace korvel::evidence
