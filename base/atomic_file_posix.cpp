#include "base/atomic_file.h"

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <string>
#include <system_error>
#include <utility>

#include "base/paths.h"
#include "base/system_errors.h"

namespace korvel {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t chunkBytes = std::size_t{1} << 18U;

Error failed(const std::string& what, const fs::path& file) {
  const int number = errno;
  return systemError(number, what + " " + utf8FromPath(file));
}

fs::path followedLinks(fs::path target) {
  // Deeper chains and loops fail when the file is opened.
  for (int i = 0; i < 16; ++i) {
    std::error_code ignored;
    if (!fs::is_symlink(target, ignored)) break;
    const fs::path next = fs::read_symlink(target, ignored);
    if (ignored) break;
    target = next.is_absolute() ? next : target.parent_path() / next;
  }
  return target;
}

/// Six random characters. O_EXCL makes sure that no file of that name is there.
std::string randomSuffix() {
  constexpr std::string_view characters = "abcdefghijklmnopqrstuvwxyz0123456789";
  std::uint64_t number = 0;
  if (::getentropy(&number, sizeof number) != 0) return {};
  std::string suffix = ".";
  for (int i = 0; i < 6; ++i, number /= characters.size()) suffix += characters[number % characters.size()];
  return suffix;
}

/// Creates a new file beside `target` and puts its name into `created`; -1 with `errno` where it cannot.
int createBeside(const fs::path& target, mode_t mode, fs::path& created) {
  // A collision is very unlikely; this many mean that such files are created on purpose.
  for (int attempts = 0; attempts < 100; ++attempts) {
    const std::string suffix = randomSuffix();
    if (suffix.empty()) return -1;
    fs::path name = target;
    name += suffix;
    const int descriptor = ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    if (descriptor >= 0) created = std::move(name);
    if (descriptor >= 0 || errno != EEXIST) return descriptor;
  }
  return -1;
}

void syncFolderOf(const fs::path& file) {
  const fs::path folder = file.has_parent_path() ? file.parent_path() : fs::path{"."};
  const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return;  // a folder that may be written but not read cannot be synced; the file itself was
  ::fsync(descriptor);
  ::close(descriptor);
}

}  // namespace

AtomicFile::AtomicFile(fs::path target, SymlinkPolicy symlinks)
    : target_(symlinks == SymlinkPolicy::follow ? followedLinks(std::move(target)) : std::move(target)) {
  struct stat status {};
  bool replaces = ::lstat(target_.c_str(), &status) == 0 && !S_ISLNK(status.st_mode);
  // A file that another user put there does not decide who may read the new one.
  if (symlinks == SymlinkPolicy::replace && status.st_uid != ::geteuid()) replaces = false;
  // The system applies the umask to a new file: reading the umask would change it for all threads. A replacement is
  // private until it has the permissions of the file that it replaces.
  constexpr mode_t newFileMode = 0666;
  constexpr mode_t ownFileMode = 0600;
  const int descriptor = createBeside(target_, replaces ? ownFileMode : newFileMode, temporary_);
  if (descriptor < 0) throw failed("cannot create a file beside", target_);
  file_ = descriptor;
  if (replaces) ::fchmod(descriptor, status.st_mode & 07777U);
}

AtomicFile::~AtomicFile() {
  if (file_ >= 0) ::close(static_cast<int>(file_));
  if (!temporary_.empty()) ::unlink(temporary_.c_str());
}

void AtomicFile::flush() {
  std::string_view rest = buffer_;
  while (!rest.empty()) {
    const auto written = ::write(static_cast<int>(file_), rest.data(), rest.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      throw failed("cannot write", target_);
    }
    rest.remove_prefix(static_cast<std::size_t>(written));
  }
  buffer_.clear();
}

void AtomicFile::sync() {
  flush();
  if (::fsync(static_cast<int>(file_)) != 0) throw failed("cannot write", target_);
}

void AtomicFile::commit() {
  sync();
  const int descriptor = static_cast<int>(std::exchange(file_, -1));
  if (::close(descriptor) != 0) throw failed("cannot write", target_);
  if (::rename(temporary_.c_str(), target_.c_str()) != 0) throw failed("cannot replace", target_);
  temporary_.clear();
  syncFolderOf(target_);
}

std::string readFile(const fs::path& file) {
  const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) throw failed("cannot open", file);
  std::string bytes;
  std::string chunk(chunkBytes, '\0');
  for (;;) {
    const auto got = ::read(descriptor, chunk.data(), chunk.size());
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) {
      const Error error = failed("cannot read", file);
      ::close(descriptor);
      throw error;
    }
    if (got == 0) break;
    bytes.append(chunk, 0, static_cast<std::size_t>(got));
  }
  ::close(descriptor);
  return bytes;
}

}  // namespace korvel
