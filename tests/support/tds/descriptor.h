#pragma once

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <system_error>
#include <utility>

namespace korvel::test {

/// A file descriptor that closes itself.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int value) : value_(value) {}
  ~Descriptor() { reset(); }
  Descriptor(Descriptor&& other) noexcept : value_(std::exchange(other.value_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    if (this != &other) {
      reset();
      value_ = std::exchange(other.value_, -1);
    }
    return *this;
  }

  /// Takes over what a system call returned; throws std::system_error where that is a failure.
  static Descriptor checked(int value, const char* what) {
    if (value < 0) throw std::system_error(errno, std::generic_category(), what);
    return Descriptor(value);
  }

  [[nodiscard]] int get() const { return value_; }
  void reset() {
    if (value_ >= 0) ::close(value_);
    value_ = -1;
  }

 private:
  int value_ = -1;
};

/// A flag that one thread raises once and any number of others see in poll, now or later.
class Flag {
 public:
  Flag() : event_(Descriptor::checked(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK), "eventfd")) {}

  void raise() {
    const std::uint64_t one = 1;
    // Fails only where the flag has been raised beyond counting, and then it is up.
    [[maybe_unused]] const auto written = ::write(event_.get(), &one, sizeof one);
  }
  [[nodiscard]] int descriptor() const { return event_.get(); }

 private:
  Descriptor event_;
};

}  // namespace korvel::test
