#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include "cli/output_formats.h"

namespace CLI {  // NOLINT(readability-identifier-naming): the parser names it so
class App;
}

namespace korvel::cli {

// Options that the commands which write records share.

/// Adds --server and --database, and sets both to their defaults.
void addConnection(CLI::App& command, std::string& server, std::string& database);
/// Adds --format and --output, which keep what is in them where they are not given.
void addTarget(CLI::App& command, const OutputFormat*& format, std::string& output);

/// Why a format cannot go to where it was sent; nothing where it can.
[[nodiscard]] std::optional<std::string> targetProblem(const OutputFormat& format, const std::string& output,
                                                       const std::ostream& out);

/// Says why a command line cannot be obeyed; gives the exit status for it.
int refused(std::ostream& err, std::string_view why);

}  // namespace korvel::cli
