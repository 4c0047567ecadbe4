#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>

#include "base/error.h"
#include "cli/output_formats.h"
#include "output/terminal_text.h"

namespace korvel::cli {

/// How an option is shown in the help.
struct OptionHelp {
  std::string name;
  std::string value;  ///< what stands for its value
  std::string text;
};

/// A check for the parser: a text that `read` refuses is reported with "'...' is " and the complaint.
template <typename Read>
auto readableBy(Read read, std::string complaint) {
  return [read, complaint = std::move(complaint)](const std::string& text) {
    return read(text) ? std::string{} : "'" + output::terminalText(text) + "' is " + complaint;
  };
}

/// Adds an option: `read` makes an optional value of its text, `take` gets the value.
template <typename Read, typename Take>
CLI::Option* addReadOption(CLI::App& command, const OptionHelp& help, Read read, std::string complaint, Take take) {
  return command
      .add_option_function<std::string>(
          help.name, [read, take](const std::string& text) { take(read(text).value()); }, help.text)
      ->option_text(help.value)
      ->check(readableBy(read, std::move(complaint)));
}

// Options that the commands which write records share.

/// Adds --server and --database, and sets both to their defaults.
void addConnection(CLI::App& command, std::string& server, std::string& database);
/// Adds --format and --output, which keep what is in them where they are not given.
void addTarget(CLI::App& command, const OutputFormat*& format, std::string& output);

/// Why a format cannot be written to a target; nothing where it can.
[[nodiscard]] std::optional<std::string> targetProblem(const OutputFormat& format, const std::string& output,
                                                       const std::ostream& out);

/// Reports why an output could not be written; gives the exit status for it. A pipe that its reader closed is no
/// failure.
int outputFailed(std::ostream& err, const Error& error);

/// Writes a text to standard output; gives `status`, or that of a failure.
int writeText(std::ostream& out, std::ostream& err, std::string_view text, int status);

/// Reports why a command line cannot be executed; gives the exit status for it.
int refused(std::ostream& err, std::string_view why);

}  // namespace korvel::cli
