#include <csignal>

#include "cli/program_start.h"

namespace korvel::cli {

std::vector<std::string> startProgram(int count, char** arguments) {
  // It is said, and told by the exit status.
  static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
  const int first = count > 0 ? 1 : 0;
  return {arguments + first, arguments + count};
}

}  // namespace korvel::cli
