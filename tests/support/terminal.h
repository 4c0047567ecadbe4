#pragma once

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <stdexcept>
#include <string>

namespace korvel::test {

/// A pseudo terminal.
class Terminal {
 public:
  Terminal() : descriptor_(::posix_openpt(O_RDWR | O_NOCTTY)) {
    if (descriptor_ < 0 || ::grantpt(descriptor_) != 0 || ::unlockpt(descriptor_) != 0)
      throw std::runtime_error("no terminal to be had");
    name_ = ::ptsname(descriptor_);  // NOLINT(concurrency-mt-unsafe)
  }
  ~Terminal() { ::close(descriptor_); }
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  [[nodiscard]] const std::string& name() const noexcept { return name_; }

 private:
  int descriptor_;
  std::string name_;
};

}  // namespace korvel::test
