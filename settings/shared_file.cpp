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

#include "base/atomic_file.h"
#include "base/error.h"
#include "base/system_errors.h"

namespace korvel::settings {

namespace fs = std::filesystem;

namespace {

constexpr mode_t ownFolderMode = 0700;
constexpr mode_t lockMode = 0666;
constexpr int mostLinks = 40;

Win32Error lastError() noexcept {
  return win32ErrorFrom(errno);
}

/// The file behind any symbolic links, so that all processes take the same lock, whatever name they use. The file
/// need not be there; its folder is created.
Win32Error resolve(fs::path path, fs::path& target) {
  for (int links = 0; links <= mostLinks; ++links) {
    if (const int failure = createPrivateFolders(path.parent_path()); failure != 0) return win32ErrorFrom(failure);
    std::error_code error;
    const fs::path folder = fs::canonical(path.parent_path(), error);
    if (error) return win32ErrorFrom(error.value());
    target = folder / path.filename();
    struct stat status {};
    if (::lstat(target.c_str(), &status) != 0) return errno == ENOENT ? Win32Error::success : lastError();
    if (S_ISDIR(status.st_mode)) return win32ErrorFrom(EISDIR);
    if (!S_ISLNK(status.st_mode)) return Win32Error::success;
    path = folder / fs::read_symlink(target, error);
    if (error) return win32ErrorFrom(error.value());
  }
  return win32ErrorFrom(ELOOP);
}

Win32Error mayReplace(const fs::path& target) {
  const auto allowed = [](const fs::path& path, int rights) {
    return ::faccessat(AT_FDCWD, path.c_str(), rights, AT_EACCESS) == 0;
  };
  if (!allowed(target.parent_path(), W_OK | X_OK)) return lastError();
  // Replacing needs no permission on the file itself, but a read-only file is not to be changed.
  if (!allowed(target, W_OK) && errno != ENOENT) return lastError();
  return Win32Error::success;
}

/// The system's lock can only wait without a limit or not at all, so waiting with a limit is trying repeatedly.
Win32Error lockWithin(std::chrono::milliseconds patience, int descriptor) {
  using Clock = std::chrono::steady_clock;
  constexpr std::chrono::milliseconds pause{5};
  const auto deadline = Clock::now() + patience;
  while (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
    if (errno == EINTR) continue;
    if (errno != EWOULDBLOCK) return lastError();
    if (Clock::now() >= deadline) return Win32Error::lockViolation;
    std::this_thread::sleep_for(pause);
  }
  return Win32Error::success;
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

int createPrivateFolders(const fs::path& folder) {
  if (::mkdir(folder.c_str(), ownFolderMode) == 0 || errno == EEXIST) return 0;
  if (errno != ENOENT || !folder.has_relative_path()) return errno;
  if (const int failure = createPrivateFolders(folder.parent_path()); failure != 0) return failure;
  return ::mkdir(folder.c_str(), ownFolderMode) == 0 || errno == EEXIST ? 0 : errno;
}

SharedFile::SharedFile(const fs::path& path, std::chrono::milliseconds patience) : patience_(patience) {
  std::error_code ignored;
  path_ = path.empty() ? path : fs::absolute(path, ignored);
}

Win32Error SharedFile::read(std::string& bytes) const {
  struct stat status {};
  if (::stat(path_.c_str(), &status) != 0) return lastError();
  if (S_ISDIR(status.st_mode)) return win32ErrorFrom(EISDIR);
  if (!S_ISREG(status.st_mode)) return Win32Error::badDatabase;
  try {
    bytes = readFile(path_);
  } catch (const Error& error) {
    return win32ErrorFrom(error.number());
  }
  return Win32Error::success;
}

Win32Error SharedFile::Lock::take(const SharedFile& file) {
  if (file.path_.empty()) return Win32Error::pathNotFound;
  Win32Error failure = resolve(file.path_, target_);
  if (failure == Win32Error::success) failure = mayReplace(target_);
  if (failure != Win32Error::success) return failure;
  const std::string lockFile = target_.string() + ".lock";
  descriptor_ = ::open(lockFile.c_str(), O_RDONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, lockMode);
  if (descriptor_ < 0) return lastError();
  return lockWithin(file.patience_, descriptor_);
}

SharedFile::Lock::~Lock() {
  if (descriptor_ >= 0) ::close(descriptor_);
}

Win32Error SharedFile::Lock::write(std::string_view bytes) const {
  try {
    writeFileAtomically(target_, bytes);
  } catch (const Error& error) {
    return win32ErrorFrom(error.number());
  }
  return Win32Error::success;
}

fs::path configurationFolder() {
  return userFolder("XDG_CONFIG_HOME", ".config");
}

fs::path stateFolder() {
  return userFolder("XDG_STATE_HOME", ".local/state");
}

}  // namespace korvel::settings
