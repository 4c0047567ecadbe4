#pragma once

#include <functional>
#include <vector>

class QWidget;

namespace korvel::control {

class CommandItems;
class Surface;

/// Disables and enables what needs a database: elements of the surface, menu items and toolbar buttons.
class ControlLock {
 public:
  /// All three must outlive the lock. Nothing is locked at first.
  ControlLock(Surface& surface, CommandItems& menu, CommandItems& toolbar);
  ControlLock(const ControlLock&) = delete;
  ControlLock& operator=(const ControlLock&) = delete;

  /// Throw where a command that they reach has not been built.
  void LockControls() { setLocked(true); }
  void UnlockControls() { setLocked(false); }

 private:
  /// An element that needs a database, and what else it needs.
  struct LockedElement {
    QWidget* element;
    std::function<bool()> available;
  };

  void setLocked(bool locked);

  std::vector<LockedElement> elements_;
  CommandItems& menu_;
  CommandItems& toolbar_;
};

}  // namespace korvel::control
