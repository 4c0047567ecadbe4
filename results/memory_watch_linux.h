#pragma once

#include <filesystem>
#include <optional>

#include "results/memory_watch.h"

namespace korvel::results {

/// The same from the system's files below `root`: the machine's memory, and the limits of the control groups that the
/// process belongs to, of either version.
[[nodiscard]] std::optional<MemoryState> memoryStateBelow(const std::filesystem::path& root);

}  // namespace korvel::results
