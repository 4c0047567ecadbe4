#include <fcntl.h>
#include <unistd.h>

#include <csignal>

#include "cli/platform.h"

namespace korvel::cli {

std::vector<std::string> startProgram(int count, char** arguments) {
  // A pipe without a reader is reported by the exit status instead.
  static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
  const int first = count > 0 ? 1 : 0;
  return {arguments + first, arguments + count};
}

bool standardOutputIsTerminal() {
  return ::isatty(STDOUT_FILENO) == 1;
}

bool deviceIsTerminal(const std::filesystem::path& device) {
  const int descriptor = ::open(device.c_str(), O_WRONLY | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  if (descriptor < 0) return false;
  const bool terminal = ::isatty(descriptor) == 1;
  ::close(descriptor);
  return terminal;
}

std::filesystem::path programFolder() {
  std::error_code failure;
  return std::filesystem::read_symlink("/proc/self/exe", failure).parent_path();
}

std::string drawingPlatform() {
  return "offscreen";
}

const char* const environmentHelp =
    "  KORVEL_AUDIT_DATA   folder of the embedded databases (otherwise korvel/audit in the\n"
    "                      user's data folder, ~/.local/share)\n"
    "  KORVEL_REGISTRY     settings file (otherwise korvel/registry.reg in the user's\n"
    "                      configuration folder, ~/.config)\n"
    "  KORVEL_ODBC_DRIVER  ODBC driver for servers (otherwise the best one installed)\n";

const char* const exampleFolder = "/tmp/audit";

}  // namespace korvel::cli
