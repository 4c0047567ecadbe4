#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace CLI {  // NOLINT(readability-identifier-naming): the parser names it so
class App;
}

namespace korvel::cli {

struct VerifyOptions {
  std::vector<std::string> files;
};

/// Adds the command "verify" to the command line; parsing fills `options`, which must outlive `app`.
CLI::App* addVerifyCommand(CLI::App& app, VerifyOptions& options);
/// Compares files with their manifests; gives the exit status.
[[nodiscard]] int runVerify(const VerifyOptions& options, std::ostream& out, std::ostream& err);

}  // namespace korvel::cli
