#include <windows.h>
// They need its types.
#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include <cstdio>
#include <iostream>

#include "base/paths.h"
#include "base/system_handle_windows.h"
#include "base/wide_text_windows.h"
#include "cli/console_buffer_windows.h"
#include "cli/platform.h"
#include "settings/registry.h"

namespace korvel::cli {

namespace {

/// Of all devices only consoles have a mode.
bool isConsole(HANDLE handle) noexcept {
  DWORD mode = 0;
  return GetConsoleMode(handle, &mode) != 0;
}

/// What goes to a console goes there as text, whatever code page it is set to.
void useConsole(std::ostream& stream, DWORD which) {
  const HANDLE handle = GetStdHandle(which);
  if (!isConsole(handle)) return;
  // Exists as long as the streams, which are used until the process ends.
  static_cast<void>(stream.rdbuf(new ConsoleBuffer(handle)));  // NOLINT(cppcoreguidelines-owning-memory)
}

}  // namespace

std::vector<std::string> startProgram(int count, char** arguments) {
  static_cast<void>(_setmode(_fileno(stdout), _O_BINARY));
  static_cast<void>(_setmode(_fileno(stderr), _O_BINARY));
  useConsole(std::cout, STD_OUTPUT_HANDLE);
  useConsole(std::cerr, STD_ERROR_HANDLE);

  // The arguments that main is given have lost what the code page does not hold.
  int wideCount = 0;
  wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &wideCount);
  const int first = count > 0 ? 1 : 0;
  if (wide == nullptr) return {arguments + first, arguments + count};
  std::vector<std::string> texts;
  for (int i = 1; i < wideCount; ++i) texts.push_back(utf8FromWide(wide[i]));
  LocalFree(wide);
  return texts;
}

bool standardOutputIsTerminal() {
  return isConsole(GetStdHandle(STD_OUTPUT_HANDLE));
}

bool deviceIsTerminal(const std::filesystem::path& device) {
  constexpr DWORD shared = FILE_SHARE_READ | FILE_SHARE_WRITE;
  const SystemHandle opened(CreateFileW(extendedLengthPath(device).c_str(), GENERIC_READ | GENERIC_WRITE, shared,
                                        nullptr, OPEN_EXISTING, 0, nullptr));
  return opened.isOpen() && isConsole(opened.get());
}

std::filesystem::path programFolder() {
  std::wstring name(MAX_PATH, L'\0');
  // A name that does not fit is cut.
  for (;;) {
    const DWORD length = GetModuleFileNameW(nullptr, name.data(), static_cast<DWORD>(name.size()));
    if (length == 0) return {};
    if (length < name.size()) return std::filesystem::path(name.substr(0, length)).parent_path();
    name.resize(2 * name.size());
  }
}

std::string drawingPlatform() {
  // Only the platform "windows" finds the system's fonts; others need fonts of their own.
  const std::string chosen = settings::GetEnvironment("QT_QPA_PLATFORM");
  return chosen.empty() ? "windows" : chosen;
}

const char* const environmentHelp =
    "  KORVEL_AUDIT_DATA   folder of the embedded databases (otherwise korvel\\audit in the\n"
    "                      user's local application data, %LOCALAPPDATA%)\n"
    "  KORVEL_ODBC_DRIVER  ODBC driver for servers (otherwise the best one installed)\n";

const char* const exampleFolder = "C:\\audit";

}  // namespace korvel::cli
