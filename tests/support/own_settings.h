#pragma once

#include <filesystem>
#include <memory>

namespace korvel::test {

/// While it lives, this process has its own, initially empty settings: a file in `folder`, or a key in place of the
/// machine's.
class OwnSettings {
 public:
  explicit OwnSettings(const std::filesystem::path& folder);
  ~OwnSettings();
  OwnSettings(const OwnSettings&) = delete;
  OwnSettings& operator=(const OwnSettings&) = delete;

 private:
  struct Store;
  std::unique_ptr<Store> store_;
};

}  // namespace korvel::test
