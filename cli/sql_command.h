#pragma once

#include <iosfwd>
#include <string>

#include "cli/output_formats.h"
#include "cli/row_choice.h"
#include "query/standard_query.h"

namespace CLI {  // NOLINT(readability-identifier-naming): the parser names it so
class App;
}

namespace korvel::cli {

struct SqlOptions {
  std::string server;
  std::string database;
  std::string text;
  std::string file;  ///< a query file to take the text from
  bool fromFile = false;
  RowChoice choice;
  const OutputFormat* format = &outputFormats().front();
  std::string output = "-";
  bool manifest = false;  ///< the output gets one
};

/// Adds `sql` to the command line; parsing fills `options`, which must outlive it.
CLI::App* addSqlCommand(CLI::App& app, SqlOptions& options);
int runSql(const SqlOptions& options, const query::Connector& connect, std::ostream& out, std::ostream& err);

}  // namespace korvel::cli
