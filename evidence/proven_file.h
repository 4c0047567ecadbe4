#pragma once

#include <cstdint>
#include <filesystem>
#include <string_view>

#include "base/atomic_file.h"
#include "evidence/manifest.h"
#include "evidence/sha256.h"

namespace korvel::evidence {

/// Where the manifest of an output and the sums of both are: beside it.
[[nodiscard]] std::filesystem::path manifestOf(const std::filesystem::path& output);
[[nodiscard]] std::filesystem::path sumsOf(const std::filesystem::path& output);

/// An output together with its manifest and their sums. All three are written completely before the first of them
/// appears; without commit() none does, and what was there stays.
class ProvenFile {
 public:
  /// Throws Error with the system's error number where one of the three cannot be written.
  explicit ProvenFile(const std::filesystem::path& target, SymlinkPolicy symlinks = SymlinkPolicy::follow);

  void write(std::string_view bytes);
  /// `manifest` says all but the output's name, size and sum, and when it was written. Where one of the three cannot be
  /// put in its place, all that was there before stays or comes back, and Error is thrown. Where the program ends in
  /// between, verifyOutput() notices it: the sums come first and the output last, so that no older manifest ever stands
  /// beside a newer output.
  void commit(Manifest manifest);

 private:
  std::filesystem::path target_;
  SymlinkPolicy symlinks_;
  AtomicFile output_;
  AtomicFile manifest_;
  AtomicFile sums_;
  Sha256 sum_;
  std::uint64_t bytes_ = 0;
};

}  // namespace korvel::evidence
