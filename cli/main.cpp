#include <cstdlib>
#include <iostream>

#include "cli/program_start.h"
#include "cli/tool.h"
#include "db/worker.h"

int main(int count, char** arguments) {
  const int status = korvel::cli::runTool(korvel::cli::startProgram(count, arguments), std::cout, std::cerr);
  std::cout.flush();
  // What a query that was left behind still uses is not taken from it.
  if (korvel::db::hasAbandonedWorkers()) std::_Exit(status);
  return status;
}
