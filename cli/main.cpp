#include <csignal>
#include <iostream>

#include "cli/tool.h"

int main(int count, char** arguments) {
#ifdef SIGPIPE
  // A reader that goes away is a failure to write like any other: said, and told by the exit status.
  static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
#endif
  const int first = count > 0 ? 1 : 0;
  return korvel::cli::runTool({arguments + first, arguments + count}, std::cout, std::cerr);
}
