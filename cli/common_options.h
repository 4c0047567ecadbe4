#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include "base/error.h"
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

/// Says why an output could not be written; gives the exit status for it. That the reader of a pipe has left is no
/// failure: it has had what it wanted.
int outputFailed(std::ostream& err, const Error& error);

/// Writes a text to standard output; gives `status`, or that of a failure.
int writeText(std::ostream& out, std::ostream& err, std::string_view text, int status);

/// Says why a command line cannot be obeyed; gives the exit status for it.
int refused(std::ostream& err, std::string_view why);

}  // namespace korvel::cli
