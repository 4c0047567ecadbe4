#pragma once

#include <windows.h>

#include <QString>

#include "control/file_programs.h"

namespace korvel::control {

/// HTML Help's one function; replaced by tests.
using HtmlHelpFunction = HWND(WINAPI*)(HWND, LPCSTR, UINT, DWORD_PTR);

/// Its function in a library of the system folder; null where there is none. The library stays loaded: its windows
/// outlive the call.
[[nodiscard]] HtmlHelpFunction htmlHelpOf(const wchar_t* library);

/// Opens a help file in HTML Help, its path in the system's code page. `open` may be null: that is `noViewer`, except
/// for an empty path, which shows nothing anyway.
HelpOutcome openHelpWith(HtmlHelpFunction open, HWND owner, const QString& file, HelpCommand command);

/// Opens a help file at a topic, in the same way; the book's own contents for an empty one.
HelpOutcome openHelpWith(HtmlHelpFunction open, HWND owner, const QString& file, const QString& topic);

/// Command line of "notepad": its name and the path, quoted where the path has a blank.
[[nodiscard]] QString notepadCommand(const QString& file);

/// Starts the program at `program` with a command line, in a window of its own that is shown as usual. Throws Error 53
/// where it cannot be started.
void startWindowsProgram(const QString& program, const QString& commandLine);

}  // namespace korvel::control
