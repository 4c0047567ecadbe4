// HTML Help and the system's own text editor.
#include "control/file_programs_windows.h"

#include <QDir>
#include <QFileInfo>
#include <array>
#include <string>

#include "base/system_errors.h"
#include "control/help_pages.h"
#include "control/native_window_windows.h"

namespace korvel::control {
namespace {

/// "notepad" of the system folder: a name alone is also searched in the current folder, which may hold another file.
QString notepadProgram() {
  std::array<wchar_t, MAX_PATH> folder{};
  const UINT length = GetSystemDirectoryW(folder.data(), static_cast<UINT>(folder.size()));
  return QString::fromWCharArray(folder.data(), static_cast<qsizetype>(length)) + QStringLiteral("\\notepad.exe");
}

constexpr UINT displayTopic = 0;

/// Whether the pages beside the book have to serve: without HTML Help, or without the book.
bool needsPages(HtmlHelpFunction open, const QString& book) {
  return open == nullptr || !QFileInfo(book).isFile();
}

bool isPageOpened(const QUrl& page) {
  return !page.isEmpty() && openHelpPage(page);
}

HtmlHelpFunction systemHtmlHelp() {
  static const HtmlHelpFunction open = htmlHelpOf(L"hhctrl.ocx");
  return open;
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

HelpOutcome openHelpWith(HtmlHelpFunction open, HWND owner, const QString& file, const QString& topic) {
  if (file.isEmpty() || topic.isEmpty() || open == nullptr)
    return openHelpWith(open, owner, file, HelpCommand::contents);
  const QString place = QDir::toNativeSeparators(file) + QStringLiteral("::/") + topic;
  open(owner, place.toLocal8Bit().constData(), displayTopic, 0);
  return HelpOutcome::done;
}

HelpOutcome openHelpFile(const QWidget* owner, const QString& file, HelpCommand command) {
  if (needsPages(systemHtmlHelp(), file) && isPageOpened(helpPage(file, command))) return HelpOutcome::done;
  return openHelpWith(systemHtmlHelp(), nativeWindow(owner), file, command);
}

HelpOutcome openHelpFile(const QWidget* owner, const QString& file, const QString& topic) {
  if (needsPages(systemHtmlHelp(), file) && isPageOpened(helpPage(file, topic))) return HelpOutcome::done;
  return openHelpWith(systemHtmlHelp(), nativeWindow(owner), file, topic);
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
