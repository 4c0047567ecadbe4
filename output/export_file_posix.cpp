// The folder of exports on a POSIX system.
#include "output/export_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string>
#include <utility>

#include "base/paths.h"
#include "base/system_errors.h"
#include "settings/registry.h"
#include "settings/shared_file.h"

namespace korvel::output {

namespace fs = std::filesystem;

namespace {

constexpr mode_t ownMode = 0700;
constexpr mode_t othersMayWrite = 0022;
constexpr mode_t othersMayAnything = 0077;

/// A folder below another, and the permission bits that it must not have.
struct OwnFolder {
  const char* name;
  mode_t forbidden;
};
constexpr std::array ownFolders = {OwnFolder{"korvel", othersMayWrite}, OwnFolder{"export", othersMayAnything}};

[[noreturn]] void fail(int systemErrorNumber) {
  throw asFileError(systemError(systemErrorNumber, "cannot use the folder of exports"), FileAccess::write);
}

class FolderHandle {
 public:
  explicit FolderHandle(int descriptor) : descriptor_(descriptor) {
    if (descriptor < 0) fail(errno);
  }
  ~FolderHandle() { ::close(descriptor_); }
  FolderHandle(const FolderHandle&) = delete;
  FolderHandle& operator=(const FolderHandle&) = delete;

  [[nodiscard]] int get() const noexcept { return descriptor_; }
  /// Steps down into a folder.
  void enter(int descriptor) {
    if (descriptor < 0) fail(errno);
    ::close(std::exchange(descriptor_, descriptor));
  }

 private:
  int descriptor_;
};

fs::path ownFolder() {
  fs::path path = settings::stateFolder();
  if (path.empty()) fail(ENOENT);
  if (const int failure = settings::createPrivateFolders(path); failure != 0) fail(failure);
  FolderHandle folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  for (const OwnFolder& step : ownFolders) {
    path /= step.name;
    if (::mkdirat(folder.get(), step.name, ownMode) != 0 && errno != EEXIST) fail(errno);
    // A link in the folder's place may have been put there by another user: it is refused.
    folder.enter(::openat(folder.get(), step.name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status {};
    if (::fstat(folder.get(), &status) != 0) fail(errno);
    if (status.st_uid != ::geteuid()) fail(EPERM);
    const mode_t mode = status.st_mode & 07777U;
    if ((mode & step.forbidden) != 0 && ::fchmod(folder.get(), mode & ~step.forbidden) != 0) fail(errno);
  }
  return path;
}

}  // namespace

fs::path exportPath(std::string_view name) {
  const std::string windir = settings::GetEnvironment("windir");
  if (!windir.empty()) return pathFromUtf8(windir) / name;
  return ownFolder() / name;
}

}  // namespace korvel::output
