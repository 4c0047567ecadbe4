#include <windows.h>
// They need its types.
#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include <cstdio>
#include <iostream>

#include "base/wide_text_windows.h"
#include "cli/console_buffer_windows.h"
#include "cli/program_start.h"

namespace korvel::cli {

namespace {

/// What goes to a console goes there as text, whatever code page it is set to.
void useConsole(std::ostream& stream, DWORD which) {
  const HANDLE handle = GetStdHandle(which);
  DWORD mode = 0;
  if (GetConsoleMode(handle, &mode) == 0) return;
  // Lives as long as the streams, which are used until the process is gone.
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

}  // namespace korvel::cli
