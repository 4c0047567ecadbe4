#include "base/error.h"

#include <utility>

#include "base/system_errors.h"

namespace korvel {

Error::Error(std::int32_t number, std::string description, std::optional<int> line)
    : number_(number), description_(std::move(description)), line_(line) {}

void Error::setText(std::string key, std::vector<std::string> arguments) {
  textKey_ = std::move(key);
  textArguments_ = std::move(arguments);
}

Error systemError(int systemNumber, const std::string& what) {
  return {systemNumber, what + ": " + systemMessage(systemNumber)};
}

}  // namespace korvel
