#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <utility>

#include "output/terminal_text.h"

namespace korvel::cli {

/// How an option is shown in the help.
struct OptionHelp {
  std::string name;
  std::string value;  ///< what stands for its value
  std::string text;
};

/// A check for the parser: what `read` gives nothing for is refused with "'...' is " and the complaint.
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

}  // namespace korvel::cli
