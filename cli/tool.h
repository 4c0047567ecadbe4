#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "db/open_connection.h"
#include "query/standard_query.h"

namespace korvel::cli {

/// Runs the tool: `arguments` without the program's name, rows to `out`, messages to `err`.
/// Returns the exit status (ExitStatus); throws nothing.
int runTool(std::vector<std::string> arguments, std::ostream& out, std::ostream& err,
            const query::Connector& connect = db::openConnection);

}  // namespace korvel::cli
