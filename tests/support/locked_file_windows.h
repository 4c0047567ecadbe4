#pragma once

#include <windows.h>

#include <filesystem>

#include "base/paths.h"
#include "base/system_handle_windows.h"

namespace korvel::test {

/// A file that another program has open, by default without sharing it.
class LockedFile {
 public:
  explicit LockedFile(const std::filesystem::path& file, DWORD shared = 0)
      : handle_(CreateFileW(extendedLengthPath(file).c_str(), GENERIC_READ | GENERIC_WRITE, shared, nullptr,
                            OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)) {}

  [[nodiscard]] bool isLocked() const noexcept { return handle_.isOpen(); }

 private:
  SystemHandle handle_;
};

}  // namespace korvel::test
