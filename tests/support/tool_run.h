#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "cli/tool.h"

namespace korvel::test {

/// The exit status and the output of a run of the tool.
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
