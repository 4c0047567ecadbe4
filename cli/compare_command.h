#pragma once

#include <iosfwd>
#include <string>

#include "cli/output_formats.h"
#include "query/standard_query.h"

namespace CLI {  // NOLINT(readability-identifier-naming): the parser names it so
class App;
}

namespace korvel::cli {

struct CompareOptions {
  std::string snapshot;  ///< its file, or the folder that holds it
  std::string server;    ///< empty: the one that the snapshot is of
  std::string database;
  const OutputFormat* format = &outputFormats().front();
  std::string output = "-";
  bool quiet = false;
};

/// Adds `compare`; parsing fills `options`, which must outlive the command.
CLI::App* addCompareCommand(CLI::App& app, CompareOptions& options);
/// Compares a snapshot with a trail, and writes what differs; gives the exit status.
int runCompare(const CompareOptions& options, const query::Connector& connect, std::ostream& out, std::ostream& err);

}  // namespace korvel::cli
