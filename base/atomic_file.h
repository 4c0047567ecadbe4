#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace korvel {

/// What happens to a symbolic link in the place of a file that is to be written.
enum class SymlinkPolicy {
  follow,  ///< the link stays, the file that it names is replaced: the user put it there
  replace  ///< the link itself is replaced and never followed: another user may have put it there
};

/// A file that appears complete or not at all: bytes go to a temporary file beside the target, `commit` syncs it and
/// renames it over the target. A replaced file keeps its permissions where links are followed. Without `commit` the
/// target is left as it was and the temporary file is removed. All members throw Error with the system's error number.
class AtomicFile {
 public:
  explicit AtomicFile(std::filesystem::path target, SymlinkPolicy symlinks = SymlinkPolicy::follow);
  ~AtomicFile();
  AtomicFile(const AtomicFile&) = delete;
  AtomicFile& operator=(const AtomicFile&) = delete;

  void write(std::string_view bytes) {
    buffer_ += bytes;
    if (buffer_.size() >= bufferBytes) flush();
  }
  /// Brings what was written to the disk: what can fail for lack of space fails here. For several files of which all or
  /// none are to appear, before the first commit.
  void sync();
  void commit();

 private:
  static constexpr std::size_t bufferBytes = std::size_t{1} << 18U;

  void flush();

  std::filesystem::path target_;
  std::filesystem::path temporary_;
  std::string buffer_;
  std::intptr_t file_ = -1;  ///< the system's descriptor or handle, -1 for none
};

/// Replaces the content of `target` by `bytes`, or leaves it as it was.
inline void writeFileAtomically(const std::filesystem::path& target, std::string_view bytes) {
  AtomicFile file(target);
  file.write(bytes);
  file.commit();
}

/// All bytes of a file; throws Error with the system's error number.
[[nodiscard]] std::string readFile(const std::filesystem::path& file);

}  // namespace korvel
