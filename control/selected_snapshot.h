#pragma once

#include <QString>

#include "control/latest_work.h"

namespace korvel {
class AuditViewer;
}

namespace korvel::control {

/// Whether the selected database is a snapshot, and of what: for the status panel, and for the host's title. Asks the
/// database on a worker; servers have no snapshots and are not asked.
class SelectedSnapshot {
 public:
  /// `followEverywhere` tells every control that something is known of the selected database.
  SelectedSnapshot(AuditViewer& viewer, void (*followEverywhere)());
  SelectedSnapshot(const SelectedSnapshot&) = delete;
  SelectedSnapshot& operator=(const SelectedSnapshot&) = delete;

  /// A database was selected.
  void follow();
  /// "Snapshot of D on S, taken 2026-11-22 16:05:03+01:00" in the current language; empty where it is none, or is not
  /// known to be one yet.
  [[nodiscard]] static QString text();

 private:
  AuditViewer& viewer_;
  void (*followEverywhere_)();
  LatestWork work_{nullptr};
};

}  // namespace korvel::control
