#include <stdlib.h>

#include "tests/support/environment_variable.h"

namespace korvel::test {

std::optional<std::string> environmentValue(const std::string& name) {
  const char* value = ::getenv(name.c_str());
  return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

void setEnvironmentValue(const std::string& name, const std::optional<std::string>& value) {
  if (value)
    ::setenv(name.c_str(), value->c_str(), 1);
  else
    ::unsetenv(name.c_str());
}

}  // namespace korvel::test
