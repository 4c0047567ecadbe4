#pragma once

#include <ostream>
#include <string_view>

#include "output/terminal_text.h"

namespace korvel::cli {

/// One line for the person who runs the tool. Parts of it may come from a server or a file name, so it cannot drive the
/// terminal.
inline void say(std::ostream& err, std::string_view text) {
  err << "korvel-audit: " << output::terminalText(text) << '\n';
}

}  // namespace korvel::cli
