#pragma once

#include <cstdint>
#include <filesystem>

namespace korvel::demo {

/// Rows of a demo database unless the caller wants another number: enough that several categories pass the limit of
/// 5000.
inline constexpr std::uint64_t defaultRows = 60000;

struct Options {
  std::filesystem::path folder;  ///< made, with its parents, where it does not stand yet
  std::uint64_t rows = defaultRows;
  std::uint64_t seed = 1;
  bool force = false;  ///< replace databases that stand there already
};

/// Writes Korvel_Audit.db and Korvel_Audit_MU.db into the folder: invented plant data, the same on every machine for
/// the same rows and seed. Both are complete or neither name is touched. Without `force` a file of either name is an
/// Error and nothing is written. Throws Error.
void writeDemoDatabases(const Options& options);

/// Whether the folder has a file of one of the two names.
[[nodiscard]] bool hasDemoDatabase(const std::filesystem::path& folder);

/// Writes one database with the data of Korvel_Audit.db, replacing `file` if it stands; a failure leaves it as it was.
/// Throws Error.
void writeDemoDatabase(const std::filesystem::path& file, std::uint64_t rows, std::uint64_t seed);

}  // namespace korvel::demo
