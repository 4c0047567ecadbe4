#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace korvel {

/// What becomes of a symbolic link in the place of a file that is to be written.
enum class AtLink {
  writeThrough,  ///< the link stays, the file that it names is replaced: the person put it there
  replace        ///< the link itself is replaced and never followed: somebody else may have put it there
};

/// A file that is written whole or not at all: bytes go to a temporary file beside the target, `commit` syncs it and
/// renames it over the target. A file that is written through keeps who may read and write it. Without `commit` the
/// target is left as it was and the temporary file is removed. All members throw Error with the system's error number.
class WholeFile {
 public:
  explicit WholeFile(std::filesystem::path target, AtLink atLink = AtLink::writeThrough);
  ~WholeFile();
  WholeFile(const WholeFile&) = delete;
  WholeFile& operator=(const WholeFile&) = delete;

  void write(std::string_view bytes);
  void commit();

 private:
  void flush();

  std::filesystem::path target_;
  std::filesystem::path temporary_;
  std::string buffer_;
  std::intptr_t file_ = -1;  ///< the system's descriptor or handle, -1 for none
};

/// Replaces `target` by `bytes`, whole or not at all.
void writeWholeFile(const std::filesystem::path& target, std::string_view bytes);

/// All bytes of a file; throws Error with the system's error number.
std::string readWholeFile(const std::filesystem::path& file);

}  // namespace korvel
