// HTML Help. It is loaded when it is first needed, so that the control runs on systems that have it not.
#include <QDir>

#include "control/html_help_windows.h"
#include "control/native_window_windows.h"

namespace korvel::control {

HtmlHelpFunction htmlHelpOf(const wchar_t* library) {
  const HMODULE loaded = LoadLibraryExW(library, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
  if (loaded == nullptr) return nullptr;
  // By way of a pointer without arguments: no cast leads from one function to any other.
  return reinterpret_cast<HtmlHelpFunction>(reinterpret_cast<void (*)()>(GetProcAddress(loaded, "HtmlHelpA")));
}

HelpOutcome openHelpWith(HtmlHelpFunction open, HWND owner, const QString& file, HelpCommand command) {
  if (open == nullptr) return file.isEmpty() ? HelpOutcome::done : HelpOutcome::noViewer;
  const QByteArray path = QDir::toNativeSeparators(file).toLocal8Bit();
  // The result is deliberately not looked at, nor whether the file is there: HTML Help reports what it misses itself.
  open(owner, path.constData(), static_cast<UINT>(command), 0);
  return HelpOutcome::done;
}

HelpOutcome openHelpFile(const QWidget* owner, const QString& file, HelpCommand command) {
  static const HtmlHelpFunction open = htmlHelpOf(L"hhctrl.ocx");
  return openHelpWith(open, nativeWindow(owner), file, command);
}

}  // namespace korvel::control
