#include "bench/memory.h"

#include <malloc.h>

#include <cstdlib>
#include <fstream>
#include <string>

namespace korvel::bench {

namespace {

/// A line of the system's account of this process, in megabytes; 0 where there is none.
double accountOf(const std::string& title) {
  std::ifstream account("/proc/self/status");
  constexpr double kibibytes = 1024;
  for (std::string line; std::getline(account, line);)
    if (line.starts_with(title)) return std::atof(line.c_str() + title.size()) / kibibytes;
  return 0;
}

}  // namespace

double residentMegabytes() {
  return accountOf("VmRSS:");
}
double peakMegabytes() {
  return accountOf("VmHWM:");
}
void forgetPeak() {
  ::malloc_trim(0);
  std::ofstream("/proc/self/clear_refs") << "5";
}

}  // namespace korvel::bench
