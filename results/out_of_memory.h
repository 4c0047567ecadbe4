#pragma once

#include <cstdint>

#include "base/error.h"

namespace korvel::results {

inline constexpr std::int32_t outOfMemoryNumber = 7;

/// Its text is short enough to need no memory of its own.
[[nodiscard]] inline Error outOfMemory() {
  return {outOfMemoryNumber, "Out of memory"};
}

}  // namespace korvel::results
