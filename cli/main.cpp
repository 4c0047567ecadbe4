#include <cstdlib>
#include <iostream>

#include "cli/platform.h"
#include "cli/tool.h"
#include "db/worker.h"

int main(int count, char** arguments) {
  const int status = korvel::cli::runTool(korvel::cli::startProgram(count, arguments), std::cout, std::cerr);
  std::cout.flush();
  // A detached query may still use static objects: they are not destroyed.
  if (korvel::db::hasAbandonedWorkers()) std::_Exit(status);
  return status;
}
