#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "base/error.h"

namespace korvel::demo {

inline std::vector<std::string> namesIn(const std::filesystem::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder))
    names.push_back(entry.path().filename().string());
  return names;
}

/// The error of an action; number 0 where it succeeds.
template <typename Action>
Error errorOf(Action action) {
  try {
    action();
  } catch (const Error& error) {
    return error;
  }
  return {0, "no error"};
}

}  // namespace korvel::demo
