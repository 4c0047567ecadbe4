// The only file of the settings room that asks a POSIX system for more than the standard library offers.
#include "settings/shared_file.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <system_error>
#include <thread>

#include "base/error.h"
#include "base/whole_file.h"
#include "settings/system_error_number.h"

namespace korvel::settings {

namespace fs = std::filesystem;

namespace {

constexpr mode_t ownFolderMode = 0700;
constexpr mode_t lockMode = 0666;
constexpr int mostLinks = 40;

std::uint32_t lastError() noexcept {
  return systemErrorNumber(errno);
}

/// Creates the missing folders of `folder`, for the user alone.
std::uint32_t createFolders(const fs::path& folder) {
  if (::mkdir(folder.c_str(), ownFolderMode) == 0 || errno == EEXIST) return errorSuccess;
  if (errno != ENOENT || !folder.has_relative_path()) return lastError();
  const std::uint32_t failure = createFolders(folder.parent_path());
  if (failure != errorSuccess) return failure;
  return ::mkdir(folder.c_str(), ownFolderMode) == 0 || errno == EEXIST ? errorSuccess : lastError();
}

/// The file itself behind any symbolic links, so that all who reach it by whatever name take the same lock. The file
/// need not be there; its folder is created.
std::uint32_t resolve(fs::path path, fs::path& target) {
  for (int links = 0; links <= mostLinks; ++links) {
    std::uint32_t failure = createFolders(path.parent_path());
    if (failure != errorSuccess) return failure;
    std::error_code error;
    const fs::path folder = fs::canonical(path.parent_path(), error);
    if (error) return systemErrorNumber(error.value());
    target = folder / path.filename();
    struct stat status {};
    if (::lstat(target.c_str(), &status) != 0) return errno == ENOENT ? errorSuccess : lastError();
    if (S_ISDIR(status.st_mode)) return systemErrorNumber(EISDIR);
    if (!S_ISLNK(status.st_mode)) return errorSuccess;
    path = folder / fs::read_symlink(target, error);
    if (error) return systemErrorNumber(error.value());
  }
  return systemErrorNumber(ELOOP);
}

std::uint32_t mayReplace(const fs::path& target) {
  const auto allowed = [](const fs::path& path, int rights) {
    return ::faccessat(AT_FDCWD, path.c_str(), rights, AT_EACCESS) == 0;
  };
  if (!allowed(target.parent_path(), W_OK | X_OK)) return lastError();
  // Replacing needs no right to the file itself. Who took that right away meant it all the same.
  if (!allowed(target, W_OK) && errno != ENOENT) return lastError();
  return errorSuccess;
}

/// The system offers a lock that waits for ever or not at all, so waiting for a while is asking again and again.
std::uint32_t lockWithin(std::chrono::milliseconds patience, int descriptor) {
  using Clock = std::chrono::steady_clock;
  constexpr std::chrono::milliseconds pause{5};
  const auto deadline = Clock::now() + patience;
  while (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
    if (errno == EINTR) continue;
    if (errno != EWOULDBLOCK) return lastError();
    if (Clock::now() >= deadline) return errorLockViolation;
    std::this_thread::sleep_for(pause);
  }
  return errorSuccess;
}

/// The folder that `variable` names, otherwise `belowHome` in the user's home; empty where no home is known.
fs::path userFolder(const char* variable, const char* belowHome) {
  // A relative XDG folder is to be ignored, as its definition says.
  const auto absoluteFrom = [](const char* folder) {
    const fs::path path = folder == nullptr ? "" : folder;
    return path.is_absolute() ? path : fs::path{};
  };
  fs::path folder = absoluteFrom(std::getenv(variable));
  if (!folder.empty()) return folder;
  folder = absoluteFrom(std::getenv("HOME"));
  if (folder.empty()) {
    passwd user{};
    passwd* found = nullptr;
    std::array<char, 16384> texts{};
    if (::getpwuid_r(::getuid(), &user, texts.data(), texts.size(), &found) == 0 && found != nullptr)
      folder = absoluteFrom(found->pw_dir);
  }
  return folder.empty() ? folder : folder / belowHome;
}

}  // namespace

SharedFile::SharedFile(const fs::path& path, std::chrono::milliseconds patience) : patience_(patience) {
  std::error_code ignored;
  path_ = path.empty() ? path : fs::absolute(path, ignored);
}

std::uint32_t SharedFile::read(std::string& bytes) const {
  struct stat status {};
  if (::stat(path_.c_str(), &status) != 0) return lastError();
  if (S_ISDIR(status.st_mode)) return systemErrorNumber(EISDIR);
  if (!S_ISREG(status.st_mode)) return errorBadDatabase;
  try {
    bytes = readWholeFile(path_);
  } catch (const Error& error) {
    return systemErrorNumber(error.number());
  }
  return errorSuccess;
}

std::uint32_t SharedFile::Lock::take(const SharedFile& file) {
  if (file.path_.empty()) return errorPathNotFound;
  std::uint32_t failure = resolve(file.path_, target_);
  if (failure == errorSuccess) failure = mayReplace(target_);
  if (failure != errorSuccess) return failure;
  const std::string lockFile = target_.string() + ".lock";
  descriptor_ = ::open(lockFile.c_str(), O_RDONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, lockMode);
  if (descriptor_ < 0) return lastError();
  return lockWithin(file.patience_, descriptor_);
}

SharedFile::Lock::~Lock() {
  if (descriptor_ >= 0) ::close(descriptor_);
}

std::uint32_t SharedFile::Lock::write(std::string_view bytes) const {
  try {
    writeWholeFile(target_, bytes);
  } catch (const Error& error) {
    return systemErrorNumber(error.number());
  }
  return errorSuccess;
}

fs::path configurationFolder() {
  return userFolder("XDG_CONFIG_HOME", ".config");
}

fs::path stateFolder() {
  return userFolder("XDG_STATE_HOME", ".local/state");
}

}  // namespace korvel::settings
