#include <windows.h>

#include <algorithm>

#include "results/memory_watch.h"

namespace korvel::results {

std::optional<MemoryState> memoryState() {
  MEMORYSTATUSEX status{};
  status.dwLength = sizeof status;
  if (GlobalMemoryStatusEx(&status) == 0) return std::nullopt;
  // What may still be promised to processes counts as well, and the addresses of this one, which are few in 32 bits:
  // where either ends, allocations fail.
  return MemoryState{std::min({status.ullAvailPhys, status.ullAvailPageFile, status.ullAvailVirtual}),
                     std::min(status.ullTotalPhys, status.ullTotalVirtual)};
}

}  // namespace korvel::results
