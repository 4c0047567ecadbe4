#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <utility>

#include "base/error.h"

namespace korvel::results {

inline constexpr std::int32_t outOfMemoryNumber = 7;

/// Its text is short enough to need no memory of its own.
[[nodiscard]] inline Error outOfMemory() {
  return {outOfMemoryNumber, "Out of memory"};
}

/// What this process may still use, and what it could use at most: of the machine, or of its share where that is less.
struct MemoryState {
  std::uint64_t freeBytes = 0;
  std::uint64_t wholeBytes = 0;
};

/// Measures it now; nothing where the system does not tell. Takes a fraction of a millisecond.
[[nodiscard]] std::optional<MemoryState> memoryState();

/// How memory is measured: memoryState outside tests.
using MemoryGauge = std::function<std::optional<MemoryState>()>;

/// Ends the loading of an answer before the machine has no memory left, because a system that runs out of it kills
/// processes without warning.
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
