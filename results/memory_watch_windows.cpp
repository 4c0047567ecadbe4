#include <windows.h>

#include "results/memory_watch.h"

namespace korvel::results {

std::optional<MemoryState> memoryState() {
  MEMORYSTATUSEX status{};
  status.dwLength = sizeof status;
  if (GlobalMemoryStatusEx(&status) == 0) return std::nullopt;
  // What may still be promised to processes counts as well: where that ends, allocations fail.
  return MemoryState{status.ullAvailPhys < status.ullAvailPageFile ? status.ullAvailPhys : status.ullAvailPageFile,
                     status.ullTotalPhys};
}

}  // namespace korvel::results
