#include <cstdlib>

#include "settings/registry.h"

namespace korvel::settings {

std::string GetEnvironment(const std::string& name) {
  const char* value = std::getenv(name.c_str());
  return value == nullptr ? std::string{} : std::string{value};
}

}  // namespace korvel::settings
