#include "base/paths.h"

namespace korvel {

std::filesystem::path pathFromUtf8(std::string_view text) {
  return {text};
}

std::string utf8FromPath(const std::filesystem::path& path) {
  return path.string();
}

bool isAbsolute(const std::filesystem::path& path) {
  return path.is_absolute();
}

std::filesystem::path absolutePath(const std::filesystem::path& path, std::error_code& failure) {
  std::filesystem::path whole = std::filesystem::absolute(path, failure);
  return failure ? path : whole;
}

bool hasExtension(const std::filesystem::path& file, std::string_view extension) {
  return file.extension() == extension;
}

std::filesystem::path extendedLengthPath(const std::filesystem::path& path) {
  return path;
}

}  // namespace korvel
