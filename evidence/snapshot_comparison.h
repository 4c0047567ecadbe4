#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "evidence/snapshot_file.h"
#include "evidence/trail_comparison.h"
#include "query/standard_query.h"

namespace korvel::evidence {

/// A snapshot, and the trail that it is compared with.
struct ComparisonOrder {
  std::filesystem::path snapshot;  ///< its file
  std::string server;
  std::string database;
  std::string connectionString;
  query::Connector connect;
};

/// How far a comparison is.
struct ComparisonState {
  bool isVerifying = false;  ///< the snapshot's file is read, and counted in bytes; else rows are compared
  std::uint64_t done = 0;
  std::uint64_t expected = 0;  ///< newer rows are not known before they come
};

/// Called again and again; what it throws ends the work.
using ComparisonWatch = std::function<void(const ComparisonState& state)>;

struct ComparedSnapshot {
  SnapshotFacts snapshot;
  std::vector<std::string> snapshotFindings;  ///< how the snapshot itself differs from what was taken
  std::string server;                         ///< of the trail
  std::string database;
  std::string engine;
  std::string login;
  std::string begun;  ///< when the comparison was: local time with its offset
  TrailComparison found;

  [[nodiscard]] bool isUnchanged() const { return found.isUnchanged() && snapshotFindings.empty(); }
};

/// The snapshot that a name means: a file, or the only one in a folder or a bag. Throws Error where a folder has none
/// or several.
[[nodiscard]] std::filesystem::path snapshotNamed(const std::filesystem::path& named);

/// Verifies a snapshot, and compares its rows with those of a trail over the same days. Throws Error, explained in the
/// user's language where it is about the snapshot.
[[nodiscard]] ComparedSnapshot compareWithSnapshot(const ComparisonOrder& order, const ComparisonWatch& watch = {});

}  // namespace korvel::evidence
