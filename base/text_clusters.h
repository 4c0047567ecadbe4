#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace korvel {

// What a reader sees as one character is a cluster of one or more code points: a letter with its accents, a family of
// persons, a flag, CR and LF together. In UTF-8 texts each malformed byte is a cluster of its own.

/// Where the clusters of `text` begin, in bytes, and behind them its end; {0} for an empty text. `text` has less than
/// 4 GiB.
[[nodiscard]] std::vector<std::uint32_t> clusterBounds(std::string_view text);

// A place between two clusters that is certain without the rest of a text: what follows a beginning, or precedes an
// end, can add to the cluster there. They look at some hundred code points at most; in a longer run without any certain
// place (a row of flags) they stop between two code points.

/// The last such place in `beginning`, whatever follows it; 0 where there is none.
[[nodiscard]] std::size_t lastCertainBound(std::string_view beginning) noexcept;
/// The first such place in `end`, whatever precedes it; its size where there is none.
[[nodiscard]] std::size_t firstCertainBound(std::string_view end) noexcept;

}  // namespace korvel
