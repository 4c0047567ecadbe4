#pragma once

#include <ostream>
#include <string>
#include <string_view>

#include "base/error.h"
#include "output/terminal_text.h"
#include "settings/explained_error.h"
#include "settings/string_table.h"

namespace korvel::cli {

/// One line for the person who runs the tool. Parts of it may come from a server or a file name, so it cannot drive the
/// terminal.
inline void say(std::ostream& err, std::string_view text) {
  err << "korvel-audit: " << output::terminalText(text) << '\n';
}

/// Number and text of a failure, in English as all of the tool's messages are.
inline std::string errorText(const Error& error) {
  return std::to_string(error.number()) + ": " + settings::describe(error, settings::LanguageOffset{});
}

}  // namespace korvel::cli
