#pragma once

#include <iosfwd>
#include <string>

#include "query/date_range.h"
#include "query/standard_query.h"

namespace CLI {  // NOLINT(readability-identifier-naming): the parser names it so
class App;
}

namespace korvel::cli {

struct SnapshotOptions {
  std::string server;
  std::string database;
  query::DateRange range;
  std::string output;  ///< the folder
  bool bag = false;
  bool quiet = false;
};

/// Adds `snapshot`; parsing fills `options`, which must outlive the command.
CLI::App* addSnapshotCommand(CLI::App& app, SnapshotOptions& options);
/// Copies a trail into a folder; gives the exit status.
int runSnapshot(const SnapshotOptions& options, const query::Connector& connect, std::ostream& out, std::ostream& err);

}  // namespace korvel::cli
