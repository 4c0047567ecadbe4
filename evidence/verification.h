#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "evidence/file_sum.h"

namespace korvel::evidence {

/// What was found of one output that has a manifest.
struct Verification {
  std::string name;                   ///< the output
  std::vector<std::string> findings;  ///< sentences; none: output, manifest and sums are unchanged
  [[nodiscard]] bool isUnchanged() const noexcept { return findings.empty(); }
};

/// The outputs that a name means: of a folder, those of all manifests and of our sums in it, in order; of a manifest or
/// a file of sums, the output that it belongs to; else the file itself. Throws Error with the system's error number
/// where a folder cannot be read.
[[nodiscard]] std::vector<std::filesystem::path> outputsOf(const std::filesystem::path& named);

/// Compares an output with its manifest, and both with their sums. Where rows of a csv, json or xlsx file differ, they
/// are named. Nothing is changed, and no other file is read. What a file lacks or cannot be read is a finding.
[[nodiscard]] Verification verifyOutput(const std::filesystem::path& output, const ReadProgress& progress = {});

}  // namespace korvel::evidence
