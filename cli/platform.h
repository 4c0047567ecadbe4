#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace korvel::cli {

// What differs between platforms, apart from Ctrl+C (interruption.h).

/// Makes the process ready for the tool: standard output and error take bytes as they are, in UTF-8 where they appear
/// on a terminal, and a reader of them that goes away is a failure to write like any other. Returns the arguments in
/// UTF-8, without the program's name. Called once, first of all.
[[nodiscard]] std::vector<std::string> startProgram(int count, char** arguments);

/// Whether standard output appears on a terminal.
[[nodiscard]] bool standardOutputIsTerminal();
/// Whether a device is a terminal.
[[nodiscard]] bool deviceIsTerminal(const std::filesystem::path& device);

/// The folder of the running program; empty where the system does not tell.
[[nodiscard]] std::filesystem::path programFolder();

/// The Qt platform that pages are drawn with: one that has fonts and needs no display.
[[nodiscard]] std::string drawingPlatform();

/// The environment's variables for the help, a line or more for each.
extern const char* const environmentHelp;
/// A folder for examples in the help.
extern const char* const exampleFolder;

}  // namespace korvel::cli
