#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

#include "evidence/snapshot_file.h"
#include "query/standard_query.h"

namespace korvel::evidence {

/// What a snapshot is to be taken of, and where it goes.
struct SnapshotOrder {
  SnapshotSource source;
  std::string connectionString;
  query::Connector connect;
  std::filesystem::path folder;  ///< made where it is not there yet
  bool asBag = false;            ///< the folder becomes a BagIt bag (RFC 8493), the snapshot is its payload
  std::string program{};
  std::string programVersion{};
};

/// Called after every batch with the rows so far and those there are to be; what it throws ends the work.
using SnapshotProgress = std::function<void(std::uint64_t rows, std::uint64_t ofRows)>;

struct TakenSnapshot {
  std::filesystem::path file;
  SnapshotFacts facts;
  std::uint64_t continuedAt = 0;  ///< rows that an earlier run had stored
};

/// The name that a snapshot has until it is whole.
inline constexpr std::string_view unfinishedEnding = ".unfinished";

/// The file in which an order's snapshot is in the making.
[[nodiscard]] std::filesystem::path unfinishedSnapshot(const SnapshotOrder& order);

/// Copies a trail, or a range of it, into an embedded database in the folder, with its manifest and sums, all of them
/// read-only. The database appears when it is whole. Rows are read in the order of their numbers up to the greatest one
/// at the beginning; memory does not grow with them. A connection that breaks is made anew as long as rows come, and
/// what was stored by then is continued by the next call for the same rows and folder, and so is a bag whose tag files
/// could not be written. Throws Error, explained in the user's language; no file of the folder is replaced but such tag
/// files.
[[nodiscard]] TakenSnapshot takeSnapshot(const SnapshotOrder& order, const SnapshotProgress& progress = {});

}  // namespace korvel::evidence
