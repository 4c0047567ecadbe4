#pragma once

#include <cstdint>
#include <exception>
#include <optional>
#include <string>

namespace korvel {

/// A failure as the system names it: a number and a description. The one exception type that crosses rooms.
class Error : public std::exception {
 public:
  Error(std::int32_t number, std::string description, std::optional<int> line = std::nullopt);

  /// The number shown to the user: a settings code, a database engine's error number, or a system error number.
  [[nodiscard]] std::int32_t number() const noexcept { return number_; }
  [[nodiscard]] const std::string& description() const noexcept { return description_; }
  /// The line of the user's statement text, counted from 1, where the engine names one.
  [[nodiscard]] std::optional<int> line() const noexcept { return line_; }
  [[nodiscard]] const char* what() const noexcept override { return description_.c_str(); }

 private:
  std::int32_t number_;
  std::string description_;
  std::optional<int> line_;
};

/// The error for a failed system call: the system's number and its text after `what`, a colon and a blank.
Error systemError(int systemNumber, const std::string& what);

}  // namespace korvel
