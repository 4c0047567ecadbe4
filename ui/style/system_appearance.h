#pragma once

#include <optional>

namespace korvel::ui {

/// What the system prescribes for all windows, apart from its palette.
struct SystemAppearance {
  /// A high-contrast theme is on: the palette's colours are used unchanged, in the platform's own style.
  bool highContrast = false;
  /// Whether windows are dark; nothing where only the palette decides.
  std::optional<bool> dark{};
  /// Windows use the style and the colours of the system, unless KORVEL_THEME asks for our own.
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
