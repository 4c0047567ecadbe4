#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

#include "demo/demo_database.h"

namespace CLI {  // NOLINT(readability-identifier-naming): the parser names it so
class App;
}

namespace korvel::cli {

struct DemoOptions {
  std::string folder;  ///< empty: the embedded engine's own folder
  std::uint64_t rows = demo::defaultRows;
  std::uint64_t seed = 1;
  bool force = false;
};

/// Adds `demo` to the command line; parsing fills `options`, which must outlive it.
CLI::App* addDemoCommand(CLI::App& app, DemoOptions& options);
int runDemo(const DemoOptions& options, std::ostream& out, std::ostream& err);

}  // namespace korvel::cli
