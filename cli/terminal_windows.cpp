#include <windows.h>

#include "base/paths.h"
#include "base/system_handle_windows.h"
#include "cli/terminal.h"

namespace korvel::cli {

namespace {

/// Of all devices only consoles have a mode.
bool isConsole(HANDLE handle) noexcept {
  DWORD mode = 0;
  return GetConsoleMode(handle, &mode) != 0;
}

}  // namespace

bool standardOutputIsTerminal() {
  return isConsole(GetStdHandle(STD_OUTPUT_HANDLE));
}

bool deviceIsTerminal(const std::filesystem::path& device) {
  constexpr DWORD shared = FILE_SHARE_READ | FILE_SHARE_WRITE;
  const SystemHandle opened(CreateFileW(extendedLengthPath(device).c_str(), GENERIC_READ | GENERIC_WRITE, shared,
                                        nullptr, OPEN_EXISTING, 0, nullptr));
  return opened.isOpen() && isConsole(opened.get());
}

}  // namespace korvel::cli
