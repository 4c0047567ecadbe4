// HTML Help and the system's own text editor.
#include "control/file_programs_windows.h"

#include <QDir>
#include <array>
#include <string>

#include "base/system_errors.h"
#include "control/native_window_windows.h"

namespace korvel::control {
namespace {

/// "notepad" of the system folder: a name alone is also searched in the current folder, which may hold another file.
QString notepadProgram() {
  std::array<wchar_t, MAX_PATH> folder{};
  const UINT length = GetSystemDirectoryW(folder.data(), static_cast<UINT>(folder.size()));
  return QString::fromWCharArray(folder.data(), static_cast<qsizetype>(length)) + QStringLiteral("\\notepad.exe");
}

}  // namespace

HtmlHelpFunction htmlHelpOf(const wchar_t* library) {
  const HMODULE loaded = LoadLibraryExW(library, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
  if (loaded == nullptr) return nullptr;
  // Through a function pointer without arguments: a direct cast between function types is warned about.
  return reinterpret_cast<HtmlHelpFunction>(reinterpret_cast<void (*)()>(GetProcAddress(loaded, "HtmlHelpA")));
}

HelpOutcome openHelpWith(HtmlHelpFunction open, HWND owner, const QString& file, HelpCommand command) {
  if (open == nullptr) return file.isEmpty() ? HelpOutcome::done : HelpOutcome::noViewer;
  const QByteArray path = QDir::toNativeSeparators(file).toLocal8Bit();
  // Deliberately checks neither the result nor the file: HTML Help reports problems itself.
  open(owner, path.constData(), static_cast<UINT>(command), 0);
  return HelpOutcome::done;
}

HelpOutcome openHelpFile(const QWidget* owner, const QString& file, HelpCommand command) {
  static const HtmlHelpFunction open = htmlHelpOf(L"hhctrl.ocx");
  return openHelpWith(open, nativeWindow(owner), file, command);
}

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
    throw fileError(FileError::fileNotFound);
  CloseHandle(started.hThread);
  CloseHandle(started.hProcess);
}

void startTextEditor(const QString& file) {
  startWindowsProgram(notepadProgram(), notepadCommand(file));
}

}  // namespace korvel::control
