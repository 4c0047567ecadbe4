#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

#include "db/connection.h"
#include "evidence/snapshot_file.h"

namespace korvel::evidence {

/// What a database says of itself if it is a snapshot; nothing where it is none. Throws Error where it is damaged or of
/// a newer version.
[[nodiscard]] std::optional<SnapshotFacts> snapshotFactsOf(db::Connection& database);

/// Opens a snapshot's file. Throws Error where it is no embedded database.
[[nodiscard]] std::unique_ptr<db::Connection> openSnapshot(const std::filesystem::path& file);

/// What a file says of itself as a snapshot. Throws Error, explained in the user's language, where it is none, or where
/// it is damaged, locked or of a newer version.
[[nodiscard]] SnapshotFacts factsOfSnapshot(const std::filesystem::path& file);

/// The digests of a snapshot's rows, in their order.
struct SnapshotRows {
  std::vector<Digest> recorded;  ///< those that were stored with the rows
  std::vector<Digest> found;     ///< those of the rows as they are now
};

/// Throws Error where the file is no snapshot, or cannot be read.
[[nodiscard]] SnapshotRows rowsOfSnapshot(const std::filesystem::path& file);

}  // namespace korvel::evidence
