#pragma once

#include <optional>

namespace korvel::ui {

/// What the system prescribes for every window beside its palette.
struct SystemAppearance {
  /// A scheme of strong contrast is on: the palette's colours are to be used as they are, in the platform's own style.
  bool highContrast = false;
  /// Whether windows are to be dark; nothing where only the palette decides.
  std::optional<bool> dark{};
  /// Windows are to look like all others of the system, in its style and its colours, as far as KORVEL_THEME does not
  /// ask for our own.
  bool native = false;

  /// Whether the platform's style and palette are used instead of our own.
  [[nodiscard]] bool keepsPlatform() const noexcept { return highContrast || native; }

  friend bool operator==(const SystemAppearance&, const SystemAppearance&) = default;
};

/// The present appearance. Cheap enough to be called while painting.
[[nodiscard]] SystemAppearance systemAppearance();

/// Reads the appearance again, after the system has announced a change.
void refreshSystemAppearance();

/// Replaces the system's appearance while it exists. For tests.
class SystemAppearanceOverride {
 public:
  explicit SystemAppearanceOverride(const SystemAppearance& look);
  ~SystemAppearanceOverride();
  SystemAppearanceOverride(const SystemAppearanceOverride&) = delete;
  SystemAppearanceOverride& operator=(const SystemAppearanceOverride&) = delete;

 private:
  std::optional<SystemAppearance> outer_;
};

/// Reads the appearance from the system; one implementation a platform.
[[nodiscard]] SystemAppearance readSystemAppearance();

}  // namespace korvel::ui
