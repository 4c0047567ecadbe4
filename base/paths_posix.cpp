#include "base/paths.h"

namespace korvel {

std::filesystem::path pathFromUtf8(std::string_view text) {
  return {text};
}

std::string utf8FromPath(const std::filesystem::path& path) {
  return path.string();
}

bool isWhole(const std::filesystem::path& path) {
  return path.is_absolute();
}

std::filesystem::path pathForCalls(const std::filesystem::path& path) {
  return path;
}

}  // namespace korvel
