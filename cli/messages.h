#pragma once

#include <ostream>
#include <string>
#include <string_view>

#include "base/error.h"
#include "output/terminal_text.h"
#include "settings/string_table.h"

namespace korvel::cli {

/// How the tool ends, for scripts that call it.
enum ExitStatus : int {
  exitDone = 0,        ///< rows were written, or the demo databases are there
  exitNoRecords = 1,   ///< the answer, or the list that was asked for, has no rows; nothing was written
  exitWrongUsage = 2,  ///< the command line is wrong; nothing was tried
  exitDatabase = 3,    ///< the database failed; no file was written
  exitOutput = 4,      ///< the rows, or the demo databases, could not be written
  exitIncomplete = 5,  ///< rows were written, and a note says which are missing
  exitStopped = 130    ///< ended by Ctrl+C; a file was not written
};

/// The same for every command's help.
inline constexpr const char* exitStatusHelp =
    "Exit status:\n"
    "  0  done; also where the reader of a pipe has left, head for one\n"
    "  1  no records; nothing was written\n"
    "  2  wrong usage; nothing was tried\n"
    "  3  the database failed; number and text on standard error\n"
    "  4  the output could not be written\n"
    "  5  the answer could not be completed; what is missing on standard error\n"
    "  130  stopped by Ctrl+C; no file was written\n";

/// One line on standard error. Parts of it may come from a server or a file name, so it cannot drive the terminal.
inline void say(std::ostream& err, std::string_view text) {
  err << "korvel-audit: " << output::terminalText(text) << '\n';
}

/// Number and text of a failure, in English as all of the tool's messages are.
inline std::string errorText(const Error& error) {
  return std::to_string(error.number()) + ": " + settings::describe(error, settings::LanguageOffset{});
}

}  // namespace korvel::cli
