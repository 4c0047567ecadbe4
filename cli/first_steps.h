#pragma once

#include <string>
#include <vector>

namespace korvel::cli {

/// What can be read from this computer, as far as it shows without asking the network.
struct ReadableHere {
  std::string folder;                  ///< of the embedded databases
  std::vector<std::string> databases;  ///< in it
  std::vector<std::string> servers;    ///< that are configured for the user
};
[[nodiscard]] ReadableHere readableHere();

/// Five commands to begin with, for what is there: lines, each ended by a line feed.
[[nodiscard]] std::string firstSteps(const ReadableHere& here);

}  // namespace korvel::cli
