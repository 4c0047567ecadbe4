#include "tests/tds_server/kerberos/child_process.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>

#include "tests/tds_server/gate.h"

namespace korvel::test {
namespace {

/// Between fork and exec: async-signal-safe calls only, because other threads may hold locks.
[[noreturn]] void runProgram(const char* program, char* const* arguments, int pipe, pid_t parent) {
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (::getppid() != parent) ::_exit(127);
  const int nothing = ::open("/dev/null", O_RDONLY);
  ::dup2(nothing, STDIN_FILENO);
  ::dup2(pipe, STDOUT_FILENO);
  ::dup2(pipe, STDERR_FILENO);
  ::execv(program, arguments);
  ::_exit(127);
}

}  // namespace

std::optional<std::filesystem::path> findProgram(const std::string& name) {
  const char* const path = std::getenv("PATH");
  std::string folders = std::string(path != nullptr ? path : "") + ":/usr/sbin:/sbin:/usr/bin";
  for (std::size_t from = 0; from < folders.size();) {
    const std::size_t to = std::min(folders.find(':', from), folders.size());
    const auto file = std::filesystem::path(folders.substr(from, to - from)) / name;
    if (file.is_absolute() && ::access(file.c_str(), X_OK) == 0) return file;
    from = to + 1;
  }
  return std::nullopt;
}

ChildProcess::ChildProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments) {
  std::vector<std::string> words{program.string()};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  pointers.reserve(words.size() + 1);
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);

  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw std::system_error(errno, std::generic_category(), "pipe");
  Descriptor readEnd(ends[0]);
  Descriptor writeEnd(ends[1]);
  const pid_t parent = ::getpid();
  process_ = ::fork();
  if (process_ < 0) throw std::system_error(errno, std::generic_category(), "fork");
  if (process_ == 0) runProgram(program.c_str(), pointers.data(), writeEnd.get(), parent);
  reading_ = std::thread([this, pipe = std::move(readEnd)] { collect(pipe.get()); });
}

ChildProcess::~ChildProcess() {
  if (process_ > 0) ::kill(process_, SIGTERM);
  wait();
}

bool ChildProcess::waitForOutput(const std::string& text) {
  std::unique_lock lock(mutex_);
  changed_.wait_for(lock, tds::testTimeout, [&] { return ended_ || output_.find(text) != std::string::npos; });
  return output_.find(text) != std::string::npos;
}

int ChildProcess::wait() {
  if (process_ <= 0) return 0;
  if (reading_.joinable()) reading_.join();
  int status = 0;
  while (::waitpid(process_, &status, 0) < 0 && errno == EINTR) {
  }
  process_ = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

std::string ChildProcess::output() const {
  const std::lock_guard lock(mutex_);
  return output_;
}

void ChildProcess::collect(int pipe) {
  std::array<char, 4096> buffer{};
  for (;;) {
    const auto count = ::read(pipe, buffer.data(), buffer.size());
    if (count < 0 && errno == EINTR) continue;
    const std::lock_guard lock(mutex_);
    if (count > 0) output_.append(buffer.data(), static_cast<std::size_t>(count));
    if (count <= 0) ended_ = true;
    changed_.notify_all();
    if (count <= 0) return;
  }
}

}  // namespace korvel::test
