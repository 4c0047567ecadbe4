#pragma once

#include <filesystem>
#include <random>
#include <stdexcept>
#include <string>
#include <system_error>

#include "tests/support/environment_variable.h"

namespace korvel::test {

/// A new empty folder, removed with all it holds when the object goes.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::random_device random;
    constexpr int attempts = 100;
    for (int i = 0; i < attempts; ++i) {
      path_ = std::filesystem::temp_directory_path() / ("korvel-test-" + std::to_string(random()));
      std::error_code taken;
      if (!std::filesystem::create_directory(path_, taken)) continue;
      std::filesystem::permissions(path_, std::filesystem::perms::owner_all);
      return;
    }
    throw std::runtime_error("no temporary folder");
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }
  std::filesystem::path operator/(const std::filesystem::path& name) const { return path_ / name; }

 private:
  std::filesystem::path path_;
};

}  // namespace korvel::test
