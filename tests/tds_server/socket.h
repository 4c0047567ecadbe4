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

  /// Owns the result of a system call; throws std::system_error where that is an error.
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

/// A flag that one thread raises once. Other threads wait for it with poll().
class Flag {
 public:
  Flag() : event_(Descriptor::checked(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK), "eventfd")) {}

  void raise() {
    const std::uint64_t one = 1;
    // Fails only when the counter is full, and then the flag is raised already.
    [[maybe_unused]] const auto written = ::write(event_.get(), &one, sizeof one);
  }
  [[nodiscard]] int descriptor() const { return event_.get(); }

 private:
  Descriptor event_;
};

/// A socket of `type` (SOCK_STREAM, SOCK_DGRAM) bound to a port of a loopback address, and the port's number. Port 0
/// lets the system choose. A stream socket listens. Throws std::system_error.
struct LoopbackSocket {
  Descriptor socket;
  std::uint16_t port = 0;
};
[[nodiscard]] LoopbackSocket bindLoopback(int type, std::uint16_t port = 0, const char* address = "127.0.0.1");

}  // namespace korvel::test
