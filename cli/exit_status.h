#pragma once

namespace korvel::cli {

/// How the tool ends, for scripts that call it.
enum ExitStatus : int {
  exitDone = 0,        ///< rows were written, or the demo databases are there
  exitNoRecords = 1,   ///< the answer, or the list that was asked for, has no rows; nothing was written
  exitWrongUsage = 2,  ///< the command line cannot be obeyed; nothing was tried
  exitDatabase = 3,    ///< the database failed; no file was written
  exitOutput = 4,      ///< the rows, or the demo databases, could not be written
  exitIncomplete = 5,  ///< rows were written, and it was said what is missing among them
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
    "  5  written, but query --complete could not complete it; what is missing on standard error\n"
    "  130  stopped by Ctrl+C; no file was written\n";

}  // namespace korvel::cli
