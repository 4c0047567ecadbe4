#include "base/whole_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <system_error>
#include <utility>

#include "base/error.h"

namespace korvel {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t bufferBytes = std::size_t{1} << 18U;

Error failed(const std::string& what, const fs::path& file) {
  const int number = errno;
  return systemError(number, what + " " + file.string());
}

fs::path followedLinks(fs::path target) {
  // A handful of links is plenty; a loop ends as the open failure it is.
  for (int i = 0; i < 16; ++i) {
    std::error_code ignored;
    if (!fs::is_symlink(target, ignored)) break;
    const fs::path next = fs::read_symlink(target, ignored);
    if (ignored) break;
    target = next.is_absolute() ? next : target.parent_path() / next;
  }
  return target;
}

void syncFolderOf(const fs::path& file) {
  const fs::path folder = file.has_parent_path() ? file.parent_path() : fs::path{"."};
  const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return;  // a folder that may be written but not read cannot be synced; the file itself was
  ::fsync(descriptor);
  ::close(descriptor);
}

}  // namespace

WholeFile::WholeFile(fs::path target) : target_(followedLinks(std::move(target))) {
  std::string name = target_.string() + ".XXXXXX";
  descriptor_ = ::mkostemp(name.data(), O_CLOEXEC);
  if (descriptor_ < 0) throw failed("cannot create a file beside", target_);
  temporary_ = name;
  // The replacement keeps the rights of the file that it replaces; a new file gets what the user's mask allows.
  struct stat status {};
  mode_t mode = 0;
  if (::stat(target_.c_str(), &status) == 0) {
    mode = status.st_mode & 07777U;
  } else {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    mode = 0666U & ~mask;
  }
  ::fchmod(descriptor_, mode);
}

WholeFile::~WholeFile() {
  if (descriptor_ >= 0) ::close(descriptor_);
  if (!temporary_.empty()) ::unlink(temporary_.c_str());
}

void WholeFile::flush() {
  std::string_view rest = buffer_;
  while (!rest.empty()) {
    const auto written = ::write(descriptor_, rest.data(), rest.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      throw failed("cannot write", target_);
    }
    rest.remove_prefix(static_cast<std::size_t>(written));
  }
  buffer_.clear();
}

void WholeFile::write(std::string_view bytes) {
  buffer_ += bytes;
  if (buffer_.size() >= bufferBytes) flush();
}

void WholeFile::commit() {
  flush();
  if (::fsync(descriptor_) != 0) throw failed("cannot write", target_);
  const int descriptor = std::exchange(descriptor_, -1);
  if (::close(descriptor) != 0) throw failed("cannot write", target_);
  if (::rename(temporary_.c_str(), target_.c_str()) != 0) throw failed("cannot replace", target_);
  temporary_.clear();
  syncFolderOf(target_);
}

void writeWholeFile(const fs::path& target, std::string_view bytes) {
  WholeFile file(target);
  file.write(bytes);
  file.commit();
}

std::string readWholeFile(const fs::path& file) {
  const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) throw failed("cannot open", file);
  std::string bytes;
  std::string chunk(bufferBytes, '\0');
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
