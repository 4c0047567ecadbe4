#pragma once

#include <sys/types.h>

#include <condition_variable>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace korvel::test {

/// The path of a program on the PATH or in the system's folders; nothing where it is not installed.
[[nodiscard]] std::optional<std::filesystem::path> findProgram(const std::string& name);

/// A program that runs beside the test, with the current environment of this process. It is ended with the object, and
/// by the system when the test's process ends.
class ChildProcess {
 public:
  /// Throws std::system_error where no process can be created. A program that cannot be run ends with status 127.
  ChildProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments);
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  /// Waits until the program has written `text`; false where it ended without, or after `testTimeout`.
  [[nodiscard]] bool waitForOutput(const std::string& text);
  /// Waits until the program has ended; its exit status, or 128 and the signal that ended it.
  int wait();
  /// Its standard output and standard error so far.
  [[nodiscard]] std::string output() const;

 private:
  void collect(int pipe);

  pid_t process_ = -1;
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::string output_;
  bool ended_ = false;
  std::thread reading_;
};

}  // namespace korvel::test
