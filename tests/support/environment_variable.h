#pragma once

#include <optional>
#include <string>
#include <utility>

namespace korvel::test {

/// An environment variable of this process in UTF-8; nothing where it is not set.
[[nodiscard]] std::optional<std::string> environmentValue(const std::string& name);
/// Sets it or, without a value, removes it.
void setEnvironmentValue(const std::string& name, const std::optional<std::string>& value);

/// Sets (or, without a value, removes) an environment variable and restores it afterwards.
class EnvironmentVariable {
 public:
  EnvironmentVariable(std::string name, const std::string& value)
      : name_(std::move(name)), before_(environmentValue(name_)) {
    setEnvironmentValue(name_, value);
  }
  explicit EnvironmentVariable(std::string name) : name_(std::move(name)), before_(environmentValue(name_)) {
    setEnvironmentValue(name_, std::nullopt);
  }
  ~EnvironmentVariable() { setEnvironmentValue(name_, before_); }
  EnvironmentVariable(const EnvironmentVariable&) = delete;
  EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

 private:
  std::string name_;
  std::optional<std::string> before_;
};

}  // namespace korvel::test
