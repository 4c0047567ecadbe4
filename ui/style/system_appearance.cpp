#include "ui/style/system_appearance.h"

namespace korvel::ui {
namespace {

std::optional<SystemAppearance>& overridden() {
  static std::optional<SystemAppearance> look;
  return look;
}

SystemAppearance& remembered() {
  static SystemAppearance look = readSystemAppearance();
  return look;
}

}  // namespace

SystemAppearance systemAppearance() {
  return overridden() ? *overridden() : remembered();
}

void refreshSystemAppearance() {
  remembered() = readSystemAppearance();
}

SystemAppearanceOverride::SystemAppearanceOverride(const SystemAppearance& look) : outer_(overridden()) {
  overridden() = look;
}
SystemAppearanceOverride::~SystemAppearanceOverride() {
  overridden() = outer_;
}

}  // namespace korvel::ui
