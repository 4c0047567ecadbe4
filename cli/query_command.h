#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <vector>

#include "cli/output_formats.h"
#include "query/standard_query.h"

namespace CLI {  // NOLINT(readability-identifier-naming): the parser names it so
class App;
}

namespace korvel::cli {

struct QueryOptions {
  std::string server;
  std::string database;
  std::vector<query::NodeIndex> categories;  ///< empty: all
  query::DateRange range;
  std::size_t list = 0;
  std::optional<results::ColumnIndex> sort;
  bool descending = false;
  bool quiet = false;     ///< no row counts
  bool complete = false;  ///< beyond the procedure's limit
  const OutputFormat* format = &outputFormats().front();
  std::string output = "-";
};

/// The node of the filter tree that a key (A, B, C, C1 .. D4), a parameter name (KorvelExplorer .. Restore) or a
/// caption that is only its own names, in any case of letters.
[[nodiscard]] std::optional<query::NodeIndex> categoryNamed(std::string_view key);
/// The column that a caption, a column name or a number counted from 1 names, in any case of letters.
[[nodiscard]] std::optional<results::ColumnIndex> columnNamed(std::string_view column);

/// Adds `query` to the command line; parsing fills `options`, which must outlive it.
CLI::App* addQueryCommand(CLI::App& app, QueryOptions& options);
int runQuery(const QueryOptions& options, const query::Connector& connect, std::ostream& out, std::ostream& err);

}  // namespace korvel::cli
