#pragma once

#include <stdlib.h>

#include <filesystem>
#include <stdexcept>
#include <string>

namespace korvel::test {

/// A new empty folder, removed with all it holds when the object goes.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "korvel-test-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    path_ = name;
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

/// Sets (or, without a value, removes) an environment variable and restores it afterwards.
class EnvironmentVariable {
 public:
  EnvironmentVariable(std::string name, const std::string& value) : name_(std::move(name)) {
    remember();
    ::setenv(name_.c_str(), value.c_str(), 1);
  }
  explicit EnvironmentVariable(std::string name) : name_(std::move(name)) {
    remember();
    ::unsetenv(name_.c_str());
  }
  ~EnvironmentVariable() {
    if (wasSet_)
      ::setenv(name_.c_str(), before_.c_str(), 1);
    else
      ::unsetenv(name_.c_str());
  }
  EnvironmentVariable(const EnvironmentVariable&) = delete;
  EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

 private:
  void remember() {
    const char* value = ::getenv(name_.c_str());
    wasSet_ = value != nullptr;
    if (wasSet_) before_ = value;
  }

  std::string name_;
  std::string before_;
  bool wasSet_ = false;
};

}  // namespace korvel::test
