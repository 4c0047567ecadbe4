#include "control/look/system_look.h"

namespace korvel::look {
namespace {

std::optional<SystemLook>& overridden() {
  static std::optional<SystemLook> look;
  return look;
}

SystemLook& remembered() {
  static SystemLook look = readSystemLook();
  return look;
}

}  // namespace

SystemLook systemLook() {
  return overridden() ? *overridden() : remembered();
}

void refreshSystemLook() {
  remembered() = readSystemLook();
}

SystemLookOverride::SystemLookOverride(const SystemLook& look) : outer_(overridden()) {
  overridden() = look;
}
SystemLookOverride::~SystemLookOverride() {
  overridden() = outer_;
}

}  // namespace korvel::look
