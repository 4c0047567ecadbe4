#pragma once

#include <windows.h>

namespace korvel::cli {

/// The handler of console events, which the system calls in a thread of its own. Where the window or the session ends,
/// it waits until the Interruption ends.
BOOL WINAPI noteConsoleEvent(DWORD event);

}  // namespace korvel::cli
