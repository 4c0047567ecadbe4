// What a file that contains the compiler's library must give back when it is unloaded.
#include <windows.h>

namespace __gnu_cxx {
/// Of the compiler's library: frees the memory that it keeps for exceptions in a process without memory, 73 KB for each
/// loaded copy of the library. It does not do so by itself.
// NOLINTNEXTLINE(readability-identifier-naming): its name in that library
void __freeres();
}  // namespace __gnu_cxx

/// `ending` is null for a file that is unloaded; with the process all memory ends.
extern "C" BOOL WINAPI DllMain(HINSTANCE /*file*/, DWORD reason, LPVOID ending) {
  if (reason == DLL_PROCESS_DETACH && ending == nullptr) __gnu_cxx::__freeres();
  return TRUE;
}
