#pragma once

#include <string>

#include "cli/tool_parser.h"

namespace korvel::packaging {

/// The manual page of the tool: every command with its options, as its parser has them. `day` is YYYY-MM-DD.
[[nodiscard]] std::string toolManual(const cli::ToolParser& parser, const std::string& day, const std::string& version);

/// The tool's completion for bash: commands, options, formats, and files where an option or a command takes one.
[[nodiscard]] std::string toolCompletion(const cli::ToolParser& parser);

}  // namespace korvel::packaging
