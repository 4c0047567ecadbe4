#pragma once

#include <optional>
#include <string>

#include "base/text.h"
#include "cli/read_option.h"

namespace korvel::cli {

/// The name of a server or database. A semicolon would end the value in the connection string, and the rest be taken
/// for something else.
inline std::optional<std::string> connectionName(const std::string& name) {
  if (trimBlanks(name).empty() || name.find(';') != std::string::npos) return std::nullopt;
  return name;
}

}  // namespace korvel::cli
