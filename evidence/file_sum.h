#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>

#include "evidence/sha256.h"

namespace korvel::evidence {

/// Is called again and again while files are read, with the number of bytes so far; what it throws ends the work.
using ReadProgress = std::function<void(std::uint64_t bytes)>;

/// Size and sum of a file's bytes.
struct FileSum {
  std::uint64_t bytes = 0;
  Digest sha256;
};

/// Throws Error with the system's error number where the file cannot be read.
[[nodiscard]] FileSum sumOfFile(const std::filesystem::path& file, const ReadProgress& progress = {});

}  // namespace korvel::evidence
