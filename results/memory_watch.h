#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>

#include "results/free_memory.h"

namespace korvel::results {

/// Ends the loading of an answer before the machine has no memory left, for a system that runs out of it ends
/// processes without a word.
class MemoryWatch {
 public:
  explicit MemoryWatch(MemoryGauge gauge = memoryState) : gauge_(std::move(gauge)) {}

  /// What is kept free for everything else, and for sorting what was loaded.
  [[nodiscard]] static std::uint64_t reserveOf(std::uint64_t wholeBytes) noexcept;

  /// This much more was loaded. Measures from time to time; throws Error (outOfMemoryNumber) once the reserve would be
  /// needed.
  void grown(std::size_t bytes) {
    sinceLook_ += bytes;
    if (sinceLook_ >= bytesBetweenLooks) measure();
  }

  /// Nothing was loaded, but an engine has been at work, which may take memory itself: throws the same Error once the
  /// reserve is needed and was not at the first call.
  void engineAtWork();

 private:
  static constexpr std::size_t bytesBetweenLooks = std::size_t{16} << 20U;

  void measure();

  MemoryGauge gauge_;
  std::size_t sinceLook_ = 0;
  bool begun_ = false;
  bool shortFromTheStart_ = false;
};

}  // namespace korvel::results
