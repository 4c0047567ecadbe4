#pragma once

#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace korvel {

/// The number of failures that have none of their own (0x80004005).
inline constexpr std::int32_t unspecifiedFailure = static_cast<std::int32_t>(0x80004005U);

/// A failure as the system names it: a number and a description. The one exception type that crosses rooms.
/// A failure that is explained in the user's language carries the key of its sentence and the values for it; the
/// description is then the English sentence.
class Error : public std::exception {
 public:
  Error(std::int32_t number, std::string description, std::optional<int> line = std::nullopt)
      : number_(number), description_(std::move(description)), line_(line) {}

  /// The number shown to the user: a settings code, a database engine's error number, or a system error number.
  [[nodiscard]] std::int32_t number() const noexcept { return number_; }
  [[nodiscard]] const std::string& description() const noexcept { return description_; }
  /// The line of the user's statement text, counted from 1, where the engine names one.
  [[nodiscard]] std::optional<int> line() const noexcept { return line_; }
  /// Key of the sentence in the table of our own texts; empty where the description is the engine's own text.
  [[nodiscard]] const std::string& textKey() const noexcept { return textKey_; }
  [[nodiscard]] const std::vector<std::string>& textArguments() const noexcept { return textArguments_; }
  void setText(std::string key, std::vector<std::string> arguments) {
    textKey_ = std::move(key);
    textArguments_ = std::move(arguments);
  }
  [[nodiscard]] const char* what() const noexcept override { return description_.c_str(); }

 private:
  std::int32_t number_;
  std::string description_;
  std::optional<int> line_;
  std::string textKey_;
  std::vector<std::string> textArguments_;
};

/// Runs one of several steps: a failure leaves this step undone, and the next one runs.
template <typename Step>
void skipFailing(const Step& step) {
  try {
    step();
  } catch (const std::exception&) {
    return;
  }
}

}  // namespace korvel
