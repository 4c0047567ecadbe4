#pragma once

#include <iosfwd>
#include <optional>
#include <string>

#include "cli/output_formats.h"
#include "cli/row_choice.h"
#include "cli/standard_question.h"

namespace CLI {  // NOLINT(readability-identifier-naming): the parser names it so
class App;
}

namespace korvel::cli {

struct QueryOptions : StandardQuestion {
  std::optional<results::ColumnIndex> sort;
  bool descending = false;
  RowChoice choice;
  const OutputFormat* format = &outputFormats().front();
  std::string output = "-";
};

/// Adds `query` to the command line; parsing fills `options`, which must outlive it.
CLI::App* addQueryCommand(CLI::App& app, QueryOptions& options);
int runQuery(const QueryOptions& options, const query::Connector& connect, std::ostream& out, std::ostream& err);

}  // namespace korvel::cli
