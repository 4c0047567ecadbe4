#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "base/files.h"

namespace korvel::files {

namespace fs = std::filesystem;

fs::file_status status(const fs::path& path, std::error_code& failure) {
  return fs::status(path, failure);
}

fs::file_status symlinkStatus(const fs::path& path, std::error_code& failure) {
  return fs::symlink_status(path, failure);
}

std::uintmax_t size(const fs::path& file, std::error_code& failure) {
  return fs::file_size(file, failure);
}

fs::file_time_type lastWriteTime(const fs::path& file, std::error_code& failure) {
  return fs::last_write_time(file, failure);
}

bool equivalent(const fs::path& left, const fs::path& right) {
  std::error_code none;
  return fs::equivalent(left, right, none);
}

std::vector<fs::path> listFolder(const fs::path& folder, std::error_code& failure) {
  std::vector<fs::path> paths;
  for (fs::directory_iterator entry(folder, failure); !failure && entry != fs::directory_iterator();
       entry.increment(failure))
    paths.push_back(entry->path());
  return paths;
}

void createDirectories(const fs::path& folder, std::error_code& failure) {
  fs::create_directories(folder, failure);
}

void createNew(const fs::path& file, std::error_code& failure) {
  constexpr mode_t newFileMode = 0666;
  failure.clear();
  const int descriptor = ::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, newFileMode);
  if (descriptor >= 0)
    ::close(descriptor);
  else
    failure.assign(errno, std::generic_category());
}

void checkReplaceable(const fs::path& target, std::error_code& failure) {
  const fs::file_status there = symlinkStatus(target, failure);
  if (!fs::exists(there) && there.type() != fs::file_type::unknown) failure.clear();
  if (fs::is_directory(there)) failure = std::make_error_code(std::errc::is_a_directory);
}

void rename(const fs::path& from, const fs::path& to, std::error_code& failure) {
  fs::rename(from, to, failure);
}

void remove(const fs::path& path, std::error_code& failure) {
  fs::remove(path, failure);
}

std::FILE* open(const fs::path& file, const char* mode) {
  return std::fopen(file.c_str(), mode);
}

}  // namespace korvel::files
