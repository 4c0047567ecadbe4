#pragma once

#include <windows.h>

#include <utility>

namespace korvel {

/// A handle of Windows, closed with the object.
class SystemHandle {
 public:
  explicit SystemHandle(HANDLE handle = INVALID_HANDLE_VALUE) noexcept : handle_(handle) {}
  SystemHandle(SystemHandle&& other) noexcept : handle_(other.release()) {}
  SystemHandle& operator=(SystemHandle&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  SystemHandle(const SystemHandle&) = delete;
  SystemHandle& operator=(const SystemHandle&) = delete;
  ~SystemHandle() {
    if (isOpen()) CloseHandle(handle_);
  }

  [[nodiscard]] HANDLE get() const noexcept { return handle_; }
  [[nodiscard]] bool isOpen() const noexcept { return handle_ != INVALID_HANDLE_VALUE && handle_ != nullptr; }
  HANDLE release() noexcept { return std::exchange(handle_, INVALID_HANDLE_VALUE); }

 private:
  HANDLE handle_;
};

}  // namespace korvel
