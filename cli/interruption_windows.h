#pragma once

#include <windows.h>

namespace korvel::cli {

/// What an Interruption does about the console's events, as the system calls it: in a thread of its own. Where the
/// window or the session ends, it waits until the Interruption does.
BOOL WINAPI noteConsoleEvent(DWORD event);

}  // namespace korvel::cli
