#pragma once

#include <filesystem>
#include <string>
#include <system_error>

#include "base/files.h"
#include "base/paths.h"
#include "tests/support/temporary_folder.h"

namespace korvel::test {

/// A new folder with blanks and umlauts in its name and a path longer than MAX_PATH.
class DeepFolder {
 public:
  DeepFolder() {
    constexpr std::size_t beyondPlainPaths = 400;
    for (path_ = above_.path(); utf8FromPath(path_).size() < beyondPlainPaths;)
      path_ /= pathFromUtf8("Prüfpfade der Anlage Süd (alt) µ");
    std::error_code failure;
    files::createDirectories(path_, failure);
    if (failure) throw std::system_error(failure);
  }
  ~DeepFolder() { removeAll(above_.path()); }
  DeepFolder(const DeepFolder&) = delete;
  DeepFolder& operator=(const DeepFolder&) = delete;

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }
  std::filesystem::path operator/(const std::filesystem::path& name) const { return path_ / name; }

 private:
  static void removeAll(const std::filesystem::path& folder) {
    std::error_code ignored;
    for (const auto& entry : files::listFolder(folder, ignored)) {
      removeAll(entry);
      files::remove(entry, ignored);
    }
  }

  TemporaryFolder above_;
  std::filesystem::path path_;
};

}  // namespace korvel::test
