// HTML Help. It is loaded when it is first needed, so that the control runs on systems that have it not.
#include <windows.h>

#include <QWidget>

#include "control/help_viewer.h"

namespace korvel::control {
namespace {

using HtmlHelpFunction = HWND(WINAPI*)(HWND, LPCSTR, UINT, DWORD_PTR);

/// Null where the system has no HTML Help. The library stays loaded: its windows outlive the call.
HtmlHelpFunction htmlHelp() {
  static const HMODULE library = LoadLibraryExA("hhctrl.ocx", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
  if (library == nullptr) return nullptr;
  return reinterpret_cast<HtmlHelpFunction>(GetProcAddress(library, "HtmlHelpA"));
}

}  // namespace

HelpOutcome openHelpFile(const QWidget* owner, const QString& file, HelpCommand command) {
  const HtmlHelpFunction open = htmlHelp();
  if (open == nullptr) return file.isEmpty() ? HelpOutcome::done : HelpOutcome::noViewer;
  const HWND window = owner == nullptr ? nullptr : reinterpret_cast<HWND>(owner->winId());
  // The result is deliberately not looked at, nor whether the file is there: HTML Help reports what it misses itself.
  open(window, file.toLocal8Bit().constData(), static_cast<UINT>(command), 0);
  return HelpOutcome::done;
}

}  // namespace korvel::control
