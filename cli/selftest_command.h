#pragma once

#include <iosfwd>
#include <string>

#include "cli/output_formats.h"
#include "query/standard_query.h"

namespace CLI {  // NOLINT(readability-identifier-naming): the parser names it so
class App;
}

namespace korvel::cli {

struct SelftestOptions {
  std::string list;  ///< empty: the lists of the installation
  const OutputFormat* format = &outputFormats().front();
  std::string output = "-";
  bool quiet = false;
};

/// Adds the command "selftest" to the command line; parsing fills `options`, which must outlive `app`.
CLI::App* addSelftestCommand(CLI::App& app, SelftestOptions& options);
/// Shows whether this installation is what was delivered, and works; gives the exit status.
[[nodiscard]] int runSelftest(const SelftestOptions& options, const query::Connector& connect, std::ostream& out,
                              std::ostream& err);

}  // namespace korvel::cli
