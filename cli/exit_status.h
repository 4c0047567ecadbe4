#pragma once

namespace korvel::cli {

/// How the tool ends, for scripts that call it.
enum ExitStatus : int {
  exitDone = 0,        ///< rows were written, or the demo databases are there
  exitNoRecords = 1,   ///< the answer, or the list that was asked for, has no rows; nothing was written
  exitWrongUsage = 2,  ///< the command line cannot be obeyed; nothing was tried
  exitDatabase = 3,    ///< the database failed; no file was written
  exitOutput = 4,      ///< the rows, or the demo databases, could not be written
  exitStopped = 130    ///< ended by Ctrl+C; a file was not written
};

}  // namespace korvel::cli
