#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "cli/tool.h"

namespace korvel::test {

/// How a run of the tool ended and what it said.
struct ToolRun {
  int status;
  std::string out;
  std::string err;
};

inline ToolRun runTool(const std::vector<std::string>& arguments,
                       const query::Connector& connect = db::openConnection) {
  std::ostringstream out;
  std::ostringstream err;
  const int status = cli::runTool(arguments, out, err, connect);
  return {status, out.str(), err.str()};
}

}  // namespace korvel::test
