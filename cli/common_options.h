#pragma once

#include <ostream>
#include <string>
#include <string_view>

#include "output/list_writers.h"

namespace CLI {  // NOLINT(readability-identifier-naming): the parser names it so
class App;
}

namespace korvel::cli {

// Options that the commands which write records share.

/// Adds --server and --database, and sets both to their defaults.
void addConnection(CLI::App& command, std::string& server, std::string& database);
/// Adds --format and --output, which keep what is in them where they are not given.
void addTarget(CLI::App& command, output::ListFormat& format, std::string& output);

/// Adds --output alone, for a command with formats of its own.
void addOutputFile(CLI::App& command, std::string& output);

/// Says why a command line cannot be obeyed; gives the exit status for it.
int refused(std::ostream& err, std::string_view why);

}  // namespace korvel::cli
