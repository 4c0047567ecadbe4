#pragma once

#include <string>
#include <vector>

namespace korvel::cli {

/// Makes the process ready for the tool: standard output and error take bytes as they are, in UTF-8 where they appear
/// on a terminal, and a reader of them who goes away is a failure to write like any other. Returns the arguments in
/// UTF-8, without the program's name. Called once, first of all.
[[nodiscard]] std::vector<std::string> startProgram(int count, char** arguments);

}  // namespace korvel::cli
