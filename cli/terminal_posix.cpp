#include <fcntl.h>
#include <unistd.h>

#include "cli/terminal.h"

namespace korvel::cli {

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

}  // namespace korvel::cli
