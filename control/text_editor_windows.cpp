// The system's own editor.
#include <windows.h>

#include <QDir>
#include <array>
#include <string>

#include "control/notepad_windows.h"
#include "control/text_editor.h"
#include "output/windows_error.h"

namespace korvel::control {
namespace {

/// "notepad" of the system folder: a name alone would also be looked for in the current one, where anybody may have put
/// it.
QString notepadProgram() {
  std::array<wchar_t, MAX_PATH> folder{};
  const UINT length = GetSystemDirectoryW(folder.data(), static_cast<UINT>(folder.size()));
  return QString::fromWCharArray(folder.data(), static_cast<qsizetype>(length)) + QStringLiteral("\\notepad.exe");
}

}  // namespace

QString notepadCommand(const QString& file) {
  const QString path = QDir::toNativeSeparators(file);
  const QString quote = path.contains(QLatin1Char(' ')) ? QStringLiteral("\"") : QString();
  return QStringLiteral("notepad ") + quote + path + quote;
}

void startWindowsProgram(const QString& program, const QString& commandLine) {
  std::wstring line = commandLine.toStdWString();  // the system writes into it
  STARTUPINFOW manner{};
  manner.cb = sizeof(manner);
  manner.dwFlags = STARTF_USESHOWWINDOW;
  manner.wShowWindow = SW_SHOWNORMAL;
  PROCESS_INFORMATION started{};
  if (CreateProcessW(program.toStdWString().c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &manner,
                     &started) == 0)
    throw output::windowsError(output::errorFileNotFound);
  CloseHandle(started.hThread);
  CloseHandle(started.hProcess);
}

void startTextEditor(const QString& file) {
  startWindowsProgram(notepadProgram(), notepadCommand(file));
}

}  // namespace korvel::control
