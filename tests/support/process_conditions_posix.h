#pragma once

#include <fcntl.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

// Conditions of the test's process that end with their object.
namespace korvel::test {

/// While it lives, a signal has this disposition: tests that are started in the background or without a terminal may
/// ignore some signals.
class SignalSetting {
 public:
  SignalSetting(int signal, void (*handler)(int)) : signal_(signal), before_(std::signal(signal, handler)) {}
  ~SignalSetting() { static_cast<void>(std::signal(signal_, before_)); }
  SignalSetting(const SignalSetting&) = delete;
  SignalSetting& operator=(const SignalSetting&) = delete;

 private:
  int signal_;
  void (*before_)(int);
};

/// While it lives, no file of this process can grow beyond so many bytes, as on a full disk.
class FullDisk {
 public:
  explicit FullDisk(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    ::getrlimit(RLIMIT_FSIZE, &before_);
    rlimit small = before_;
    small.rlim_cur = bytes;
    ::setrlimit(RLIMIT_FSIZE, &small);
  }
  ~FullDisk() {
    ::setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handler_);
  }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;

 private:
  rlimit before_{};
  void (*handler_)(int);
};

/// Drops root's rights for a while, where the test has them: root can open any file.
class OrdinaryUser {
 public:
  explicit OrdinaryUser(const std::filesystem::path& ownFolder) : wasSuperuser_(::geteuid() == 0) {
    constexpr uid_t nobody = 65534;
    if (!wasSuperuser_) return;
    ordinary_ = ::chown(ownFolder.c_str(), nobody, nobody) == 0 && ::setresuid(nobody, nobody, 0) == 0;
  }
  ~OrdinaryUser() {
    // Without its rights the process is of no use to other tests.
    if (wasSuperuser_ && ::setresuid(0, 0, 0) != 0) std::abort();
  }
  OrdinaryUser(const OrdinaryUser&) = delete;
  OrdinaryUser& operator=(const OrdinaryUser&) = delete;

  [[nodiscard]] bool succeeded() const { return !wasSuperuser_ || ordinary_; }

 private:
  bool wasSuperuser_;
  bool ordinary_ = false;
};

/// A pseudo terminal.
class Terminal {
 public:
  Terminal() : descriptor_(::posix_openpt(O_RDWR | O_NOCTTY)) {
    if (descriptor_ < 0 || ::grantpt(descriptor_) != 0 || ::unlockpt(descriptor_) != 0)
      throw std::runtime_error("no pseudo terminal");
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
