#pragma once

#include <cstddef>
#include <functional>

namespace korvel::output {

/// Hears how many rows of a list are written: after every so many and after the last one. What it throws ends the
/// output, of which nothing then stays.
using RowProgress = std::function<void(std::size_t rows)>;

inline constexpr std::size_t rowsPerReport = 1000;

inline void reportRows(const RowProgress& progress, std::size_t done, std::size_t all) {
  if (progress && (done % rowsPerReport == 0 || done == all)) progress(done);
}

}  // namespace korvel::output
