// A program with windows has no console of its own: what it has to say goes to that of the program that started it.
#include "host/command_line.h"

#include <windows.h>

#include <shellapi.h>

#include <memory>

namespace korvel::host {
namespace {

/// A handle that the program was started with; null where nobody gave it one.
HANDLE given(DWORD which) {
  const HANDLE handle = GetStdHandle(which);
  return handle == INVALID_HANDLE_VALUE ? nullptr : handle;
}

/// The console of the program that started this one; null where that has none.
HANDLE parentsConsole() {
  static const bool attached = AttachConsole(ATTACH_PARENT_PROCESS) != 0;
  if (!attached) return nullptr;
  // Stays open: the program ends soon after it has said something there.
  static const HANDLE console = CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE,
                                            FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
  return console == INVALID_HANDLE_VALUE ? nullptr : console;
}

void write(DWORD which, const QString& text) {
  HANDLE target = given(which);
  if (target == nullptr || GetFileType(target) == FILE_TYPE_UNKNOWN) target = parentsConsole();
  if (target == nullptr) return;
  DWORD mode = 0;
  DWORD written = 0;
  if (GetConsoleMode(target, &mode) != 0) {
    // A console takes characters whatever code page it is set to.
    WriteConsoleW(target, text.utf16(), static_cast<DWORD>(text.size()), &written, nullptr);
    return;
  }
  const QByteArray bytes = text.toUtf8();
  WriteFile(target, bytes.constData(), static_cast<DWORD>(bytes.size()), &written, nullptr);
}

}  // namespace

QStringList rawArguments(int /*argc*/, char** /*argv*/) {
  // Not argv, which the system has forced into its code page.
  int count = 0;
  const std::unique_ptr<LPWSTR, decltype(&LocalFree)> words(CommandLineToArgvW(GetCommandLineW(), &count), &LocalFree);
  QStringList arguments;
  for (int i = 1; words && i < count; ++i) arguments.append(QString::fromWCharArray(words.get()[i]));
  return arguments;
}

void writeOutput(const QString& text) {
  write(STD_OUTPUT_HANDLE, text);
}

void writeErrors(const QString& text) {
  write(STD_ERROR_HANDLE, text);
}

}  // namespace korvel::host
