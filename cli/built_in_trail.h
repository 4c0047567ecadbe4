#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "query/standard_query.h"

namespace korvel::cli {

/// The trail that the self-test asks: the demonstration data, of so many rows and this seed.
inline constexpr std::uint64_t builtInRows = 3000;
inline constexpr std::uint64_t builtInSeed = 1;
/// The digest of all its rows as docs/formats.md defines it. It is a fixed point: a change of it means that either the
/// data or the way to read and digest rows is another one.
inline constexpr std::string_view builtInDigest = "75d23b34fe95932b5e33568847c5431308979381cffc589c52568fa194b0b25b";

/// What the known query has answered.
struct BuiltInAnswer {
  std::uint64_t rows = 0;
  std::string digest;
  std::string engine;  ///< product and version
};

/// Writes the trail into a new folder in `folder`, asks it for all audits through `connect`, and removes it. Throws
/// Error where the trail cannot be written, or not be read.
[[nodiscard]] BuiltInAnswer askBuiltInTrail(const std::filesystem::path& folder, const query::Connector& connect);

}  // namespace korvel::cli
