#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <cerrno>

#include "base/system_errors.h"
#include "output/temporary_file.h"

namespace korvel::output {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void fail(int systemErrorNumber) {
  throw asFileError(systemError(systemErrorNumber, "cannot write a file for a while"), FileAccess::write);
}

}  // namespace

TemporaryFile::TemporaryFile(const fs::path& folder) {
  std::string name = (folder / "korvel-XXXXXX").string();
  const int descriptor = ::mkstemp(name.data());
  if (descriptor < 0) fail(errno);
  ::close(descriptor);
  path_ = name;
}

TemporaryFile::~TemporaryFile() {
  ::unlink(path_.c_str());
}

void TemporaryFile::checkRoom(std::uint64_t bytes) const {
  const int descriptor = ::open(path_.c_str(), O_WRONLY | O_CLOEXEC);
  if (descriptor < 0) fail(errno);
  const int refusal = ::posix_fallocate(descriptor, 0, static_cast<off_t>(bytes));
  const bool emptied = ::ftruncate(descriptor, 0) == 0;
  const int failure = emptied ? 0 : errno;
  ::close(descriptor);
  if (isDiskFailure(refusal)) fail(refusal);
  if (!emptied) fail(failure);
}

std::string cLibraryPath(const fs::path& path) {
  return path.string();
}

}  // namespace korvel::output
