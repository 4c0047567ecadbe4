#pragma once

#include <filesystem>
#include <memory>

namespace korvel::test {

/// While it lives, the settings of this process are a store of its own, which is empty at first: a file in `folder`, or
/// a key that stands in for the machine's.
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
