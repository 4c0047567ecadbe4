#pragma once

#include <optional>

namespace korvel::ui {

/// What the system asks of every window beside its palette.
struct SystemAppearance {
  /// A scheme of strong contrast is on: the palette's colours are to be used as they are, in the platform's own style.
  bool highContrast = false;
  /// Whether windows are to be dark; nothing where the palette alone tells.
  std::optional<bool> dark{};
  /// Windows are to look like all others of the system, in its style and its colours, as far as KORVEL_THEME does not
  /// ask for our own.
  bool native = false;

  /// Whether our own style and palette step aside.
  [[nodiscard]] bool keepsPlatform() const noexcept { return highContrast || native; }

  friend bool operator==(const SystemAppearance&, const SystemAppearance&) = default;
};

/// The system's wishes as they are now. Cheap enough to be asked while painting.
[[nodiscard]] SystemAppearance systemAppearance();

/// Asks the system again, after it has said that something has changed.
void refreshSystemAppearance();

/// While it lives, the system's wishes are these. For tests.
class SystemAppearanceOverride {
 public:
  explicit SystemAppearanceOverride(const SystemAppearance& look);
  ~SystemAppearanceOverride();
  SystemAppearanceOverride(const SystemAppearanceOverride&) = delete;
  SystemAppearanceOverride& operator=(const SystemAppearanceOverride&) = delete;

 private:
  std::optional<SystemAppearance> outer_;
};

/// Reads the system's wishes; one sibling a platform.
[[nodiscard]] SystemAppearance readSystemAppearance();

}  // namespace korvel::ui
