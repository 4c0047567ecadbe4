#include <iostream>

#include "cli/program_start.h"
#include "cli/tool.h"

int main(int count, char** arguments) {
  return korvel::cli::runTool(korvel::cli::startProgram(count, arguments), std::cout, std::cerr);
}
