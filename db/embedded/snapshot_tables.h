#pragma once

#include <string_view>

namespace korvel::db {

// How a snapshot is stored; docs/formats.md describes it.

inline constexpr std::string_view snapshotFormat = "korvel-audit-snapshot";
inline constexpr unsigned snapshotVersion = 1;
/// The format that a snapshot's manifest names.
inline constexpr std::string_view snapshotOutputFormat = "snapshot";

/// The rows, as in every embedded database.
inline constexpr std::string_view snapshotTrailTable = "Korvel_Audit_Trails";
/// Names and values: what the snapshot is of, and when it was taken.
inline constexpr std::string_view snapshotFactsTable = "Korvel_Snapshot";
/// The digest of each row, at the row's place in the order of the numbers, counted from 1.
inline constexpr std::string_view snapshotDigestsTable = "Korvel_Snapshot_Digests";

}  // namespace korvel::db
